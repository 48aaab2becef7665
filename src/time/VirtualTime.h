#pragma once
#include "common/Shared.h"

#include <QtGlobal>

#include <array>
#include <functional>
#include <limits>
#include <vector>

// What a thread of production does, told as a run on virtual time. A run is made whole, to its end, when the worker
// next waits; what it does to flags that others read is put off until its end time.
class CVirtualRun
{
public:
    virtual ~CVirtualRun() = default;
    virtual bool IsDue() const = 0;
    // Makes the run from lStart (ns) on; the result is its end (ns, not below lStart).
    virtual qint64 Run(qint64 lStart) = 0;
    // The flags that fall at its end.
    virtual void Finish() = 0;
};

// Something that happens at a set time: an input that changes, an emergency stop, a press of Start.
struct stVirtualEvent
{
    qint64 lAt = 0;                   // ns
    std::function<void()> fnAction;   // at that time, on the worker's thread
    // What it does to one pulse loop, or empty. Called by the clock of each loop that runs over lAt, with the number
    // of the run and the flag that keeps this loop running.
    std::function<void(int iRun, CShared<bool>& bRun)> fnLoop;
};

// The time of a dry run. One thread does everything that has a time: real threads on one virtual clock would add up
// instead of overlapping. Time stands while the worker computes, and moves when it waits (CWait).
class CVirtualTime
{
public:
    static constexpr qint64 FOREVER = std::numeric_limits<qint64>::max();
    // 146 years: no loop runs beyond it, so that no time of an edge is more than its 64 bits can tell.
    static constexpr qint64 END = qint64{1} << 62;
    static constexpr int RUNS = 6;   // 0 the coordinated moves, 1 to 5 the axes X to B; ties go in this order

    CVirtualTime();
    ~CVirtualTime();
    CVirtualTime(const CVirtualTime&) = delete;
    CVirtualTime& operator=(const CVirtualTime&) = delete;

    // The one in force, or null on the real clock.
    static CVirtualTime* Current() { return m_pCurrent; }

    qint64 Now() const { return m_lNow; }
    // The time of the pin write that is being made: inside a run that of its clock.
    qint64 EdgeTime() const { return m_lEdgeTime; }
    void SetEdgeTime(qint64 lTime) { m_lEdgeTime = lTime; }

    // A run may be set anew as often as its thread would be started.
    void SetRun(int iRun, CVirtualRun* pRun);
    void DropRun(const CVirtualRun* pRun);

    void AddEvent(stVirtualEvent event);
    // In order of time; those of one time in the order of their adding.
    const std::vector<stVirtualEvent>& Events() const { return m_lstEvents; }

    // Until the predicate holds or lUntil (ns) is reached; the result is that of the predicate.
    template <class Pred> bool Wait(Pred&& pred, qint64 lUntil)
    {
        for (;;) {
            RunWhatIsDue();
            if (pred()) return true;
            if (Step(lUntil) != SOMETHING_CAME) return pred();
        }
    }
    void Sleep(qint64 lNs)
    {
        SleepUnless([] { return false; }, lNs);
    }
    // A sleep that ends early when the predicate holds; the result is that of the predicate.
    template <class Pred> bool SleepUnless(Pred&& pred, qint64 lNs)
    {
        const qint64 lUntil = m_lNow + lNs;
        if (m_fnSupervise) m_fnSupervise();
        return Wait(pred, lUntil);
    }

    // Called at the start of every timed sleep: what the supervision loop does on the machine.
    std::function<void()> m_fnSupervise;
    // Called when time is about to move to lTo: no edge before it can still come.
    std::function<void(qint64 lTo)> m_fnAdvance;
    // Called for a wait that nothing will ever end.
    std::function<void()> m_fnStuck;
    // Called once where a loop has come to the end of time, and ends there.
    std::function<void()> m_fnRunOut;
    // Called on the worker's thread soon after Interrupt.
    std::function<void()> m_fnInterrupted;

    // From a signal handler: pulse loops end at their next clock reading.
    void Interrupt() { m_bInterrupt.SetRelaxed(true); }
    bool IsInterrupted() const { return m_bInterrupt.Relaxed(); }
    // From a pulse loop.
    void RunOut() { m_bRunOut = true; }

private:
    struct stSlot
    {
        CVirtualRun* pRun = nullptr;
        qint64 lEnd = FOREVER;   // of the run made, until its Finish
    };

    void RunWhatIsDue();
    enum eStep
    {
        SOMETHING_CAME,
        LIMIT_REACHED,
        NOTHING_WILL_COME
    };
    eStep Step(qint64 lUntil);
    void Advance(qint64 lTo);
    void FireFirstEvent();

    static CVirtualTime* m_pCurrent;
    qint64 m_lNow = 0, m_lEdgeTime = 0;
    std::array<stSlot, RUNS> m_Slots;
    std::vector<stVirtualEvent> m_lstEvents;
    CShared<bool> m_bInterrupt = false;
    bool m_bInterruptTold = false, m_bRunOut = false;
};
