#pragma once
#include "common/MachineTypes.h"
#include "common/Shared.h"

#include <QtGlobal>

#include <concepts>
#include <span>

// The pulse loops, one template each over the clock and the pins, so that production, a dry run and a test run the
// same text. Inside them: no virtual call, no allocation, no lock, no log; a pin is written before any arithmetic,
// because everything ahead of a write is jitter. Times are ns since the clock's start.

// start() is time zero; nsecsElapsed() reads; Hold(f, bMoving) returns once at least f ns have passed since its call.
// One of more than LONG_HOLD_NS returns as soon as bMoving falls: a stop must not wait for a pulse of a second. A
// shorter one always lasts its time, so that the drive sees the last step whole.
inline constexpr double LONG_HOLD_NS = 10'000'000.0;

template <class C>
concept PulseClock = requires(C c, const CShared<bool>& bMoving)
{
    c.start();
    {
        c.nsecsElapsed()
        } -> std::convertible_to<qint64>;
    c.Hold(1.0, bMoving);
};
template <class P>
concept PulsePins = requires(P p, quint16 pin, quint8 level)
{
    p.WriteOutput(pin, level);
    {
        p.ReadInput(pin)
        } -> std::convertible_to<quint8>;
};

inline void MovePosition(CShared<qint32>& lCurPos, qint32 lDelta)
{
    // One writer at a time; unsigned, because a step beyond a limit of 32 bits wraps instead of being undefined.
    lCurPos.SetRelaxed(static_cast<qint32>(static_cast<quint32>(lCurPos.Relaxed()) + static_cast<quint32>(lDelta)));
}

// ---- One axis by itself ---------------------------------------------------------------------------------------------

struct stAxisRun
{
    quint16 uPulsePin = 0;
    quint16 uHomePin = 0, uProbePin = 0;
    bool bSensors = false;                   // the machine has home sensors
    bool bProbeAxis = false;                 // the axis on which the Z-probe is watched
    std::span<const double> high{}, low{};   // ns, one entry a pulse of the ramp
    double fConstHigh = 0, fConstLow = 0;
    quint32 uAcc = 0, uConst = 0, uDec = 0;   // pulses
    qint32 lDelta = 0;                        // position units a pulse, with its sign

    CShared<qint32>& lCurPos;
    const CShared<bool>& bDecelerate;
    const CShared<bool>& bHoming;
    const CShared<bool>& bWatchZProbe;
    const CShared<bool>& bSimulation;
};

template <PulseClock C, PulsePins P>
inline void EmitPulse(stAxisRun& run, double fHigh, double fLow, CShared<bool>& bMoving, C& clock, P& pins)
{
    if (!run.bSimulation.Relaxed()) pins.WriteOutput(run.uPulsePin, 1);
    clock.Hold(fHigh, bMoving);
    if (!run.bSimulation.Relaxed()) pins.WriteOutput(run.uPulsePin, 0);
    clock.Hold(fLow, bMoving);
    MovePosition(run.lCurPos, run.lDelta);   // only when the pulse is complete; one cut short has stepped all the same
    // Inputs are read in simulation too: only outputs are silent.
    if (run.bSensors && run.bHoming.Relaxed() && pins.ReadInput(run.uHomePin) != 0) bMoving = false;
    if (run.bProbeAxis && run.bWatchZProbe.Relaxed() && pins.ReadInput(run.uProbePin) != 0) bMoving = false;
}

// From standstill to standstill, or until bMoving is cleared: by a sensor, the probe or a stop, then without a ramp and
// within one pulse. A request to decelerate ramps down from the speed reached.
template <PulseClock C, PulsePins P> void RunAxis(stAxisRun& run, CShared<bool>& bMoving, C& clock, P& pins)
{
    clock.start();
    // An axis that already is on its sensor makes no pulse.
    if (run.bSensors && run.bHoming.Relaxed() && pins.ReadInput(run.uHomePin) != 0) bMoving = false;

    quint32 uDone = 0;
    while (uDone < run.uAcc && bMoving.Relaxed() && !run.bDecelerate.Relaxed()) {
        EmitPulse(run, run.high[uDone], run.low[uDone], bMoving, clock, pins);
        ++uDone;
    }
    for (quint32 n = 0; n < run.uConst && bMoving.Relaxed() && !run.bDecelerate.Relaxed(); ++n)
        EmitPulse(run, run.fConstHigh, run.fConstLow, bMoving, clock, pins);
    if (!bMoving.Relaxed() || run.uDec < 1) return;

    const quint32 uFrom = run.bDecelerate.Relaxed() ? uDone : run.uDec;
    for (qint64 n = qint64(uFrom) - 1; n >= 0 && bMoving.Relaxed(); --n)
        EmitPulse(run, run.high[size_t(n)], run.low[size_t(n)], bMoving, clock, pins);
}

// ---- All axes of a coordinated move
// -----------------------------------------------------------------------------------

struct stAxisTrack
{
    bool bDone = true;
    quint8 ucLevel = 0;   // last level written
    quint16 uPulsePin = 0;
    quint32 uPulses = 0;     // complete so far
    quint64 uNextEdge = 0;   // ns, when the next edge is due
    quint64 uRampDown = 0;   // pulses: acceleration and constant speed
    quint64 uTotal = 0;
    qint64 lDecel = -1;   // index of the ramp down
    const double* pHigh = nullptr;
    const double* pLow = nullptr;
    double fConstHigh = 0, fConstLow = 0;
    qint32 lDelta = 0;
    const CShared<quint32>* pAcc = nullptr;   // read afresh on every edge
    CShared<qint32>* pCurPos = nullptr;
};

template <PulsePins P> inline void StepAxis(stAxisTrack& t, quint64 now, const CShared<bool>& bSimulation, P& pins)
{
    if (t.bDone || now < t.uNextEdge) return;
    if (t.uPulses >= t.uTotal) {   // the low time of the last pulse is over
        t.bDone = true;
        return;
    }
    t.ucLevel ^= 1u;
    if (!bSimulation.Relaxed()) pins.WriteOutput(t.uPulsePin, t.ucLevel);
    const bool bHigh = t.ucLevel != 0;
    double fHold = bHigh ? t.fConstHigh : t.fConstLow;
    if (t.uPulses < t.pAcc->Relaxed())
        fHold = (bHigh ? t.pHigh : t.pLow)[t.uPulses];
    else if (t.uPulses >= t.uRampDown)
        fHold = bHigh ? t.pHigh[t.lDecel] : t.pLow[t.lDecel--];
    // From the time at which this edge was due, so that lateness never adds up.
    t.uNextEdge = static_cast<quint64>(static_cast<double>(t.uNextEdge) + fHold);
    if (bHigh)
        MovePosition(*t.pCurPos, t.lDelta);   // counted at the rising edge
    else
        ++t.uPulses;
}

// Runs one move to its end, or stops dead when bAutoMode is cleared. The clock has been started by the preparation.
// The result is the reading of the last round.
template <PulseClock C, PulsePins P>
quint64 RunMove(std::span<stAxisTrack> tracks, const CShared<bool>& bAutoMode, const CShared<bool>& bSimulation,
                C& clock, P& pins)
{
    quint64 now = 0;
    for (bool bBusy = true; bBusy && bAutoMode.Relaxed();) {
        now = static_cast<quint64>(clock.nsecsElapsed());   // one reading serves all axes
        bBusy = false;
        for (stAxisTrack& t : tracks) {
            StepAxis(t, now, bSimulation, pins);
            bBusy |= !t.bDone;
        }
    }
    return now;
}
