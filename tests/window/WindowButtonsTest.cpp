#include "common/Paths.h"
#include "support/Files.h"
#include "widgets/ButtonStyle.h"
#include "window/WindowSupport.h"

namespace {
class WindowButtons : public CWindowTest
{
protected:
    bool TurnsGray(const QString& strName)
    {
        return WaitFor([&] { return Button(strName).styleSheet() == BTN_BKGND_GRAY; });
    }
};

// ---- Screens and the settings lock ----

TEST_F(WindowButtons, SelectTheScreensOneAtATime)
{
    Open();
    const QMap<QString, QString> screens = {{"Btn_JobSettings", "CdlgJobSettings"},
                                            {"Btn_UserSettings", "CDlgUserSettings"},
                                            {"Btn_MachineSettings", "CDlgMachineSettings"},
                                            {"Btn_GCode", "CdlgGCode"}};
    for (const QString& strButton : screens.keys()) {
        TouchButton(strButton);
        for (const QString& strOther : screens.keys()) {
            EXPECT_EQ(Child<QWidget>(Window(), screens[strOther]).isVisible(), strOther == strButton);
            EXPECT_EQ(Button(strOther).styleSheet().contains("rgba(0, 0, 255"), strOther == strButton);
        }
        EXPECT_EQ(Child<QWidget>(Window(), screens[strButton]).geometry(), QRect(10, 45, 900, 390));
        QTest::keyClick(Window().windowHandle(), Qt::Key_Escape);
        EXPECT_TRUE(Child<QWidget>(Window(), screens[strButton]).isVisible()) << "Escape must not hide it";
    }
}

TEST_F(WindowButtons, AskForThePasskeyUntilItFitsOrIsGivenUp)
{
    AppConfig::m_bAppPassword = true;
    AppConfig::m_strAppPassword = "42";
    Open();
    const auto& screen = Child<QWidget>(Window(), "CDlgMachineSettings");
    {
        CAnswer wrong(CAnswer::Keys("41")), abort(QMessageBox::Abort);
        TouchButton("Btn_MachineSettings");
        EXPECT_EQ(wrong.Title(), "Passkey");
        EXPECT_EQ(abort.Title() + abort.Text(), "ErrorWrong Pass Key");
        EXPECT_FALSE(screen.isVisible());
    }
    CAnswer wrong(CAnswer::Keys("41")), retry(QMessageBox::Retry), right(CAnswer::Keys("42"));
    TouchButton("Btn_MachineSettings");
    EXPECT_TRUE(screen.isVisible());
}

// ---- The log ----

TEST_F(WindowButtons, ClearAndSaveTheLog)
{
    Open();
    ClearLog();
    Window().AddLogMsg("", MSG_ERROR);
    Window().AddLogMsg("older", MSG_INFO);
    Window().AddLogMsg("two\nlines", MSG_NOTICE);
    const auto Save = [this](const QString& strName) {
        CAnswer file([&](QWidget& modal) {
            SaveScreen(modal, "file-dialog");
            CAnswer::File(m_Home.filePath(strName))(modal);
        });
        TouchButton("Btn_SaveLog");
        EXPECT_EQ(file.Title(), "Select file name");
        return Log().value(0);
    };
    EXPECT_EQ(Save("log"), "Log saved: " + m_Home.filePath("log.txt"));
    EXPECT_TRUE(QRegularExpression("^\\[[\\d:]{8}\\]two\nlines\n\\[[\\d:]{8}\\]older\n$")
                    .match(QString::fromUtf8(ReadAll(m_Home.filePath("log.txt")))
                               .remove(QRegularExpression("\\[[\\d:]{8}\\]Supervision was late.*\n")))
                    .hasMatch());
    EXPECT_EQ(Save("missing/x"), "Log not saved, file not writable: " + m_Home.filePath("missing/x.txt"));
    {
        CAnswer file(CAnswer::File(m_Home.filePath("log"))), no(QMessageBox::No);   // the name as typed is free
        TouchButton("Btn_SaveLog");
        EXPECT_EQ(no.Text(), m_Home.filePath("log.txt") + " already exists.\nDo you want to replace it?");
    }
    {
        CAnswer no([](QWidget& modal) {
            SaveScreen(modal, "message-box");
            Answer(modal, QMessageBox::No);
        });
        TouchButton("Btn_ClearLog");
    }
    EXPECT_EQ(Log().size(), 4);
    CAnswer yes(QMessageBox::Yes);
    TouchButton("Btn_ClearLog");
    EXPECT_EQ(Log(), QStringList());
    for (int n = 0; n < 1100; ++n) Window().AddLogMsg(QString::number(n), MSG_INFO);
    EXPECT_EQ(Log().size(), 1000);
    EXPECT_EQ(Log().value(0) + Log().last(), "1099100");
}

// ---- Work piece ----

TEST_F(WindowButtons, SetTheWorkPieceWithinItsRange)
{
    Open();
    const auto Set = [this](const char* szName, const QString& strKeys, bool bOk = true) {
        CAnswer answer(CAnswer::Keys(strKeys, bOk));
        TouchButton(QLatin1String("Btn_SetWorkPiece") + szName);
        EXPECT_EQ(answer.Title(), QLatin1String("Workpiece ") + szName);
        return Button(QLatin1String("Btn_SetWorkPiece") + szName).text();
    };
    EXPECT_EQ(Set("Length", "C300"), "300.00\nLength(X)");
    EXPECT_EQ(Set("Length", "C5", false), "300.00\nLength(X)") << "cancelled";
    EXPECT_EQ(Set("Width", "C10000.5"), "10000.00\nWidth(Y)");
    EXPECT_EQ(Set("Height", "C0.5"), "1.00\nHeight(Z)");
    EXPECT_EQ(Log().value(0), "Value must be between\n1.0000 and 10000.0000");
    Window().SetWorkPieceHeight(2.5);   // a job fixes it
    EXPECT_EQ(Button("Btn_SetWorkPieceHeight").text(), "2.50\nHeight(Z)");
    Button("Btn_SelectToolPaths").setStyleSheet(BTN_BKGND_GRAY);
    TouchButton("Btn_SelectToolPaths");
    EXPECT_EQ(Button("Btn_SelectToolPaths").styleSheet(), BTN_BKGND_GREEN);
    EXPECT_FALSE(Button("Btn_CameraRecStop").isEnabled());
}

// ---- Machine buttons ----

struct stRefusal
{
    const char* szButton;
    bool bStop, bBusy, bHoming;   // what it refuses
    const char* szBusy = "Machine in use";
};
class MachineButton : public CWindowTest, public testing::WithParamInterface<stRefusal>
{
};
TEST_P(MachineButton, RefusesInItsOrderAndTurnsGray)
{
    AppConfig::m_bHomeSensorsUsed = true;
    Open();
    const stRefusal& test = GetParam();
    const auto Press = [&] {
        ClearLog();
        TouchButton(test.szButton);
        EXPECT_TRUE(WaitFor([&] { return Button(test.szButton).styleSheet() == BTN_BKGND_GRAY; }));
        return Log();
    };
    AppConfig::m_bEmergencyStopON = true;
    Machine().m_eOperation = OP_Z_PROBE;
    Machine().m_AxisCtrl[X_AXIS].SetMchHome();
    if (test.bStop) {
        EXPECT_EQ(Press(), QStringList("Release Emergency Switch"));
    }
    AppConfig::m_bEmergencyStopON = false;
    if (test.bBusy) {
        EXPECT_EQ(Press(), QStringList(test.szBusy));
    }
    Machine().m_eOperation = OP_NONE;
    Machine().m_AxisCtrl[X_AXIS].ClearHome();
    if (test.bHoming) {
        EXPECT_EQ(Press(), QStringList("Homing not done!\nUse \"Move Home\" in user Settings"));
    }
    EXPECT_EQ(Machine().m_eOperation, OP_NONE);
    EXPECT_FALSE(AppConfig::m_bSimulationMode);
}
INSTANTIATE_TEST_SUITE_P(All, MachineButton,
                         testing::Values(stRefusal{"Btn_SetWorkZero", true, true, true},
                                         stRefusal{"Btn_MoveWorkZero", true, true, true},
                                         stRefusal{"Btn_MoveZSafePos", true, true, false},
                                         stRefusal{"Btn_SetZ0WithZProbe", true, true, true},
                                         stRefusal{"Btn_SimulationMode", true, true, true},
                                         stRefusal{"Btn_MoveWorkHome_X", true, true, false, "Axis in use"},
                                         stRefusal{"Btn_MoveWorkHome_Y", true, true, false, "Axis in use"},
                                         stRefusal{"Btn_MoveWorkHome_Z", true, true, false, "Axis in use"}));

TEST_F(WindowButtons, SetTheWorkZeroWhenItIsConfirmed)
{
    Open();
    Machine().m_AxisCtrl[Y_AXIS].SetCurPos(4.0);
    {
        CAnswer no(QMessageBox::No);
        TouchButton("Btn_SetWorkZero");
        EXPECT_EQ(no.Title() + no.Text(), "WarningSet Work Zero?");
        EXPECT_EQ(Machine().GetCurPos(Y_AXIS), 4.0);
    }
    CAnswer yes(QMessageBox::Yes);
    TouchButton("Btn_SetWorkZero");
    EXPECT_EQ(Machine().GetCurPos(Y_AXIS), 0.0);
    ExpectLogged("Work Zero is set");
    EXPECT_TRUE(TurnsGray("Btn_SetWorkZero"));
    // Without a question.
    AppConfig::m_bHomeSensorsUsed = true;
    Machine().m_AxisCtrl[X_AXIS].SetMchHome();
    ClearLog();
    TouchButton("Btn_SetWorkZero");
    EXPECT_EQ(Log(), QStringList("Homing not done!\nUse \"Move Home\" in user Settings")) << "Y has no home";
    AppConfig::m_bSimulationMode = true;
    TouchButton("Btn_SetWorkZero");
    EXPECT_EQ(Log().value(0), "Not in simulation: it would change the real machine's place");
    EXPECT_TRUE(TurnsGray("Btn_SetWorkZero"));
}

TEST_F(WindowButtons, MoveAllAxesToTheWorkZero)
{
    Open();
    Carriages().PlaceCarriage(X_AXIS, 700);
    Machine().m_AxisCtrl[X_AXIS].SetCurPos(0.7);
    {
        CAnswer no(QMessageBox::No);
        TouchButton("Btn_MoveWorkZero");
        EXPECT_EQ(no.Title() + no.Text(), "InformationMove all axis to work home?");
    }
    EXPECT_EQ(Machine().m_eOperation, OP_NONE);
    CAnswer yes(QMessageBox::Yes);
    TouchButton("Btn_MoveWorkZero");
    EXPECT_EQ(Machine().m_eOperation, OP_WORK_HOME);
    EXPECT_EQ(Button("Btn_MoveWorkZero").styleSheet(), BTN_BKGND_BLUE);
    TouchButton("Btn_MoveWorkZero");   // ignored meanwhile
    ExpectLogged("Work home postion reached");
    EXPECT_EQ(Button("Btn_MoveWorkZero").styleSheet(), BTN_BKGND_GRAY);
    EXPECT_EQ(Carriages().Carriage(X_AXIS), 0);
    EXPECT_EQ(Carriages().Carriage(Z_AXIS), 0);
}

// The stop comes by the input while the question stands: a Yes must not start the machine.
TEST_F(WindowButtons, AskAgainForTheStopBehindAQuestion)
{
    Open();
    CAnswer yes([this](QWidget& modal) {
        Carriages().PressEmergencyStop(true);
        EXPECT_TRUE(WaitFor([] { return bool(AppConfig::m_bEmergencyStopON); }));
        Answer(modal, QMessageBox::Yes);
    });
    TouchButton("Btn_MoveWorkZero");
    EXPECT_EQ(Machine().m_eOperation, OP_NONE);
    EXPECT_TRUE(Logged("Release Emergency Switch"));
}

TEST_F(WindowButtons, MoveOneAxisHomeAndZToItsSafeHeight)
{
    Open();
    for (const auto& [szAxis, axis] : {std::pair("X", X_AXIS), {"Y", Y_AXIS}, {"Z", Z_AXIS}}) {
        for (const eAxis each : {X_AXIS, Y_AXIS, Z_AXIS}) Machine().m_AxisCtrl[each].SetCurPos(0.2);
        TouchButton(QLatin1String("Btn_MoveWorkHome_") + szAxis);
        EXPECT_TRUE(WaitFor([&, axis = axis] { return Machine().GetCurPos(axis) == 0.0; })) << szAxis;
        EXPECT_TRUE(WaitFor([&] { return Machine().IsMachineIdle(); }));
        for (const eAxis each : {X_AXIS, Y_AXIS, Z_AXIS}) EXPECT_EQ(Machine().GetCurPos(each) == 0.0, each == axis);
    }
    TouchButton("Btn_MoveZSafePos");
    EXPECT_TRUE(WaitFor([&] { return Machine().GetCurPos(Z_AXIS) == 0.5; }));
    EXPECT_TRUE(TurnsGray("Btn_MoveZSafePos"));
}

TEST_F(WindowButtons, MoveAAndBHomeOnAMachineOfFiveAxes)
{
    AppConfig::m_eVantorCtrl = VTR5_CTRL;
    Open();
    for (const auto& [szAxis, axis] : {std::pair("A", A_AXIS), {"B", B_AXIS}}) {
        Machine().m_AxisCtrl[axis].SetCurPos(0.2);
        TouchButton(QLatin1String("Btn_MoveWorkHome_") + szAxis);
        EXPECT_TRUE(WaitFor([&, axis = axis] { return Machine().GetCurPos(axis) == 0.0; })) << szAxis;
        EXPECT_EQ(Carriages().Carriage(axis), -200);
    }
}

TEST_F(WindowButtons, ProbeTheSurface)
{
    Open();
    Carriages().SetFlatSurface(-0.4);
    Machine().m_AxisCtrl[Z_AXIS].SetCurPos(0.0);
    AppConfig::m_fAxisFeed[Z_AXIS] = 15.0;
    TouchButton("Btn_SetZ0WithZProbe");
    EXPECT_EQ(Button("Btn_SetZ0WithZProbe").styleSheet(), BTN_BKGND_BLUE);
    ExpectLogged("Z-Axis Work Zero is set");
    EXPECT_TRUE(WaitIdle());
    EXPECT_EQ(Carriages().Carriage(Z_AXIS), 2600) << "3 mm above the surface";
    EXPECT_EQ(Machine().GetCurPos(Z_AXIS), 3.0);
    EXPECT_TRUE(TurnsGray("Btn_SetZ0WithZProbe"));
}

TEST_F(WindowButtons, KeepTheTruePositionThroughASimulation)
{
    Open();
    Machine().m_AxisCtrl[X_AXIS].SetCurPos(1.25);
    TouchButton("Btn_SimulationMode");
    EXPECT_TRUE(AppConfig::m_bSimulationMode);
    EXPECT_EQ(Button("Btn_SimulationMode").styleSheet(), BTN_BKGND_GREEN);
    TouchButton("Btn_MoveWorkHome_X");
    EXPECT_TRUE(WaitFor([&] { return Machine().GetCurPos(X_AXIS) == 0.0 && Machine().IsMachineIdle(); }));
    AppConfig::m_bHomeSensorsUsed = true;   // left without a home all the same
    TouchButton("Btn_SimulationMode");
    EXPECT_FALSE(AppConfig::m_bSimulationMode);
    EXPECT_EQ(Machine().GetCurPos(X_AXIS), 1.25);
    EXPECT_EQ(Carriages().Carriage(X_AXIS), 0);
}

TEST_F(WindowButtons, SwitchTheSpindleAndLockTheOtherDirection)
{
    Open();
    for (const auto& [strName, iCode] : {std::pair(QString("CW"), 3), {QString("CCW"), 4}}) {
        const QString strButton = "Btn_Spindle" + strName + "OnOff";
        QPushButton& other = Button(strName == "CW" ? "Btn_SpindleCCWOnOff" : "Btn_SpindleCWOnOff");
        const int iRelay = AppConfig::m_lstMCodesPin[static_cast<quint16>(iCode)];
        TouchButton(strButton);
        EXPECT_EQ(CVirtualPins::Level(iRelay), 1);
        EXPECT_EQ(Button(strButton).text(), "Spindle\n" + strName + " ON");
        EXPECT_EQ(Button(strButton).styleSheet(), BTN_BKGND_GREEN);
        EXPECT_TRUE(AppConfig::m_bSpindleOn && !other.isEnabled());
        TouchButton(strButton);
        EXPECT_EQ(CVirtualPins::Level(iRelay), 0);
        EXPECT_EQ(Button(strButton).text(), "Spindle\n" + strName + " OFF");
        EXPECT_TRUE(!AppConfig::m_bSpindleOn && other.isEnabled());
    }
}

TEST_F(WindowButtons, SaveTheSettingsAndTellTheWorkZero)
{
    Open();
    AppConfig::m_fEndMillDia = 3.175;
    TouchButton("Btn_SaveSettings");
    EXPECT_TRUE(Logged("Settings saved"));
    EXPECT_TRUE(WaitFor([&] { return Button("Btn_SaveSettings").styleSheet().contains("rgba(50, 150, 50"); }));
    AppConfig::m_fEndMillDia = 1.0;
    ASSERT_TRUE(AppConfig::LoadConfig(CONFIG_FILE));
    EXPECT_EQ(AppConfig::m_fEndMillDia, 3.175);

    AppConfig::m_fAxisWorkZero[Y_AXIS] = -20.5;
    TouchButton("Btn_CurrentWorkZeroReference");
    EXPECT_TRUE(Logged("G54 Work Zero (mm): X-Axis 0.0000, Y-Axis -20.5000, Z-Axis 0.0000"));
    EXPECT_TRUE(TurnsGray("Btn_CurrentWorkZeroReference"));

    ASSERT_TRUE(QFile::remove(CPaths::Map(CONFIG_FILE)) && QDir().mkpath(CPaths::Map(CONFIG_FILE)));
    ClearLog();
    TouchButton("Btn_SaveSettings");
    EXPECT_EQ(Log(), QStringList("Unable to write Config File"));
}

TEST_F(WindowButtons, OverridesReachTheAxesOfAFreeMachine)
{
    AppConfig::m_bUseG01FeedForJog = true;
    Open();
    Click(Bar("m_G01FeedBar"), "Btn_Increase");
    EXPECT_TRUE(WaitFor([] { return AppConfig::m_fAxisFeedPercent[Z_AXIS] == 1.05; }));
    EXPECT_EQ(AppConfig::m_fAxisFeed[Y_AXIS], 1.05 * AppConfig::m_fUserAxisFeed[Y_AXIS]);
    EXPECT_EQ(AppConfig::m_fAxisJogFeed[Y_AXIS], AppConfig::m_fAxisFeed[Y_AXIS]);
    EXPECT_EQ(AppConfig::m_fAxisFeedPercent[A_AXIS], 1.0) << "not on this machine";
    Window().OnG00FeedChange(50);
    EXPECT_EQ(AppConfig::m_fMaxAxisFeed[X_AXIS], 0.5 * AppConfig::m_fUserAxisFeed[X_AXIS]);
    ClearLog();
    Window().EnableDisableSpindleSpeedCtrl(true);
    EXPECT_EQ(Log(), QStringList("Spindle Speed Control not available"));
}
}   // namespace
