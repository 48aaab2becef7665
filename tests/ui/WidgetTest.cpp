#include "ui/DlgKeyPad.h"
#include "ui/DlgMyHorizSlideBar.h"
#include "ui/MyRndBtn.h"
#include "ui/MyView.h"
#include "ui/MyWidgetVerticalSlidebar.h"
#include "ui/ScreenSupport.h"

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
    button.SetReleased();
    button.SetPressed();
    EXPECT_EQ(Emitted(), std::pair(qsizetype(1), qsizetype(1)));
    QTest::keyClick(&button, Qt::Key_Space);
    EXPECT_FALSE(button.hasFocus());
}

TEST(RoundButton, LooksPushedInWhilePressed)
{
    CMyRndBtn button;
    button.resize(90, 90);
    button.SetBtnColor(QColor(0, 100, 0), QColor(50, 205, 50));
    button.SetBtnText(QString());
    const auto Pixel = [&](int x, int y) { return button.grab().toImage().pixelColor(x, y); };
    EXPECT_EQ(Pixel(1, 1), QColor(60, 60, 60));    // behind the disc
    EXPECT_EQ(Pixel(44, 2), QColor(50, 50, 50));   // the dark disc
    EXPECT_EQ(Pixel(44, 6), QColor(0, 100, 0));    // released: from 5 to 88
    EXPECT_EQ(Pixel(46, 86), QColor(0, 100, 0));
    button.SetPressed();
    EXPECT_EQ(Pixel(44, 6), QColor(50, 50, 50));
    EXPECT_EQ(Pixel(44, 9), QColor(50, 205, 50));   // pressed: from 7 to 82
    EXPECT_EQ(Pixel(44, 83), QColor(50, 50, 50));
}

// ---- Slide bars ----

class CTimedBar : public CdlgMyHorizSlideBar
{
public:
    qint64 m_lSinceClick = -1;   // ms

protected:
    qint64 MsSinceClick() const override { return m_lSinceClick; }
};

stFloatPoint Range(double fLow, double fHigh)
{
    stFloatPoint range;
    range.x = fLow;
    range.y = fHigh;
    return range;
}

TEST(SlideBar, ScalesByTheUpperLimitClampsAndCuts)
{
    struct stCase
    {
        double fLow, fHigh, fSet;
        int iValue, iKnob;
    };
    for (const stCase& c : {stCase{10, 150, 75.9, 75, 75},
                            {10, 150, 151, 150, 150},
                            {10, 150, 9.9, 10, 10},
                            {1, 24, 8, 8, 50},
                            {0, 24, 8, 8, 50},
                            {1, 24, 1e9, 24, 150},
                            {1, 24, -1e9, 1, 6},
                            {0, 100, 33, 33, 49},
                            {0, 0, 5, 0, 0}}) {
        CTimedBar bar;
        QSignalSpy told(&bar, &CdlgMyHorizSlideBar::ValueChanged);
        bar.SetSliderRange(Range(c.fLow, c.fHigh));
        bar.setValue(c.fSet);
        EXPECT_EQ(bar.GetValue(), c.iValue) << c.fSet;
        EXPECT_EQ(bar.m_sKnobPos, c.iKnob) << c.fSet;
        EXPECT_EQ(Child<QLabel>(bar, "Lbl_Track").geometry(), QRect(30, 0, c.iKnob, 30));
        EXPECT_EQ(Child<QLabel>(bar, "Lbl_Knob").geometry(), QRect(c.iKnob + 30, 0, 30, 30));
        EXPECT_EQ(Child<QLineEdit>(bar, "LE_Value").geometry(), QRect(c.iKnob + 60, 0, 210, 30));
        EXPECT_EQ(Child<QLineEdit>(bar, "LE_Value").text(), QString::number(c.iValue));
        EXPECT_EQ(Child<QLabel>(bar, "Lbl_Knob").text(), QString::number(c.iValue));
        EXPECT_TRUE(told.isEmpty());
    }
}

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
    EXPECT_TRUE(less.styleSheet().startsWith(BTN_BKGND_GRAY));
    Click(less);   // at the end of the range nothing moves, and no button stays blue
    EXPECT_TRUE(WaitFor([&] { return told.size() == 3; }));
    EXPECT_TRUE(less.styleSheet().startsWith(BTN_BKGND_GRAY));
    bar.setValue(149);
    Click(more);
    EXPECT_TRUE(WaitFor([&] { return told.size() == 4; }));
    EXPECT_EQ(told, (std::vector<short>{80, 10, 10, 150}));
    SaveScreen(bar, "slide-bar");
}

TEST(SlideBar, GuardsWithItsOwnClockToo)
{
    CdlgMyHorizSlideBar bar;
    ShowWindow(bar);
    Click(bar, "Btn_Increase");
    Click(bar, "Btn_Increase");
    EXPECT_EQ(bar.GetValue(), 80);
}

TEST(UprightBar, StepsAtOnceAndFollowsTheDraggedKnobByFivePixels)
{
    CMyWidgetVerticalSlidebar bar;
    ShowWindow(bar);
    std::vector<short> told;
    QObject::connect(&bar, &CMyWidgetVerticalSlidebar::ValueChanged, [&](short sValue) { told.push_back(sValue); });
    Click(bar, "Btn_Increase");
    Click(bar, "Btn_Increase");
    Click(bar, "Btn_Decrease");
    auto& knob = Child<QLabel>(bar, "Lbl_Knob");
    EXPECT_EQ(knob.geometry(), QRect(0, 240 - 60 - 80, 30, 30));
    const QPoint grip = knob.geometry().center();
    TouchDown(bar, grip);
    TouchMove(bar, grip - QPoint(0, 4));    // not yet a step
    TouchMove(bar, grip - QPoint(0, 12));   // two
    TouchMove(bar, grip + QPoint(0, 5));    // three back
    TouchMove(bar, QPoint(15, 239));        // as far as it goes
    TouchUp(bar, QPoint(15, 239));
    TouchMove(bar, grip - QPoint(0, 50));   // no longer held
    EXPECT_EQ(told, (std::vector<short>{80, 85, 80, 90, 75, 10}));
    SaveScreen(bar, "upright-bar");
}

// ---- Image view ----

class CTestView : public CMyView
{
public:
    using CMyView::m_bFitToView;
    using CMyView::m_HScroll;
    using CMyView::m_iScrollX;
    using CMyView::m_iScrollY;
    using CMyView::m_pImage;
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

class View : public testing::Test
{
protected:
    View()
    {
        m_View.resize(225, 125);
        m_View.EnableZoom(true);   // a picture's room is 200 by 100
        ShowWindow(m_View);
        m_Image.fill(QColor(10, 20, 30));
        m_View.DisplayImage(&m_Image);
    }
    QImage m_Image{100, 100, QImage::Format_RGB888};
    CTestView m_View;
};

TEST_F(View, FitsAndCentresThenZoomsAboutTheMiddle)
{
    EXPECT_EQ(m_View.GetCurZoomFactor(), 1.0);
    EXPECT_EQ(m_View.m_TargetRect, QRectF(50, 0, 100, 100));
    EXPECT_EQ(m_View.m_SourceRect, QRectF(0, 0, 100, 100));
    EXPECT_FALSE(m_View.m_HScroll.isEnabled() || m_View.m_VScroll.isEnabled());
    m_View.Wheel(120, 20);
    EXPECT_NEAR(m_View.GetCurZoomFactor(), 2.0, 1e-9);
    // 200 pixels are not above the room of 200, but above the 100 of the height.
    EXPECT_FALSE(m_View.m_HScroll.isEnabled());
    EXPECT_TRUE(m_View.m_VScroll.isEnabled());
    EXPECT_EQ(m_View.m_TargetRect, QRectF(0, 0, 200, 100));
    EXPECT_NEAR(m_View.m_SourceRect.top(), 50 - 125 / 2.0 / 2, 1e-6);   // the whole height of the view
    EXPECT_NEAR(m_View.m_SourceRect.bottom(), 50 + 125 / 2.0 / 2, 1e-6);
    EXPECT_EQ(m_View.m_VScroll.maximum(), 75);
    EXPECT_EQ(m_View.m_iScrollY, 37);
    EXPECT_EQ(m_View.m_VScroll.value(), 37);
    m_View.m_VScroll.setValue(60);
    EXPECT_NEAR(m_View.m_SourceRect.top(), 30.0, 1e-6);
    EXPECT_NEAR(m_View.m_SourceRect.bottom(), 80.0, 1e-6);   // the height of the target
    QTest::mouseDClick(&m_View, Qt::LeftButton);
    QTest::mouseRelease(&m_View, Qt::LeftButton);   // the library leaves the button down
    EXPECT_EQ(m_View.GetCurZoomFactor(), 1.0);
    EXPECT_EQ(m_View.m_SourceRect, QRectF(0, 0, 100, 100));
}

TEST_F(View, StopsZoomingAtItsLimits)
{
    m_View.Wheel(120, 200);
    EXPECT_EQ(m_View.GetCurZoomFactor(), 7.0);
    m_View.Wheel(0, 1);   // not up: down
    EXPECT_NEAR(m_View.GetCurZoomFactor(), 6.95, 1e-9);
    m_View.Wheel(-120, 200);
    EXPECT_EQ(m_View.GetCurZoomFactor(), 0.05);
    m_View.EnableZoom(false);
    m_View.Wheel(120, 1);
    EXPECT_EQ(m_View.GetCurZoomFactor(), 0.05);
    EXPECT_FALSE(m_View.m_HScroll.isVisible());
}

TEST_F(View, KeepsZoomForAPictureOfTheSameSizeOnly)
{
    m_View.Wheel(120, 40);
    m_View.m_HScroll.setValue(33);
    QImage same(100, 100, QImage::Format_RGB888), other(50, 100, QImage::Format_RGB888);
    m_View.DisplayImage(&same);
    EXPECT_NEAR(m_View.GetCurZoomFactor(), 3.0, 1e-9);
    EXPECT_EQ(m_View.m_iScrollX, 33);
    m_View.DisplayImage(&other);
    EXPECT_TRUE(m_View.m_bFitToView);
    EXPECT_EQ(m_View.m_TargetRect, QRectF(75, 0, 50, 100));
    m_View.resize(125, 65);
    EXPECT_EQ(m_View.m_TargetRect, QRectF(40, 0, 20, 40));
}

TEST_F(View, CopiesWhatItsCallerMayLose)
{
    EXPECT_EQ(m_View.m_pImage, &m_Image);
    QImage red(100, 100, QImage::Format_RGB888);
    red.fill(Qt::red);
    m_View.DisplayImage(&red, true);   // a caller's picture stands
    EXPECT_EQ(m_View.m_pImage, &m_Image);
    m_View.DisplayImage(nullptr);
    for (const QColor color : {QColor(Qt::red), QColor(Qt::blue)}) {
        red.fill(color);
        m_View.DisplayImage(&red, true);
        red.fill(Qt::black);
        EXPECT_EQ(m_View.m_pImage->pixelColor(5, 5), color);
    }
    m_View.DisplayImage(&m_Image, false);
    EXPECT_EQ(m_View.m_pImage, &m_Image);
}

TEST_F(View, TellsThePixelUnderThePointer)
{
    m_Image.setPixelColor(20, 30, QColor(1, 2, 3));
    QSignalSpy moved(&m_View, &CMyView::MouseMoved);
    const auto InfoAt = [&](QPoint at) {
        TouchMove(m_View, at);
        return m_View.m_strPixelInfo;
    };
    EXPECT_EQ(InfoAt({70, 30}), "X:20 Y:30(RGB:1,2,3)");
    EXPECT_EQ(InfoAt({30, 30}), "");   // beside the picture
    m_View.Wheel(120, 40);             // three times: 300 pixels in a view of 225
    m_View.m_HScroll.setValue(30);
    m_View.m_VScroll.setValue(60);
    EXPECT_EQ(InfoAt({31, 32}), "X:20 Y:30(RGB:1,2,3)");
    EXPECT_FALSE(m_View.m_bLeftButtonDown);
    TouchDown(m_View, {31, 32});
    TouchMove(m_View, {34, 32});
    EXPECT_TRUE(m_View.m_bLeftButtonDown);
    TouchUp(m_View, {34, 32});
    EXPECT_EQ(m_View.m_MousePos, QPoint(34, 32));
    EXPECT_EQ(m_View.m_ImgPos, QPoint(21, 30));
    EXPECT_EQ(moved.size(), 4);
}

TEST_F(View, PaintsPictureBackgroundAndName)
{
    m_View.m_colBkGnd = QColor(0, 0, 90);
    m_View.SetDisplayID("Camera");
    const QImage shown = m_View.grab().toImage();
    EXPECT_EQ(shown.pixelColor(100, 60), QColor(10, 20, 30));
    EXPECT_EQ(shown.pixelColor(20, 60), QColor(0, 0, 90));
    const QImage name = shown.copy(5, 2, 60, 14);
    bool bGreen = false;
    for (int y = 0; y < name.height(); ++y)
        for (int x = 0; x < name.width(); ++x) bGreen |= name.pixelColor(x, y).green() > 200;
    EXPECT_TRUE(bGreen);
}
}   // namespace
