#include "config/AppConfig.h"
#include "motion/AllAxisCtrl.h"
#include "platform/virtual/VirtualMachine.h"
#include "time/Wait.h"

#include <benchmark/benchmark.h>

// What an edge costs in a dry run: coordinated moves of one to three axes through the virtual pins and the virtual
// machine, without a recording.

namespace {
stVirtualMachine Wiring()
{
    stVirtualMachine machine;
    for (size_t axis = 0; axis < 3; ++axis) {
        machine.axes[axis].iPulsePin = AppConfig::m_iAxisPulseOutput[axis];
        machine.axes[axis].iDirPin = AppConfig::m_iAxisDirOutput[axis];
    }
    return machine;
}

void DryEdges(benchmark::State& state)
{
    CVirtualTime time;
    CVirtualMachine machine(Wiring());
    CVirtualPins::SetObserver(&machine);
    CMachineAxes axes;
    for (int axis = 0; axis < 3; ++axis) {
        axes.m_AxisCtrl[axis].m_sAxis = static_cast<qint16>(axis);
        axes.m_AxisCtrl[axis].ConfigAxis();
    }
    CAllAxisCtrl::StartAutoMode(&axes);
    double fTo = 0.0;
    qint64 lEdges = 0;
    for (auto _ : state) {
        fTo = 10.0 - fTo;
        CAllAxisCtrl::m_lstAxisToMov = {};
        for (int axis = 0; axis < state.range(0); ++axis) {
            CAllAxisCtrl::m_lstAxisToMov[axis] = true;
            axes.m_AxisCtrl[axis].SetAxisMovParams(fTo);
            lEdges += 20000;
        }
        CAllAxisCtrl::StartMotion();
        CAllAxisCtrl::WaitForMotion();
    }
    state.counters["s_per_edge"] =
        benchmark::Counter(static_cast<double>(lEdges), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    CAllAxisCtrl::StopAutoMode();
    CAllAxisCtrl::WaitForAutoModeEnd();
    CVirtualPins::SetObserver(nullptr);
}
BENCHMARK(DryEdges)->DenseRange(1, 3);
}   // namespace

BENCHMARK_MAIN();
