#include "common/Paths.h"
#include "widgets/ButtonStyle.h"
#include "window/WindowSupport.h"

namespace {
// Off during the operations of the string, by their codes; the other operations leave the widget as it is.
const struct stRow
{
    const char *szWidgets, *szOff;
    QStringList Widgets() const { return QString(szWidgets).split(' '); }
} TABLE[] = {
    {"Btn_JobSettings Btn_MoveWorkZero Btn_SetZ0WithZProbe Btn_SetWorkZero Btn_SimulationMode Btn_SetWorkPieceLength "
     "Btn_SetWorkPieceWidth Btn_SetWorkPieceHeight Btn_MoveZSafePos Btn_MoveWorkHome_X Btn_MoveWorkHome_Y "
     "Btn_MoveWorkHome_Z Btn_MoveWorkHome_A Btn_MoveWorkHome_B CDlgManual",
     "345"},
    {"Btn_GCode", "347"},
    {"Btn_ShapeCarving", "457"},
    {"Btn_ImageCarving", "357"},
    {"Btn_UserSettings Btn_MachineSettings", "3457"},
    {"Btn_SaveSettings Btn_SpindleCWOnOff m_BtnStop", ""},
};

struct stOperation
{
    int iCode;
    const char *szStart, *szEnd;
};
class WindowState : public CWindowTest, public testing::WithParamInterface<stOperation>
{
protected:
    void EnterOperation()
    {
        Machine().m_eOperation = GetParam().iCode;
        Window().EnableDisableWindows();
    }
    bool IsOff(const stRow& row) const { return QString(row.szOff).contains(QString::number(GetParam().iCode)); }
    // By the widget's own flag: the panel's children follow it.
    QMap<QString, bool> Enabled()
    {
        QMap<QString, bool> states;
        for (const stRow& row : TABLE)
            for (const QString& strName : row.Widgets())
                states[strName] = Child<QWidget>(Window(), strName).isEnabled();
        return states;
    }
};

TEST_P(WindowState, DisablesAndEnablesByItsTable)
{
    AppConfig::m_eVantorCtrl = VTR5_CTRL;
    Open();
    auto expected = Enabled();
    for (const QString& strName : expected.keys()) EXPECT_TRUE(expected[strName]) << strName.toStdString();
    const auto before = expected;
    ClearLog();
    EnterOperation();
    EXPECT_EQ(Log(), QStringList(GetParam().szStart));
    for (const stRow& row : TABLE)
        for (const QString& strName : row.Widgets()) expected[strName] = expected[strName] && !IsOff(row);
    EXPECT_EQ(Enabled(), expected);

    ClearLog();
    Machine().m_bPause = true;
    Round("m_BtnStart").setEnabled(false);
    Round("m_BtnStart").SetPressed();
    Round("m_BtnPause").setEnabled(false);
    Window().OnOperationFinish();
    EXPECT_EQ(Enabled(), before);
    EXPECT_EQ(Log(), *GetParam().szEnd ? QStringList(GetParam().szEnd) : QStringList());
    EXPECT_EQ(Machine().m_eOperation, OP_NONE);
    EXPECT_FALSE(Machine().m_bPause);
    EXPECT_TRUE(Round("m_BtnStart").isEnabled() && Round("m_BtnPause").isEnabled());
    EXPECT_FALSE(Round("m_BtnStart").IsPressed());
}

// A machine of three axes has no A and B, and what is off without the operation stays so.
TEST_P(WindowState, LeavesWhatItHasNotTaken)
{
    AppConfig::m_bPWMCtrlUsed = true;
    Open();
    EXPECT_FALSE(Button("Btn_MoveWorkHome_A").isEnabled());
    AppConfig::m_GCodeRunSettings.bUsePrgmSpindleSpeed = true;
    AppConfig::m_bEmergencyStopON = true;
    EnterOperation();
    EXPECT_EQ(Bar("m_SpindleSpeedBar").isEnabled(), GetParam().iCode != OP_GCODE);
    ClearLog();
    Window().OnOperationFinish();
    EXPECT_EQ(Log(), QStringList()) << "no end is told during an emergency stop";
    EXPECT_FALSE(Button("Btn_MoveWorkHome_A").isEnabled());
    EXPECT_FALSE(Button("Btn_MoveWorkHome_B").isEnabled());
    EXPECT_TRUE(Bar("m_SpindleSpeedBar").isEnabled());
}

// Neither a jog nor a box without a Stop comes in between.
TEST_P(WindowState, RefusesJogsAndBoxes)
{
    Open();
    EnterOperation();
    for (const auto& [strButton, strWhy] : {std::pair(QString("Btn_JogEast"), QString("Axis in use")),
                                            {"Btn_SaveLog", "Machine in use"},
                                            {"Btn_ClearLog", "Machine in use"},
                                            {"Btn_SetWorkPieceWidth", "Machine in use"}}) {
        if (!Button(strButton).isEnabled()) continue;
        ClearLog();
        TouchButton(strButton);
        EXPECT_EQ(Log(), QStringList(strWhy)) << strButton.toStdString();
    }
    EXPECT_TRUE(Machine().IsMachineIdle());
}

// The relays follow the settings at the end of a job, and of no other operation.
TEST_P(WindowState, ShowsAndStopsTheAutomaticSpindle)
{
    AppConfig::m_bAutoSpindleOnCCW = AppConfig::m_bAutoSpindleOff = true;
    Open();
    QPushButton &cw = Button("Btn_SpindleCWOnOff"), &ccw = Button("Btn_SpindleCCWOnOff");
    const int iRelay = AppConfig::m_lstMCodesPin[4];
    CVirtualPins::SetInput(iRelay, 1);
    EnterOperation();
    const bool bCutting = QString("345").contains(QString::number(GetParam().iCode));
    EXPECT_EQ(ccw.text(), bCutting ? "Spindle\nCCW ON" : "Spindle\nCCW OFF");
    EXPECT_EQ(ccw.styleSheet(), bCutting ? BTN_BKGND_GREEN : BTN_BKGND_GRAY);
    EXPECT_EQ(cw.isEnabled(), !bCutting);
    const bool bJob = bCutting || GetParam().iCode == OP_Z_PROFILE;
    Window().OnOperationFinish();
    EXPECT_EQ(CVirtualPins::Level(iRelay), bJob ? 0 : 1);
    EXPECT_TRUE(cw.isEnabled() && ccw.isEnabled());
    EXPECT_EQ(ccw.text() + cw.text(), "Spindle\nCCW OFFSpindle\nCW OFF");
}
INSTANTIATE_TEST_SUITE_P(Operations, WindowState,
                         testing::Values(stOperation{1, "Moving to Work Home", "Work home postion reached"},
                                         stOperation{2, "Moving to Machine Home", "Machine Homing finished"},
                                         stOperation{3, "Shapes cutting started", "Shapes cutting completed"},
                                         stOperation{4, "3D relief Carving started", "3D Relief carving completed"},
                                         stOperation{5, "G-Code execution Started", "G-Code execution finished"},
                                         stOperation{6, "Setting Z0 using Z-Probe", ""},
                                         stOperation{7, "Z profiling Started", "Z profiling completed"}));

// ---- Ends that say less ----

class Window_ : public CWindowTest
{
};

TEST_F(Window_, ShowsNoSpindleOfASimulatedJobBehindItsEnd)
{
    Open();
    AppConfig::m_bAutoSpindleOnCW = AppConfig::m_bSimulationMode = true;
    Machine().m_eOperation = OP_GCODE;
    Window().EnableDisableWindows();
    EXPECT_EQ(Button("Btn_SpindleCWOnOff").text(), "Spindle\nCW ON");
    Window().OnOperationFinish();
    EXPECT_EQ(Button("Btn_SpindleCWOnOff").text(), "Spindle\nCW OFF");
    EXPECT_TRUE(Button("Btn_SpindleCCWOnOff").isEnabled() && !AppConfig::m_bSpindleOn);
}

TEST_F(Window_, TakesCallsFromOtherThreadsAndDropsAnEndThatComesLate)
{
    Open();
    AppConfig::m_bHomeSensorsUsed = true;
    AppConfig::m_fAxisPosDirLimit[X_AXIS] = 345.0;
    std::thread([this] { Window().UpdateWorkArea(); }).join();   // a probe has set a work zero
    EXPECT_TRUE(WaitFor([this] { return Button("Btn_WorkAreaLength").text() == "345\nLength"; }));
    ClearLog();
    Machine().m_eOperation = OP_Z_PROFILE;
    Window().EnableDisableWindows();
    const auto FromThread = [this] {
        std::thread([this] {
            Window().AddLogMsg("from a thread", MSG_NOTICE);
            Window().OnOperationFinish();
        }).join();
    };
    FromThread();
    EXPECT_FALSE(Logged("from a thread"));
    ExpectLogged("Z profiling completed");
    EXPECT_TRUE(Logged("from a thread"));

    Machine().m_eOperation = OP_Z_PROFILE;
    FromThread();
    Window().EnableDisableWindows();   // the next operation begins before the call is read
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(Machine().m_eOperation, OP_Z_PROFILE);
}

// ---- The supervision loop ----

TEST_F(Window_, ShowsPositionsAndMessagesOneOfEachKindATick)
{
    Open();
    Machine().m_AxisCtrl[X_AXIS].SetCurPos(12.5);
    Machine().m_AxisCtrl[Z_AXIS].SetCurPos(-0.0001);
    ClearLog();
    for (const char* szText : {"first", "second"}) Machine().PushErrMsg(szText);
    Machine().PushInfoMsg("info");
    Window().OnTimer();
    EXPECT_EQ(Log(), QStringList({"info", "second"}));
    Window().OnTimer();
    EXPECT_EQ(Log(), QStringList({"first", "info", "second"}));
    EXPECT_EQ(Child<QLabel>(Window(), "LE_CurPos").text(), "12.5000\n0.0000\n-0.0001\nNA\nNA");
    const auto& list = Child<QListWidget>(Window(), "LV_Log");
    EXPECT_EQ(list.item(0)->foreground().color(), QColor(255, 150, 0));
    EXPECT_EQ(list.item(1)->foreground().color(), QColor(0, 250, 0));
    EXPECT_TRUE(QRegularExpression("^\\[\\d\\d:\\d\\d:\\d\\d\\]first$").match(list.item(0)->text()).hasMatch());
    Machine().m_bStartBtnPressRequest = true;
    Window().OnTimer();
    EXPECT_TRUE(Round("m_BtnStart").IsPressed());
    EXPECT_FALSE(Machine().m_bStartBtnPressRequest);
}

TEST_F(Window_, PausesForAToolChangeAndLendsThePanel)
{
    Open();
    Machine().m_eOperation = OP_GCODE;
    Window().EnableDisableWindows();
    AppConfig::m_bSpindleOn = true;
    Machine().m_bToolChangePause = true;
    ClearLog();
    Window().OnTimer();
    EXPECT_EQ(Log(), QStringList()) << "the worker has said why";
    EXPECT_TRUE(Machine().m_bPause);
    EXPECT_FALSE(Machine().m_bToolChangePause || AppConfig::m_bSpindleOn);
    EXPECT_EQ(Button("Btn_SpindleCWOnOff").text() + Button("Btn_SpindleCCWOnOff").text(),
              "Spindle\nCW OffSpindle\nCCW Off");
    auto& panel = Child<QWidget>(Window(), "CDlgManual");
    EXPECT_TRUE(panel.isEnabled() && Round("m_BtnStart").isEnabled());
    Touch(Round("m_BtnStart"));
    EXPECT_FALSE(Machine().m_bPause || panel.isEnabled() || Round("m_BtnStart").isEnabled());
    Window().OnOperationFinish();
    EXPECT_TRUE(panel.isEnabled());
}

TEST_F(Window_, DropsAToolChangeThatAStopHasOvertaken)
{
    Open();
    for (const bool bStop : {false, true}) {
        AppConfig::m_bEmergencyStopON = bStop;
        Machine().m_eOperation = bStop ? OP_GCODE : OP_NONE;
        AppConfig::m_bSpindleOn = Machine().m_bToolChangePause = true;
        Window().OnTimer();
        EXPECT_FALSE(Machine().m_bToolChangePause || Machine().m_bPause);
        EXPECT_TRUE(AppConfig::m_bSpindleOn);
    }
}

TEST_F(Window_, TellsATickThatComesLateAtMostOnceASecond)
{
    Open();
    ClearLog();
    for (int n = 0; n < 3; ++n) {
        QThread::msleep(150);
        Window().OnTimer();
    }
    const auto lines = Child<QListWidget>(Window(), "LV_Log").findItems("Supervision was late by", Qt::MatchContains);
    EXPECT_EQ(lines.size(), 1);
}

TEST_F(Window_, StartInputShowsTheProgramAndLightsStartOnly)
{
    Open();
    TouchButton("Btn_UserSettings");
    Carriages().PressStart(true);
    Window().OnTimer();
    EXPECT_TRUE(Child<QWidget>(Window(), "CdlgGCode").isVisible());
    EXPECT_TRUE(Round("m_BtnStart").IsPressed());
    EXPECT_EQ(Machine().m_eOperation, OP_NONE);
    Carriages().PressStart(false);
    Window().OnTimer();
    Machine().m_eOperation = OP_MCH_HOME;
    Carriages().PressStart(true);
    ClearLog();
    Window().OnTimer();
    EXPECT_EQ(Log(), QStringList("Machine in use"));
    Machine().m_eOperation = OP_NONE;

    ClearLog();
    Touch(Round("m_BtnStart"));   // lit and enabled: a touch is the press
    ExpectLogged("No G-Code added");
    EXPECT_TRUE(Round("m_BtnStart").IsPressed());
    EXPECT_TRUE(WaitFor([&] { return !Round("m_BtnStart").IsPressed(); }));
}

// ---- Start-up ----

TEST_F(Window_, StartsStoppedWhereTheInputIsHigh)
{
    AppConfig::m_bHomeSensorsUsed = AppConfig::m_bAutoHmOnStartup = m_bStopHighAtStart = true;
    Open();
    ExpectLogged("Emergency Stop Triggered");
    ExpectLogged("Homing at start not begun: Emergency Stop input is High");
    EXPECT_TRUE(AppConfig::m_bEmergencyStopON && Round("m_BtnStop").IsPressed());
    EXPECT_EQ(Machine().m_eOperation, OP_NONE);
    Carriages().PressEmergencyStop(false);
    EXPECT_TRUE(WaitFor([&] { return !AppConfig::m_bEmergencyStopON && !Round("m_BtnStop").IsPressed(); }));
}

TEST_F(Window_, HomesAtStartUpAndRoundsTheOverride)
{
    AppConfig::m_bHomeSensorsUsed = AppConfig::m_bAutoHmOnStartup = true;
    AppConfig::m_fHomeRepeatOffset = 0.1;
    AppConfig::m_fAxisFeedPercent[X_AXIS] = 1.15;   // times 100 is below 115
    AppConfig::SaveConfig(CONFIG_FILE);
    ASSERT_TRUE(QFile::resize(CPaths::Map(CONFIG_FILE), 656));
    {
        CAnswer damaged([](QWidget& modal) {
            EXPECT_EQ(StatusOutput(), 0) << "it is told before anything moves";
            Answer(modal, QMessageBox::Ok);
        });
        Open();
        EXPECT_TRUE(damaged.Text().contains("is damaged") && Logged(damaged.Text()));
    }
    ExpectLogged("Homing at start not begun: check all settings first");
    Close();
    AppConfig::m_bHomeSensorsUsed = AppConfig::m_bAutoHmOnStartup = true;
    AppConfig::SaveConfig(CONFIG_FILE);
    Open();
    EXPECT_EQ(Bar("m_G01FeedBar").GetValue(), 115);
    EXPECT_TRUE(Logged("Moving to Machine Home"));
    ExpectLogged("Machine Homing finished");
    EXPECT_TRUE(Machine().GetHomeDone());
    EXPECT_EQ(AppConfig::m_fAxisFeed[X_AXIS], 1.15 * AppConfig::m_fUserAxisFeed[X_AXIS]);
}
}   // namespace

TEST_F(Window_, ShowsTheSpindleOfAProgram)
{
    Open();
    QPushButton &cw = Button("Btn_SpindleCWOnOff"), &ccw = Button("Btn_SpindleCCWOnOff");
    const auto Show = [&](bool bOn, bool bCCW) {
        AppConfig::m_bSpindleOn = bOn;
        AppConfig::m_bSpindleDirInGcode = bCCW;
        AppConfig::m_bSpindleOnOffStatusChangeInGCode = true;
        Window().OnTimer();
        EXPECT_FALSE(AppConfig::m_bSpindleOnOffStatusChangeInGCode);
    };
    Show(true, true);
    EXPECT_EQ(ccw.text(), "Spindle\nCCW ON");
    EXPECT_TRUE(ccw.isEnabled() && !cw.isEnabled());
    Show(true, false);
    EXPECT_EQ(cw.text(), "Spindle\nCW ON");
    EXPECT_TRUE(cw.isEnabled() && !ccw.isEnabled());
    Show(false, false);
    EXPECT_EQ(cw.text() + ccw.text(), "Spindle\nCCW OFFSpindle\nCCW OFF");
    EXPECT_TRUE(cw.isEnabled() && ccw.isEnabled());
    AppConfig::m_bAutoSpindleOnCW = AppConfig::m_bSpindleOn = AppConfig::m_bSpindleOnOffStatusChangeInGCode = true;
    Window().OnTimer();
    EXPECT_EQ(cw.text(), "Spindle\nCCW OFF") << "the automatic spindle is shown by the job's start";
}
