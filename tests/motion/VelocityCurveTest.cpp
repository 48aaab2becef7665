#include "common/UnitConverter.h"
#include "config/AppConfig.h"
#include "motion/AxisCtrl.h"
#include "support/Cases.h"
#include "support/CleanMachine.h"

#include <limits>

namespace {
std::string Decimals(double v)
{
    return QString::number(v, 'f', 3).toStdString();
}

void ExpectTable(const QJsonObject& out, const char* szName, const std::vector<double>& table)
{
    ExpectList(
        out[QLatin1String(szName)].toObject(), table.size(), [&](size_t n) { return QJsonValue(table[n]); },
        [&](size_t n) { return Decimals(table[n]); }, 1e-12, szName);
}

void Configure(const QJsonObject& in)
{
    AppConfig::m_fAxisMovPerPulse[X_AXIS] = in["mm_per_pulse"].toDouble();
    AppConfig::m_fAxisDutyCycle[X_AXIS] = in["duty"].toDouble();
    AppConfig::m_fAxisRateOfAcc[X_AXIS] = in["rate_of_acc"].toDouble();
    AppConfig::m_eAxisFeedtype = in["feedtype"].toInt();
    AppConfig::m_iVelAccSamplingTime = static_cast<quint32>(in["sampling_us"].toInt());
}
}   // namespace

class VelocityCurveCase : public CCleanMachine, public testing::WithParamInterface<std::string>
{
};

TEST_P(VelocityCurveCase, TablesEqualTheReference)
{
    const QString strName = QString::fromStdString(GetParam());
    const QJsonObject in = CCases::Json("curves", strName + ".in.json");
    const QJsonObject out = CCases::Json("curves", strName + ".out.json");
    Configure(in);
    AxisCtrl axis;
    axis.m_bStoreVelCurve = true;

    ASSERT_EQ(out["accepted"].toBool(), axis.SetVelocityAcc(in["vel"].toDouble(), in["acc"].toDouble()));

    ExpectTable(out, "high", axis.m_lstHighTime[1]);
    ExpectTable(out, "low", axis.m_lstLowTime[1]);
    ExpectTable(out, "curve", axis.m_lstVelCurve);
    EXPECT_DOUBLE_EQ(out["const_high"].toDouble(), axis.m_fConstHighTime[1]);
    EXPECT_DOUBLE_EQ(out["const_low"].toDouble(), axis.m_fConstLowTime[1]);
}
INSTANTIATE_TEST_SUITE_P(Reference, VelocityCurveCase, testing::ValuesIn(CCases::Names("curves", ".in.json")),
                         CaseName);

class VelocityCurve : public CCleanMachine
{
protected:
    AxisCtrl m_Axis;
};

TEST_F(VelocityCurve, ARefusedBuildLeavesTheTablesAndMarksTheAxisUntilTheNextGoodOne)
{
    EXPECT_FALSE(m_Axis.GetBuildError().isEmpty()) << "an axis that was never built makes no move";
    ASSERT_TRUE(m_Axis.SetVelocityAcc(15, 600));
    const auto low = m_Axis.m_lstLowTime[1];
    m_Axis.m_bNewTable = false;
    const double fNan = std::numeric_limits<double>::quiet_NaN();

    const std::vector<std::pair<const char*, std::function<bool()>>> refusals = {
        {"acceleration 0", [&] { return m_Axis.SetVelocityAcc(15, 0); }},
        {"acceleration below 0", [&] { return m_Axis.SetVelocityAcc(15, -1); }},
        {"acceleration not a number", [&] { return m_Axis.SetVelocityAcc(15, fNan); }},
        {"feed 0", [&] { return m_Axis.SetVelocityAcc(0, 600); }},
        {"feed infinite", [&] { return m_Axis.SetVelocityAcc(std::numeric_limits<double>::infinity(), 600); }},
        {"ramp beyond 4 million entries", [&] { return m_Axis.SetVelocityAcc(1500, 200); }},
        {"step below a unit",
         [&] {
             AppConfig::m_fAxisMovPerPulse[X_AXIS] = 0.00008;
             return m_Axis.SetVelocityAcc(15, 600);
         }},
        {"duty 0",
         [&] {
             AppConfig::m_fAxisDutyCycle[X_AXIS] = 0;
             return m_Axis.SetVelocityAcc(15, 600);
         }},
        {"duty 1",
         [&] {
             AppConfig::m_fAxisDutyCycle[X_AXIS] = 1;
             return m_Axis.SetVelocityAcc(15, 600);
         }},
        {"sampling time 0",
         [&] {
             AppConfig::m_iVelAccSamplingTime = 0;
             return m_Axis.SetVelocityAcc(15, 600);
         }},
        {"rate of acceleration 0 in the S-curve",
         [&] {
             AppConfig::m_eAxisFeedtype = 1;
             AppConfig::m_fAxisRateOfAcc[X_AXIS] = 0;
             return m_Axis.SetVelocityAcc(15, 600);
         }},
    };
    for (const auto& [szWhat, fnBuild] : refusals) {
        EXPECT_FALSE(fnBuild()) << szWhat;
        EXPECT_FALSE(m_Axis.GetBuildError().isEmpty()) << szWhat;
        EXPECT_FALSE(m_Axis.m_bNewTable) << szWhat;
        EXPECT_EQ(low, m_Axis.m_lstLowTime[1]) << szWhat;
        ResetStatics();
        ASSERT_TRUE(m_Axis.SetVelocityAcc(15, 600));
        EXPECT_TRUE(m_Axis.GetBuildError().isEmpty());
        m_Axis.m_bNewTable = false;
    }
}

TEST_F(VelocityCurve, TheHighestRateIsBuilt)
{
    ASSERT_TRUE(m_Axis.SetVelocityAcc(1500, 600));   // 1.5 MHz at 0.001 mm
    EXPECT_NEAR(1.9e6, static_cast<double>(m_Axis.m_lstHighTime[1].size()), 0.1e6);
}

// Two builds before the next move fill the same slot, and a running move's slot is never touched.
TEST_F(VelocityCurve, BuildsGoToTheInactiveSlotAndOnlyOneSwapFollows)
{
    m_Axis.m_sAxis = X_AXIS;
    m_Axis.ConfigAxis();
    ASSERT_TRUE(m_Axis.SetAxisMovParams(1.0));
    const auto active = m_Axis.m_lstLowTime[m_Axis.m_ucCurTable];
    m_Axis.SetVelocityAcc(5, 600);
    m_Axis.SetVelocityAcc(10, 600);
    EXPECT_EQ(active, m_Axis.m_lstLowTime[m_Axis.m_ucCurTable]);
    ASSERT_TRUE(m_Axis.SetAxisMovParams(2.0));
    EXPECT_EQ(10.0, m_Axis.m_fVel[m_Axis.m_ucCurTable]);
    ASSERT_TRUE(m_Axis.SetAxisMovParams(3.0));
    EXPECT_EQ(10.0, m_Axis.m_fVel[m_Axis.m_ucCurTable]);
}

// The S-curve's second half must not give a pulse without a low time, however coarse its samples.
TEST_F(VelocityCurve, AnSCurveThatJumpsOverItsSpeedHasOnlyPulsesWithALowTime)
{
    AppConfig::m_eAxisFeedtype = 1;
    AppConfig::m_fAxisDutyCycle[X_AXIS] = 0.75;
    AppConfig::m_iVelAccSamplingTime = 1'000'000;
    for (const double fVel : {0.5, 5.0, 50.0})
        for (const double fAcc : {100.0, 600.0, 5000.0}) {
            ASSERT_TRUE(m_Axis.SetVelocityAcc(fVel, fAcc));
            for (const double fLow : m_Axis.m_lstLowTime[1]) ASSERT_GT(fLow, 0.0) << fVel << ' ' << fAcc;
        }
}

TEST(UnitConverter, NudgesAwayFromZeroThenTruncates)
{
    EXPECT_EQ(10, CUnitConverter::GetLong(0.001));
    EXPECT_EQ(-10, CUnitConverter::GetLong(-0.001));
    EXPECT_EQ(0, CUnitConverter::GetLong(0.0));
    EXPECT_EQ(0, CUnitConverter::GetLong(0.00005));
    EXPECT_EQ(-123456, CUnitConverter::GetInt(-12.3456));
    EXPECT_EQ(1.2346, CUnitConverter::GetRndDouble(1.23456));
    EXPECT_EQ(2147483647, CUnitConverter::GetLong(214748.3647));
    EXPECT_TRUE(CUnitConverter::FitsLong(-214748.3648));
    EXPECT_FALSE(CUnitConverter::FitsLong(214748.3648));
    EXPECT_FALSE(CUnitConverter::FitsLong(std::numeric_limits<double>::quiet_NaN()));
    for (int n = -50000; n <= 50000; n += 7) {
        const double fFour = QString::number(n / 10000.0, 'f', 4).toDouble();
        EXPECT_EQ(fFour, CUnitConverter::GetDouble(static_cast<int>(CUnitConverter::GetLong(fFour))));
    }
}
