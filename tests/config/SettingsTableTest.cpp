#include "config/SettingsTable.h"

#include "config/AppConfig.h"
#include "support/CleanMachine.h"

namespace {
struct stAssignmentCase
{
    const char* szAssignment;
    const char* szResult;   // the line in the list afterwards, or what the refusal says
};
class SettingsAccepted : public CCleanMachine, public testing::WithParamInterface<stAssignmentCase>
{
};
class SettingsRefused : public CCleanMachine, public testing::WithParamInterface<stAssignmentCase>
{
};
}   // namespace

TEST_P(SettingsAccepted, IsListedAfterwards)
{
    QString strWhy;
    EXPECT_TRUE(CSettingsTable::Set(GetParam().szAssignment, strWhy)) << strWhy.toStdString();
    CSettingsTable::ApplySettings();
    EXPECT_TRUE(CSettingsTable::List().contains(QString::fromUtf8(GetParam().szResult)));
}
INSTANTIATE_TEST_SUITE_P(
    Table, SettingsAccepted,
    testing::Values(stAssignmentCase{"m_fAxisAcc[0]=300", "m_fAxisAcc[0]=300"},
                    stAssignmentCase{"m_fAxisAcc=300", "m_fAxisAcc[4]=300"},
                    stAssignmentCase{"m_GCodeRunSettings.bUsePrgmFeed=true", "m_GCodeRunSettings.bUsePrgmFeed=1"},
                    stAssignmentCase{"m_stPwmSpndlSettings.iMinFreq=65535", "m_stPwmSpndlSettings.iCurFreq=65535"},
                    stAssignmentCase{"m_iVelAccSamplingTime=4294967295", "m_iVelAccSamplingTime=4294967295"},
                    stAssignmentCase{"m_strAppPassword=a=b c", "m_strAppPassword=a=b c"},
                    stAssignmentCase{"m_fAxisFeedPercent=0.5", "m_fAxisFeed[3]=7.5"},
                    stAssignmentCase{"m_fMaxAxisFeed[4]=3", "m_fMinMaxAxisFeed=3"},
                    stAssignmentCase{"m_eVantorCtrl=1", "m_iMchType=5"}));

TEST_P(SettingsRefused, SaysWhyAndChangesNothing)
{
    CSettingsTable::ApplySettings();
    const QStringList lstBefore = CSettingsTable::List();
    QString strWhy;
    EXPECT_FALSE(CSettingsTable::Set(GetParam().szAssignment, strWhy));
    EXPECT_TRUE(strWhy.startsWith(QString(GetParam().szAssignment) + ": ")) << strWhy.toStdString();
    EXPECT_TRUE(strWhy.contains(GetParam().szResult)) << strWhy.toStdString();
    EXPECT_EQ(CSettingsTable::List(), lstBefore);
}
INSTANTIATE_TEST_SUITE_P(
    Table, SettingsRefused,
    testing::Values(stAssignmentCase{"m_fAxisAcc", "NAME=VALUE"}, stAssignmentCase{"m_fAxisacc=3", "no setting"},
                    stAssignmentCase{"m_fAxisAcc[5]=3", "0 to 4"}, stAssignmentCase{"m_fAxisAcc[0=3", "index"},
                    stAssignmentCase{"m_fZSafePos[0]=3", "no index"}, stAssignmentCase{"m_fZSafePos=", "number"},
                    stAssignmentCase{"m_fZSafePos=nan", "finite"}, stAssignmentCase{"m_fZSafePos=1,5", "number"},
                    stAssignmentCase{"m_iSpindleSpeeds[0]=32768", "-32768 to 32767"},
                    stAssignmentCase{"m_iVelAccSamplingTime=4294967296", "0 to 4294967295"},
                    stAssignmentCase{"m_iVelAccSamplingTime=1e3", "whole number"},
                    stAssignmentCase{"m_eVantorCtrl=4", "0, 1, 2, 3"}, stAssignmentCase{"m_PlaneSel=20", "17, 18, 19"},
                    stAssignmentCase{"m_fAxisFeed=20", "m_fUserAxisFeed"},
                    stAssignmentCase{"m_iMchType=5", "m_eVantorCtrl"},
                    stAssignmentCase{"m_lstIPs[1]=9", "m_eVantorCtrl"}, stAssignmentCase{"m_lstIPs=9", "brackets"},
                    stAssignmentCase{"m_lstIPs[256]=9", "0 to 255"}, stAssignmentCase{"m_lstIPs[3]=256", "0 to 255"},
                    stAssignmentCase{"m_ZProfileInfo.lstPoints=1", "Z-profile file"}));

class SettingsTable : public CCleanMachine
{
};
TEST_F(SettingsTable, EveryListedLineCanBeSetAgainOrNamesWhatRulesIt)
{
    ASSERT_TRUE(AppConfig::LoadConfig(CONFIG_FILE));
    AppConfig::m_fAxisAcc[1] = 0.1 + 0.2;
    const QStringList lstBefore = CSettingsTable::List();
    int iRuled = 0;
    for (const QString& strLine : lstBefore) {
        QString strWhy;
        if (CSettingsTable::Set(strLine, strWhy)) continue;
        ++iRuled;
        EXPECT_TRUE(strWhy.contains("it follows from m_")) << strWhy.toStdString();
    }
    EXPECT_EQ(iRuled, 24);   // machine type, three inputs, five feeds, two more feeds, the PWM, 11 M-codes, an input
    CSettingsTable::ApplySettings();
    EXPECT_EQ(CSettingsTable::List(), lstBefore);
}

// Outputs of the one board are axes of the other: what the first applied must go with it.
TEST_F(SettingsTable, AnotherBoardIsSetUpAsIfItHadBeenLoaded)
{
    const auto AsLoaded = [](int iBoard) {
        ResetStatics();
        AppConfig::m_eVantorCtrl = iBoard;
        CSettingsTable::ApplySettings();
        return CSettingsTable::List();
    };
    const QStringList lstLoaded[] = {AsLoaded(0), AsLoaded(1), AsLoaded(2)};
    for (const int iFrom : {0, 1, 2}) {
        for (const int iTo : {0, 1, 2}) {
            AsLoaded(iFrom);
            QString strWhy;
            ASSERT_TRUE(CSettingsTable::Set(QStringLiteral("m_eVantorCtrl=%1").arg(iTo), strWhy));
            CSettingsTable::ApplySettings();
            EXPECT_EQ(CSettingsTable::List(), lstLoaded[iTo]) << iFrom << " to " << iTo;
        }
    }
    QString strWhy;   // the last one is an SPI board, whose pins are free
    EXPECT_TRUE(CSettingsTable::Set("m_iMchType=5", strWhy));
    EXPECT_TRUE(CSettingsTable::Set("m_lstIPs[1]=9", strWhy));
}
