#include "platform/virtual/VirtualPins.h"
#include "screens/settings/SettingsFixture.h"
#include "screens/settings/UserNumbers.h"
#include "widgets/ButtonStyle.h"

using A = AppConfig;

namespace {
class UserSettings : public CSettingsTest
{
protected:
    UserSettings()
    {
        A::m_bHomeSensorsUsed = true;
        Start(VTR5_CTRL);
        m_Host.Place(m_Dlg);
        m_Dlg.ConfigSettings();
    }
    QString TextOf(const QString& strButton) { return Child(m_Dlg, strButton).text(); }
    QString StyleOf(const QString& strButton) { return Child(m_Dlg, strButton).styleSheet(); }
    bool IsEnabled(const QString& strButton) { return Child(m_Dlg, strButton).isEnabled(); }

    CDlgUserSettings m_Dlg;
};
using ThreadsUserSettings = UserSettings;

// Values with more digits than a keypad shows.
TEST_F(UserSettings, CancelledKeypadsGiveBackTheRecordAsItWas)
{
    double fValue = 1.0 / 3;
    for (const stUserNumber& number : UserNumbers()) number.SetValue(fValue += 1.0 / 3);
    for (int axis = 0; axis < MAX_AXES; ++axis) A::m_fMaxAxisFeed[axis] = A::m_fUserAxisFeed[axis] * 1.5;
    A::m_fPlungeFeed = A::m_fUserAxisFeed[Z_AXIS];
    m_Dlg.ConfigSettings();
    const QStringList before = CSettingsTable::List();
    for (const stUserNumber& number : UserNumbers()) {
        if (number.strButton.endsWith("JogFeed") || number.strButton.endsWith("HomeFeed"))
            number.SetValue(A::m_fUserAxisFeed[number.axis]);   // exactly at the end of its range
        const double fOld = number.Value();
        m_Host.Type(std::nullopt);
        Press(m_Dlg, number.strButton);
        EXPECT_EQ(number.Value(), fOld) << number.strButton.toStdString();
        EXPECT_EQ(m_Host.m_lstKeypads.back().strValue, QString::number(fOld, 'f', 4));
        m_Dlg.ConfigSettings();
        EXPECT_TRUE(TextOf(number.strButton).startsWith(QString::number(fOld, 'f', 4)));
    }
    EXPECT_EQ(m_Host.TakeLog(), QStringList());
}

TEST_F(UserSettings, SwitchesShowTheirStateAndOnesThatExcludeEachOtherGoOff)
{
    Press(m_Dlg, "Btn_AutoSpindleOnCW");
    EXPECT_EQ(TextOf("Btn_AutoSpindleOnCW"), "Auto Spindle\nCW ON");
    EXPECT_EQ(StyleOf("Btn_AutoSpindleOnCW"), BTN_BKGND_GREEN);
    Press(m_Dlg, "Btn_AutoSpindleOnCCW");
    EXPECT_EQ(TextOf("Btn_AutoSpindleOnCCW"), "Auto Spindle\nCCW ON");
    EXPECT_EQ(TextOf("Btn_AutoSpindleOnCW"), "Auto Spindle\nCW OFF");
    EXPECT_EQ(StyleOf("Btn_AutoSpindleOnCW"), BTN_BKGND_GRAY);
    Press(m_Dlg, "Btn_EnlManualToolChange");
    Press(m_Dlg, "Btn_EnlAutoToolChange");
    EXPECT_TRUE(A::m_bEnlAutoToolChange);
    EXPECT_FALSE(A::m_bEnlManualToolChange);
    Press(m_Dlg, "Btn_SelUnits");
    EXPECT_EQ(TextOf("Btn_SelUnits"), "Units\nInches");
    Press(m_Dlg, "Btn_UseG01FeedForJog");
    EXPECT_EQ(A::m_fAxisJogFeed[X_AXIS], 15.0);
    EXPECT_FALSE(IsEnabled("Btn_X_JogFeed"));
    Press(m_Dlg, "Btn_UseG01FeedForJog");
    EXPECT_TRUE(IsEnabled("Btn_X_JogFeed"));
}

TEST_F(UserSettings, NothingChangesWhileTheMachineIsInUse)
{
    const QStringList before = CSettingsTable::List();
    m_Host.m_Machine.m_eOperation = OP_GCODE;
    for (const QPushButton* pButton : m_Dlg.findChildren<QPushButton*>()) {
        if (pButton->objectName() == "Btn_SpindleSpeeds") continue;   // only opens
        Press(m_Dlg, pButton->objectName());
        EXPECT_EQ(m_Host.TakeLog(), QStringList("Machine in use")) << pButton->objectName().toStdString();
    }
    EXPECT_EQ(CSettingsTable::List(), before);
    EXPECT_TRUE(WaitFor([&] { return StyleOf("Btn_MoveHome_B") == BTN_BKGND_GRAY; }));
}

TEST_F(UserSettings, TheSpindleTableTakesWholeSpeeds)
{
    m_Host.Type(24000.0);
    CAnswer dialog([this](QWidget& modal) {
        Click(modal, "Btn_SpindleSpeed_16");
        EXPECT_EQ(Child(modal, "Btn_SpindleSpeed_16").text(), "24000\nStep 16");
        m_Host.m_Machine.m_eOperation = OP_GCODE;
        Click(modal, "Btn_SpindleSpeed_1");
        Click(modal, "Btn_Close");
    });
    Press(m_Dlg, "Btn_SpindleSpeeds");
    EXPECT_EQ(A::m_iSpindleSpeeds[15], 24000);
    const CTestHost::stKeypad& keypad = m_Host.m_lstKeypads.at(0);
    EXPECT_EQ(keypad.fHigh, 32767.0);
    EXPECT_EQ(keypad.iPrecision, 0);
    EXPECT_EQ(m_Host.TakeLog(), QStringList("Machine in use"));
}

TEST_F(UserSettings, WithoutSensorsThereIsNoHoming)
{
    m_Dlg.UpdateAutoHomingOptions(false);
    for (const char* szButton : {"Btn_MoveHome_X", "Btn_AutoHomeSequence", "Btn_AutoHmOnStartup"})
        EXPECT_FALSE(IsEnabled(szButton)) << szButton;
    m_Dlg.UpdateAutoHomingOptions(true);
    Press(m_Dlg, "Btn_AutoHmOnStartup");
    m_Dlg.UpdateAutoHomingOptions(false);
    EXPECT_TRUE(IsEnabled("Btn_AutoHmOnStartup"));   // so that it can be switched off

    A::m_bHomeSensorsUsed = false;
    m_Dlg.on_Btn_AutoHomeSequence_clicked();   // by the held key
    EXPECT_EQ(m_Host.m_Machine.GetErrMsg(), "Homing Sensor not Enabled for all Axis");
    EXPECT_EQ(m_Host.m_Machine.m_eOperation, OP_NONE);
    EXPECT_TRUE(WaitFor([&] { return StyleOf("Btn_AutoHomeSequence") == BTN_BKGND_GRAY; }));
}

TEST_F(UserSettings, AnEmergencyStopRefusesHoming)
{
    A::m_bEmergencyStopON = true;
    for (const char* szButton : {"Btn_AutoHomeSequence", "Btn_MoveHome_Y"}) {
        Press(m_Dlg, szButton);
        EXPECT_EQ(StyleOf(szButton), BTN_BKGND_BLUE);
        EXPECT_EQ(m_Host.TakeLog(), QStringList("Release Emergency Switch"));
        EXPECT_TRUE(WaitFor([&] { return StyleOf(szButton) == BTN_BKGND_GRAY; }));
    }
    EXPECT_EQ(m_Host.m_Machine.m_eOperation, OP_NONE);
}

// The axes stand on their sensors: a homing ends without a pulse.
TEST_F(ThreadsUserSettings, MoveHomeHomesAllAxesOrOneAndStaysBlueMeanwhile)
{
    A::m_fHomeRepeatOffset = 0.0;
    for (int axis = 0; axis < MAX_AXES; ++axis) CVirtualPins::SetInput(A::m_iAxisMchHomeSensorInput[axis], 1);
    AppControl& machine = m_Host.m_Machine;
    const auto Ended = [&] { return bool(machine.m_bOperationFinished); };

    Press(m_Dlg, "Btn_MoveHome_Y");
    EXPECT_EQ(machine.m_eOperation, OP_MCH_HOME);
    ASSERT_TRUE(WaitFor(Ended));
    EXPECT_TRUE(machine.m_AxisCtrl[Y_AXIS].IsAxisHomeSet());
    EXPECT_FALSE(machine.m_AxisCtrl[X_AXIS].IsAxisHomeSet());
    EXPECT_EQ(StyleOf("Btn_MoveHome_Y"), BTN_BKGND_BLUE);
    Press(m_Dlg, "Btn_MoveHome_Y");   // on its way until the window has taken note: no second start, no message
    Press(m_Dlg, "Btn_AutoHomeSequence");
    EXPECT_EQ(m_Host.TakeLog(), QStringList("Machine in use"));
    m_Dlg.ResetUI();
    EXPECT_EQ(StyleOf("Btn_MoveHome_Y"), BTN_BKGND_GRAY);

    machine.m_eOperation = OP_NONE;
    Press(m_Dlg, "Btn_AutoHomeSequence");
    EXPECT_EQ(StyleOf("Btn_AutoHomeSequence"), BTN_BKGND_BLUE);
    ASSERT_TRUE(WaitFor(Ended));
    EXPECT_TRUE(machine.GetHomeDone());
    EXPECT_EQ(machine.GetErrMsg(), "");
}
}   // namespace
