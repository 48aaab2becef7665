#include "app/selftest/Report.h"
#include "platform/virtual/VirtualPins.h"
#include "run/Call.h"

#include <QDir>
#include <QThread>

#include <atomic>

namespace {
CLateness Late(std::initializer_list<std::pair<qint64, int>> counts)   // ns, how many edges
{
    CLateness late;
    for (const auto& [lNs, iEdges] : counts)
        for (int n = 0; n < iEdges; ++n) late.Add(lNs);
    return late;
}

// Edges of one pin, as the pulse thread writes them.
class CEdgeWatch : public CPinObserver
{
public:
    CEdgeWatch() { CVirtualPins::SetObserver(this); }
    ~CEdgeWatch() override { CVirtualPins::SetObserver(nullptr); }
    void OnWrite(int iPin, int iLevel) override
    {
        if (iPin != 9 || iLevel == m_iLevel) return;
        m_iLevel = iLevel;
        if (++m_iEdges == m_iAt) fnAt();
    }
    int m_iEdges = 0, m_iLevel = 0, m_iAt = 0;
    std::function<void()> fnAt;
};

class ThreadsSelftest : public testing::Test
{
protected:
    // 0.2 s to warm up and 0.3 s that count; two edges a pulse.
    const stPulseTest m_Test{{7, 9}, 5'000.0, 0.25, 0.3, 3};
    static constexpr int ALL = 2 * 5'000 / 2, COUNTED = 2 * 1'500;
    CShared<bool> m_bRun = true;
    CEdgeWatch m_Watch;
};
}   // namespace

TEST(SelftestLateness, PercentilesAreNeverBelowTheTruthAndHardlyAbove)
{
    const CLateness few = Late({{10, 50}, {20, 49}, {127, 1}});
    EXPECT_EQ(few.Percentile(0.5), 10);
    EXPECT_EQ(few.Percentile(0.501), 20);
    EXPECT_EQ(few.Percentile(0.99), 20);
    EXPECT_EQ(few.Percentile(0.999), 127);
    EXPECT_EQ(few.Percentile(0), 10);
    EXPECT_EQ(CLateness().Percentile(0.5), 0);
    EXPECT_EQ(Late({{-5, 1}}).Percentile(1), 0);   // a clock that jitters

    for (qint64 lNs = 1; lNs < qint64(1) << 62; lNs += lNs / 7 + 1) {
        const CLateness late = Late({{lNs, 1}, {std::numeric_limits<qint64>::max(), 1}});
        const qint64 lMedian = late.Percentile(0.5);
        ASSERT_GE(lMedian, lNs);
        ASSERT_LE(static_cast<double>(lMedian - lNs), static_cast<double>(lNs) / 64.0);
        ASSERT_EQ(Late({{lNs, 3}}).Percentile(0.5), lNs);   // bounded by the worst, which is exact
    }
}

TEST(SelftestVerdict, TheSafeRateLeavesTheDriveItsPulseAtTheWorstEdge)
{
    // 5 us of lateness and 1 us for the drive: half a period of 6 us, or a quarter of 24 us.
    EXPECT_NEAR(SafeStepRate(0.5, 1e-6, 5e-6), 83'333.3, 0.1);
    EXPECT_NEAR(SafeStepRate(0.25, 1e-6, 5e-6), 41'666.7, 0.1);
    EXPECT_NEAR(SafeStepRate(0.75, 1e-6, 5e-6), 41'666.7, 0.1);   // then the low half is the short one
    EXPECT_EQ(SafeStepRate(0.0, 1e-6, 5e-6), 0.0);
}

namespace {
struct stJudgement
{
    const char* szCase;
    qint64 lWorst;
    double fDemand, fTested;
    bool bBound, bComplete;
    const char* szIsolated;
    bool bFit;
    const char* szWhyNot;   // the beginnings of all reasons
};
class SelftestJudge : public testing::TestWithParam<stJudgement>
{
};
}   // namespace

TEST_P(SelftestJudge, SaysWhetherAndWhyNot)
{
    const stJudgement& p = GetParam();
    stPulseResult result;
    result.late = Late({{100, 999}, {p.lWorst, 1}});
    result.uExpected = p.bComplete ? 1000 : 2000;
    result.bBound = p.bBound;
    stSystemFacts facts;
    facts.strIsolated = facts.strNoTick = QString::fromLatin1(p.szIsolated);
    facts.strGovernor = QStringLiteral("performance");
    const stDemand demand{p.fDemand, 0.25, 1e-6};
    const stVerdict verdict = Judge(result, facts, demand, p.fTested, 3);
    EXPECT_EQ(verdict.bFit, p.bFit);
    QStringList reasons;
    for (const QString& strWhy : verdict.lstWhyNot) reasons += strWhy.section(' ', 0, 3);
    EXPECT_EQ(reasons.join('|'), QString::fromLatin1(p.szWhyNot));
    EXPECT_EQ(VerdictText(verdict, demand, true).startsWith(QLatin1String("FIT")), p.bFit);
}
INSTANTIATE_TEST_SUITE_P(
    Cases, SelftestJudge,
    testing::Values(
        stJudgement{"good", 5'000, 30'000, 100'000, true, true, "3", true, ""},
        stJudgement{"just enough", 5'000, 41'600, 100'000, true, true, "2-3", true, ""},
        stJudgement{"too fast", 5'000, 41'700, 100'000, true, true, "3", false, "The settings ask for"},
        stJudgement{"not tested so fast", 100, 110'000, 100'000, true, true, "3", false, "The settings ask for"},
        stJudgement{"not isolated", 5'000, 30'000, 100'000, true, true, "", false, "Core 3 is not"},
        stJudgement{"another isolated", 5'000, 30'000, 100'000, true, true, "0-2,13", false, "Core 3 is not"},
        stJudgement{"not bound", 5'000, 30'000, 100'000, false, true, "3", false, "Core 3 was not"},
        stJudgement{"cut off", 5'000, 30'000, 100'000, true, false, "3", false, "The test did not"},
        stJudgement{"all", 1'000'000, 30'000, 100'000, false, false, "", false,
                    "The test did not|Core 3 was not|The settings ask for"}),
    [](const auto& tested) { return QString::fromLatin1(tested.param.szCase).replace(' ', '_').toStdString(); });

TEST(SelftestVerdict, AdviceAndTextSayWhatTheFiguresMean)
{
    stPulseResult result;
    result.late = Late({{80, 990}, {1'500, 9}, {9'260, 1}});
    result.uExpected = 1000;
    result.bBound = true;
    stSystemFacts facts;
    facts.strIsolated = QStringLiteral("3");
    facts.strGovernor = QStringLiteral("ondemand");
    facts.fTemperature = 78.25;
    facts.lRealTimeUs = -1;
    const stDemand demand{20'000, 0.25, 1e-6};
    const stVerdict verdict = Judge(result, facts, demand, 100'000, 3);
    EXPECT_EQ(verdict.lstAdvice.size(), 3);   // governor, tick, heat
    EXPECT_TRUE(verdict.bFit);
    const QString strText = VerdictText(verdict, demand, false);
    EXPECT_TRUE(strText.contains(QLatin1String("rate: 24000 pulses/s"))) << strText;   // 24366 rounded down
    EXPECT_TRUE(strText.contains(QLatin1String("The pins are virtual"))) << strText;
    const QString strFigures = FiguresText({{2}, 100'000, 0.25, 30, 3}, result, facts);
    for (const char* szLine : {"Edges                   1000 of 1000\n", "Lateness p50            0.08 us\n",
                               "Lateness p99.9          1.5", "Lateness, worst         9.26 us\n",
                               "Core 3                  granted, kept free (isolated: 3, without tick: none)\n",
                               "Governor                ondemand\n", "Real-time threads get   not throttled\n"})
        EXPECT_TRUE(strFigures.contains(QLatin1String(szLine))) << szLine << strFigures;
}

TEST(SelftestFacts, AreReadWhereTheSystemTellsThem)
{
    const QTemporaryDir root;
    const auto Put = [&](const char* szFile, const char* szText) {
        const QString strFile = root.filePath(QString::fromLatin1(szFile));
        QDir().mkpath(QFileInfo(strFile).path());
        QFile file(strFile);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(szText);
    };
    stSystemFacts facts = stSystemFacts::Read(root.path(), 3);
    EXPECT_TRUE(facts.strIsolated.isEmpty() && facts.strGovernor.isEmpty() && !facts.lRealTimeUs &&
                !facts.fTemperature);

    Put("sys/devices/system/cpu/isolated", "2-3\n");
    Put("sys/devices/system/cpu/nohz_full", "  (null)\n");   // how kernels without it answer
    Put("sys/devices/system/cpu/cpu3/cpufreq/scaling_governor", "performance\n");
    Put("sys/devices/system/cpu/cpu0/cpufreq/scaling_governor", "powersave\n");
    Put("proc/sys/kernel/sched_rt_runtime_us", "-1\n");
    Put("proc/self/limits", "Limit  Soft Limit  Hard Limit  Units\n"
                            "Max locked memory         8388608              unlimited            bytes     \n");
    Put("sys/class/thermal/thermal_zone0/temp", "48312\n");
    Put("sys/class/thermal/thermal_zone1/temp", "61000\n");
    Put("sys/class/thermal/thermal_zone2/temp", "n/a\n");
    facts = stSystemFacts::Read(root.path(), 3);
    EXPECT_EQ(facts.strIsolated, "2-3");
    EXPECT_EQ(facts.strNoTick, "");
    EXPECT_EQ(facts.strGovernor, "performance");
    EXPECT_EQ(facts.lRealTimeUs, -1);
    EXPECT_EQ(facts.lLockedMemory, 8388608);
    EXPECT_FALSE(facts.lPeriodUs);
    EXPECT_EQ(facts.fTemperature, 61.0);
}

TEST_F(ThreadsSelftest, EveryEdgeGoesOutAndIsMeasuredAndAStallShows)
{
    m_Watch.m_iAt = ALL - 100;   // among those that count
    m_Watch.fnAt = [] { QThread::msleep(30); };
    const stPulseResult result = RunPulseTest(m_Test, m_bRun);
    EXPECT_EQ(m_Watch.m_iEdges, ALL);
    EXPECT_EQ(m_Watch.m_iLevel, 0);
    EXPECT_EQ(result.uExpected, 2u * COUNTED);   // of two pins
    EXPECT_EQ(result.late.Edges(), 2u * COUNTED);
    EXPECT_GE(result.late.Worst(), 30'000'000);
    EXPECT_LT(result.late.Percentile(0.5), 100'000'000);   // from when each was due, not from the beginning
    EXPECT_EQ(CVirtualPins::Mode(7), 1);
    EXPECT_EQ(CVirtualPins::Mode(9), 1);
}

TEST_F(ThreadsSelftest, EndsEarlyWithItsPinsLow)
{
    m_Watch.m_iAt = 2 * 5'000 / 5 + 301;   // a rising edge behind the warm-up
    m_Watch.fnAt = [this] { m_bRun = false; };
    const stPulseResult result = RunPulseTest(m_Test, m_bRun);
    EXPECT_EQ(m_Watch.m_iLevel, 0);
    EXPECT_LE(result.late.Edges(), 2u * 302);
    EXPECT_GE(result.late.Edges(), 2u * 299);
    EXPECT_LT(result.late.Edges(), result.uExpected);
}

// The call itself: figures, and a verdict that is the exit status.
TEST_F(RunnerTest, SelftestTellsItsVerdictByItsStatus)
{
    const auto Run = [this](const char* szArguments) {
        QProcess process;
        process.start(QStringLiteral(VANTOR_SELFTEST), Words(szArguments));
        return End(process);
    };
    const stResult result = Run("--seconds 0.05 --rate 1000");
    EXPECT_EQ(result.iExit, result.strOut.contains(QLatin1String("\nFIT for a machine.")) ? 0 : 1);
    EXPECT_NE(result.strOut.contains(QLatin1String("NOT FIT")), result.iExit == 0);
    EXPECT_TRUE(result.strOut.contains(QLatin1String("Edges                   300 of 300\n"))) << result.strOut;
    for (const char* szWrong : {"--seconds 0", "--seconds x", "--rate 1500001", "--drive-pulse 0", "--what", "job.ngc"})
        EXPECT_EQ(Run(szWrong).iExit, 2) << szWrong;
    EXPECT_EQ(Run("--help").iExit, 0);
}
