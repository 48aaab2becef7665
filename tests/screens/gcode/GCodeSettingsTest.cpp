#include "config/AppConfig.h"
#include "screens/gcode/DlgGCodeSettings.h"
#include "support/CleanMachine.h"
#include "support/screens/ScreenSupport.h"
#include "support/screens/TestHost.h"
#include "widgets/ButtonStyle.h"

namespace {
class GCodeSettings : public CCleanMachine
{
protected:
    GCodeSettings()
    {
        m_Settings.bSaveExecStatus = true;
        m_Dialog.ConfigSettings();
        ShowWindow(m_Dialog);
    }
    QString SelectedCorners()
    {
        QString strNames;
        for (const QPushButton* pButton : m_Dialog.findChildren<QPushButton*>())
            if (pButton->styleSheet() == BTN_BKGND_BLUE) strNames += pButton->objectName();
        return strNames;
    }
    stGCodeRunSettings& m_Settings = AppConfig::m_GCodeRunSettings;
    CTestHost m_Host;
    dlgGCodeSettings m_Dialog{&m_Host};
};
}   // namespace

TEST_F(GCodeSettings, TogglesAreFieldsOfTheRun)
{
    SaveScreen(m_Dialog, "gcode-settings");
    EXPECT_TIDY(m_Dialog, {{"Frm_Sheet"}, {}, {}});   // the sheet whose corners the buttons are
    const std::pair<const char*, bool*> toggles[] = {
        {"Btn_UsePrgmFeed", &m_Settings.bUsePrgmFeed},
        {"Btn_GCode_SaveExecStatus", &m_Settings.bSaveExecStatus},
        {"Btn_GCode_UsePrgmSpindleSpeed", &m_Settings.bUsePrgmSpindleSpeed}};
    for (const auto& [szName, pField] : toggles)
        for (int n = 0; n < 2; ++n) {
            const bool bBefore = *pField;
            EXPECT_EQ(Child(m_Dialog, szName).styleSheet(), bBefore ? BTN_BKGND_GREEN : BTN_BKGND_GRAY) << szName;
            Click(m_Dialog, szName);
            EXPECT_NE(*pField, bBefore) << szName;
        }
    Click(m_Dialog, "Btn_Close");
    EXPECT_FALSE(m_Dialog.isVisible());
}

TEST_F(GCodeSettings, CornersAreOneGroup)
{
    EXPECT_EQ(SelectedCorners(), "Btn_GCodeHmPosBLU");   // as a machine starts
    const std::pair<const char*, int> corners[] = {{"TLU", 0}, {"TRU", 2},   {"TRU", 2}, {"BRU", 4},
                                                   {"BLU", 6}, {"Center", 8}};   // a second press changes nothing
    for (const auto& [szName, iHomeRef] : corners) {
        const QString strName = QString("Btn_GCodeHmPos") + szName;
        Click(m_Dialog, strName);
        EXPECT_EQ(m_Settings.iHomeRef, iHomeRef);
        EXPECT_EQ(SelectedCorners(), strName);
    }
}

TEST_F(GCodeSettings, TheArcStepIsNotFinerThanThePulses)
{
    AppConfig::m_fAxisMovPerPulse[X_AXIS] = 0.02;
    AppConfig::m_fAxisMovPerPulse[Y_AXIS] = 0.015;
    QPushButton& button = Child(m_Dialog, "Btn_GCode_AxisStep");
    EXPECT_EQ(button.text(), "0.1000\nAxis Step");
    m_Host.Type(0.25);
    Click(button);
    const CTestHost::stKeypad& pad = m_Host.m_lstKeypads.back();
    EXPECT_EQ(pad.strTitle + '/' + pad.strCtrlTxt + '/' + pad.strValue, "Axis Step/Axis Step/0.1000");
    EXPECT_EQ(std::tuple(pad.fLow, pad.fHigh, pad.iPrecision), std::tuple(0.015, 10.0, 4));
    EXPECT_EQ(m_Settings.fAxisStep, 0.25);
}
