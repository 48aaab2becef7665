#include "motion/AllAxisCtrl.h"
#include "widgets/ButtonStyle.h"
#include "widgets/DlgKeyPad.h"
#include "window/StopOver.h"
#include "window/WindowSupport.h"

namespace {
class WindowRun : public CWindowTest
{
protected:
    bool AllStands() { return Machine().IsMachineIdle() && !CAllAxisCtrl::GetMotionState(); }
    QString RefusedStart()
    {
        ClearLog();
        Touch(Round("m_BtnStart"));
        EXPECT_TRUE(WaitFor([&] { return !Round("m_BtnStart").IsPressed(); }));
        EXPECT_TRUE(Round("m_BtnStart").isEnabled());
        return Log().join('|');
    }
};

// The whole road: load by the file dialog, compile, start, pause, resume, reset, run again to the end.
TEST_F(WindowRun, FollowsThePressOfStart)
{
    for (double& fFeed : AppConfig::m_fUserAxisFeed) fFeed = 5.0;   // slow enough to be paused in time
    Open();
    QFile file(m_Home.filePath("part.tap"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("G1 X2.0\nG1 Y5\nG1 X0.5 Z-0.25\nM30\n");
    file.close();

    CAnswer open(CAnswer::File(file.fileName()));
    TouchButton("Btn_OpenGCode");
    ExpectLogged("G-Code Loaded");
    TouchButton("Btn_CompileGCode");
    ExpectLogged("G-Code Compilation Completed");

    Touch(Round("m_BtnStart"));
    EXPECT_EQ(Log().value(0), "G-Code execution Started");
    EXPECT_TRUE(Round("m_BtnStart").IsPressed() && !Round("m_BtnStart").isEnabled());
    EXPECT_FALSE(Button("Btn_OpenGCode").isEnabled() || Button("Btn_CompileGCode").isEnabled());
    EXPECT_TRUE(WaitFor([] { return StatusOutput() == 1; }));
    EXPECT_TRUE(WaitFor([&] { return Machine().GetCurPos(X_AXIS) > 0.1; }));

    ClearLog();
    Touch(Round("m_BtnPause"));
    EXPECT_EQ(Log(), QStringList("Execution Paused! All axis will be stopped after last command is completed"));
    EXPECT_TRUE(Round("m_BtnPause").IsPressed() && !Round("m_BtnPause").isEnabled());
    EXPECT_TRUE(!Round("m_BtnStart").IsPressed() && Round("m_BtnStart").isEnabled());
    EXPECT_TRUE(WaitFor([&] { return AllStands(); }));
    EXPECT_EQ(Carriages().Carriage(X_AXIS), 2000) << "the move has run to its end";
    EXPECT_EQ(Carriages().Carriage(Y_AXIS), 0);

    Touch(Round("m_BtnStart"));
    EXPECT_FALSE(Machine().m_bPause);
    EXPECT_TRUE(WaitFor([&] { return Machine().GetCurPos(Y_AXIS) > 0.1; }));
    ClearLog();
    Touch(Round("m_BtnReset"));
    EXPECT_EQ(Log(), QStringList("Pause execution to Reset"));
    EXPECT_TRUE(WaitFor([&] { return !Round("m_BtnReset").IsPressed(); }));
    Touch(Round("m_BtnPause"));
    Touch(Round("m_BtnReset"));
    EXPECT_EQ(Log().value(0), "Wait for Machine to Stop to Reset");
    EXPECT_TRUE(WaitFor([&] { return AllStands(); }));
    EXPECT_TRUE(WaitFor([&] { return !Round("m_BtnReset").IsPressed(); }));
    Touch(Round("m_BtnReset"));
    EXPECT_EQ(Log().value(0) + Log().value(1), "Execution resetG-Code execution finished");
    EXPECT_EQ(Machine().m_eOperation, OP_NONE);
    EXPECT_TRUE(WaitIdle());
    EXPECT_EQ(StatusOutput(), 0);
    EXPECT_EQ(Carriages().Carriage(Y_AXIS), 5000) << "abandoned where it stood";

    ClearLog();
    StartByTouch();
    ExpectLogged("G-Code execution finished");
    EXPECT_TRUE(WaitIdle());
    EXPECT_EQ(Carriages().Carriage(X_AXIS), 500);
    EXPECT_EQ(Carriages().Carriage(Y_AXIS), 5000);
    EXPECT_EQ(Carriages().Carriage(Z_AXIS), -250);
    EXPECT_EQ(StatusOutput(), 0);
    EXPECT_TRUE(Button("Btn_UserSettings").isEnabled() && Button("Btn_OpenGCode").isEnabled());
    EXPECT_TRUE(!Round("m_BtnStart").IsPressed() && Round("m_BtnStart").isEnabled());
    Window().OnTimer();
    EXPECT_TRUE(Child<QLabel>(Window(), "LE_CurPos").text().startsWith("0.5000\n5.0000\n-0.2500\n"));
}

TEST_F(WindowRun, IsRefusedInTheOrderOfItsChecks)
{
    Open();
    Hold({"G1 X1"});
    CGCodeStore::m_bGCodeLoading = CGCodeStore::m_bGCodeCompiling = true;
    EXPECT_EQ(RefusedStart(), "G-Code Loading. Please wait!");
    CGCodeStore::m_bGCodeLoading = false;
    EXPECT_EQ(RefusedStart(), "G-Code Compiling. Please wait!");
    TouchButton("Btn_UserSettings");
    EXPECT_EQ(RefusedStart(), "Please select G-Code/Shape-Cutting/Image-Carving Window");
    Machine().m_bExecSingleLine = true;
    EXPECT_EQ(RefusedStart(), "");
    Machine().m_AxisCtrl[X_AXIS].m_bMoving = true;
    EXPECT_EQ(RefusedStart(), "Machine in use");
    AppConfig::m_bEmergencyStopON = true;
    EXPECT_EQ(RefusedStart(), "Release Emergency Switch");
    Machine().m_AxisCtrl[X_AXIS].m_bMoving = false;
    Machine().m_bExecSingleLine = false;
    AppConfig::m_bEmergencyStopON = false;
    CGCodeStore::m_bGCodeCompiling = false;
    TouchButton("Btn_GCode");
    ClearProgram();
    EXPECT_EQ(RefusedStart(), "No G-Code added");
    EXPECT_EQ(Machine().m_eOperation, OP_NONE);
}

// They lie under the jog panel, out of reach; their slots work all the same.
TEST_F(WindowRun, ThePlainButtonsStartPauseResumeAndReset)
{
    Open();
    QPushButton &start = Button("Btn_StartPause"), &reset = Button("Btn_Reset");
    start.click();
    EXPECT_TRUE(WaitFor([&] { return start.styleSheet() == BTN_BKGND_START; })) << "nothing to run";
    Hold({"G1 X2", "G1 X0"});
    start.click();
    EXPECT_EQ(start.text() + start.styleSheet(), "Pause" + BTN_BKGND_PAUSE);
    ASSERT_TRUE(WaitFor([&] { return Machine().GetCurPos(X_AXIS) > 0.1; }));
    start.click();
    EXPECT_EQ(start.text() + start.styleSheet(), "Resume" + BTN_BKGND_BLUE);
    EXPECT_TRUE(reset.isEnabled() && Machine().m_bPause);
    reset.click();
    EXPECT_EQ(Log().value(0), "Wait for Machine to Stop to Reset");
    start.click();
    EXPECT_TRUE(start.text() == "Pause" && !reset.isEnabled() && !Machine().m_bPause);
    start.click();
    EXPECT_TRUE(WaitFor([&] { return AllStands(); }));
    reset.click();
    EXPECT_EQ(Log().value(0), "Machine is reset");
    EXPECT_EQ(start.text() + start.styleSheet(), "Start" + BTN_BKGND_START);
    EXPECT_TRUE(!reset.isEnabled() && Machine().m_eOperation == OP_NONE);
    Button("Btn_AppHelp").click();   // has no behaviour
    EXPECT_TRUE(WaitIdle());
}

// ---- Emergency stop, from all its ways in every state ----

enum eState
{
    IDLE,
    RUNNING,
    PAUSED,
    BOX_OPEN,
    KEYPAD_OPEN
};
enum eWay
{
    BY_INPUT,
    BY_BUTTON,
    BY_KEY
};
struct stStop
{
    eState state;
    eWay way;
    bool bSimulation;
};

class EmergencyStop : public CWindowTest, public testing::WithParamInterface<stStop>
{
protected:
    void EnterState()
    {
        Hold({"G1 X30", "G1 X0"});
        StartByTouch();
        ASSERT_TRUE(WaitFor([&] { return Machine().GetCurPos(X_AXIS) > 0.1; }));
        CVirtualPins::SetInput(AppConfig::m_iPgmStatusOutput, 1);   // simulated, it stays as it is
        if (GetParam().state == PAUSED) Touch(Round("m_BtnPause"));
    }
    void Stop()
    {
        switch (GetParam().way) {
        case BY_INPUT: Carriages().PressEmergencyStop(true); break;
        case BY_BUTTON: Touch(Round("m_BtnStop")); break;
        case BY_KEY: Key(Qt::Key_Enter); break;
        }
        ASSERT_TRUE(WaitFor([] { return bool(AppConfig::m_bEmergencyStopON); }));
        EXPECT_TRUE(Machine().IsMachineIdle());
        EXPECT_FALSE(CAllAxisCtrl::m_bAutoModeRunning);
        m_lCarriage = Carriages().Carriage(X_AXIS);
    }
    qint64 m_lCarriage = 0;
};

TEST_P(EmergencyStop, EndsThePulsesAndTheJob)
{
    AppConfig::m_bKeyboardCtrlUsed = true;
    AppConfig::m_bAutoSpindleOnCW = true;
    Open();
    const bool bJob = GetParam().state != IDLE;
    if (GetParam().bSimulation) TouchButton("Btn_SimulationMode");
    if (bJob) EnterState();
    const bool bModal = GetParam().state == BOX_OPEN || GetParam().state == KEYPAD_OPEN;
    if (bModal) {
        CAnswer answer([this](QWidget& modal) {
            Stop();
            EXPECT_TRUE(modal.isVisible()) << "Enter is no OK";
            auto* pBox = qobject_cast<QMessageBox*>(&modal);
            Click(pBox ? *pBox->button(QMessageBox::No) : Child(modal, "Btn_Cancel"));
        });
        if (GetParam().state == BOX_OPEN)
            QMessageBox::question(&Window(), "Question", "?", QMessageBox::Yes | QMessageBox::No);
        else
            CDlgKeyPad(&Window()).exec();
    } else {
        Stop();
    }
    EXPECT_EQ(StatusOutput(), GetParam().bSimulation ? 1 : 0);
    EXPECT_EQ(Machine().m_eOperation, OP_NONE);
    EXPECT_TRUE(Round("m_BtnStop").IsPressed());
    EXPECT_TRUE(Round("m_BtnStart").isEnabled() && !Round("m_BtnStart").IsPressed());
    EXPECT_TRUE(Round("m_BtnPause").isEnabled() && !Round("m_BtnPause").IsPressed());
    EXPECT_FALSE(Machine().m_bPause);
    EXPECT_TRUE(Button("Btn_UserSettings").isEnabled());
    EXPECT_TRUE(Logged(GetParam().way == BY_INPUT ? "Emergency Stop Triggered" : "Emergency switch pressed"));
    EXPECT_FALSE(Logged("G-Code execution finished"));
    // Without m_bAutoSpindleOff the relay stays as it was: wanted.
    const bool bSpindle = bJob && !GetParam().bSimulation;
    EXPECT_EQ(CVirtualPins::Level(AppConfig::m_lstMCodesPin[3]), bSpindle ? 1 : 0);
    EXPECT_TRUE(WaitFor([&] { return !Machine().isRunning(); }));
    EXPECT_EQ(Carriages().Carriage(X_AXIS), m_lCarriage);
    ClearLog();
    Touch(Round("m_BtnStart"));
    EXPECT_EQ(Log(), QStringList("Release Emergency Switch"));
}
std::vector<stStop> AllStops()
{
    std::vector<stStop> all;
    for (const eState state : {IDLE, RUNNING, PAUSED, BOX_OPEN, KEYPAD_OPEN})
        for (const eWay way : {BY_INPUT, BY_BUTTON, BY_KEY}) {
            const bool bModal = state == BOX_OPEN || state == KEYPAD_OPEN;
            if (way != BY_BUTTON || !bModal) all.push_back({state, way, false});   // a box keeps the touch
        }
    all.push_back({RUNNING, BY_BUTTON, true});   // in simulation the input is not read
    all.push_back({RUNNING, BY_KEY, true});
    return all;
}
INSTANTIATE_TEST_SUITE_P(All, EmergencyStop, testing::ValuesIn(AllStops()));

TEST_F(WindowRun, TheStopIsReleasedByTheButtonOnlyWhenTheInputIsLow)
{
    AppConfig::m_bKeyboardCtrlUsed = true;
    Open();
    Carriages().PressEmergencyStop(true);
    ExpectLogged("Emergency Stop Triggered");
    for (const bool bKey : {false, true}) {
        ClearLog();
        if (bKey)
            TapKey(Qt::Key_Enter);
        else
            Touch(Round("m_BtnStop"));
        EXPECT_EQ(Log(), QStringList("Emergency Stop input is High"));
        EXPECT_TRUE(AppConfig::m_bEmergencyStopON && Round("m_BtnStop").IsPressed());
    }
    Carriages().PressEmergencyStop(false);
    EXPECT_TRUE(WaitFor([&] { return !AppConfig::m_bEmergencyStopON && !Round("m_BtnStop").IsPressed(); }));
    for (const bool bDown : {true, false}) {
        Touch(Round("m_BtnStop"));
        EXPECT_EQ(AppConfig::m_bEmergencyStopON, bDown);
        EXPECT_EQ(Round("m_BtnStop").IsPressed(), bDown);
    }
}

TEST_F(WindowRun, TheInputIsNotReadInSimulationOrWithoutAPin)
{
    Open();
    AppConfig::m_bSimulationMode = true;
    Carriages().PressEmergencyStop(true);
    Window().OnTimer();
    EXPECT_FALSE(AppConfig::m_bEmergencyStopON);
    AppConfig::m_bSimulationMode = false;
    AppConfig::m_iEStopInput = -1;
    Window().OnTimer();
    EXPECT_FALSE(AppConfig::m_bEmergencyStopON);
}

// A jog that runs is no operation; the stop ends it as well.
TEST_F(WindowRun, TheStopEndsAJog)
{
    Open();
    TouchDown(Button("Btn_JogEast"), Button("Btn_JogEast").rect().center());
    ASSERT_TRUE(WaitFor([&] { return Carriages().Carriage(X_AXIS) > 50; }));
    Carriages().PressEmergencyStop(true);
    ASSERT_TRUE(WaitFor([] { return bool(AppConfig::m_bEmergencyStopON); }));
    EXPECT_TRUE(Machine().IsMachineIdle());
    TouchUp(Button("Btn_JogEast"), QPoint(5, 5));
}

TEST_F(WindowRun, TheStatusOutputFallsAheadOfAllElseAtAStop)
{
    Open();
    Hold({"G1 X30"});
    StartByTouch();
    ASSERT_TRUE(WaitFor([&] { return Carriages().Carriage(X_AXIS) > 50; }));
    std::vector<bool> running;
    const CPinWatch watch(Carriages(), [&](int iPin, int iLevel) {
        if (iPin == AppConfig::m_iPgmStatusOutput && iLevel == 0 && QThread::currentThread() == Window().thread())
            running.push_back(CAllAxisCtrl::m_bAutoMode);
    });
    Touch(Round("m_BtnStop"));
    EXPECT_EQ(running, std::vector<bool>({true, false})) << "and again at the end";
    EXPECT_TRUE(WaitIdle());
}

TEST_F(WindowRun, AnUnknownErrorStopsTheMachineForGood)
{
    AppConfig::m_bAutoSpindleOnCW = AppConfig::m_bAutoSpindleOff = true;
    Open();
    Hold({"G1 X0.01"});
    int iThrows = 1;
    const CPinWatch watch(Carriages(), [&](int iPin, int iLevel) {
        const bool bRelay = iPin == AppConfig::m_lstMCodesPin[3] && iLevel == 0;
        if (bRelay && iThrows-- > 0) throw std::runtime_error("of a pin");
    });
    StartByTouch();
    ExpectLogged("Unknown error");
    EXPECT_EQ(Machine().m_eOperation, OP_NONE);
    EXPECT_EQ(CVirtualPins::Level(AppConfig::m_lstMCodesPin[3]), 0);
    EXPECT_TRUE(AppConfig::m_bEmergencyStopON && Round("m_BtnStop").IsPressed());
    Touch(Round("m_BtnStop"));
    EXPECT_EQ(Log().value(0), "Unknown error: restart the program");
    EXPECT_TRUE(AppConfig::m_bEmergencyStopON && Round("m_BtnStop").IsPressed());
    Touch(Round("m_BtnStart"));
    EXPECT_EQ(Log().value(0), "Release Emergency Switch");
}

TEST_F(WindowRun, APausedOperationIsResumedFromTheSettings)
{
    Open();
    Hold({"G1 X0.1", "G1 X0"});
    StartByTouch();
    Touch(Round("m_BtnPause"));
    EXPECT_TRUE(WaitFor([&] { return AllStands(); }));
    TouchButton("Btn_GCode");
    Window().on_Btn_UserSettings_clicked();
    TouchButton("Btn_SaveSettings");
    EXPECT_TRUE(Logged("Settings saved"));
    Touch(Round("m_BtnStart"));
    EXPECT_FALSE(Machine().m_bPause);
    ExpectLogged("G-Code execution finished");
}

// Whatever box, dialog or file dialog takes the window's touches away while an axis moves: Stop stays where it is.
TEST_F(WindowRun, StopIsInReachOverEveryBox)
{
    Open();
    const struct
    {
        const char *szScreen, *szButton;
    } lstRoads[] = {{"GCode", "SaveAsGCode"},          {"ShapeCarving", "DelAllShapes"},
                    {"ShapeCarving", "LoadWorkArea"},  {"ImageCarving", "LoadImage"},
                    {"JobSettings", "CreateZProfile"}, {"UserSettings", "SpindleSpeeds"},
                    {"MachineSettings", "PwmSettings"}};
    for (const auto& road : lstRoads) {
        SCOPED_TRACE(road.szButton);
        TouchButton(QStringLiteral("Btn_") + road.szScreen);
        ASSERT_TRUE(Machine().MoveAbs(X_AXIS, 300.0));
        CAnswer box([&](QWidget& modal) {
            const auto Over = [&] { return modal.findChild<CStopOver*>(); };
            ASSERT_TRUE(WaitFor([&] { return Over() && Over()->isVisible(); }, 3000));
            EXPECT_EQ(Over()->geometry(), QRect(Window().mapToGlobal(QPoint(1030, 700)), QSize(90, 90)));
            Touch(Round("m_BtnStop"));
            EXPECT_FALSE(AppConfig::m_bEmergencyStopON) << "the window's own is blocked";
            Touch(*Over());
            EXPECT_TRUE(AppConfig::m_bEmergencyStopON && Machine().IsMachineIdle());
            const auto Look = [](QWidget& w) { return w.grab().toImage().convertToFormat(QImage::Format_RGB32); };
            EXPECT_EQ(Look(*Over()), Look(Round("m_BtnStop")));
            Touch(*Over());
            EXPECT_FALSE(AppConfig::m_bEmergencyStopON || Round("m_BtnStop").IsPressed());
            modal.close();
        });
        Button(QStringLiteral("Btn_") + road.szButton).click();   // on whatever page of its screen
        EXPECT_LT(Machine().GetCurPos(X_AXIS), 300.0);
    }
}

// Closing the window in the middle of a job leaves nothing behind.
TEST_F(WindowRun, ClosingStopsTheMachine)
{
    Open();
    Hold({"G1 X30"});
    TouchButton("Btn_SpindleCWOnOff");
    StartByTouch();
    ASSERT_TRUE(WaitFor([&] { return Carriages().Carriage(X_AXIS) > 50; }));
    CVirtualPins::SetInput(AppConfig::m_lstMCodesPin[7], 1);
    Close();
    EXPECT_FALSE(CAllAxisCtrl::m_bAutoModeRunning);
    EXPECT_EQ(CVirtualPins::Level(AppConfig::m_lstMCodesPin[3]), 0);
    EXPECT_EQ(CVirtualPins::Level(AppConfig::m_lstMCodesPin[7]), 0);
}

TEST_F(WindowRun, AsksBeforeItClosesOverAJobInABoxWithAStop)
{
    Open();
    Hold({"G1 X30"});
    StartByTouch();
    {
        CAnswer no(QMessageBox::No);
        Window().close();
        EXPECT_TRUE(Window().isVisible() && Machine().m_eOperation == OP_GCODE);
    }
    {
        CAnswer stop([](QWidget& modal) {
            for (QPushButton* pButton : modal.findChildren<QPushButton*>())
                if (pButton->text() == "Stop") return Click(*pButton);
        });
        Window().close();
        EXPECT_TRUE(Window().isVisible() && Round("m_BtnStop").IsPressed());
    }
    EXPECT_TRUE(AppConfig::m_bEmergencyStopON && Machine().m_eOperation == OP_NONE);
    Machine().m_eOperation = OP_GCODE;
    QEvent quit(QEvent::Quit);   // as behind a signal: nothing is asked
    static_cast<QObject&>(Window()).eventFilter(qApp, &quit);
    Window().close();
    EXPECT_FALSE(Window().isVisible());
}
}   // namespace
