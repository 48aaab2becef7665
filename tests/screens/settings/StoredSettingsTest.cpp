#include "common/Paths.h"
#include "screens/settings/DlgPwmSpndlSettings.h"
#include "screens/settings/DlgSpindleSpeeds.h"
#include "screens/settings/SettingsFixture.h"

#include <QFile>

#include <map>

// Every member that the configuration file holds can be changed on a screen. The members are found by what changes the
// file, so that a new one without a widget fails here.

namespace {
enum eScreen
{
    USER,
    MACHINE,
    PWM,
    SPEEDS,
    ELSEWHERE
};

// The widget that changes a member; "%1" stands for the letter of the axis or the number of the element.
struct stWay
{
    eScreen eWhere;
    const char* szWidget;
    double fTyped = 0.0;            // on its keypad; 0: a switch, without a keypad
    bool bOfSelectedAxis = false;   // its axis is selected first
    QStringList lstFollow = {};     // members that follow
};

const std::map<QString, stWay>& Ways()
{
    static const std::map<QString, stWay> ways = {
        {"m_eVantorCtrl", {MACHINE, "Cmb_VantorCntrolSel"}},
        {"m_bHomeSensorsUsed", {MACHINE, "Btn_UseHomeIP"}},
        {"m_bPWMCtrlUsed", {PWM, "Btn_UsePwmCtrl"}},
        {"m_bKeyboardCtrlUsed", {MACHINE, "Btn_UseKeyboardCtrl"}},
        {"m_stPwmSpndlSettings.iMinFreq", {PWM, "Btn_PwmMinFreq", 150, false, {"m_stPwmSpndlSettings.iFreqStep"}}},
        {"m_stPwmSpndlSettings.iMaxFreq", {PWM, "Btn_PwmMaxFreq", 2000, false, {"m_stPwmSpndlSettings.iFreqStep"}}},
        {"m_stPwmSpndlSettings.iFreqStep", {PWM, "Btn_PwmMaxFreq", 2001, false, {"m_stPwmSpndlSettings.iMaxFreq"}}},
        {"m_stPwmSpndlSettings.iTimeDelay", {PWM, "Btn_PwmTimeDelay", 250}},
        {"m_fMaxAxisFeed", {MACHINE, "Btn_MaxFeed", 40, true}},
        {"m_fUserAxisFeed", {USER, "Btn_%1_UserFeed", 12.5}},
        {"m_fAxisFeedPercent", {ELSEWHERE, "m_G01FeedBar of the window"}},
        {"m_fAxisAcc", {MACHINE, "Btn_MaxAcc", 700, true}},
        {"m_fAxisRateOfAcc", {MACHINE, "Btn_RateOfAcc", 8000, true}},
        {"m_fAxisMovPerPulse", {MACHINE, "Btn_MovPerPulse", 0.002, true}},
        {"m_fAxisWorkZero", {ELSEWHERE, "Btn_SetWorkZero of the window"}},
        {"m_fAxisPosDirLimit", {MACHINE, "Btn_%1_PosDirMovLimit", 400.25}},
        {"m_fAxisNegDirLimit", {MACHINE, "Btn_%1_NegDirMovLimit", -400.25}},
        {"m_bAppPassword", {MACHINE, "Btn_MachSettingsPasswd"}},
        {"m_strAppPassword", {MACHINE, "Btn_MachSettingsPasswd", 0.0, false, {"m_bAppPassword"}}},
        {"m_eSelUnits", {USER, "Btn_SelUnits"}},
        {"m_bShutdownRPI", {ELSEWHERE, "no screen offers it"}},
        {"m_fAxisHomeFeed", {USER, "Btn_%1_HomeFeed", 7}},
        {"m_fAxisJogFeed", {USER, "Btn_%1_JogFeed", 8}},
        {"m_eAxisPosDir", {MACHINE, "Btn_%1_PosDirMotRot"}},
        {"m_eAxisHomeDir", {MACHINE, "Btn_%1_HomeDirMotRot"}},
        {"m_fAxisDutyCycle", {MACHINE, "Btn_Axis_Pulse_DutyCycle", 0.5, true}},
        {"m_eAxisFeedtype", {MACHINE, "Btn_VelCurveType"}},
        {"m_fZSafePos", {USER, "Btn_ZSafePos", -3.5}},
        {"m_bAutoHmOnStartup", {USER, "Btn_AutoHmOnStartup"}},
        {"m_GCodeRunSettings.iHomeRef", {ELSEWHERE, "dlgGCodeSettings"}},
        {"m_GCodeRunSettings.bUsePrgmFeed", {ELSEWHERE, "dlgGCodeSettings"}},
        {"m_GCodeRunSettings.bSaveExecStatus", {ELSEWHERE, "dlgGCodeSettings"}},
        {"m_GCodeRunSettings.bUsePrgmSpindleSpeed", {ELSEWHERE, "dlgGCodeSettings"}},
        {"m_GCodeRunSettings.fAxisStep", {ELSEWHERE, "dlgGCodeSettings"}},
        {"m_iSpindleSpeeds", {SPEEDS, "Btn_SpindleSpeed_%1", 32767}},
        {"m_fEndMillDia", {USER, "Btn_EndMillDia", 3.175}},
        {"m_iVelAccSamplingTime", {MACHINE, "Btn_VelAccUserTimePeriod", 0.0011}},
        {"m_bAutoSpindleOnCW", {USER, "Btn_AutoSpindleOnCW"}},
        {"m_bAutoSpindleOnCCW", {USER, "Btn_AutoSpindleOnCCW"}},
        {"m_bAutoSpindleOff", {USER, "Btn_AutoSpindleOff"}},
        {"m_fAxisManualToolChngPos", {USER, "Btn_%1_ToolChngPos", -12.75}},
        {"m_bEnlManualToolChange", {USER, "Btn_EnlManualToolChange"}},
        {"m_bEnlAutoToolChange", {USER, "Btn_EnlAutoToolChange"}},
        {"m_fHomeRepeatOffset", {USER, "Btn_HomeRepeatOffset", 2.5}},
        {"m_bUseG01FeedForJog", {USER, "Btn_UseG01FeedForJog", 0.0, false, {"m_fAxisJogFeed"}}},
    };
    return ways;
}

QByteArray FileNow()
{
    AppConfig::SaveConfig(CONFIG_FILE);
    QFile file(CPaths::Map(CONFIG_FILE));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

QString Member(const QString& strElement)
{
    return strElement.section('[', 0, 0);
}

class StoredSettings : public CSettingsTest
{
protected:
    StoredSettings()
    {
        AppConfig::m_bHomeSensorsUsed = true;
        Start(VTR5_CTRL);
        AppConfig::m_eAxisFeedtype = 1;   // the rate of acceleration is open
    }

    using Values = std::map<QString, QString>;
    static Values All()
    {
        Values values;
        for (const QString& strLine : CSettingsTable::List())
            values[strLine.section('=', 0, 0)] = strLine.section('=', 1);
        return values;
    }

    // The members whose change shows in the file.
    static QSet<QString> StoredMembers()
    {
        const QByteArray before = FileNow();
        QSet<QString> stored;
        for (const auto& [strName, strValue] : All()) {
            QString strWhy;
            if (strName.contains('[') && !strName.endsWith("[0]")) continue;
            for (const char* szOther : {"1", "0", "2", "17", "/x"}) {
                if (strValue == szOther || !CSettingsTable::Set(strName + '=' + szOther, strWhy)) continue;
                if (FileNow() != before) stored += Member(strName);
                break;
            }
            CSettingsTable::Set(strName + '=' + strValue, strWhy);
        }
        EXPECT_EQ(FileNow(), before);
        return stored;
    }

    void Change(QWidget& screen, const stWay& way, const QString& strElement)
    {
        const bool bArray = strElement.contains('[');
        const int iIndex = bArray ? strElement.section('[', 1).chopped(1).toInt() : 0;
        const QString strLetter = QStringLiteral("XYZAB").mid(iIndex, 1);
        const QString strWidget =
            QString(way.szWidget).replace("%1", way.eWhere == SPEEDS ? QString::number(iIndex + 1) : strLetter);
        if (way.bOfSelectedAxis) Press(screen, "Btn_AxisSel_" + strLetter);
        if (strElement == "m_eVantorCtrl") return SelectRow(screen, VTR3_CTRL);
        if (strElement.endsWith("AppPassword")) {
            CAnswer keypad(CAnswer::Keys(strElement == "m_strAppPassword" ? "C0042" : ""));
            return Press(screen, strWidget);
        }
        if (way.fTyped != 0.0) m_Host.Type(way.fTyped);
        Press(screen, strWidget);
    }

    void ExpectChanges(QWidget& screen, const QString& strElement)
    {
        SCOPED_TRACE(strElement.toStdString());
        const stWay& way = Ways().at(Member(strElement));
        const Values before = All();
        Change(screen, way, strElement);
        EXPECT_NE(All().at(strElement), before.at(strElement));
        if (way.fTyped != 0.0 && way.lstFollow.isEmpty() && strElement != "m_iVelAccSamplingTime") {
            EXPECT_EQ(All().at(strElement).toDouble(), way.fTyped);
        }
        for (const auto& [strName, strValue] : All()) {
            const bool bStays = strName != strElement && !way.lstFollow.contains(Member(strName));
            if (bStays && Ways().count(Member(strName))) {
                EXPECT_EQ(strValue, before.at(strName)) << strName.toStdString();
            }
        }
    }
};

TEST_F(StoredSettings, EachIsChangedByItsWidgetAndByNothingElse)
{
    const QSet<QString> stored = StoredMembers();
    EXPECT_EQ(stored.size(), 45);   // the fields behind the version
    for (const QString& strMember : stored) EXPECT_TRUE(Ways().count(strMember)) << strMember.toStdString();

    for (const auto& [strElement, strValue] : All()) {
        if (!stored.contains(Member(strElement))) continue;
        const eScreen eWhere = Ways().at(Member(strElement)).eWhere;
        if (eWhere == ELSEWHERE) continue;
        ResetStatics();
        AppConfig::m_bHomeSensorsUsed = true;
        Start(VTR5_CTRL);
        AppConfig::m_eAxisFeedtype = 1;
        std::unique_ptr<QDialog> pScreen;
        if (eWhere == PWM) pScreen = std::make_unique<CDlgPwmSpndlSettings>(&m_Host);
        if (eWhere == SPEEDS) pScreen = std::make_unique<CDlgSpindleSpeeds>(&m_Host);
        if (eWhere == USER) pScreen = std::make_unique<CDlgUserSettings>();
        if (eWhere == MACHINE) pScreen = std::make_unique<CDlgMachineSettings>();
        if (eWhere == USER || eWhere == MACHINE) pScreen->setParent(&m_Host);
        if (auto* pUser = qobject_cast<CDlgUserSettings*>(pScreen.get())) pUser->ConfigSettings();
        if (auto* pMachine = qobject_cast<CDlgMachineSettings*>(pScreen.get())) pMachine->ConfigSettings();
        m_Host.show();
        pScreen->show();
        ExpectChanges(*pScreen, strElement);
    }
}
}   // namespace
