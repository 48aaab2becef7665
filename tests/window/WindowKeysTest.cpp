#include "common/Paths.h"
#include "window/WindowSupport.h"

namespace {
class WindowKeys : public CWindowTest
{
protected:
    WindowKeys() { AppConfig::m_bKeyboardCtrlUsed = true; }
    void SendRepeat(int iKey, QEvent::Type eType)
    {
        QKeyEvent event(eType, iKey, Qt::KeypadModifier, QString(), true);
        QCoreApplication::sendEvent(&Window(), &event);
    }
    bool AllStand()
    {
        return WaitFor([this] { return Machine().IsMachineIdle(); });
    }
    bool MovesTo(eAxis axis, double fPos)
    {
        return WaitFor([=, this] { return std::fabs(Machine().GetCurPos(axis) - fPos) < 1e-9; }) && AllStand();
    }
    void PlaceAll(double fPos)
    {
        for (const eAxis axis : {X_AXIS, Y_AXIS, Z_AXIS}) Machine().m_AxisCtrl[axis].SetCurPos(fPos);
    }
    QList<double> Positions()
    {
        return {Machine().GetCurPos(X_AXIS), Machine().GetCurPos(Y_AXIS), Machine().GetCurPos(Z_AXIS)};
    }
};

TEST_F(WindowKeys, DoNothingWhileTheOptionIsOff)
{
    AppConfig::m_bKeyboardCtrlUsed = false;
    Open();
    EXPECT_EQ(QWidget::keyboardGrabber(), nullptr);
    ClearLog();
    for (const Qt::Key eKey : {Qt::Key_Enter, Qt::Key_6, Qt::Key_Minus, Qt::Key_Plus, Qt::Key_Period}) TapKey(eKey);
    EXPECT_EQ(Log(), QStringList());
    EXPECT_TRUE(!AppConfig::m_bEmergencyStopON && !AppConfig::m_bSpindleOn && Machine().IsMachineIdle());
}

TEST_F(WindowKeys, JogWhileTheyAreHeld)
{
    Open();
    Child<QWidget>(Window(), "LW_GcodeCommands").setFocus();   // the window has them whatever has the focus
    for (const auto& [eKey, axis, iSign] : {std::tuple(Qt::Key_6, X_AXIS, 1),
                                            {Qt::Key_4, X_AXIS, -1},
                                            {Qt::Key_8, Y_AXIS, 1},
                                            {Qt::Key_2, Y_AXIS, -1},
                                            {Qt::Key_9, Z_AXIS, 1},
                                            {Qt::Key_3, Z_AXIS, -1}}) {
        PlaceAll(0.0);
        const qint64 lFrom = Carriages().Carriage(axis);
        Key(eKey);
        EXPECT_TRUE(WaitFor([&, axis = axis, iSign = iSign] {
            return (Carriages().Carriage(axis) - lFrom) * iSign > 20;
        })) << eKey;
        SendRepeat(eKey, QEvent::KeyRelease);
        SendRepeat(eKey, QEvent::KeyPress);
        EXPECT_FALSE(Machine().m_AxisCtrl[axis].m_bDecelerate) << "a repeat is no release";
        Key(eKey, false);
        EXPECT_TRUE(AllStand());
    }
    PlaceAll(0.0);
    Key(Qt::Key_6);
    ASSERT_TRUE(WaitFor([&] { return Machine().GetCurPos(X_AXIS) > 0.01; }));
    ClearLog();
    Key(Qt::Key_4);   // the axis is busy: nothing
    EXPECT_EQ(Log(), QStringList());
    Key(Qt::Key_4, false);   // any release ends it
    EXPECT_TRUE(AllStand());
    EXPECT_GT(Machine().GetCurPos(X_AXIS), 0.0);
    // A jog that was refused left the machine free: its release is none of an operation's that began since.
    AppConfig::m_fAxisPosDirLimit[X_AXIS] = -1.0;
    Key(Qt::Key_6);
    Machine().m_eOperation = OP_MCH_HOME;
    Machine().m_AxisCtrl[X_AXIS].m_bMoving = true;
    Key(Qt::Key_6, false);
    EXPECT_FALSE(Machine().m_AxisCtrl[X_AXIS].m_bDecelerate);
    Machine().m_AxisCtrl[X_AXIS].m_bMoving = false;
    Machine().m_eOperation = OP_NONE;
}

TEST_F(WindowKeys, AJogEndsWhenABoxComesOrTheWindowLosesTheKeyboard)
{
    Open();
    const auto Jog = [&] {
        Key(Qt::Key_6);
        ASSERT_TRUE(WaitFor([&] { return !Machine().IsMachineIdle(); }));
    };
    Jog();
    {
        CAnswer box([&](QWidget& modal) {
            EXPECT_TRUE(AllStand());
            Answer(modal, QMessageBox::No);
        });
        QMessageBox::question(&Window(), "Question", "?", QMessageBox::Yes | QMessageBox::No);
    }
    Key(Qt::Key_6, false);
    Window().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&Window()));
    Jog();
    QWidget other;
    other.show();
    other.activateWindow();
    EXPECT_TRUE(AllStand());
}

TEST_F(WindowKeys, StepByWholePulsesInTheOtherMode)
{
    AppConfig::m_fAxisMovPerPulse[Y_AXIS] = 0.003;
    Open();
    TapKey(Qt::Key_0);
    TapKey(Qt::Key_6);
    EXPECT_TRUE(MovesTo(X_AXIS, 0.05)) << "the step at start";
    TapKey(Qt::Key_7);
    TapKey(Qt::Key_4);
    EXPECT_TRUE(MovesTo(X_AXIS, 0.05 - 0.102)) << "0.1 in steps of the coarsest axis";
    TapKey(Qt::Key_1);
    TapKey(Qt::Key_9);
    EXPECT_TRUE(MovesTo(Z_AXIS, 0.012));
    TapKey(Qt::Key_0);
    Key(Qt::Key_8);
    EXPECT_TRUE(WaitFor([&] { return Machine().GetCurPos(Y_AXIS) > 0.15; })) << "continuous again";
    Key(Qt::Key_8, false);
}

TEST_F(WindowKeys, AShortPressMovesToZeroWithoutAQuestion)
{
    Open();
    PlaceAll(0.2);
    TapKey(Qt::Key_1);
    EXPECT_TRUE(MovesTo(Z_AXIS, 0.0));
    EXPECT_EQ(Positions(), QList<double>({0.2, 0.2, 0.0}));
    TapKey(Qt::Key_7);
    EXPECT_TRUE(MovesTo(X_AXIS, 0.0) && MovesTo(Y_AXIS, 0.0));
    PlaceAll(0.2);
    TapKey(Qt::Key_5);
    ExpectLogged("Work home postion reached");
    // A release without its press, or of another key, is no short press.
    EXPECT_TRUE(WaitIdle());
    PlaceAll(0.2);
    Key(Qt::Key_1, false);
    Key(Qt::Key_1);
    Key(Qt::Key_7, false);
    Key(Qt::Key_1, false);
    EXPECT_EQ(Positions(), QList<double>({0.2, 0.2, 0.2}));
}

TEST_F(WindowKeys, AHoldOfASecondSetsZero)
{
    Open();
    const auto Hold = [&](Qt::Key eKey, const QList<double>& expected) {
        PlaceAll(0.2);
        Key(eKey);
        EXPECT_TRUE(WaitFor([&] { return Positions() == expected; })) << eKey;
        ClearLog();
        Key(eKey, false);
        EXPECT_TRUE(AllStand());
        EXPECT_EQ(Positions(), expected) << "and its release moves nothing";
    };
    Hold(Qt::Key_1, {0.2, 0.2, 0.0});
    Hold(Qt::Key_7, {0.0, 0.0, 0.2});
    Hold(Qt::Key_5, {0.0, 0.0, 0.0});
    ClearLog();
    Key(Qt::Key_0);
    ExpectLogged("Homing Sensor not Enabled for all Axis");
    Key(Qt::Key_0, false);
    TapKey(Qt::Key_6);   // the hold has not changed the mode: a jog, no step
    EXPECT_TRUE(AllStand());
}

TEST_F(WindowKeys, ChangeFeedAndSpeedWithinTheirBounds)
{
    AppConfig::m_bPWMCtrlUsed = true;
    Open();
    for (int n = 0; n < 7; ++n) TapKey(Qt::Key_Asterisk);
    EXPECT_EQ(Bar("m_G01FeedBar").GetValue(), 150);
    EXPECT_EQ(AppConfig::m_fAxisFeedPercent[X_AXIS], 1.5);
    for (int n = 0; n < 15; ++n) TapKey(Qt::Key_Slash);
    EXPECT_EQ(Bar("m_G01FeedBar").GetValue(), 10);
    TapKey(Qt::Key_0);
    for (int n = 0; n < 9; ++n) TapKey(Qt::Key_Asterisk);
    EXPECT_EQ(Bar("m_SpindleSpeedBar").GetValue(), 15);
    const auto& pwm = AppConfig::m_stPwmSpndlSettings;
    EXPECT_EQ(pwm.iCurFreq, pwm.iMinFreq + 14 * pwm.iFreqStep);
    for (int n = 0; n < 16; ++n) TapKey(Qt::Key_Slash);
    EXPECT_EQ(Bar("m_SpindleSpeedBar").GetValue(), 1);
    for (const auto& [eKey, iStep] : {std::pair(Qt::Key_Slash, 23), {Qt::Key_Asterisk, 15}}) {
        Bar("m_SpindleSpeedBar").setValue(24);   // by touch
        TapKey(eKey);
        EXPECT_EQ(Bar("m_SpindleSpeedBar").GetValue(), iStep);
    }
    AppConfig::m_GCodeRunSettings.bUsePrgmSpindleSpeed = true;
    ClearLog();
    TapKey(Qt::Key_Asterisk);
    EXPECT_EQ(Log(), QStringList("Spindle Speed Control not available"));
}

TEST_F(WindowKeys, SwitchTheSpindleButNeverBothWays)
{
    Open();
    const int iCW = AppConfig::m_lstMCodesPin[3];
    TapKey(Qt::Key_Minus);
    EXPECT_EQ(CVirtualPins::Level(iCW), 1);
    TapKey(Qt::Key_Minus);
    EXPECT_EQ(CVirtualPins::Level(iCW), 0);
    TouchButton("Btn_SpindleCCWOnOff");
    TapKey(Qt::Key_Minus);
    EXPECT_EQ(CVirtualPins::Level(iCW), 0);
    EXPECT_EQ(CVirtualPins::Level(AppConfig::m_lstMCodesPin[4]), 0) << "it turned, so it goes off";
    EXPECT_FALSE(AppConfig::m_bSpindleOn);
    EXPECT_TRUE(Button("Btn_SpindleCWOnOff").isEnabled() && Button("Btn_SpindleCCWOnOff").isEnabled());
    EXPECT_EQ(Button("Btn_SpindleCCWOnOff").text(), "Spindle\nCCW OFF");
}

TEST_F(WindowKeys, LightStartAndAreRefusedWhileAnOperationRuns)
{
    Open();
    TouchButton("Btn_UserSettings");
    TapKey(Qt::Key_Period);
    EXPECT_TRUE(Child<QWidget>(Window(), "CdlgGCode").isVisible() && Round("m_BtnStart").IsPressed());
    EXPECT_EQ(Machine().m_eOperation, OP_NONE) << "it starts nothing";
    Round("m_BtnStart").SetReleased();
    Machine().m_eOperation = OP_GCODE;
    ClearLog();
    TapKey(Qt::Key_Period);
    EXPECT_TRUE(Round("m_BtnStart").IsPressed());
    TapKey(Qt::Key_0);   // to the step mode
    EXPECT_EQ(Log(), QStringList());
    TapKey(Qt::Key_6);
    EXPECT_EQ(Log(), QStringList("Axis in use"));
    Machine().m_eOperation = OP_NONE;
    TapKey(Qt::Key_6);
    EXPECT_TRUE(MovesTo(X_AXIS, 0.05)) << "toggled once, not again by the release";
}

TEST_F(WindowKeys, SetNoZeroOfAMachineThatIsNotHomedAndMoveNothingBehindAStop)
{
    AppConfig::m_bHomeSensorsUsed = true;
    Open();
    Machine().m_AxisCtrl[X_AXIS].SetMchHome();
    PlaceAll(0.2);
    for (const Qt::Key eKey : {Qt::Key_1, Qt::Key_5, Qt::Key_7}) {
        ClearLog();
        Key(eKey);
        ExpectLogged("Homing not done!\nUse \"Move Home\" in user Settings");
        Key(eKey, false);
    }
    AppConfig::m_bEmergencyStopON = true;
    for (const Qt::Key eKey : {Qt::Key_1, Qt::Key_7, Qt::Key_6}) {
        ClearLog();
        TapKey(eKey);
        EXPECT_EQ(Log(), QStringList("Release Emergency Switch"));
    }
    EXPECT_EQ(Positions(), QList<double>({0.2, 0.2, 0.2}));
}

// The figures go to what is open, and the machine stands.
TEST_F(WindowKeys, GoToAKeypadThatIsOpen)
{
    Open();
    EXPECT_EQ(QWidget::keyboardGrabber(), &Window());
    CAnswer keypad([&](QWidget& modal) {
        for (const Qt::Key eKey : {Qt::Key_6, Qt::Key_5}) TapKey(eKey);
        EXPECT_TRUE(Child<QLineEdit>(modal, "LE_NewValue").text().endsWith("65"));
        Click(modal, "Btn_OK");
    });
    Window().OpenKeypad(nullptr, "Keypad", "", "", {}, false, 2);
    EXPECT_EQ(Positions(), QList<double>({0.0, 0.0, 0.0}));
    EXPECT_TRUE(Machine().IsMachineIdle());
    EXPECT_EQ(QWidget::keyboardGrabber(), &Window()) << "and the window has them again";
}

TEST_F(WindowKeys, AreLetGoWhileTextIsTyped)
{
    Open();
    Hold({"G1 X1"});
    TouchButton("Btn_EditGCode");
    EXPECT_EQ(QWidget::keyboardGrabber(), nullptr);
    auto& edit = Child<QLineEdit>(Window(), "LE_GCodeCmnds");
    edit.setFocus();
    ClearLog();
    for (const Qt::Key eKey : {Qt::Key_6, Qt::Key_Enter}) TapKey(eKey);
    EXPECT_TRUE(edit.text().endsWith('6'));
    EXPECT_TRUE(Machine().IsMachineIdle() && !AppConfig::m_bEmergencyStopON);
    TouchButton("Btn_EditGCode");
    EXPECT_EQ(QWidget::keyboardGrabber(), &Window());
}

TEST_F(WindowKeys, LoadTheFirstProgramOfAStick)
{
    Open();
    ClearLog();
    TapKey(Qt::Key_Plus);
    EXPECT_EQ(Log(), QStringList({"No USB drive detected!", "Loading G-Code from USB"}));
    const QString strStick = CPaths::MountFolder() + "/STICK/";
    ASSERT_TRUE(QDir().mkpath(strStick));
    TapKey(Qt::Key_Plus);
    EXPECT_EQ(Log().value(0), "No G-Code files found");

    QFile file(strStick + "part.ncc");
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("G1 X1\nG1 Q7\n");
    file.close();
    Hold({"G1 X5", "G1 X6", "G1 X7"});
    CGCodeStore::m_CompilationErrors[2] = "of the old program";
    TouchButton("Btn_UserSettings");
    TapKey(Qt::Key_Plus);
    ExpectLogged("G-Code loaded:" + file.fileName());
    EXPECT_TRUE(Child<QWidget>(Window(), "CdlgGCode").isVisible());
    EXPECT_EQ(CGCodeStore::m_lstOfGCodeLines, std::vector<QString>({"G1 X1", "G1 Q7"}));
    EXPECT_EQ(CGCodeStore::m_CompilationErrors.size(), 1u);
    EXPECT_TRUE(CGCodeStore::m_CompilationErrors.contains(1u));
    EXPECT_FALSE(CGCodeStore::m_bGCodeLoading || CGCodeStore::m_bGCodeCompiling);
    EXPECT_EQ(Child<QLineEdit>(Window(), "LE_GCodeFile").text(), file.fileName());
}
}   // namespace
