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
    const double fNan = std::numeric_limits<double>::quiet_NaN();

    double fNone = 0.0;
    const struct
    {
        double fVel, fAcc;
        double* pSetting;   // and its bad value
        double fBad;
    } refusals[] = {{15, 0, &fNone, 0},
                    {15, fNan, &fNone, 0},
                    {0, 600, &fNone, 0},
                    {1e-15, 600, &fNone, 0},   // pulses that no clock can count, at full speed and at first
                    {1e-11, 1e-11, &fNone, 0},
                    {1500, 200, &fNone, 0},   // a ramp beyond 4 million entries
                    {15, 600, &AppConfig::m_fAxisMovPerPulse[X_AXIS], 0.00008},
                    {15, 600, &AppConfig::m_fAxisDutyCycle[X_AXIS], 0},
                    {15, 600, &AppConfig::m_fAxisDutyCycle[X_AXIS], 1},
                    {15, 600, &AppConfig::m_fAxisRateOfAcc[X_AXIS], 0}};
    AppConfig::m_eAxisFeedtype = 1;
    ASSERT_TRUE(m_Axis.SetVelocityAcc(15, 600));
    const auto low = m_Axis.m_lstLowTime[1];
    for (const auto& one : refusals) {
        const double fGood = std::exchange(*one.pSetting, one.fBad);
        m_Axis.m_bNewTable = false;
        EXPECT_FALSE(m_Axis.SetVelocityAcc(one.fVel, one.fAcc)) << one.fVel << ' ' << one.fAcc << ' ' << one.fBad;
        EXPECT_FALSE(m_Axis.GetBuildError().isEmpty());
        EXPECT_FALSE(m_Axis.m_bNewTable);
        EXPECT_EQ(low, m_Axis.m_lstLowTime[1]);
        *one.pSetting = fGood;
        ASSERT_TRUE(m_Axis.SetVelocityAcc(15, 600));
        EXPECT_TRUE(m_Axis.GetBuildError().isEmpty());
    }
    AppConfig::m_iVelAccSamplingTime = 0;
    EXPECT_FALSE(m_Axis.SetVelocityAcc(15, 600));
}

// A table is taken over where it was built for the very same, and never where a setting has changed since.
TEST_F(VelocityCurve, ATableThatIsThereAlreadyIsNotBuiltAgain)
{
    ASSERT_TRUE(m_Axis.SetVelocityAcc(15, 600));
    const auto low = m_Axis.m_lstLowTime[1];
    m_Axis.m_ucCurTable = 1;
    ASSERT_TRUE(m_Axis.SetVelocityAcc(15, 600));
    EXPECT_EQ(m_Axis.m_lstLowTime[0], low);
    EXPECT_EQ(m_Axis.m_fConstLowTime[0], m_Axis.m_fConstLowTime[1]);
    EXPECT_TRUE(m_Axis.m_bNewTable);
    AppConfig::m_fAxisDutyCycle[X_AXIS] = 0.4;
    ASSERT_TRUE(m_Axis.SetVelocityAcc(15, 600));
    EXPECT_NE(m_Axis.m_lstLowTime[0], low);
}

TEST_F(VelocityCurve, TheHighestRateIsBuilt)
{
    ASSERT_TRUE(m_Axis.SetVelocityAcc(1500, 600));   // 1.5 MHz at 0.001 mm
    EXPECT_NEAR(1.9e6, static_cast<double>(m_Axis.m_lstHighTime[1].size()), 0.1e6);
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
