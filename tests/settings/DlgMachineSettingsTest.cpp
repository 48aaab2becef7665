#include "platform/VirtualPins.h"
#include "settings/SettingsFixture.h"

using A = AppConfig;

namespace {
class MachineSettings : public CSettingsTest
{
protected:
    // A machine of five axes with home sensors: every button is open.
    MachineSettings()
    {
        A::m_bHomeSensorsUsed = true;
        A::m_eAxisFeedtype = 1;
        Start(VTR5_CTRL);
        m_Host.Place(m_Dlg);
        m_Dlg.ConfigSettings();
    }
    QString TextOf(const QString& strButton) { return Child(m_Dlg, strButton).text(); }
    QString StyleOf(const QString& strButton) { return Child(m_Dlg, strButton).styleSheet(); }
    bool IsEnabled(const QString& strButton) { return Child(m_Dlg, strButton).isEnabled(); }
    // Types into the keypad of a button.
    void Enter(const QString& strButton, std::optional<double> fValue)
    {
        m_Host.Type(fValue);
        Press(m_Dlg, strButton);
    }
    QImage Graph() { return Child<QLabel>(m_Dlg, "Lbl_VelAccGraph").pixmap(Qt::ReturnByValue).toImage(); }

    CDlgMachineSettings m_Dlg;
};

struct stKeypadOf
{
    const char *szAxis, *szButton, *szTitle, *szText;
    double fLow, fHigh;
    bool bSign = false;
};
class MachineNumbers : public MachineSettings, public testing::WithParamInterface<stKeypadOf>
{
};
// Cancel first: the value stays in all its digits, although the keypad shows four of them.
TEST_P(MachineNumbers, KeepTheirRangeAndStayWhenCancelled)
{
    const stKeypadOf& k = GetParam();
    for (int axis = 0; axis < MAX_AXES; ++axis) {
        A::m_fMaxAxisFeed[axis] = 100.0 / 3;
        A::m_fAxisAcc[axis] = 2000.0 / 3;
        A::m_fAxisPosDirLimit[axis] = 100.0 / 3;
        A::m_fAxisNegDirLimit[axis] = -100.0 / 3;
    }
    m_Dlg.ConfigSettings();
    const QStringList before = CSettingsTable::List();
    Press(m_Dlg, QStringLiteral("Btn_AxisSel_") + k.szAxis);
    const QString strShown = TextOf(k.szButton);
    Enter(k.szButton, std::nullopt);
    EXPECT_EQ(CSettingsTable::List(), before);
    EXPECT_EQ(TextOf(k.szButton), strShown);
    EXPECT_TRUE(strShown.contains(k.szText));
    EXPECT_EQ(m_Host.TakeLog(), QStringList());
    const CTestHost::stKeypad keypad = m_Host.m_lstKeypads.back();
    EXPECT_EQ(keypad.pButton, &Child(m_Dlg, k.szButton));
    EXPECT_EQ(keypad.strTitle, k.szTitle);
    EXPECT_EQ(keypad.fLow, k.fLow);
    EXPECT_EQ(keypad.fHigh, k.fHigh);
    EXPECT_EQ(keypad.bShowSign, k.bSign);
    EXPECT_EQ(keypad.iPrecision, 4);
}
INSTANTIATE_TEST_SUITE_P(
    Buttons, MachineNumbers,
    testing::Values(stKeypadOf{"X", "Btn_MaxFeed", "Axis Feed(mm/sec)", "33.3333\nMax Feed", 0, 1500},
                    stKeypadOf{"B", "Btn_MaxFeed", "Axis Feed(deg/sec)", "\nMax Feed", 0, 1500},
                    stKeypadOf{"Z", "Btn_MaxAcc", "Axis Acceleration(mm/sec2)", "666.6667\nAcc", 0.01, 5000},
                    stKeypadOf{"A", "Btn_MaxAcc", "Axis Acceleration(deg/sec2)", "\nAcc", 0.01, 5000},
                    stKeypadOf{"Y", "Btn_Axis_Pulse_DutyCycle", "Axis Pulse Duty Cycle", "\nDuty Cycle", 0.25, 0.75},
                    stKeypadOf{"X", "Btn_RateOfAcc", "Axis Rate Of Acc(mm/sec3)", "\nRate of Acc", 0.01, 1e7},
                    stKeypadOf{"X", "Btn_MovPerPulse", "Move per Pulse(mm)", "0.0010\nMove/Pulse", 0.0001, 10},
                    stKeypadOf{"X", "Btn_VelAccUserTimePeriod", "Sampling Time(sec)", "0.0100\n", 0.001, 1},
                    stKeypadOf{"X", "Btn_X_PosDirMovLimit", "X Axis +Dir Limit(mm)", "33.3333", 0, 0, true},
                    stKeypadOf{"X", "Btn_B_NegDirMovLimit", "B Axis -Dir Limit(mm)", "-33.3333", 0, 0, true}));

TEST_F(MachineSettings, NothingChangesWhileTheMachineIsInUse)
{
    const QStringList before = CSettingsTable::List();
    const QStringList lstOpen = {"Btn_KeyboardHelp", "Btn_PwmSettings"};   // these only show
    m_Host.m_Machine.m_eOperation = OP_WORK_HOME;
    for (const QPushButton* pButton : m_Dlg.findChildren<QPushButton*>()) {
        const QString strName = pButton->objectName();
        if (lstOpen.contains(strName) || strName.startsWith("Btn_AxisSel") || strName.startsWith("Btn_RpiGPIO"))
            continue;
        Press(m_Dlg, strName);
        EXPECT_EQ(m_Host.TakeLog(), QStringList("Machine in use")) << strName.toStdString();
    }
    Child<QTabWidget>(m_Dlg, "tabWidget").setCurrentIndex(0);
    SelectRow(m_Dlg, VTR3_CTRL);
    EXPECT_EQ(m_Host.m_lstLog.size(), 1u);
    EXPECT_EQ(m_Host.m_lstLog.at(0), (CTestHost::stLog{"Machine in use", MSG_ERROR}));
    EXPECT_EQ(Child<QComboBox>(m_Dlg, "Cmb_VantorCntrolSel").currentIndex(), VTR5_CTRL);
    EXPECT_EQ(CSettingsTable::List(), before);

    AxisCtrl& y = m_Host.m_Machine.m_AxisCtrl[Y_AXIS];
    m_Host.m_Machine.m_eOperation = OP_NONE;   // an axis that moves is in use too
    y.m_bMoving = true;
    y.m_bNewTable = false;
    m_Host.TakeLog();
    Press(m_Dlg, "Btn_VelCurveType");
    EXPECT_EQ(m_Host.TakeLog(), QStringList("Machine in use"));
    Press(m_Dlg, "Btn_AxisSel_Y");   // is only looked at
    EXPECT_EQ(StyleOf("Btn_AxisSel_Y"), BTN_BKGND_BLUE);
    EXPECT_EQ(StyleOf("Btn_AxisSel_X"), BTN_BKGND_GRAY);
    EXPECT_FALSE(y.m_bNewTable);
    y.m_bMoving = false;
}

TEST_F(MachineSettings, AChangedMotorGoesToTheSelectedAxisAndToThePicture)
{
    Press(m_Dlg, "Btn_AxisSel_Y");
    const QImage before = Graph();
    Enter("Btn_MaxFeed", 12.0);
    EXPECT_EQ(A::m_fMaxAxisFeed[Y_AXIS], 12.0);
    EXPECT_EQ(A::m_fUserAxisFeed[Y_AXIS], 8.0);
    EXPECT_EQ(A::m_fMaxAxisFeed[X_AXIS], 30.0);
    EXPECT_EQ(TextOf("Btn_MaxFeed"), "12.0000\nMax Feed");
    EXPECT_GT(m_Host.m_iUserSettingsUpdated, 0);
    EXPECT_NE(Graph(), before);
    Press(m_Dlg, "Btn_AxisSel_X");
    EXPECT_EQ(TextOf("Btn_MaxFeed"), "30.0000\nMax Feed");

    const QImage sCurve = Graph();
    EXPECT_EQ(TextOf("Btn_VelCurveType"), "S-Curve");
    EXPECT_TRUE(IsEnabled("Btn_RateOfAcc"));
    Press(m_Dlg, "Btn_VelCurveType");
    EXPECT_EQ(TextOf("Btn_VelCurveType"), "Trapezoidal");
    EXPECT_FALSE(IsEnabled("Btn_RateOfAcc"));
    EXPECT_NE(Graph(), sCurve);
}

TEST_F(MachineSettings, ACutFeedIsShownAndARefusedRampIsTold)
{
    A::m_fAxisFeed[X_AXIS] = 200.0;
    Enter("Btn_MovPerPulse", 0.0001);
    EXPECT_EQ(TextOf("Btn_MaxFeed"), "150.0000\nFeed");
    m_Host.TakeLog();
    Enter("Btn_MaxFeed", 0.0);
    EXPECT_EQ(m_Host.TakeLog(), QStringList("X-Axis feed must be greater than zero"));
}

TEST_F(MachineSettings, ACopyLightsItsButtonForAMoment)
{
    A::m_fAxisAcc[A_AXIS] = 123.0;
    Press(m_Dlg, "Btn_SameMotorSettings_AB");
    EXPECT_EQ(StyleOf("Btn_SameMotorSettings_AB"), BTN_BKGND_GREEN);
    EXPECT_EQ(StyleOf("Btn_AxisSel_A"), BTN_BKGND_BLUE);
    EXPECT_EQ(A::m_fAxisAcc[B_AXIS], 123.0);
    EXPECT_EQ(A::m_fAxisAcc[X_AXIS], 600.0);
    EXPECT_EQ(m_Host.m_iUserSettingsUpdated, 1);
    EXPECT_TRUE(WaitFor([&] { return StyleOf("Btn_SameMotorSettings_AB") == BTN_BKGND_GRAY; }));

    Press(m_Dlg, "Btn_AxisSel_Z");
    A::m_fAxisAcc[Z_AXIS] = 321.0;
    Press(m_Dlg, "Btn_SameMotorSettings");
    EXPECT_EQ(A::m_fAxisAcc[X_AXIS], 321.0);
    EXPECT_EQ(TextOf("Btn_SameMotorSettings"), "Same for\nX, Y, Z");
}

TEST_F(MachineSettings, LimitsAreRefusedOrReachTheAxisAndDirectionsAreNamed)
{
    Enter("Btn_Y_PosDirMovLimit", -180.0);
    Enter("Btn_Y_NegDirMovLimit", 0.5);
    EXPECT_EQ(m_Host.TakeLog(), QStringList({"Positive Limit Can't be less than\nor equal to Negative Limit",
                                             "Negative Limit Can't be greater than\nor equal to Positive Limit"}));
    EXPECT_EQ(TextOf("Btn_Y_PosDirMovLimit"), "0.0000");
    EXPECT_EQ(TextOf("Btn_Y_NegDirMovLimit"), "-180.0000");
    Enter("Btn_Y_PosDirMovLimit", 5.25);
    EXPECT_EQ(TextOf("Btn_Y_PosDirMovLimit"), "5.2500");
    EXPECT_EQ(m_Host.m_Machine.m_AxisCtrl[Y_AXIS].m_lPosLimit, 52500);
    for (const char* szButton : {"Btn_Z_PosDirMotRot", "Btn_Z_HomeDirMotRot"}) {
        EXPECT_EQ(TextOf(szButton), "Clockwise");
        Press(m_Dlg, szButton);
        EXPECT_EQ(TextOf(szButton), "Counter\nClockwise");
    }
}

TEST_F(MachineSettings, LimitsAreOpenWithSensorsAndAxesOfTheMachine)
{
    for (const auto& [bSensors, iAxes] : {std::pair{false, 3}, {false, 5}, {true, 3}, {true, 5}}) {
        A::m_bHomeSensorsUsed = bSensors;
        A::m_iMchType = iAxes;
        m_Dlg.EnlMotionLimits();
        for (const QChar axis : QStringLiteral("XYZAB")) {
            const bool bThere = axis > 'B' || iAxes == 5;
            for (const char* szButton : {"Btn_%1_PosDirMovLimit", "Btn_%1_NegDirMovLimit", "Btn_%1_HomeDirMotRot"})
                EXPECT_EQ(IsEnabled(QString(szButton).arg(axis)), bThere && bSensors) << axis.toLatin1() << szButton;
            EXPECT_EQ(IsEnabled(QStringLiteral("Btn_%1_PosDirMotRot").arg(axis)), bThere);
            EXPECT_EQ(IsEnabled(QStringLiteral("Btn_AxisSel_%1").arg(axis)), bThere);
        }
        EXPECT_EQ(IsEnabled("Btn_SameMotorSettings_AB"), iAxes == 5);
    }
}

TEST_F(MachineSettings, TheSensorSwitchReachesLimitsAndTheWindow)
{
    Press(m_Dlg, "Btn_UseHomeIP");
    EXPECT_FALSE(A::m_bHomeSensorsUsed);
    EXPECT_EQ(m_Host.m_lstHomingOptions, std::vector<bool>{false});
    EXPECT_EQ(m_Host.m_Machine.m_AxisCtrl[B_AXIS].m_lNegLimit, -100'000'000);
    EXPECT_FALSE(IsEnabled("Btn_X_PosDirMovLimit"));
    EXPECT_EQ(StyleOf("Btn_UseHomeIP"), BTN_BKGND_GRAY);
    Press(m_Dlg, "Btn_UseHomeIP");
    EXPECT_EQ(m_Host.m_lstHomingOptions, (std::vector<bool>{false, true}));
    EXPECT_EQ(m_Host.m_Machine.m_AxisCtrl[X_AXIS].m_lPosLimit, 1'800'000);
    EXPECT_EQ(StyleOf("Btn_UseHomeIP"), BTN_BKGND_GREEN);
}

TEST_F(MachineSettings, TheKeyboardIsGrabbedWhileItIsUsed)
{
    Press(m_Dlg, "Btn_UseKeyboardCtrl");
    Press(m_Dlg, "Btn_UseKeyboardCtrl");
    EXPECT_EQ(m_Host.m_lstGrabs, (std::vector<bool>{true, false}));

    const auto& help = Child<QLabel>(m_Dlg, "Lbl_KeyboardHelp");
    Press(m_Dlg, "Btn_KeyboardHelp");
    EXPECT_TRUE(help.isVisible());
    EXPECT_TRUE(help.text().contains("Emergency stop"));
    Press(m_Dlg, "Btn_KeyboardHelp");
    EXPECT_FALSE(help.isVisible());
}

TEST_F(MachineSettings, AnotherBoardAsksForARestart)
{
    const QString strRestart = "Please Save and Restart application for the changes to take affect";
    EXPECT_EQ(m_Host.TakeLog(), QStringList());   // filling the screen is no change
    Press(m_Dlg, "Btn_AxisSel_B");
    Child<QTabWidget>(m_Dlg, "tabWidget").setCurrentIndex(0);
    SelectRow(m_Dlg, VTR3_CTRL);
    ASSERT_EQ(m_Host.m_lstLog.size(), 1u);
    EXPECT_EQ(m_Host.m_lstLog[0], (CTestHost::stLog{strRestart, MSG_ERROR}));
    EXPECT_EQ(A::m_eVantorCtrl, VTR3_CTRL);
    EXPECT_EQ(A::m_iMchType, 3);
    EXPECT_TRUE(Child<QWidget>(m_Dlg, "Page_RpiController").isVisible());
    EXPECT_FALSE(IsEnabled("Btn_AxisSel_B"));
    EXPECT_EQ(StyleOf("Btn_AxisSel_X"), BTN_BKGND_BLUE);   // the axis that was selected is gone
    m_Host.m_Machine.JogPos(A_AXIS);
    EXPECT_EQ(m_Host.m_Machine.GetErrMsg(), "A-Axis can't move before the application is restarted");
    SelectRow(m_Dlg, VTR5_CTRL);
    EXPECT_EQ(A::m_iMchType, 5);
    EXPECT_TRUE(IsEnabled("Btn_AxisSel_B"));
}

TEST_F(MachineSettings, TheOutputsOfAnExpansionBoardAreListed)
{
    A::m_eVantorCtrl = SPI_CTRL_16;
    A::m_lstMCodesPin = {{3, 0}, {204, 11}};
    m_Dlg.ConfigSettings();
    EXPECT_TRUE(Child<QWidget>(m_Dlg, "Page_VantorCtrl").isVisible());
    const auto& list = Child<QListWidget>(m_Dlg, "LW_MCodes");
    ASSERT_EQ(list.count(), 2);
    EXPECT_EQ(list.item(1)->text(), "M204: output 11");
    A::m_lstMCodesPin.clear();
    m_Dlg.ConfigSettings();
    EXPECT_EQ(list.item(0)->text(), "No M code has an output");
}

TEST_F(MachineSettings, PinsShowRoleAndLevelWhileTheyAreSeen)
{
    EXPECT_EQ(TextOf("Btn_RpiGPIO_2"), "GPIO 2: 0\nX Pulse");
    EXPECT_EQ(TextOf("Btn_RpiGPIO_18"), "GPIO 18: 0\nB Home");
    EXPECT_EQ(TextOf("Btn_RpiGPIO_8"), "GPIO 8: 0\nM3");
    EXPECT_EQ(TextOf("Btn_RpiGPIO_0"), "GPIO 0: 0\nnot used");
    CVirtualPins::SetInput(20, 1);
    EXPECT_TRUE(WaitFor([&] { return TextOf("Btn_RpiGPIO_20") == "GPIO 20: 1\nEmergency Stop"; }));
    EXPECT_EQ(StyleOf("Btn_RpiGPIO_20"), BTN_BKGND_GREEN);
    Touch(Child(m_Dlg, "Btn_RpiGPIO_20"));   // to be read, not pressed
    EXPECT_FALSE(Child(m_Dlg, "Btn_RpiGPIO_20").isDown());
    CVirtualPins::SetInput(20, 0);
    EXPECT_TRUE(WaitFor([&] { return TextOf("Btn_RpiGPIO_20") == "GPIO 20: 0\nEmergency Stop"; }));
}

TEST_F(MachineSettings, TheLockTakesTheDigitsAsTyped)
{
    {
        CAnswer keypad([](QWidget& modal) {
            EXPECT_FALSE(Child(modal, "Btn_Point").isEnabled());
            CAnswer::Keys("C007")(modal);
        });
        Press(m_Dlg, "Btn_MachSettingsPasswd");
        EXPECT_EQ(keypad.Title(), "M/C Settings lock");
    }
    EXPECT_TRUE(A::m_bAppPassword);
    EXPECT_EQ(A::m_strAppPassword, "007");
    EXPECT_EQ(StyleOf("Btn_MachSettingsPasswd"), BTN_BKGND_GREEN);
    Press(m_Dlg, "Btn_MachSettingsPasswd");   // off: without a keypad
    EXPECT_FALSE(A::m_bAppPassword);
    EXPECT_EQ(StyleOf("Btn_MachSettingsPasswd"), BTN_BKGND_GRAY);

    CAnswer cancel(CAnswer::Keys("99", false));
    Press(m_Dlg, "Btn_MachSettingsPasswd");
    EXPECT_FALSE(A::m_bAppPassword);
    EXPECT_EQ(A::m_strAppPassword, "007");
    EXPECT_EQ(StyleOf("Btn_MachSettingsPasswd"), BTN_BKGND_GRAY);
}

TEST_F(MachineSettings, PwmSettingsOpenAndReachTheSpeedBar)
{
    m_Host.Type(200.0);
    m_Host.Type(4000.0);
    CAnswer dialog([this](QWidget& modal) {
        EXPECT_EQ(StyleOf("Btn_PwmSettings"), BTN_BKGND_GREEN);
        Click(modal, "Btn_UsePwmCtrl");
        Click(modal, "Btn_PwmMinFreq");
        EXPECT_EQ(Child<QLabel>(modal, "Lbl_FreqStep").text(), "16 Hz\nper speed step");   // 2800 modulo 24
        Click(modal, "Btn_PwmMinFreq");
        EXPECT_EQ(Child(modal, "Btn_PwmMinFreq").text(), "200\nLowest Freq(Hz)");
        m_Host.m_Machine.m_eOperation = OP_MCH_HOME;
        for (const char* szButton : {"Btn_UsePwmCtrl", "Btn_PwmMinFreq", "Btn_PwmMaxFreq", "Btn_PwmTimeDelay"})
            Click(modal, szButton);
        Click(modal, "Btn_Close");
    });
    Press(m_Dlg, "Btn_PwmSettings");
    EXPECT_EQ(m_Host.TakeLog(), QStringList({"Lowest frequency must be below\nthe highest frequency", "Machine in use",
                                             "Machine in use", "Machine in use", "Machine in use"}));
    EXPECT_EQ(m_Host.m_lstSpindleCtrl, (std::vector<bool>{true, true}));
    EXPECT_TRUE(A::m_bPWMCtrlUsed);
    EXPECT_EQ(m_Host.m_lstKeypads.back().fHigh, 18750.0);
    EXPECT_EQ(StyleOf("Btn_PwmSettings"), BTN_BKGND_GRAY);
}

TEST_F(MachineSettings, EscapeDoesNotHideTheScreenOrItsPages)
{
    QTest::keyClick(&m_Dlg, Qt::Key_Escape);
    QTest::keyClick(&Child<QWidget>(m_Dlg, "Page_RpiController"), Qt::Key_Escape);
    EXPECT_TRUE(m_Dlg.isVisible());
    EXPECT_TRUE(Child<QWidget>(m_Dlg, "Page_RpiController").isVisible());
}
}   // namespace
