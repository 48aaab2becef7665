#include "app/selftest/PulseTest.h"

#include "hardware/RpiGpio.h"
#include "motion/Clocks.h"
#include "motion/PulseLoops.h"
#include "platform/Computer.h"
#include "time/Wait.h"

#include <cmath>
#include <sched.h>

namespace {
// The auto mode has been spinning for long when its first move comes: clock and caches are up. Not counted.
constexpr double WARM_UP = 0.2;   // s

// The pins of production that note how late they were. The loop writes a pin before it looks up the next edge of its
// track, so the track still says when this one was due.
class CTimedPins
{
public:
    CTimedPins(const CSpinClock& clock, std::span<const stAxisTrack> tracks, CLateness& late)
        : m_Clock(clock), m_Late(late)
    {
        for (const stAxisTrack& t : tracks) m_Tracks[Slot(t.uPulsePin)] = &t;
    }
    void WriteOutput(quint16 pin, quint8 value)
    {
        CRpiGpio::WriteOutput(pin, value);
        m_Late.Add(m_Clock.nsecsElapsed() - static_cast<qint64>(m_Tracks[Slot(pin)]->uNextEdge));
    }
    static quint8 ReadInput(quint16) { return 0; }

private:
    static size_t Slot(quint16 pin) { return pin & 255u; }
    const CSpinClock& m_Clock;
    CLateness& m_Late;
    std::array<const stAxisTrack*, 256> m_Tracks = {};
};

// A move of so many pulses on every pin.
void Move(const stPulseTest& test, quint32 uPulses, CShared<bool>& bRun, CLateness& late)
{
    const CShared<bool> bSimulation = false;
    const CShared<quint32> uAcc = 0;   // no ramp: every edge is at full speed
    CShared<qint32> lPos[MAX_AXES];
    stAxisTrack tracks[MAX_AXES];
    for (size_t n = 0; n < test.pins.size(); ++n) {
        stAxisTrack& t = tracks[n];
        t.bDone = false;
        t.uPulsePin = test.pins[n];
        t.uTotal = t.uRampDown = uPulses;
        t.fConstHigh = test.fDuty / test.fRate * 1e9;
        t.fConstLow = (1.0 - test.fDuty) / test.fRate * 1e9;
        t.lDelta = 1;
        t.pAcc = &uAcc;
        t.pCurPos = &lPos[n];
    }
    const std::span used(tracks, test.pins.size());
    QElapsedTimer timer;
    CSpinClock clock(timer);
    CTimedPins pins(clock, used, late);
    clock.start();
    RunMove(used, bRun, bSimulation, clock, pins);
}

bool IsBoundTo(int iCore)
{
    cpu_set_t mask;
    CPU_ZERO(&mask);
    return sched_getaffinity(0, sizeof mask, &mask) == 0 && CPU_COUNT(&mask) == 1 &&
           CPU_ISSET(static_cast<size_t>(iCore), &mask);
}
}   // namespace

stPulseResult RunPulseTest(const stPulseTest& test, CShared<bool>& bRun)
{
    stPulseResult result;
    const auto Pulses = [&](double fSeconds) { return static_cast<quint32>(std::llround(test.fRate * fSeconds)); };
    result.uExpected = quint64(2) * Pulses(test.fSeconds) * test.pins.size();
    for (const quint16 pin : test.pins) {
        CRpiGpio::SetPinModeOutput(pin);
        CRpiGpio::WriteOutput(pin, 0);
    }
    CShared<bool> bDone = false;
    RunPooled([&] {
        BindThreadToCore(test.iCore);
        result.bBound = IsBoundTo(test.iCore);
        CLateness notCounted;
        Move(test, Pulses(WARM_UP), bRun, notCounted);
        Move(test, Pulses(test.fSeconds), bRun, result.late);
        for (const quint16 pin : test.pins) CRpiGpio::WriteOutput(pin, 0);
        bDone = true;
    });
    CWait::SleepUntil([&] { return bool(bDone); }, 10'000);
    return result;
}
