#pragma once
#include "hardware/RpiGpio.h"
#include "motion/PulseLoops.h"
#include "time/VirtualTime.h"

#include <QElapsedTimer>

#include <algorithm>
#include <cmath>
#include <limits>

// The clock of the machine: spins on QElapsedTimer.
class CSpinClock
{
public:
    explicit CSpinClock(QElapsedTimer& timer) : m_Timer(timer) {}
    void start() { m_Timer.start(); }
    qint64 nsecsElapsed() const { return m_Timer.nsecsElapsed(); }
    void Hold(double fNs, const CShared<bool>& bMoving) const
    {
        const qint64 lFrom = m_Timer.nsecsElapsed();
        const bool bWhole = fNs <= LONG_HOLD_NS;
        while (static_cast<double>(m_Timer.nsecsElapsed() - lFrom) < fNs && (bWhole || bMoving.Relaxed())) {
        }
    }

private:
    QElapsedTimer& m_Timer;
};

// What the clocks of a dry run share: the events that touch a running loop. No clock jumps over such an event; it is
// applied to this loop only, and later, by the worker, to everything else. Nor does one go beyond the end of time.
class CDryClock
{
public:
    CDryClock(CVirtualTime& time, int iRun, qint64 lStart, CShared<bool>& bRun)
        : m_Time(time), m_iRun(iRun), m_lStart(lStart), m_bRun(bRun)
    {
        FindNextEvent(0);
    }
    qint64 Now() const { return m_lNow; }
    qint64 AbsoluteNow() const { return m_lStart + m_lNow; }

protected:
    // The end of time, since the start.
    qint64 Last() const { return CVirtualTime::END - m_lStart; }
    // Moves to lTo (ns since the start), or no further where an event ends the loop.
    void JumpTo(qint64 lTo)
    {
        if (lTo >= m_lEvent) PassEvents(lTo);
        m_lNow = lTo;
        m_Time.SetEdgeTime(m_lStart + lTo);
        if (m_Time.IsInterrupted()) m_bRun.SetRelaxed(false);
    }
    // The same for a long hold: a stop ends it where it came.
    void JumpUnlessStopped(qint64 lTo)
    {
        if (!m_bRun.Relaxed()) return;
        if (lTo >= m_lEvent) PassEvents(lTo);
        if (!m_bRun.Relaxed()) lTo = std::min(lTo, m_lStopped);
        JumpTo(lTo);
    }
    // The same for a loop whose edges due at the time of an event, or later, must not be made.
    void JumpBefore(qint64 lTo)
    {
        if (m_Time.IsInterrupted()) m_bRun.SetRelaxed(false);
        if (lTo >= m_lEvent) {
            PassEvents(lTo);
            if (!m_bRun.Relaxed()) return;
        }
        m_lNow = lTo;
        m_Time.SetEdgeTime(m_lStart + lTo);
    }

private:
    void PassEvents(qint64 lTo)
    {
        const auto& events = m_Time.Events();
        for (; m_uNext < events.size() && events[m_uNext].lAt - m_lStart <= lTo; ++m_uNext)
            if (events[m_uNext].fnLoop) {
                m_lStopped = std::max(m_lNow, events[m_uNext].lAt - m_lStart);
                events[m_uNext].fnLoop(m_iRun, m_bRun);
                if (!m_bRun.Relaxed()) break;
            }
        FindNextEvent(m_uNext);
        if (!m_bRun.Relaxed() || lTo < Last()) return;
        m_lStopped = Last();
        m_Time.RunOut();
        m_bRun.SetRelaxed(false);
    }
    void FindNextEvent(size_t uFrom)
    {
        const auto& events = m_Time.Events();
        for (m_uNext = uFrom; m_uNext < events.size() && !events[m_uNext].fnLoop; ++m_uNext) {
        }
        m_lEvent = m_uNext < events.size() ? std::min(Last(), events[m_uNext].lAt - m_lStart) : Last();
    }

    CVirtualTime& m_Time;
    const int m_iRun;
    const qint64 m_lStart;
    CShared<bool>& m_bRun;
    size_t m_uNext = 0;
    qint64 m_lEvent = 0;

protected:
    qint64 m_lNow = 0, m_lStopped = 0;
};

// One axis: a wait ends at the first whole ns not below the time asked for.
class CDryAxisClock : public CDryClock
{
public:
    using CDryClock::CDryClock;
    void start() { JumpTo(0); }
    qint64 nsecsElapsed() const { return m_lNow; }
    void Hold(double fNs, const CShared<bool>&)
    {
        const double fLeft = static_cast<double>(Last() - m_lNow);
        const qint64 lTo = fNs < fLeft ? m_lNow + std::max<qint64>(0, static_cast<qint64>(std::ceil(fNs))) : Last();
        if (fNs <= LONG_HOLD_NS)
            JumpTo(lTo);
        else
            JumpUnlessStopped(lTo);
    }
};

// A coordinated move: between rounds the clock jumps to the next edge that is due.
class CDryMoveClock : public CDryClock
{
public:
    CDryMoveClock(CVirtualTime& time, qint64 lStart, CShared<bool>& bRun, std::span<const stAxisTrack> tracks)
        : CDryClock(time, 0, lStart, bRun), m_Tracks(tracks)
    {
    }
    void start() { JumpTo(0); }
    qint64 nsecsElapsed()
    {
        auto uNext = static_cast<quint64>(Last());
        bool bDone = true;
        for (const stAxisTrack& t : m_Tracks) {
            if (t.bDone) continue;
            bDone = false;
            uNext = std::min(uNext, t.uNextEdge);
        }
        if (!bDone) JumpBefore(std::max(m_lNow, static_cast<qint64>(uNext)));
        return m_lNow;
    }
    void Hold(double, const CShared<bool>&) const {}
    // When the loop was over: the time of the event that stopped it, otherwise its last reading.
    qint64 End() const { return std::max(m_lNow, m_lStopped); }

private:
    std::span<const stAxisTrack> m_Tracks;
};
