#include "platform/VirtualMachine.h"

#include "platform/WiringPi.h"
#include "support/CleanMachine.h"

#include <thread>
#include <vector>

namespace {
constexpr int PULSE[] = {2, 4, 27}, DIR[] = {3, 17, 22}, HOME[] = {23, 24, 25};
constexpr int PROBE = 21, ESTOP = 20, START = 16;

stVirtualMachine ThreeAxes()
{
    stVirtualMachine machine;
    for (size_t n = 0; n < 3; ++n) {
        stVirtualAxis& axis = machine.axes[n];
        axis.iPulsePin = PULSE[n];
        axis.iDirPin = DIR[n];
        axis.iHomePin = HOME[n];
    }
    machine.iProbePin = PROBE;
    machine.iEStopPin = ESTOP;
    machine.iStartPin = START;
    return machine;
}

class VirtualMachine : public CCleanMachine
{
protected:
    CVirtualMachine& Build(const stVirtualMachine& wiring)
    {
        m_pMachine = std::make_unique<CVirtualMachine>(wiring);
        CVirtualPins::SetObserver(m_pMachine.get());
        return *m_pMachine;
    }
    ~VirtualMachine() override { CVirtualPins::SetObserver(nullptr); }
    static void Pulse(int iPin, int iCount)
    {
        for (int n = 0; n < iCount; ++n) {
            digitalWrite(iPin, 1);
            digitalWrite(iPin, 0);
        }
    }
    std::unique_ptr<CVirtualMachine> m_pMachine;
};

TEST_F(VirtualMachine, StepsCountAtTheRisingEdgeByTheDirectionLevel)
{
    CVirtualMachine& machine = Build(ThreeAxes());
    digitalWrite(PULSE[0], 1);
    EXPECT_EQ(machine.Carriage(0), 1);
    digitalWrite(PULSE[0], 1);   // no edge
    digitalWrite(PULSE[0], 0);
    EXPECT_EQ(machine.Carriage(0), 1);
    digitalWrite(DIR[0], 1);
    Pulse(PULSE[0], 3);
    EXPECT_EQ(machine.Carriage(0), -2);
    EXPECT_DOUBLE_EQ(machine.CarriageMm(0), -0.002);
    EXPECT_EQ(machine.Carriage(1), 0);
}

TEST_F(VirtualMachine, WiringDecidesNotTheSettings)
{
    stVirtualMachine wiring = ThreeAxes();
    std::swap(wiring.axes[0].iPulsePin, wiring.axes[1].iPulsePin);
    wiring.axes[2].iUpLevel = 1;
    digitalWrite(DIR[0], 1);   // before the machine is switched on: its drives see the level all the same
    CVirtualMachine& machine = Build(wiring);
    Pulse(PULSE[0], 2);
    Pulse(PULSE[1], 5);
    Pulse(PULSE[2], 7);
    EXPECT_EQ(machine.Carriage(0), -5);
    EXPECT_EQ(machine.Carriage(1), 2);
    EXPECT_EQ(machine.Carriage(2), -7);
}

TEST_F(VirtualMachine, HomeSensorIsHighFromItsPlaceOn)
{
    for (const bool bAbove : {true, false}) {
        stVirtualMachine wiring = ThreeAxes();
        wiring.axes[1].fMmPerPulse = 0.01;
        wiring.axes[1].fSensorAt = bAbove ? 0.03 : -0.03;
        wiring.axes[1].bSensorAbove = bAbove;
        wiring.axes[1].iUpLevel = bAbove ? 0 : 1;
        CVirtualMachine& machine = Build(wiring);
        digitalWrite(DIR[1], 0);
        Pulse(PULSE[1], 2);
        EXPECT_EQ(digitalRead(HOME[1]), 0);
        Pulse(PULSE[1], 1);
        EXPECT_EQ(digitalRead(HOME[1]), 1) << machine.Carriage(1);
        digitalWrite(DIR[1], 1);
        Pulse(PULSE[1], 1);
        EXPECT_EQ(digitalRead(HOME[1]), 0);
        digitalWrite(DIR[1], 0);
    }
    stVirtualMachine wiring = ThreeAxes();
    wiring.axes[0].fSensorAt = wiring.axes[0].fStart = 10.0;
    Build(wiring);
    EXPECT_EQ(digitalRead(HOME[0]), 1) << "a carriage may start on its sensor";
}

TEST_F(VirtualMachine, ProbeIsHighAtAndBelowTheSurface)
{
    stVirtualMachine wiring = ThreeAxes();
    wiring.axes[2].fStart = 0.002;
    CVirtualMachine& machine = Build(wiring);
    digitalWrite(DIR[2], 1);
    Pulse(PULSE[2], 5);
    EXPECT_EQ(digitalRead(PROBE), 0) << "without a surface there is nothing to meet";
    machine.PlaceCarriage(2, 2);
    machine.SetFlatSurface(0.0);
    Pulse(PULSE[2], 1);
    EXPECT_EQ(digitalRead(PROBE), 0);
    Pulse(PULSE[2], 1);
    EXPECT_EQ(digitalRead(PROBE), 1);

    machine.SetSurface([](double x, double y) { return x - 2.0 * y; });
    EXPECT_EQ(digitalRead(PROBE), 1);
    Pulse(PULSE[1], 1);   // the surface falls along Y
    EXPECT_EQ(digitalRead(PROBE), 0);
    Pulse(PULSE[0], 2);
    EXPECT_EQ(digitalRead(PROBE), 1);
}

TEST_F(VirtualMachine, PeopleWorkTheInputs)
{
    CVirtualMachine& machine = Build(ThreeAxes());
    machine.PressEmergencyStop(true);
    machine.PressStart(true);
    EXPECT_EQ(digitalRead(ESTOP) + digitalRead(START), 2);
    machine.PressEmergencyStop(false);
    EXPECT_EQ(digitalRead(ESTOP), 0);
}

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
    CVirtualMachine& machine = Build(ThreeAxes());
    machine.SetRecorder(&log);
    digitalWrite(DIR[1], 0);   // no change, no edge
    digitalWrite(DIR[1], 1);
    Pulse(PULSE[1], 1);
    digitalWrite(PULSE[1], 0);
    digitalWrite(26, 1);   // not a pin of an axis
    const std::vector<std::array<qint64, 4>> expected = {{1, CEdgeRecorder::ROLE_DIRECTION, 1, 0},
                                                         {1, CEdgeRecorder::ROLE_PULSE, 1, -1},
                                                         {1, CEdgeRecorder::ROLE_PULSE, 0, -1}};
    EXPECT_EQ(log.rows, expected);
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
