#include "config/AppConfig.h"
#include "motion/AxisCtrl.h"
#include "support/CleanMachine.h"

#include <limits>
#include <sys/resource.h>

// No room for more than a few megabytes, while it lives.
class CLittleMemory
{
public:
    CLittleMemory()
    {
        QFile pages("/proc/self/statm");
        EXPECT_TRUE(pages.open(QIODevice::ReadOnly));
        getrlimit(RLIMIT_AS, &m_Before);
        const rlimit little{rlim_t(pages.readLine().split(' ').first().toLongLong() * 4096 + 4'000'000),
                            m_Before.rlim_max};
        setrlimit(RLIMIT_AS, &little);
    }
    ~CLittleMemory() { setrlimit(RLIMIT_AS, &m_Before); }

private:
    rlimit m_Before{};
};

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

TEST_F(VelocityCurve, ARampThatDoesNotFitInMemoryMarksTheAxisInsteadOfHoldingItForEver)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "its allocator ends the program where memory does";
#endif
    const CVirtualTime time;   // a pooled build is made at once
    ASSERT_TRUE(m_Axis.SetVelocityAcc(15, 600));
    {
        const CLittleMemory little;
        m_Axis.SetVelocityAccSoon(1500, 600);
    }
    EXPECT_TRUE(m_Axis.GetBuildError().contains("memory"));
    EXPECT_FALSE(m_Axis.MoveAbs(1.0));
    ASSERT_TRUE(m_Axis.SetVelocityAcc(15, 600));
    EXPECT_EQ(m_Axis.m_lstHighTime[1].size(), 328u) << "the table that was lost counts as none";
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
