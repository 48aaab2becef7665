#include "config/AppConfig.h"
#include "gcode/DlgGCodeSettings.h"
#include "support/CleanMachine.h"
#include "ui/ScreenSupport.h"
#include "ui/TestHost.h"

namespace {
class GCodeSettings : public CCleanMachine
{
protected:
    QString Style(const QString& strName) { return Child(m_Dialog, strName).styleSheet(); }
    QStringList SelectedCorners()
    {
        QStringList names;
        for (const QPushButton* pButton : m_Dialog.findChildren<QPushButton*>())
            if (pButton->styleSheet() == BTN_BKGND_BLUE) names.append(pButton->objectName());
        return names;
    }
    stGCodeRunSettings& m_Settings = AppConfig::m_GCodeRunSettings;
    CTestHost m_Host;
    dlgGCodeSettings m_Dialog{&m_Host};
};
}   // namespace

TEST_F(GCodeSettings, TogglesAreFieldsOfTheRun)
{
    m_Settings.bSaveExecStatus = true;
    m_Dialog.ConfigSettings();
    ShowWindow(m_Dialog);
    const std::pair<const char*, bool*> toggles[] = {
        {"Btn_UsePrgmFeed", &m_Settings.bUsePrgmFeed},
        {"Btn_GCode_SaveExecStatus", &m_Settings.bSaveExecStatus},
        {"Btn_GCode_UsePrgmSpindleSpeed", &m_Settings.bUsePrgmSpindleSpeed}};
    for (const auto& [szName, pField] : toggles)
        for (int n = 0; n < 2; ++n) {
            const bool bBefore = *pField;
            EXPECT_EQ(Style(szName), bBefore ? BTN_BKGND_GREEN : BTN_BKGND_GRAY) << szName;
            Click(m_Dialog, szName);
            EXPECT_NE(*pField, bBefore) << szName;
            EXPECT_EQ(Style(szName), bBefore ? BTN_BKGND_GRAY : BTN_BKGND_GREEN) << szName;
        }
    SaveScreen(m_Dialog, "gcode-settings");
    EXPECT_TIDY(m_Dialog, {{"Frm_Sheet"}, {}, {}});   // the sheet whose corners the buttons are
    Click(m_Dialog, "Btn_Close");
    EXPECT_FALSE(m_Dialog.isVisible());
}

TEST_F(GCodeSettings, CornersAreOneGroup)
{
    m_Dialog.ConfigSettings();
    EXPECT_EQ(SelectedCorners(), QStringList("Btn_GCodeHmPosBLU"));   // as a machine starts
    ShowWindow(m_Dialog);
    const std::pair<const char*, int> corners[] = {{"Btn_GCodeHmPosTLU", 0},
                                                   {"Btn_GCodeHmPosTRU", 2},
                                                   {"Btn_GCodeHmPosBRU", 4},
                                                   {"Btn_GCodeHmPosBLU", 6},
                                                   {"Btn_GCodeHmPosCenter", 8}};
    for (const auto& [szName, iHomeRef] : corners)
        for (int n = 0; n < 2; ++n) {   // a second press changes nothing
            Click(m_Dialog, szName);
            EXPECT_EQ(m_Settings.iHomeRef, iHomeRef);
            EXPECT_EQ(SelectedCorners(), QStringList(szName));
        }
    for (const int iNone : {3, 10, -2}) {
        m_Settings.iHomeRef = iNone;
        m_Dialog.ConfigSettings();
        EXPECT_EQ(SelectedCorners(), QStringList());
    }
}

TEST_F(GCodeSettings, TheArcStepIsNotFinerThanThePulses)
{
    AppConfig::m_fAxisMovPerPulse[X_AXIS] = 0.02;
    AppConfig::m_fAxisMovPerPulse[Y_AXIS] = 0.015;
    m_Dialog.ConfigSettings();
    ShowWindow(m_Dialog);
    QPushButton& button = Child(m_Dialog, "Btn_GCode_AxisStep");
    EXPECT_EQ(button.text(), "0.1000\nAxis Step");
    m_Host.Type(0.25);
    Click(button);
    const CTestHost::stKeypad& pad = m_Host.m_lstKeypads.back();
    EXPECT_EQ(pad.strTitle + '/' + pad.strCtrlTxt + '/' + pad.strValue, "Axis Step/Axis Step/0.1000");
    EXPECT_EQ(std::tuple(pad.fLow, pad.fHigh, pad.iPrecision), std::tuple(0.015, 10.0, 4));
    EXPECT_EQ(m_Settings.fAxisStep, 0.25);
    EXPECT_EQ(button.text(), "0.2500\nAxis Step");
}
