#include "window/WindowSupport.h"

namespace {
// The bars' number fields run under their increase buttons, and three old buttons lie under the jog panel: wanted. The
// log's lines are scrolled, and the positions draw themselves to fit.
const stTidy WINDOW_EXEMPT = {{"centralwidget"},
                              {"lineEdit"},
                              {"CdlgGCode", "CDlgShapes", "CdlgJobSettings", "CDlgUserSettings", "CDlgMachineSettings",
                               "CDlgManual", "LE_CurPos", "LV_Log", "m_G01FeedBar", "m_SpindleSpeedBar"}};

class WindowLook : public CWindowTest
{
protected:
    // The walk, and what lies directly on the window against what the form holds below it.
    void ExpectTidyWindow(const char* szName)
    {
        SaveScreen(Window(), QLatin1String(szName));
        EXPECT_TIDY(Window(), WINDOW_EXEMPT);
        const QStringList covered = {"Btn_StartPause", "Btn_Reset", "Btn_AppHelp"};
        const auto& form = Child<QWidget>(Window(), "centralwidget");
        for (const auto* pTop : Window().findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            if (pTop == &form || pTop->isHidden()) continue;
            for (const auto* pBelow : form.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
                const QString strName = pBelow->objectName();
                const bool bCovered = covered.contains(strName);
                if (bCovered && pTop->objectName() != "CDlgManual") continue;
                EXPECT_EQ(pTop->geometry().intersects(pBelow->geometry()), bCovered)
                    << szName << ": " << strName.toStdString() << " under " << pTop->objectName().toStdString();
            }
        }
    }
};

TEST_F(WindowLook, IsTidyInEveryState)
{
    Open();
    EXPECT_EQ(Window().size(), QSize(1250, 840));
    EXPECT_EQ(Window().minimumSize(), Window().maximumSize());
    ExpectTidyWindow("window-idle");

    AppConfig::m_bAutoSpindleOnCW = true;
    Hold({"G1 X40 Y30", "Z-3", "X0"});
    StartByTouch();
    ASSERT_TRUE(WaitFor([&] { return Machine().GetCurPos(X_AXIS) > 2.0; }));
    ExpectTidyWindow("window-running");
    Touch(Round("m_BtnPause"));
    ExpectTidyWindow("window-paused");
    Touch(Round("m_BtnStop"));
    ExpectTidyWindow("window-stopped");

    for (const char* szScreen : {"JobSettings", "ShapeCarving", "UserSettings", "MachineSettings"}) {
        TouchButton(QStringLiteral("Btn_") + szScreen);
        SaveScreen(Window(), QStringLiteral("window-") + szScreen);
    }
    for (const char* szName : {"Length", "Width", "Height"}) {
        CAnswer size(CAnswer::Keys("C10000"));
        TouchButton(QStringLiteral("Btn_SetWorkPiece") + szName);
    }
    ExpectTidyWindow("window-large-work");
}

TEST_F(WindowLook, ShowsFiveAxes)
{
    AppConfig::m_eVantorCtrl = VTR5_CTRL;
    Open();
    for (int axis = 0; axis < MAX_AXES; ++axis) Machine().m_AxisCtrl[axis].SetCurPos(-10000.1234 + axis);
    ASSERT_TRUE(WaitFor([&] { return Child<QLabel>(Window(), "LE_CurPos").text().contains("-9996"); }));
    ExpectTidyWindow("window-five-axes");
}
}   // namespace
