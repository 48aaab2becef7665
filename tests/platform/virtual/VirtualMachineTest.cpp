#include "platform/virtual/VirtualMachine.h"

#include "platform/WiringPi.h"
#include "support/CleanMachine.h"

#include <thread>
#include <vector>

namespace {
constexpr int PULSE[] = {2, 4, 27}, DIR[] = {3, 17, 22};

stVirtualMachine ThreeAxes()
{
    stVirtualMachine machine;
    for (size_t n = 0; n < 3; ++n) {
        stVirtualAxis& axis = machine.axes[n];
        axis.iPulsePin = PULSE[n];
        axis.iDirPin = DIR[n];
    }
    machine.iProbePin = 21;
    return machine;
}

class VirtualMachine : public CCleanMachine
{
};

TEST_F(VirtualMachine, RecorderSeesEveryEdgeBehindItsStep)
{
    struct CLog : CEdgeRecorder
    {
        std::vector<std::array<qint64, 4>> rows;
        void OnEdge(int iAxis, ePinRole eRole, int iLevel, qint64 lCarriage) override
        {
            rows.push_back({iAxis, eRole, iLevel, lCarriage});
        }
    } log;
    CVirtualMachine machine(ThreeAxes());
    CVirtualPins::SetObserver(&machine);
    machine.SetRecorder(&log);
    digitalWrite(DIR[1], 0);   // no change, no edge
    digitalWrite(DIR[1], 1);
    for (const int iLevel : {1, 0, 0}) digitalWrite(PULSE[1], iLevel);
    digitalWrite(26, 1);   // not a pin of an axis
    const std::vector<std::array<qint64, 4>> expected = {{1, CEdgeRecorder::ROLE_DIRECTION, 1, 0},
                                                         {1, CEdgeRecorder::ROLE_PULSE, 1, -1},
                                                         {1, CEdgeRecorder::ROLE_PULSE, 0, -1}};
    EXPECT_EQ(log.rows, expected);
    CVirtualPins::SetObserver(nullptr);
}

TEST(ThreadsVirtualMachine, AxesAreSteppedFromThreadsOfTheirOwn)
{
    ResetStatics();
    CVirtualMachine machine(ThreeAxes());
    machine.SetSurface([](double x, double y) { return x + y; });
    CVirtualPins::SetObserver(&machine);
    std::vector<std::thread> threads;
    for (const int iPin : PULSE)
        threads.emplace_back([iPin] {
            for (int n = 0; n < 20'000; ++n) {
                digitalWrite(iPin, 1);
                digitalWrite(iPin, 0);
            }
        });
    for (std::thread& thread : threads) thread.join();
    for (int axis = 0; axis < 3; ++axis) EXPECT_EQ(machine.Carriage(axis), 20'000);
    ResetStatics();
}
}   // namespace
