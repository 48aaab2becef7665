#pragma once
#include "time/VirtualTime.h"

#include <QThread>

#include <functional>

// Every wait outside the pulse loops. On the real clock it sleeps or spins; in a dry run virtual time moves instead.
// Times are ns where the name does not say otherwise. Any thread.
class CWait
{
public:
    static constexpr qint64 FOREVER = CVirtualTime::FOREVER;
    static constexpr qint64 LOOK_US = 10'000;   // often enough for a stop that must act within 50 ms

    // Steady time, ns.
    static qint64 Now();

    static void SleepUs(qint64 lUs);

    // A sleep that ends within LOOK_US of the predicate. The result is that of the predicate: true, it was cut short.
    template <class Pred> static bool SleepUnless(Pred&& pred, qint64 lUs)
    {
        if (CVirtualTime* pTime = CVirtualTime::Current()) return pTime->SleepUnless(pred, lUs * 1000);
        if (const auto fnHook = static_cast<void (*)(qint64)>(m_fnSleepHook)) fnHook(lUs);
        const qint64 lUntil = Now() + lUs * 1000 / m_lShorten;
        while (!pred()) {
            const qint64 lLeftUs = (lUntil - Now()) / 1000;
            if (lLeftUs <= 0) return false;
            QThread::usleep(static_cast<unsigned long>(lLeftUs < LOOK_US ? lLeftUs : LOOK_US));
        }
        return true;
    }

    // Spins until more than lNs have passed.
    static void SpinBeyond(qint64 lNs)
    {
        SpinUntil([] { return false; }, lNs + 1);
    }

    // Spins without sleeping until the predicate holds, at most lLimit. The result is that of the predicate.
    template <class Pred> static bool SpinUntil(Pred&& pred, qint64 lLimit = FOREVER)
    {
        if (CVirtualTime* pTime = CVirtualTime::Current()) return pTime->Wait(pred, Until(pTime->Now(), lLimit));
        if (pred()) return true;
        const qint64 lUntil = lLimit == FOREVER ? FOREVER : Until(Now(), lLimit);
        while (lUntil == FOREVER || Now() < lUntil)
            if (pred()) return true;
        return pred();
    }

    // Sleeps lStepUs at a time until the predicate holds, at most lLimit. The result is that of the predicate.
    template <class Pred> static bool SleepUntil(Pred&& pred, qint64 lStepUs, qint64 lLimit = FOREVER)
    {
        if (CVirtualTime* pTime = CVirtualTime::Current()) return pTime->Wait(pred, Until(pTime->Now(), lLimit));
        const qint64 lUntil = lLimit == FOREVER ? FOREVER : Until(Now(), lLimit);
        while (!pred()) {
            if (lUntil != FOREVER && Now() >= lUntil) return false;
            SleepUs(lStepUs);
        }
        return true;
    }

    // Called on the sleeping thread ahead of every sleep of the real clock: how a supervision that nobody sits at sees
    // that the worker waits (in a dry run CVirtualTime::m_fnSupervise). Null by default; set while nothing runs.
    static void SetSleepHook(void (*fnHook)(qint64 lUs)) { m_fnSleepHook = fnHook; }

    // Tests shorten the sleeps of the real clock by this factor.
    static void SetShorten(qint64 lFactor) { m_lShorten = lFactor; }

private:
    static qint64 Until(qint64 lNow, qint64 lLimit) { return lLimit < FOREVER - lNow ? lNow + lLimit : FOREVER; }
    static CShared<qint64> m_lShorten;
    static CShared<void (*)(qint64)> m_fnSleepHook;
};

// A task on the thread pool whose result nobody asks for; in a dry run it is done at once. The pool has at least four
// threads, so that a long load does not hold up the other tasks on a small computer.
void RunPooled(std::function<void()> fnTask);
