#pragma once
#include "motion/PulseLoops.h"

#include <QtGlobal>

#include <functional>
#include <map>
#include <vector>

// A clock that moves a fixed step on every reading, loses time at given instants and runs actions at given times.
class CFakeClock
{
public:
    explicit CFakeClock(qint64 lStep) : m_lStep(lStep) {}

    void StallAt(qint64 lAt, qint64 lLost) { m_Stalls[lAt] = lLost; }
    void At(qint64 lAt, std::function<void()> fnAction) { m_Actions[lAt] = std::move(fnAction); }

    void start() { m_lNow = 0; }
    qint64 nsecsElapsed()
    {
        ++m_iReadings;
        m_lNow += m_lStep;
        while (!m_Stalls.empty() && m_Stalls.begin()->first <= m_lNow) {
            m_lNow += m_Stalls.begin()->second;
            m_Stalls.erase(m_Stalls.begin());
        }
        while (!m_Actions.empty() && m_Actions.begin()->first <= m_lNow) {
            const auto fnAction = std::move(m_Actions.begin()->second);
            m_Actions.erase(m_Actions.begin());
            fnAction();
        }
        return m_lNow;
    }
    void Hold(double fNs, const CShared<bool>& bMoving)
    {
        const qint64 lFrom = nsecsElapsed();
        while (static_cast<double>(nsecsElapsed() - lFrom) < fNs && (fNs <= LONG_HOLD_NS || bMoving)) {
        }
    }
    qint64 Now() const { return m_lNow; }
    int Readings() const { return m_iReadings; }

private:
    const qint64 m_lStep;
    qint64 m_lNow = 0;
    int m_iReadings = 0;
    std::map<qint64, qint64> m_Stalls;
    std::map<qint64, std::function<void()>> m_Actions;
};

// Pins that record: time, pin and level of every write; inputs read what the test sets.
class CPinLog
{
public:
    struct stEdge
    {
        qint64 lTime;
        int iPin, iLevel;
        bool operator==(const stEdge&) const = default;
    };

    explicit CPinLog(CFakeClock& clock) : m_Clock(clock) { edges.reserve(10000); }
    void WriteOutput(quint16 pin, quint8 level) { edges.push_back({m_Clock.Now(), pin, level}); }
    quint8 ReadInput(quint16 pin)
    {
        ++iReads;
        return inputs[pin];
    }

    std::vector<stEdge> edges;
    std::map<int, quint8> inputs;
    int iReads = 0;

private:
    CFakeClock& m_Clock;
};
