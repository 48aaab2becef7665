#include "common/UnitConverter.h"
#include "machine/MoveSpy.h"
#include "platform/virtual/VirtualMachine.h"

#include <cmath>
#include <random>

// Coordinated moves: the way that the carriages go, refusals, pauses and stops.

namespace {
const QString OUTSIDE = QStringLiteral("Position to move must be within the motion limits");

// The machine as it is wired, whatever the settings make of it later.
stVirtualMachine Wiring()
{
    stVirtualMachine wiring;
    for (size_t axis = 0; axis < size_t(AppConfig::m_iMchType); ++axis) {
        wiring.axes[axis].iPulsePin = AppConfig::m_iAxisPulseOutput[axis];
        wiring.axes[axis].iDirPin = AppConfig::m_iAxisDirOutput[axis];
        wiring.axes[axis].iUpLevel = AppConfig::m_eAxisPosDir[axis];
    }
    return wiring;
}
}   // namespace

// ---- The way of the carriages ---------------------------------------------------------------------------------------

struct stSteps
{
    const char* szName;
    int iAxes;
    std::array<double, MAX_AXES> pulses;   // mm
    int iCurve;
};

class CarriageTest : public CMoveTest, public testing::WithParamInterface<stSteps>
{
};

TEST_P(CarriageTest, RandomMovesGoTheirDistanceToOnePulse)
{
    AppConfig::m_iMchType = GetParam().iAxes;
    AppConfig::m_eAxisFeedtype = GetParam().iCurve;
    if (GetParam().iAxes == 5) {
        AppConfig::m_eVantorCtrl = VTR5_CTRL;
        AppConfig::ApplyBoardPins();
    }
    for (size_t axis = 0; axis < MAX_AXES; ++axis) {
        AppConfig::m_fAxisMovPerPulse[axis] = GetParam().pulses[axis];
        AppConfig::m_eAxisPosDir[axis] = axis % 2 ? DIR_CCW : DIR_CW;
    }
    CVirtualMachine machine(Wiring());
    CVirtualPins::SetObserver(&machine);
    Begin();
    std::mt19937 random(7);
    std::uniform_real_distribution<double> scale(-4.0, 0.5), sign(-1.0, 1.0);
    stFloatPoint from;
    for (int n = 0; n < 300; ++n) {
        std::array<qint64, MAX_AXES> before{};
        stFloatPoint to = from;
        for (int axis = 0; axis < GetParam().iAxes; ++axis) {
            before[size_t(axis)] = machine.Carriage(axis);
            // From no pulse at all to some mm, in all directions; near the start, so that the test stays short.
            const double fDist = std::copysign(std::pow(10.0, scale(random)), sign(random) - AxisOf(from, axis) / 20.0);
            AxisOf(to, axis) = AxisOf(from, axis) + (random() % 3 ? fDist : 0.0);
        }
        from = m_App.Position();
        ASSERT_TRUE(Move(from, to)) << m_App.TakeErrors().join('|').toStdString();
        for (int axis = 0; axis < GetParam().iAxes; ++axis) {
            const double fPulse = GetParam().pulses[size_t(axis)];
            const double fWay = CUnitConverter::Distance(AxisOf(from, axis), AxisOf(to, axis));
            const double fGone = double(machine.Carriage(axis) - before[size_t(axis)]) * fPulse;
            ASSERT_LE(std::abs(fGone - fWay), fPulse + 1e-9) << "move " << n << " axis " << axis << ", " << fWay;
            ASSERT_EQ(m_App.m_AxisCtrl[axis].GetCurPosLong(),
                      std::llround(double(machine.Carriage(axis)) * fPulse * DECIMAL_MULTIPLYER))
                << "move " << n << " axis " << axis;
        }
        from = to;
    }
    CVirtualPins::SetObserver(nullptr);
}
INSTANTIATE_TEST_SUITE_P(Steps, CarriageTest,
                         testing::Values(stSteps{"Equal", 3, {0.001, 0.001, 0.001, 0.001, 0.001}, 0},
                                         stSteps{"Unequal", 3, {0.01, 0.0025, 0.0001, 0.001, 0.001}, 0},
                                         stSteps{"FiveAxesSCurve", 5, {0.005, 0.0031, 0.002, 0.01, 0.0125}, 1}),
                         [](const auto& param) { return param.param.szName; });

TEST_F(CMoveTest, AStepThatIsNoWholeUnitLetsTheCarriageDriftByStepOverTruncatedStep)
{
    AppConfig::m_fAxisMovPerPulse[X_AXIS] = 0.00125;   // counted as 0.0012
    CVirtualMachine machine(Wiring());
    CVirtualPins::SetObserver(&machine);
    Begin();
    ASSERT_TRUE(Move({}, {12.0}));
    EXPECT_EQ(m_App.Units()[X_AXIS], 120000) << "the counter keeps the rule";
    EXPECT_NEAR(double(machine.Carriage(X_AXIS)) * 0.00125, 12.0 * 0.00125 / 0.0012, 0.00125);
    CVirtualPins::SetObserver(nullptr);
}

// ---- Refusals -------------------------------------------------------------------------------------------------------

TEST_F(CMoveTest, ATargetOutsideTheLimitsOfAnyAxisMovesNone)
{
    AppConfig::m_bHomeSensorsUsed = true;
    Begin();
    EXPECT_FALSE(Move({}, {10.0}));   // homing is not done
    m_App.SetMchHome();
    EXPECT_TRUE(Move({}, {180.0, -180.0, -40.0}));
    EXPECT_FALSE(Move({}, {170.0, -170.0, -40.0001}));
    EXPECT_FALSE(Move({}, {180.0001, -170.0, -30.0}));
    EXPECT_EQ(m_App.TakeErrors(), QStringList({OUTSIDE, OUTSIDE, OUTSIDE}));
    EXPECT_EQ(m_App.Units(), std::vector<qint64>({1800000, -1800000, -400000}));
}

TEST_F(CMoveTest, AnAxisWhoseRampWasRefusedStopsTheMovesThatNeedIt)
{
    AppConfig::m_fAxisAcc[Y_AXIS] = 0.0;
    Begin();
    m_App.TakeErrors();
    EXPECT_FALSE(m_App.G00_Move({2.0, 1.0}, false, false));
    EXPECT_FALSE(m_App.G01_Move({2.0, 3.0}, false, false));
    const QString strWhy = QStringLiteral("Y-Axis acceleration must be greater than zero");
    EXPECT_EQ(m_App.TakeErrors(), QStringList({strWhy, strWhy}));
    EXPECT_EQ(m_App.Units(), std::vector<qint64>({0, 0, 0}));
    EXPECT_TRUE(Move({}, {3.0, 1.0})) << "with X as main axis the ramp of Y is a share of X's, and good";
}

// ---- Pause and stop -------------------------------------------------------------------------------------------------

TEST_F(CMoveTest, APauseHoldsTheNextMoveAndAStopEndsIt)
{
    Begin();
    m_App.m_bPause = true;
    m_Time.AddEvent({2'500'000'000, [&] { m_App.m_bPause = false; }, {}});
    EXPECT_TRUE(Move({}, {1.0}));
    EXPECT_GE(m_Time.Now(), 3'000'000'000) << "asked once a second";
    EXPECT_EQ(m_App.Units()[X_AXIS], 10000);

    for (const bool bEmergency : {true, false}) {
        m_App.m_bPause = true;
        m_Time.AddEvent({m_Time.Now() + 1'500'000'000,
                         [&, bEmergency] {   // each without the other
                             bEmergency ? void(AppConfig::m_bEmergencyStopON = true) : m_App.StopAll();
                         },
                         {}});
        EXPECT_FALSE(Move({1.0}, {2.0})) << bEmergency;
        EXPECT_EQ(m_App.Units()[X_AXIS], 10000);
        EXPECT_TRUE(m_App.TakeErrors().isEmpty());
        AppConfig::m_bEmergencyStopON = false;
    }
}
