#include "common/Refusals.h"
#include "platform/virtual/VirtualPins.h"
#include "screens/settings/SettingsFixture.h"
#include "widgets/ButtonStyle.h"

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
    m_Host.TakeLog();
    m_Host.m_Machine.m_eOperation = OP_NONE;
    A::m_bSimulationMode = true;   // what positions are counted by
    for (const char* szButton :
         {"Btn_MovPerPulse", "Btn_SameMotorSettings", "Btn_SameMotorSettings_AB", "Btn_X_PosDirMovLimit",
          "Btn_X_NegDirMovLimit", "Btn_X_PosDirMotRot", "Btn_X_HomeDirMotRot", "Btn_UseHomeIP"}) {
        Press(m_Dlg, szButton);
        EXPECT_EQ(m_Host.TakeLog(), QStringList(NOT_IN_SIMULATION)) << szButton;
    }
    Child<QTabWidget>(m_Dlg, "tabWidget").setCurrentIndex(0);
    SelectRow(m_Dlg, VTR3_CTRL);
    EXPECT_EQ(m_Host.TakeLog(), QStringList(NOT_IN_SIMULATION));
    A::m_bSimulationMode = false;
    EXPECT_EQ(CSettingsTable::List(), before);
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
    auto& page = Child<QWidget>(m_Dlg, "Page_RpiController");
    QTest::keyClick(&page, Qt::Key_Escape);
    EXPECT_TRUE(page.isVisible());
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
}   // namespace
