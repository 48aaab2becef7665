#include "config/AppConfig.h"
#include "motion/AllAxisCtrl.h"
#include "platform/virtual/VirtualPins.h"
#include "support/CleanMachine.h"
#include "time/Wait.h"

#include <atomic>
#include <thread>

// The real threads on the real clock. Every wait is for a condition with a limit.

namespace {
constexpr qint64 LIMIT = 20'000'000'000;   // ns

class CRisingEdges : public CPinObserver
{
public:
    void OnWrite(int iPin, int iLevel) override
    {
        if (iLevel == 1 && iPin >= 0 && iPin < 32) ++m_iCount[iPin];
    }
    std::atomic<int> m_iCount[32] = {};
};
}   // namespace

class ThreadsMotion : public CCleanMachine
{
protected:
    ThreadsMotion()
    {
        CVirtualPins::SetObserver(&m_Edges);
        for (int axis = 0; axis < 3; ++axis) {
            m_Axes.m_AxisCtrl[axis].m_sAxis = static_cast<qint16>(axis);
            m_Axes.m_AxisCtrl[axis].ConfigAxis();
        }
    }
    ~ThreadsMotion() override
    {
        CAllAxisCtrl::StopAutoMode();
        CAllAxisCtrl::WaitForAutoModeEnd();
        for (AxisCtrl& axis : m_Axes.m_AxisCtrl) axis.Stop();
        for (AxisCtrl& axis : m_Axes.m_AxisCtrl) axis.wait();
    }
    static bool Idle(const AxisCtrl& axis)
    {
        return CWait::SleepUntil([&] { return !axis.GetAxisState(); }, 100, LIMIT);
    }
    bool Select(int axis, double fTo)
    {
        CAllAxisCtrl::m_lstAxisToMov[axis] = true;
        return m_Axes.m_AxisCtrl[axis].SetAxisMovParams(fTo);
    }
    int Pulses(int axis) const { return m_Edges.m_iCount[AppConfig::m_iAxisPulseOutput[axis]]; }
    static int PulseLevel(int axis) { return CVirtualPins::Level(AppConfig::m_iAxisPulseOutput[axis]); }

    CRisingEdges m_Edges;
    CMachineAxes m_Axes;
    AxisCtrl& m_X = m_Axes.m_AxisCtrl[X_AXIS];
};

// A thread that has lowered its flag may still be leaving run, where a start would do nothing.
TEST_F(ThreadsMotion, AnAxisStartsAgainTheMomentItIsIdle)
{
    for (int n = 1; n <= 200; ++n) {
        ASSERT_TRUE(m_X.MoveAbs(n % 2 ? 0.02 : 0.0));
        ASSERT_TRUE(CWait::SpinUntil([&] { return !m_X.GetAxisState(); }, LIMIT));
        ASSERT_EQ(n % 2 ? 200 : 0, m_X.GetCurPosLong()) << n;
    }
    EXPECT_EQ(4000, Pulses(X_AXIS));
}

TEST_F(ThreadsMotion, StopEndsAMoveAtOnceWithThePinLowAndThePositionTrue)
{
    ASSERT_TRUE(m_X.MoveAbs(1000.0));
    ASSERT_TRUE(CWait::SleepUntil([&] { return m_X.GetCurPosLong() > 100; }, 100, LIMIT));
    m_X.Stop();
    m_X.wait();
    EXPECT_FALSE(m_X.GetAxisState());
    EXPECT_EQ(0, PulseLevel(X_AXIS));
    EXPECT_EQ(10 * Pulses(X_AXIS), m_X.GetCurPosLong());
    m_X.Stop();   // on an idle axis: at once
}

TEST_F(ThreadsMotion, AStopDoesNotWaitForTheEndOfALongPulse)
{
    AppConfig::m_fAxisMovPerPulse[X_AXIS] = 0.01;
    m_X.UpdateStepResolution();
    ASSERT_TRUE(m_X.SetVelocityAcc(0.001, 1000.0));   // 10 s a pulse
    ASSERT_TRUE(m_X.MoveAbs(1.0));
    ASSERT_TRUE(CWait::SleepUntil([&] { return PulseLevel(X_AXIS) != 0; }, 100, LIMIT));
    QElapsedTimer timer;
    timer.start();
    m_X.Stop();
    EXPECT_LT(timer.elapsed(), 2000);
    EXPECT_EQ(0, PulseLevel(X_AXIS));
    EXPECT_EQ(100, m_X.GetCurPosLong());   // its edge went out
}

TEST_F(ThreadsMotion, ABuildThatNobodyWaitedForIsThereForTheNextMoveUnlessALaterOneIs)
{
    for (int n = 1; n <= 20; ++n) {
        m_X.SetVelocityAccSoon(20.0 + n, 3.0);   // a long ramp
        if (n % 2 && !m_X.SetVelocityAcc(15.0, 600.0)) FAIL();
        ASSERT_TRUE(m_X.MoveAbs(0.01 * n));
        ASSERT_EQ(m_X.m_fVel[m_X.m_ucCurTable], n % 2 ? 15.0 : 20.0 + n);
        ASSERT_TRUE(Idle(m_X));
    }
}

TEST_F(ThreadsMotion, AReleaseRightBehindAJogCounts)
{
    ASSERT_TRUE(m_X.Jog(DIR_CW));
    m_X.DeccelerateAxis();
    ASSERT_TRUE(Idle(m_X));
    EXPECT_LT(Pulses(X_AXIS), 1000);
    ASSERT_TRUE(m_X.MoveAbs(m_X.GetCurPos() + 0.05));   // the next move knows nothing of it
    ASSERT_TRUE(Idle(m_X));
    EXPECT_EQ(10 * Pulses(X_AXIS), m_X.GetCurPosLong());
}

TEST_F(ThreadsMotion, AnEmergencyStopThatComesWithAStartLeavesNoAxisMoving)
{
    for (int n = 0; n < 100; ++n) {
        std::thread stop([&] {
            AppConfig::m_bEmergencyStopON.Exchange(true);
            m_X.Stop();
        });
        m_X.MoveAbs(m_X.GetCurPos() + 100.0);
        stop.join();
        ASSERT_TRUE(CWait::SleepUntil([&] { return !m_X.GetAxisState() || m_X.isFinished(); }, 10, 200'000'000)) << n;
        m_X.wait();
        AppConfig::m_bEmergencyStopON = false;
    }
}

TEST_F(ThreadsMotion, CoordinatedMovesFollowEachOtherOnOneThread)
{
    CAllAxisCtrl::StartAutoMode(&m_Axes);
    CAllAxisCtrl::StartAutoMode(&m_Axes);   // one loop, however often it is asked for
    for (int n = 1; n <= 50; ++n) {
        CAllAxisCtrl::m_lstAxisToMov = {};
        ASSERT_TRUE(Select(X_AXIS, 0.02 * n) && Select(Y_AXIS, -0.01 * n));
        ASSERT_TRUE(CAllAxisCtrl::StartMotion());
        CAllAxisCtrl::WaitForMotion();
        ASSERT_EQ(200 * n, m_X.GetCurPosLong());
        ASSERT_EQ(-100 * n, m_Axes.m_AxisCtrl[Y_AXIS].GetCurPosLong());
    }
    EXPECT_EQ(1000, Pulses(X_AXIS));
    EXPECT_EQ(500, Pulses(Y_AXIS));
    CAllAxisCtrl::StopAutoMode();
    CAllAxisCtrl::WaitForAutoModeEnd();
    EXPECT_FALSE(CAllAxisCtrl::StartMotion());
    EXPECT_FALSE(CAllAxisCtrl::GetMotionState());
}

TEST_F(ThreadsMotion, StoppingTheAutoModeCutsItsMoveAndLeavesThePinsLow)
{
    for (int n = 0; n < 40; ++n) {
        CAllAxisCtrl::StartAutoMode(&m_Axes);
        CAllAxisCtrl::m_lstAxisToMov = {};
        ASSERT_TRUE(Select(X_AXIS, 5000.0) && Select(Z_AXIS, 5000.0));
        const qint32 lFrom = m_X.GetCurPosLong();
        ASSERT_TRUE(CAllAxisCtrl::StartMotion());
        const qint32 lReached = n % 2 ? lFrom + 50 : lFrom - 1;   // or stopped before the first round
        ASSERT_TRUE(CWait::SpinUntil([&] { return m_X.GetCurPosLong() > lReached; }, LIMIT));
        CAllAxisCtrl::StopAutoMode();
        CAllAxisCtrl::WaitForMotion();
        CAllAxisCtrl::WaitForAutoModeEnd();
        ASSERT_FALSE(CAllAxisCtrl::GetMotionState());
        ASSERT_EQ(0, PulseLevel(X_AXIS) + PulseLevel(Z_AXIS));
        ASSERT_EQ(10 * Pulses(X_AXIS), m_X.GetCurPosLong());
    }
}
