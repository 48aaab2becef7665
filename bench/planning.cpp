#include "config/AppConfig.h"
#include "machine/Machine.h"

#include <benchmark/benchmark.h>

// Planning of a short move: 0.1 mm at 0.001 mm a pulse and some 15 mm/s, ramp tables included. One to three axes of
// different distances; the second argument is the curve, 0 trapezoid, 1 S-curve. Each move has another feed than the
// last, since a table for the same speed is taken over; Again is the planning of such a one.

namespace {
constexpr double FEEDS[] = {14.9, 14.8};   // mm/s; 15 is what the axes are set up with

void RunPlan(benchmark::State& state, size_t uFeeds)
{
    AppConfig::m_eAxisFeedtype = static_cast<qint32>(state.range(1));
    CMachine machine;
    machine.SetUpAxes();
    machine.m_eOperation = OP_GCODE;
    stFloatPoint from, to;
    for (int axis = 0; axis < state.range(0); ++axis) AxisOf(to, axis) = 0.1 - 0.02 * axis;
    size_t uMove = 0;
    for (auto _ : state) {
        for (double& fFeed : AppConfig::m_fUserAxisFeed) fFeed = FEEDS[uMove % uFeeds];
        ++uMove;
        machine.m_JobMoves.SetAccAndVel(from, to, G01_MOVE);
        std::swap(from, to);
    }
    AppConfig::m_eAxisFeedtype = 0;
}
void Plan(benchmark::State& state)
{
    RunPlan(state, 2);
}
void Again(benchmark::State& state)
{
    RunPlan(state, 1);
}
BENCHMARK(Plan)->ArgsProduct({{1, 2, 3}, {0, 1}});
BENCHMARK(Again)->ArgsProduct({{1, 2, 3}, {0}});
}   // namespace

BENCHMARK_MAIN();
