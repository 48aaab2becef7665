#include "config/AppConfig.h"
#include "machine/Machine.h"
#include "motion/AllAxisCtrl.h"
#include "platform/virtual/VirtualPins.h"
#include "time/Wait.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <vector>

// What lies between two moves on the real clock and the real threads: from the end of a move to the first edge of the
// next.

namespace {
struct stMachine : CMachine
{
    stMachine()
    {
        AppConfig::ApplyBoardPins();
        AppConfig::DeriveFeeds();
        SetUpAxes();
        m_eOperation = OP_GCODE;
    }
};

// The time of every edge of X, which one thread makes.
class CEdgeTimes : public CPinObserver
{
public:
    explicit CEdgeTimes(size_t uEdges) { times.reserve(uEdges); }
    void OnWrite(int iPin, int) override
    {
        if (iPin == AppConfig::m_iAxisPulseOutput[X_AXIS]) times.push_back(CWait::Now());
    }
    std::vector<qint64> times;
};

// From the end of a move (its last low time over) to the first edge of the next, which was planned meanwhile. The
// argument: axes that turn round between the two.
void MoveGap(benchmark::State& state)
{
    constexpr int MOVES = 400;
    constexpr size_t EDGES = 200;   // of 0.1 mm
    stMachine machine;
    CEdgeTimes edges(MOVES * EDGES + 10);
    CVirtualPins::SetObserver(&edges);
    CAllAxisCtrl::StartAutoMode(&machine);
    double fLastLow = 0.0;
    for (auto _ : state) {
        stFloatPoint from, to;
        for (int n = 0; n < MOVES; ++n) {
            to.x = state.range(0) > 0 ? (n % 2 ? 0.0 : 0.1) : from.x + 0.1;
            to.y = state.range(0) > 1 ? (n % 2 ? 0.0 : 0.1) : from.y + 0.1;
            machine.m_JobMoves.Cut(from, to);
            from = to;
        }
        CAllAxisCtrl::WaitForMotion();
        const AxisCtrl& x = machine.m_AxisCtrl[X_AXIS];
        fLastLow = x.m_lstLowTime[x.m_ucCurTable].front();   // of the slowest pulse, the last of a move
    }
    std::vector<double> gaps;
    for (size_t n = EDGES; n < edges.times.size(); n += EDGES)
        gaps.push_back(static_cast<double>(edges.times[n] - edges.times[n - 1]) - fLastLow);
    std::sort(gaps.begin(), gaps.end());
    state.counters["edges"] = static_cast<double>(edges.times.size());
    state.counters["gap_median_ns"] = gaps[gaps.size() / 2];
    state.counters["gap_p90_ns"] = gaps[gaps.size() * 9 / 10];
    CAllAxisCtrl::StopAutoMode();
    CAllAxisCtrl::WaitForAutoModeEnd();
    CVirtualPins::SetObserver(nullptr);
}
BENCHMARK(MoveGap)->Arg(0)->Arg(1)->Arg(2)->ArgName("axes_that_turn")->Iterations(1)->Unit(benchmark::kMillisecond);
}   // namespace

BENCHMARK_MAIN();
