#include "screens/settings/DlgPwmSpndlSettings.h"
#include "screens/settings/DlgSpindleSpeeds.h"
#include "screens/settings/SettingsFixture.h"

// Every page in its states: nothing overlaps, nothing is cut off.

namespace {
struct stState
{
    const char* szName;
    int iBoard;
    bool bSensors, bSwitches;
};
class SettingsLooks : public CSettingsTest, public testing::WithParamInterface<stState>
{
protected:
    SettingsLooks()
    {
        using A = AppConfig;
        const auto [szName, iBoard, bSensors, bSwitches] = GetParam();
        A::m_bHomeSensorsUsed = bSensors;
        Start(iBoard);
        A::m_eAxisFeedtype = bSwitches ? 1 : 0;
        for (bool* pSwitch :
             {&A::m_bKeyboardCtrlUsed, &A::m_bAppPassword, &A::m_bPWMCtrlUsed, &A::m_bAutoSpindleOnCCW,
              &A::m_bAutoSpindleOff, &A::m_bEnlAutoToolChange, &A::m_bUseG01FeedForJog, &A::m_bAutoHmOnStartup})
            *pSwitch = bSwitches;
        if (!bSwitches) return;
        A::m_eSelUnits = 1;
        // The widest numbers.
        for (int axis = 0; axis < MAX_AXES; ++axis) {
            A::m_fMaxAxisFeed[axis] = 150000.0;
            A::m_fUserAxisFeed[axis] = A::m_fAxisJogFeed[axis] = 99999.9999;
            A::m_fAxisRateOfAcc[axis] = 10000000.0;
            A::m_fAxisPosDirLimit[axis] = 12345.6789;
            A::m_fAxisNegDirLimit[axis] = A::m_fAxisManualToolChngPos[axis] = -12345.6789;
            A::m_eAxisPosDir[axis] = DIR_CCW;
        }
        std::fill(std::begin(A::m_iSpindleSpeeds), std::end(A::m_iSpindleSpeeds), qint16(32767));
        A::m_stPwmSpndlSettings.iMaxFreq = 18750;
    }
    static QString Name(const char* szWhat) { return QStringLiteral("settings-%1-%2").arg(szWhat, GetParam().szName); }

    void ExpectTidyPages(QDialog& screen, const char* szWhat)
    {
        auto& tabs = Child<QTabWidget>(screen, "tabWidget");
        for (int n = 0; n < tabs.count(); ++n) {
            tabs.setCurrentIndex(n);
            EXPECT_TIDY(screen);
            SaveScreen(screen, Name(szWhat) + QString::number(n));
        }
    }
};

TEST_P(SettingsLooks, EveryPageIsTidy)
{
    CDlgMachineSettings machine;
    m_Host.Place(machine);
    machine.ConfigSettings();
    ExpectTidyPages(machine, "machine");
    Press(machine, "Btn_KeyboardHelp");
    EXPECT_TIDY(machine);
    SaveScreen(machine, Name("keys"));
    machine.hide();

    CDlgUserSettings user;
    m_Host.Place(user);
    user.ConfigSettings();
    EXPECT_EQ(user.size(), QSize(900, 390));
    ExpectTidyPages(user, "user");
}

TEST_P(SettingsLooks, EveryDialogIsTidy)
{
    CDlgSpindleSpeeds speeds(&m_Host);
    CDlgPwmSpndlSettings pwm(&m_Host);
    for (const auto& [pDialog, szName] : {std::pair<QDialog*, const char*>{&speeds, "speeds"}, {&pwm, "pwm"}}) {
        pDialog->show();
        EXPECT_TIDY(*pDialog);
        SaveScreen(*pDialog, Name(szName));
    }
}

INSTANTIATE_TEST_SUITE_P(States, SettingsLooks,
                         testing::Values(stState{"three", VTR3_CTRL, false, false},
                                         stState{"five", VTR5_CTRL, true, true},
                                         stState{"spi", SPI_CTRL_24, true, false}),
                         [](const auto& state) { return std::string(state.param.szName); });
}   // namespace
