#include "motion/AllAxisCtrl.h"

#include "config/AppConfig.h"
#include "hardware/RpiGpio.h"
#include "motion/Clocks.h"
#include "motion/MotionObserver.h"
#include "platform/Computer.h"
#include "time/Wait.h"

#include <QThreadPool>
#include <QtConcurrent>

CMachineAxes* CAllAxisCtrl::m_pAppCtrl = nullptr;
CShared<bool> CAllAxisCtrl::m_bAutoMode = false;
CShared<bool> CAllAxisCtrl::m_bStartMotion = false;
CShared<bool> CAllAxisCtrl::m_bAutoModeRunning = false;
stAxisToMove CAllAxisCtrl::m_lstAxisToMov;

// A pulse cut off in the middle ends within this time.
static constexpr qint64 PINS_LOW_DELAY_US = 100;

// The dry run's form of the auto-mode thread: a move whenever one is handed over, and the end when the mode is over.
class CAutoModeRun : public CVirtualRun
{
public:
    bool IsDue() const override
    {
        return CAllAxisCtrl::m_bAutoModeRunning && (CAllAxisCtrl::m_bStartMotion || !CAllAxisCtrl::m_bAutoMode);
    }
    qint64 Run(qint64 lStart) override
    {
        m_bEnding = !CAllAxisCtrl::m_bAutoMode;
        if (m_bEnding) {
            CAllAxisCtrl::EndMove();
            return lStart + PINS_LOW_DELAY_US * 1000;
        }
        CShared<bool> bAutoMode = true;
        CAllAxisCtrl::PrepareMove(m_Move);
        CDryMoveClock clock(*CVirtualTime::Current(), lStart, bAutoMode, m_Move.tracks);
        CAllAxisCtrl::MakeMove(m_Move, bAutoMode, clock);
        return lStart + clock.End();
    }
    void Finish() override { m_bEnding ? CAllAxisCtrl::EndMode() : CAllAxisCtrl::EndMove(); }

private:
    CAllAxisCtrl::stMove m_Move;
    bool m_bEnding = false;
};

// Never destroyed: a program may end, by a signal say, while the mode runs.
static QThreadPool* PulsePool()
{
    static QThreadPool* const pPool = [] {
        auto* pNew = new QThreadPool;
        pNew->setMaxThreadCount(1);
        pNew->setExpiryTimeout(-1);
        pNew->setStackSize(THREAD_STACK);
        return pNew;
    }();
    return pPool;
}

void CAllAxisCtrl::TouchThreads()
{
    TouchStacks(MAX_AXES + 1);   // of the axes and of the worker, which may all run at a time
    QtConcurrent::run(PulsePool(), TouchStack).waitForFinished();
}

void CAllAxisCtrl::StartAutoMode(CMachineAxes* pAxes)
{
    if (m_bAutoModeRunning) {
        if (m_bAutoMode) return;
        WaitForAutoModeEnd();
    }
    m_pAppCtrl = pAxes;
    m_bStartMotion = false;   // a request that a stopped job has left behind
    m_bAutoModeRunning = true;
    m_bAutoMode.Exchange(true);
    if (AppConfig::m_bEmergencyStopON.Ordered()) m_bAutoMode = false;   // its StopAutoMode may have come before
    if (CVirtualTime* pTime = CVirtualTime::Current()) {
        static CAutoModeRun run;
        pTime->SetRun(0, &run);
    } else {
        (void)QtConcurrent::run(PulsePool(), RunAutoMode);
    }
}

bool CAllAxisCtrl::StartMotion()
{
    if (!m_bAutoMode) return m_bStartMotion = false;
    if (CMotionObserver* pObserver = CMotionObserver::Get()) pObserver->OnCoordinatedMove();
    m_bStartMotion.Exchange(true);
    if (m_bAutoMode.Ordered()) return true;
    m_bStartMotion = false;   // ended in between; the loop may have gone and would never clear it
    return false;
}

void CAllAxisCtrl::WaitForMotion()
{
    CWait::SpinUntil([] { return !m_bStartMotion || !m_bAutoModeRunning; });
}

void CAllAxisCtrl::WaitForAutoModeEnd()
{
    CWait::SleepUntil([] { return !m_bAutoModeRunning; }, 10);
}

void CAllAxisCtrl::PrepareMove(stMove& move)
{
    move.uAxes = AppConfig::m_iMchType == 5 ? 5 : 3;
    for (size_t n = 0; n < MAX_AXES; ++n)
        move.tracks[n] = m_pAppCtrl->m_AxisCtrl[n].Track(n < move.uAxes && m_lstAxisToMov[static_cast<int>(n)]);
}

template <class Clock> void CAllAxisCtrl::MakeMove(stMove& move, const CShared<bool>& bAutoMode, Clock& clock)
{
    clock.start();   // time zero of all axes
    CRpiGpio pins;
    RunMove(std::span(move.tracks, move.uAxes), bAutoMode, AppConfig::m_bSimulationMode, clock, pins);
}

void CAllAxisCtrl::RunAutoMode()
{
    m_bAutoModeRunning = true;
    BindThreadToCore(PULSE_CORE);
    QElapsedTimer timer;
    timer.start();
    CSpinClock clock(timer);
    stMove move;
    while (m_bAutoMode) {
        // No sleep: the start of a move must have no scheduler latency. The reading keeps the thread on the core.
        while (!m_bStartMotion && m_bAutoMode) (void)timer.nsecsElapsed();
        if (m_bStartMotion) {
            PrepareMove(move);
            MakeMove(move, m_bAutoMode, clock);
        }
        EndMove();
    }
    EndMove();   // asked for between the last look at it and the end of the mode
    CWait::SleepUs(PINS_LOW_DELAY_US);
    EndMode();
}

void CAllAxisCtrl::EndMove()
{
    if (!m_bStartMotion) return;
    // While the next move can't be handed over yet.
    if (CMotionObserver* pObserver = CMotionObserver::Get()) pObserver->OnMoveEnd(-1);
    m_bStartMotion = false;
}

// A move that was cut off between the edges of a pulse leaves no pin high.
void CAllAxisCtrl::EndMode()
{
    for (int axis = 0; axis < (AppConfig::m_iMchType == 5 ? 5 : 3); ++axis)
        if (!AppConfig::m_bSimulationMode) CRpiGpio::WriteOutput(Pin(AppConfig::m_iAxisPulseOutput[axis]), 0);
    m_bAutoModeRunning = false;
}
