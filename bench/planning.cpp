#include "config/AppConfig.h"
#include "machine/Machine.h"

#include <benchmark/benchmark.h>

// Planning of a short move: 0.1 mm at 0.001 mm a pulse and 15 mm/s, ramp tables included. One to three axes of
// different distances; the second argument is the curve, 0 trapezoid, 1 S-curve.

namespace {
void Plan(benchmark::State& state)
{
    AppConfig::m_eAxisFeedtype = static_cast<qint32>(state.range(1));
    CMachine machine;
    machine.SetUpAxes();
    machine.m_eOperation = OP_GCODE;
    stFloatPoint from, to;
    for (int axis = 0; axis < state.range(0); ++axis) AxisOf(to, axis) = 0.1 - 0.02 * axis;
    for (auto _ : state) {
        machine.m_JobMoves.SetAccAndVel(from, to, G01_MOVE);
        std::swap(from, to);
    }
    AppConfig::m_eAxisFeedtype = 0;
}
BENCHMARK(Plan)->ArgsProduct({{1, 2, 3}, {0, 1}});
}   // namespace

BENCHMARK_MAIN();
