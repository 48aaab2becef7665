#include "machine/WorkerFixture.h"

#include <thread>

namespace {
// The worker's own thread on the real clock, and the interface that starts and stops it. Every wait is for a condition
// with a limit.

class ThreadsWorker : public CCleanMachine
{
protected:
    static constexpr qint64 LIMIT = 20'000'000'000;   // ns

    ThreadsWorker()
    {
        AppConfig::ApplyBoardPins();
        AppConfig::m_fZSafePos = 0.0;   // a way to work zero is none
        CWait::SetShorten(100);
        m_App.InitMachine();
    }
    ~ThreadsWorker() override
    {
        m_App.StopAll();
        m_App.wait();
    }
    template <class Pred> static bool Becomes(Pred&& pred) { return CWait::SleepUntil(pred, 100, LIMIT); }
    bool Finished()
    {
        return Becomes([this] { return m_App.m_bOperationFinished; });
    }
    bool WorkerEnded()
    {
        return Becomes([this] { return m_App.isFinished(); });
    }
    // What the window does at an emergency stop.
    void EmergencyStop()
    {
        AppConfig::m_bEmergencyStopON = true;
        m_App.StopAll();
        m_App.m_eOperation = OP_NONE;
    }

    CWorkerScreen m_Screen;
    CWorker m_App;
};

// The next start may come the moment that the flag is up, when the thread is still leaving run.
TEST_F(ThreadsWorker, StartsAgainTheMomentAnOperationHasFinished)
{
    const GCodeProgram program(3);
    m_App.m_iLeavingUs = 20000;
    for (int n = 0; n < 50; ++n) {
        ASSERT_TRUE(m_App.StartExecGCodeLine(&program, n % 3));
        ASSERT_TRUE(Finished()) << n;
        ASSERT_FALSE(m_App.StartExecGCodeLine(&program, 0)) << "the interface does not know of the end yet";
        ASSERT_TRUE(m_App.TakeFinished()) << "a start that was refused has taken it away";
        m_App.TakeNoteOfEnd();
        ASSERT_FALSE(CAllAxisCtrl::m_bAutoModeRunning);
    }
    EXPECT_EQ(m_App.TakeErrors().count("Axis in use"), 50);
}

TEST_F(ThreadsWorker, AStartBeforeTheEndIsRefused)
{
    AppConfig::m_fZSafePos = 1000.0;   // more than a minute up
    EXPECT_TRUE(m_App.StartWorkHomingSequence());
    ASSERT_TRUE(Becomes([&] { return m_App.GetCurPos(Z_AXIS) > 0.0; }));
    EXPECT_FALSE(m_App.StartWorkHomingSequence());
    m_App.StartZ0usingZProbeSeq();
    EXPECT_EQ(m_App.TakeErrors(), QStringList({"Axis in use", "Axis in use"}));
    EXPECT_EQ(m_App.m_eOperation, OP_WORK_HOME);
    m_App.StopAll();
    EXPECT_TRUE(WorkerEnded());
    EXPECT_FALSE(m_App.m_bOperationFinished);
}

// From before the worker's first step to behind its last.
TEST_F(ThreadsWorker, AnEmergencyStopAtAnyMomentOfAStartLeavesNothingRunning)
{
    const GCodeProgram program(1);
    for (int n = 0; n < 150; ++n) {
        m_App.m_bOperationFinished = false;
        m_App.StartExecGCodeLine(&program, 0);
        CWait::SpinBeyond(n * 2000);
        EmergencyStop();
        ASSERT_TRUE(WorkerEnded()) << n;
        ASSERT_FALSE(CAllAxisCtrl::m_bAutoMode) << n;
        ASSERT_TRUE(Becomes([] { return !CAllAxisCtrl::m_bAutoModeRunning; })) << n;
        ASSERT_TRUE(m_App.IsMachineIdle());
        AppConfig::m_bEmergencyStopON = false;
    }
    EXPECT_EQ(m_App.TakeErrors(), QStringList());
    m_App.m_bOperationFinished = false;
    m_App.StartExecGCodeLine(&program, 0);
    EXPECT_TRUE(Finished());
}

TEST_F(ThreadsWorker, AResetOfAPausedJobAbandonsItAndTheAxesStillJog)
{
    const GCodeProgram program = {{"G1", "X1"}, {"M3"}};
    m_App.m_bPause = true;   // holds it ahead of the way to work zero
    m_App.StartGCode(&program);
    ASSERT_TRUE(Becomes([] { return CVirtualPins::Level(AppConfig::m_iPgmStatusOutput) == 1; }));
    m_App.StopAll();
    m_App.m_eOperation = OP_NONE;
    EXPECT_TRUE(WorkerEnded());
    ASSERT_TRUE(m_App.MoveAbs(Y_AXIS, 0.05));
    EXPECT_TRUE(Becomes([&] { return m_App.IsMachineIdle(); }));
    EXPECT_EQ(m_App.GetCurPos(X_AXIS), 0.0);
    EXPECT_EQ(m_App.GetCurPos(Y_AXIS), 0.05);
    EXPECT_FALSE(AppConfig::m_bSpindleOn);
    EXPECT_FALSE(m_App.m_bOperationFinished);
    EXPECT_FALSE(CAllAxisCtrl::m_bAutoModeRunning);
    EXPECT_EQ(CVirtualPins::Level(AppConfig::m_iPgmStatusOutput), 0);

    m_App.m_eOperation = OP_NONE;
    m_App.StartGCode(&program);   // and the next job runs whole
    EXPECT_TRUE(Finished());
    EXPECT_EQ(m_App.GetCurPos(X_AXIS), 1.0);
    EXPECT_EQ(m_App.TakeErrors(), QStringList());
}

TEST_F(ThreadsWorker, MessagesOfTwoThreadsAllArrive)
{
    static constexpr int COUNT = 2000;
    std::thread other([this] {
        for (int n = 0; n < COUNT; ++n) m_App.PushErrMsg(QString::number(n));
    });
    int iTaken = 0;
    for (int n = 0; n < COUNT; ++n) {
        m_App.PushErrMsg(QStringLiteral("mine"));
        iTaken += !m_App.GetErrMsg().isEmpty();
    }
    other.join();
    while (!m_App.GetErrMsg().isEmpty()) ++iTaken;
    EXPECT_EQ(iTaken, 2 * COUNT);
}
}   // namespace
