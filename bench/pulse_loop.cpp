#include "motion/AxisCtrl.h"
#include "motion/PulseLoops.h"

#include <QElapsedTimer>

#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <vector>

// Lateness of the edges of the coordinated loop at 1.5 MHz an axis, with pins that only store, beside a yardstick: a
// loop that only reads the clock and notes when it would have served the same due times. The two alternate ten times
// in one run, and the medians of the ten count. Lateness is taken from the round's own clock reading.

namespace {
constexpr double HIGH = 250.0 / 1.5, LOW = 750.0 / 1.5;   // ns, 1.5 MHz at a duty of 0.25
constexpr quint32 PULSES = 300'000;                       // 0.2 s
constexpr int ALTERNATIONS = 10;

// The clock of production that keeps its last reading and counts them.
struct stCountingClock
{
    QElapsedTimer timer;
    qint64 lLast = 0;
    qint64 lRounds = 0;
    void start() { timer.start(); }
    qint64 nsecsElapsed()
    {
        ++lRounds;
        return lLast = timer.nsecsElapsed();
    }
    void Hold(double, const CShared<bool>&) {}
};

struct stStoringPins
{
    const stCountingClock& clock;
    std::array<std::vector<qint64>, MAX_AXES> served;   // by pin, the reading at which each edge went out
    std::array<size_t, MAX_AXES> count = {};
    std::array<int, MAX_AXES> level = {};
    qint64 lWrongLevels = 0;
    void WriteOutput(quint16 pin, quint8 value)
    {
        served[pin][count[pin]++] = clock.lLast;
        lWrongLevels += level[pin] == value;
        level[pin] = value;
    }
    quint8 ReadInput(quint16) { return 0; }
};

std::vector<qint64> DueTimes()
{
    std::vector<qint64> due;
    quint64 uNext = 0;
    for (quint32 n = 0; n < 2 * PULSES; ++n) {
        due.push_back(static_cast<qint64>(uNext));
        uNext = static_cast<quint64>(static_cast<double>(uNext) + (n % 2 ? LOW : HIGH));
    }
    return due;
}

struct stFigures
{
    double fP50, fP99, fP999, fP9999, fRound;
};

stFigures Figures(std::vector<qint64>& late, double fRound)
{
    std::sort(late.begin(), late.end());
    const auto At = [&](double q) {
        return static_cast<double>(late[static_cast<size_t>(q * double(late.size() - 1))]);
    };
    return {At(0.5), At(0.99), At(0.999), At(0.9999), fRound};
}

stFigures Loop(int iAxes, const std::vector<qint64>& due, qint64& lFaults)
{
    static stCountingClock clock;
    static stStoringPins pins{clock, {}, {}, {}, 0};
    CShared<bool> bRun = true, bSimulation = false;
    CShared<quint32> uAcc = 0;
    CShared<qint32> lPos[MAX_AXES];
    std::vector<stAxisTrack> tracks(static_cast<size_t>(iAxes));
    for (size_t n = 0; n < tracks.size(); ++n) {
        stAxisTrack& t = tracks[n];
        t.bDone = false;
        t.uPulsePin = static_cast<quint16>(n);
        t.fConstHigh = HIGH;
        t.fConstLow = LOW;
        t.uTotal = t.uRampDown = PULSES;
        t.lDelta = 1;
        t.pAcc = &uAcc;
        t.pCurPos = &lPos[n];
        pins.served[n].assign(2 * PULSES, 0);
        pins.count[n] = 0;
        pins.level[n] = 0;
    }
    clock.lRounds = 0;
    clock.start();
    const quint64 uEnd = RunMove(std::span(tracks), bRun, bSimulation, clock, pins);

    std::vector<qint64> late;
    for (size_t axis = 0; axis < tracks.size(); ++axis) {
        lFaults += pins.count[axis] != due.size();
        for (size_t n = 0; n < due.size(); ++n) {
            late.push_back(pins.served[axis][n] - due[n]);
            lFaults += late.back() < 0 || (n > 0 && pins.served[axis][n] <= pins.served[axis][n - 1]);
        }
    }
    lFaults += pins.lWrongLevels;
    return Figures(late, static_cast<double>(uEnd) / static_cast<double>(clock.lRounds));
}

stFigures Yardstick(const std::vector<qint64>& due)
{
    stCountingClock clock;
    std::vector<qint64> served(due.size());
    clock.start();
    for (size_t n = 0; n < due.size();) {
        const qint64 now = clock.nsecsElapsed();
        if (now >= due[n]) served[n++] = now;
    }
    std::vector<qint64> late;
    for (size_t n = 0; n < due.size(); ++n) late.push_back(served[n] - due[n]);
    return Figures(late, static_cast<double>(clock.lLast) / static_cast<double>(clock.lRounds));
}

double Median(const std::vector<stFigures>& list, double stFigures::*field)
{
    std::vector<double> values;
    for (const stFigures& f : list) values.push_back(f.*field);
    std::sort(values.begin(), values.end());
    return (values[values.size() / 2] + values[(values.size() - 1) / 2]) / 2;
}

void PulseLoop(benchmark::State& state)
{
    const std::vector<qint64> due = DueTimes();
    std::vector<stFigures> loop, yardstick;
    qint64 lFaults = 0;
    for (auto _ : state)
        for (int n = 0; n < ALTERNATIONS; ++n) {
            loop.push_back(Loop(static_cast<int>(state.range(0)), due, lFaults));
            yardstick.push_back(Yardstick(due));
        }
    state.counters["late_p50_ns"] = Median(loop, &stFigures::fP50);
    state.counters["late_p99_ns"] = Median(loop, &stFigures::fP99);
    state.counters["late_p99.9_ns"] = Median(loop, &stFigures::fP999);
    state.counters["late_p99.99_ns"] = Median(loop, &stFigures::fP9999);
    state.counters["round_ns"] = Median(loop, &stFigures::fRound);
    state.counters["yard_p50_ns"] = Median(yardstick, &stFigures::fP50);
    state.counters["yard_p99_ns"] = Median(yardstick, &stFigures::fP99);
    state.counters["yard_p99.9_ns"] = Median(yardstick, &stFigures::fP999);
    state.counters["yard_p99.99_ns"] = Median(yardstick, &stFigures::fP9999);
    state.counters["yard_round_ns"] = Median(yardstick, &stFigures::fRound);
    state.counters["edges_lost_or_out_of_order"] = static_cast<double>(lFaults);
}
BENCHMARK(PulseLoop)->Arg(3)->Arg(5)->Iterations(1)->Unit(benchmark::kMillisecond);
}   // namespace

BENCHMARK_MAIN();
