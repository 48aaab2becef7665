#include "ui/WindowSupport.h"

namespace {
// The bars' number fields run under their increase buttons, and three old buttons lie under the jog panel: wanted. The
// log's lines are scrolled, and the positions draw themselves to fit.
const stTidy WINDOW_EXEMPT = {{"Btn_StartPause", "Btn_Reset", "Btn_AppHelp", "LE_Value", "Lbl_Knob", "Lbl_Track"},
                              {"lineEdit"},
                              {"CdlgGCode", "CdlgJobSettings", "CDlgUserSettings", "CDlgMachineSettings", "CDlgManual",
                               "LE_CurPos", "LV_Log", "m_G01FeedBar", "m_SpindleSpeedBar"}};

class WindowLook : public CWindowTest
{
};

TEST_F(WindowLook, IsTidyInEveryState)
{
    Open();
    EXPECT_EQ(Window().size(), QSize(1250, 840));
    EXPECT_EQ(Window().minimumSize(), Window().maximumSize());
    SaveScreen(Window(), "window-idle");
    EXPECT_TIDY(Window(), WINDOW_EXEMPT);

    AppConfig::m_bAutoSpindleOnCW = true;
    Hold({"G1 X40 Y30", "Z-3", "X0"});
    StartByTouch();
    ASSERT_TRUE(WaitFor([&] { return Machine().GetCurPos(X_AXIS) > 2.0; }));
    SaveScreen(Window(), "window-running");
    EXPECT_TIDY(Window(), WINDOW_EXEMPT);
    Touch(Round("m_BtnPause"));
    SaveScreen(Window(), "window-paused");
    EXPECT_TIDY(Window(), WINDOW_EXEMPT);
    Touch(Round("m_BtnStop"));
    SaveScreen(Window(), "window-stopped");
    EXPECT_TIDY(Window(), WINDOW_EXEMPT);

    for (const char* szScreen : {"JobSettings", "UserSettings", "MachineSettings"}) {
        TouchButton(QStringLiteral("Btn_") + szScreen);
        SaveScreen(Window(), QStringLiteral("window-") + szScreen);
    }
    for (const char* szName : {"Length", "Width", "Height"}) {
        CAnswer size(CAnswer::Keys("C10000"));
        TouchButton(QStringLiteral("Btn_SetWorkPiece") + szName);
    }
    EXPECT_TIDY(Window(), WINDOW_EXEMPT);
}

TEST_F(WindowLook, ShowsFiveAxes)
{
    AppConfig::m_eVantorCtrl = VTR5_CTRL;
    Open();
    for (int axis = 0; axis < MAX_AXES; ++axis) Machine().m_AxisCtrl[axis].SetCurPos(-10000.1234 + axis);
    ASSERT_TRUE(WaitFor([&] { return Child<QLabel>(Window(), "LE_CurPos").text().contains("-9996"); }));
    SaveScreen(Window(), "window-five-axes");
    EXPECT_TIDY(Window(), WINDOW_EXEMPT);
}
}   // namespace
