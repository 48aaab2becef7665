#include "support/screens/ScreenSupport.h"
#include "widgets/ButtonStyle.h"
#include "widgets/DlgKeyPad.h"
#include "widgets/DlgMyHorizSlideBar.h"
#include "widgets/MyRndBtn.h"
#include "widgets/MyView.h"

namespace {
// ---- Keypad ----

struct stKeys
{
    const char *szStart, *szKeys, *szResult;   // keys: C clears, < takes the last one back, - is the sign key
};
class Keypad : public testing::TestWithParam<stKeys>
{
};
TEST_P(Keypad, KeysMakeTheText)
{
    CDlgKeyPad keypad;
    keypad.EnableSign();
    keypad.SetCurValue(GetParam().szStart);
    CAnswer keys(CAnswer::Keys(GetParam().szKeys));
    keypad.exec();
    EXPECT_EQ(keypad.m_strNewValue.toStdString(), GetParam().szResult);
    EXPECT_FALSE(keypad.m_bCancelled);
    EXPECT_EQ(keys.Title(), "Key Pad");
}
INSTANTIATE_TEST_SUITE_P(Keys, Keypad,
                         testing::Values(stKeys{"", "1234567890", "1234567890"}, stKeys{"7", "", "7"},
                                         stKeys{"7", "1.5", "71.5"}, stKeys{"", "1.2.3", "1.2.3"},   // the caller's
                                         stKeys{"12", "C", "12"},   // OK on an emptied field keeps the value
                                         stKeys{"12", "C5", "5"}, stKeys{"12", "<<<", "12"}, stKeys{"128", "<", "12"},
                                         stKeys{"5", "-", "-5"}, stKeys{"-5", "-", "5"}, stKeys{"9", "C-", "9"},
                                         stKeys{"9", "C-4", "4"}));

TEST(KeypadDialog, EveryWayOutButOkCancels)
{
    for (const char* szWay : {"Cancel", "Escape", "close"}) {
        CDlgKeyPad keypad;
        keypad.SetCurValue("12");
        CAnswer leave([&](QWidget& modal) {
            Click(modal, "Btn_3");
            if (szWay == QString("Cancel"))
                Click(modal, "Btn_Cancel");
            else if (szWay == QString("Escape"))
                QTest::keyClick(&modal, Qt::Key_Escape);
            else
                modal.close();
        });
        keypad.exec();
        EXPECT_TRUE(keypad.m_bCancelled) << szWay;
        EXPECT_EQ(keypad.m_strNewValue, "12") << szWay;
    }
}

TEST(KeypadDialog, OffersSignAndPointOnlyWhereTheyMakeSense)
{
    CDlgKeyPad keypad;
    auto &sign = Child(keypad, "Btn_Sign"), &point = Child(keypad, "Btn_Point");
    EXPECT_FALSE(sign.isEnabled());
    EXPECT_TRUE(point.isEnabled());
    keypad.EnableSign();
    keypad.DisableDecimal();
    EXPECT_TRUE(sign.isEnabled());
    EXPECT_FALSE(point.isEnabled());
    // A real keyboard is bound to the same keys.
    keypad.SetCurValue("1");
    QTest::keyClicks(&keypad, "2.3-");
    EXPECT_EQ(keypad.m_strNewValue, "-123");
    EXPECT_EQ(Child<QLineEdit>(keypad, "LE_NewValue").text(), "-123");
    ShowWindow(keypad);
    EXPECT_TIDY(keypad);
    SaveScreen(keypad, "keypad");
}

// ---- Round button ----

TEST(RoundButton, LatchesOnEveryPressAndIgnoresReleases)
{
    CMyRndBtn button;
    button.resize(90, 90);
    ShowWindow(button);
    QSignalSpy pressed(&button, &QPushButton::pressed), released(&button, &QPushButton::released);
    const auto Emitted = [&] { return std::pair(pressed.size(), released.size()); };
    Press(button);
    EXPECT_EQ(Emitted(), std::pair(qsizetype(1), qsizetype(0)));
    Release(button);
    EXPECT_EQ(Emitted(), std::pair(qsizetype(1), qsizetype(0)));
    EXPECT_TRUE(button.IsPressed());
    QMouseEvent second(QEvent::MouseButtonDblClick, QPointF(5, 5), QPointF(5, 5), Qt::LeftButton, Qt::LeftButton, {});
    QApplication::sendEvent(&button, &second);   // what a fast press arrives as
    EXPECT_EQ(Emitted(), std::pair(qsizetype(1), qsizetype(1)));
    EXPECT_FALSE(button.IsPressed());
}

// ---- Slide bars ----

class CTimedBar : public CdlgMyHorizSlideBar
{
public:
    qint64 m_lSinceClick = -1;   // ms

protected:
    qint64 MsSinceClick() const override { return m_lSinceClick; }
};

TEST(SlideBar, CountsFastPressesOnceAndTellsTheValueLater)
{
    CTimedBar bar;
    ShowWindow(bar);
    auto &more = Child(bar, "Btn_Increase"), &less = Child(bar, "Btn_Decrease");
    std::vector<short> told;
    QObject::connect(&bar, &CdlgMyHorizSlideBar::ValueChanged, [&](short sValue) { told.push_back(sValue); });
    Click(more);
    bar.m_lSinceClick = 0;
    Click(more);
    bar.m_lSinceClick = 399;
    Click(less);
    EXPECT_EQ(bar.GetValue(), 80);
    EXPECT_TRUE(told.empty());
    EXPECT_EQ(more.styleSheet(), BTN_BKGND_BLUE);
    EXPECT_TRUE(WaitFor([&] { return !told.empty(); }));
    EXPECT_TRUE(more.styleSheet().startsWith(BTN_BKGND_GRAY));

    bar.m_lSinceClick = 400;
    bar.setValue(12);
    Click(less);
    EXPECT_EQ(bar.GetValue(), 10);   // clamped on the side it moves to
    EXPECT_TRUE(WaitFor([&] { return told.size() == 2; }));
    Click(less);   // at the end of the range nothing moves, and no button stays blue
    EXPECT_TRUE(WaitFor([&] { return told.size() == 3; }));
    EXPECT_TRUE(less.styleSheet().startsWith(BTN_BKGND_GRAY));
    EXPECT_EQ(told, (std::vector<short>{80, 10, 10}));
    SaveScreen(bar, "slide-bar");
}

// ---- Image view ----

class CTestView : public CMyView
{
public:
    using CMyView::m_HScroll;
    using CMyView::m_iScrollY;
    using CMyView::m_SourceRect;
    using CMyView::m_TargetRect;
    using CMyView::m_VScroll;

    void Wheel(int iDelta, int iTimes)
    {
        for (; iTimes > 0; --iTimes) {
            QWheelEvent event(QPointF(10, 10), QPointF(10, 10), {}, {0, iDelta}, {}, {}, Qt::NoScrollPhase, false);
            QApplication::sendEvent(this, &event);
        }
    }
};

TEST(View, FitsAndCentresThenZoomsAboutTheMiddle)
{
    QImage image(100, 100, QImage::Format_RGB888);
    image.fill(QColor(10, 20, 30));
    CTestView view;
    view.resize(225, 125);
    view.EnableZoom(true);   // a picture's room is 200 by 100
    ShowWindow(view);
    view.DisplayImage(&image);
    EXPECT_EQ(view.GetCurZoomFactor(), 1.0);
    EXPECT_EQ(view.m_TargetRect, QRectF(50, 0, 100, 100));
    EXPECT_EQ(view.m_SourceRect, QRectF(0, 0, 100, 100));
    EXPECT_FALSE(view.m_HScroll.isEnabled() || view.m_VScroll.isEnabled());
    view.Wheel(120, 20);
    EXPECT_NEAR(view.GetCurZoomFactor(), 2.0, 1e-9);
    // 200 pixels are not above the room of 200, but above the 100 of the height.
    EXPECT_FALSE(view.m_HScroll.isEnabled());
    EXPECT_TRUE(view.m_VScroll.isEnabled());
    EXPECT_EQ(view.m_TargetRect, QRectF(0, 0, 200, 100));
    EXPECT_NEAR(view.m_SourceRect.top(), 50 - 125 / 2.0 / 2, 1e-6);   // the whole height of the view
    EXPECT_NEAR(view.m_SourceRect.bottom(), 50 + 125 / 2.0 / 2, 1e-6);
    EXPECT_EQ(view.m_VScroll.maximum(), 75);
    EXPECT_EQ(view.m_iScrollY, 37);
    EXPECT_EQ(view.m_VScroll.value(), 37);
    view.m_VScroll.setValue(60);
    EXPECT_NEAR(view.m_SourceRect.top(), 30.0, 1e-6);
    EXPECT_NEAR(view.m_SourceRect.bottom(), 80.0, 1e-6);   // the height of the target
    QTest::mouseDClick(&view, Qt::LeftButton);
    QTest::mouseRelease(&view, Qt::LeftButton);   // the library leaves the button down
    EXPECT_EQ(view.GetCurZoomFactor(), 1.0);
    EXPECT_EQ(view.m_SourceRect, QRectF(0, 0, 100, 100));
    view.Wheel(120, 200);
    EXPECT_EQ(view.GetCurZoomFactor(), 7.0);
    view.Wheel(-120, 200);
    EXPECT_EQ(view.GetCurZoomFactor(), 0.05);
}
}   // namespace
