#include "common/UnitConverter.h"
#include "machine/MoveSpy.h"
#include "platform/VirtualMachine.h"
#include "support/LoggedScreen.h"

#include <cmath>
#include <random>

// Coordinated moves: the way that the carriages go, refusals, pauses and stops.

extern thread_local int g_iAllocations;

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

TEST_F(CMoveTest, WithoutSensorsEveryTargetThatFitsAPositionIsTaken)
{
    AppConfig::m_fAxisMovPerPulse[X_AXIS] = 10.0;   // or the test would take its time
    Begin();
    for (const double fTarget : {214748.3648, -214748.3649, 1e300, std::nan(""), HUGE_VAL})
        EXPECT_FALSE(Move({}, {fTarget})) << fTarget;
    EXPECT_EQ(m_App.TakeErrors(), QStringList({OUTSIDE, OUTSIDE, OUTSIDE, OUTSIDE, OUTSIDE}));
    EXPECT_TRUE(Move({}, {214740.0}));
    EXPECT_TRUE(Move({214740.0}, {-214740.0})) << "further than a position can tell";
    EXPECT_EQ(m_App.Units()[X_AXIS], -2147400000);
}

TEST_F(CMoveTest, AnAxisWhoseRampWasRefusedStopsTheMovesThatNeedIt)
{
    AppConfig::m_fAxisAcc[Y_AXIS] = 0.0;
    Begin();
    EXPECT_TRUE(Move({}, {1.0}));
    m_App.TakeErrors();
    EXPECT_FALSE(m_App.G00_Move({2.0, 1.0}, false, false));
    EXPECT_FALSE(m_App.G01_Move({2.0, 3.0}, true, true));
    EXPECT_EQ(m_App.TakeErrors(),
              QStringList({"Y-Axis acceleration must be greater than zero",
                           "X-Axis acceleration must be greater than zero"}));   // its share of none
    EXPECT_EQ(m_App.Units(), std::vector<qint64>({10000, 0, 0}));
    // With X as main axis the ramp of Y is a share of X's, and good.
    EXPECT_TRUE(Move({1.0}, {3.0, 1.0}));
    AppConfig::m_fAxisFeedPercent[X_AXIS] = 0.0;
    EXPECT_FALSE(Move({3.0, 1.0}, {4.0, 1.0}));
    EXPECT_EQ(m_App.TakeErrors(), QStringList({"X-Axis feed must be greater than zero"}));
}

TEST_F(CMoveTest, NothingStartsWithoutTheAutoMode)
{
    Begin();
    CAllAxisCtrl::StopAutoMode();
    CAllAxisCtrl::WaitForAutoModeEnd();
    EXPECT_FALSE(Move({}, {1.0}));
    EXPECT_FALSE(Move({}, {0.001})) << "exactly one pulse is handed over, although it moves no axis";
    EXPECT_TRUE(Move({}, {0.0009})) << "less than a pulse starts nothing";
    EXPECT_TRUE(m_App.TakeErrors().isEmpty());
    EXPECT_FALSE(CAllAxisCtrl::GetMotionState());
}

TEST_F(CMoveTest, ARefusedSingleMoveIsToldOnce)
{
    AppConfig::m_bHomeSensorsUsed = true;
    Begin();
    EXPECT_FALSE(m_App.EngMoveAxisAbs(X_AXIS, 1.0, true));
    EXPECT_FALSE(m_App.EngMoveAxisRel(X_AXIS, 1.0, false));
    const QString strHoming = QStringLiteral("Homing not done! Use \"Move Home\" in user Settings");
    EXPECT_EQ(m_App.TakeErrors(), QStringList({strHoming, strHoming}));
    m_App.SetMchHome();
    EXPECT_TRUE(m_App.EngMoveAxisAbs(X_AXIS, 5.0, true));
    EXPECT_TRUE(m_App.EngMoveAxisRel(X_AXIS, -2.0, true));
    EXPECT_EQ(m_App.Units()[X_AXIS], 30000);
    EXPECT_TRUE(m_App.EngMoveAxisAbs(X_AXIS, 0.0, false));
    EXPECT_TRUE(m_App.m_AxisCtrl[X_AXIS].GetAxisState()) << "without waiting it still moves";
    AppConfig::m_bEmergencyStopON = true;
    EXPECT_FALSE(m_App.EngMoveAxisAbs(Y_AXIS, -1.0, false));
    EXPECT_FALSE(m_App.EngMoveAxisRel(Y_AXIS, -1.0, false));
    EXPECT_TRUE(m_App.TakeErrors().isEmpty());
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

// ---- Planning -------------------------------------------------------------------------------------------------------

TEST_F(CMoveTest, PlanningAllocatesNothingOnceTheTablesHaveGrown)
{
    for (const int iCurve : {0, 1}) {
        AppConfig::m_eAxisFeedtype = iCurve;
        Begin();
        const stFloatPoint far{0.1, 0.08, 0.05};
        for (int n = 0; n < 3; ++n) Move(n % 2 ? far : stFloatPoint(), n % 2 ? stFloatPoint() : far);
        m_App.m_lstStops.reserve(100);
        const int iAllocations = g_iAllocations;
        for (int n = 0; n < 20; ++n) m_App.AppControl::SetAccAndVel({}, far, G01_MOVE);
        EXPECT_EQ(iAllocations, g_iAllocations);
    }
}

TEST_F(CMoveTest, OfEqualDistancesTheEarliestAxisIsPlannedInFull)
{
    AppConfig::m_iMchType = 5;
    for (int axis = 0; axis < MAX_AXES; ++axis) AppConfig::m_fUserAxisFeed[axis] = 10.0 + axis;
    Begin();
    const auto Planned = [&](const stFloatPoint& to) {
        QList<double> feeds;
        m_App.SetAccAndVel({}, to, G01_MOVE);
        for (AxisCtrl& axis : m_App.m_AxisCtrl)
            feeds += axis.m_bNewTable ? double(axis.m_fVel[1 - axis.m_ucCurTable]) : 0.0;
        for (AxisCtrl& axis : m_App.m_AxisCtrl) axis.m_bNewTable = false;
        return feeds;
    };
    for (AxisCtrl& axis : m_App.m_AxisCtrl) axis.m_bNewTable = false;
    EXPECT_EQ(Planned({2, 2, 2, 2, 2}), QList<double>({10, 10, 10, 10, 10}));
    EXPECT_EQ(Planned({1, 2, 2, 2, 0}), QList<double>({5.5, 11, 11, 11, 0}));
    EXPECT_EQ(Planned({1, 1, 2, 1, 2}), QList<double>({6, 6, 12, 6, 12}));
    EXPECT_EQ(Planned({1, 0, 0, 2, 1}), QList<double>({6.5, 0, 0, 13, 6.5}));
    EXPECT_EQ(Planned({0, 0.5, 0, 0, 2}), QList<double>({0, 3.5, 0, 0, 14}));
    EXPECT_EQ(Planned({0, 0, 0, 0, 0}), QList<double>({0, 0, 0, 0, 14})) << "handed on, and does no harm";
    m_App.m_eOperation = OP_SHAPES;   // the program's feed is a program's alone
    AppConfig::m_GCodeRunSettings.bUsePrgmFeed = true;
    EXPECT_EQ(Planned({2, 0, 0, 0, 0}), QList<double>({10, 0, 0, 0, 0}));
    m_App.SetAccAndVel({}, {2, 1}, G00_MOVE);
    EXPECT_EQ(m_App.m_AxisCtrl[X_AXIS].m_fVel[1 - m_App.m_AxisCtrl[X_AXIS].m_ucCurTable], 25.0);
    EXPECT_EQ(m_App.m_AxisCtrl[Y_AXIS].m_fVel[1 - m_App.m_AxisCtrl[Y_AXIS].m_ucCurTable], 12.5);
}

// ---- Words ----------------------------------------------------------------------------------------------------------

struct stWords
{
    const char* szName;
    GCodeTokens tokens;
    bool bFound;
    stFloatPoint target;
    double fFeed;   // mm/s afterwards
    const char* szError;
};

class MoveWords : public CMoveTest, public testing::WithParamInterface<stWords>
{
};

TEST_P(MoveWords, GiveTheTargetAndTheFeed)
{
    AppConfig::m_GCodeRunSettings.bUsePrgmFeed = true;
    Begin();
    SetProgram({{}, GetParam().tokens});
    m_App.m_CurGCodePos = {1, 2, 3, 4, 5};
    stFloatPoint target;
    EXPECT_EQ(m_App.GetPosToMov(1, target), GetParam().bFound);
    for (int axis = 0; axis < MAX_AXES && GetParam().bFound; ++axis)
        EXPECT_DOUBLE_EQ(AxisOf(target, axis), AxisOf(GetParam().target, axis)) << axis;
    EXPECT_DOUBLE_EQ(AppConfig::m_GCodeRunSettings.fFeed, GetParam().fFeed);
    EXPECT_EQ(m_App.TakeErrors().join('|'), GetParam().szError);
}
constexpr const char* NO_FEED = "Error:1 - Feed, F-Code, must be greater than zero";
INSTANTIATE_TEST_SUITE_P(
    Lines, MoveWords,
    testing::Values(stWords{"AllAxes", {"g1", "x10", "Y-2.5", "Z", "a.5", "B7"}, true, {10, -2.5, 0, 0.5, 7}, 40, ""},
                    stWords{
                        "ACommentEndsThem", {"G0", "Z5", "(", "S", "f", "Y8", "F-1"}, true, {1, 2, 5, 4, 5}, 40, ""},
                    stWords{"SoDoOtherMarks", {"%", "X1", ";"}, false, {}, 40, ""},
                    stWords{"TheLastFeedHolds", {"F60", "X0", "F600"}, true, {0, 2, 3, 4, 5}, 10.00002, ""},
                    stWords{"NoFeed", {"X0", "F0"}, false, {}, 40, NO_FEED},
                    stWords{"AFeedBelowZero", {"F-1", "X0", "F600"}, false, {}, 40, NO_FEED},
                    stWords{"AFeedWithoutANumber", {"X0", "F", "F600"}, false, {}, 40, NO_FEED}),
    [](const auto& param) { return param.param.szName; });

TEST_F(CMoveTest, AnArcTakesItsWordsAlike)
{
    Begin();
    SetProgram({{"G2", "X10", "I5", "J0", "F0"}, {"G2", "X0", "Y0", "I-5", "J0", "(", "F0", "R0", "J3"}});
    stGCodeEllipseInfo info;
    EXPECT_TRUE(m_App.CutArc(0, info)) << "a feed that is not used is not looked at";
    AppConfig::m_GCodeRunSettings.bUsePrgmFeed = true;
    EXPECT_FALSE(m_App.CutArc(0, info));
    EXPECT_EQ(m_App.TakeErrors(), QStringList({"Error:0 - Feed, F-Code, must be greater than zero"}));
    EXPECT_EQ(m_App.Units()[X_AXIS], 100000) << "refused before the line moves";
    info = {};
    EXPECT_TRUE(m_App.CutArc(1, info));
    EXPECT_EQ(info.stCenter.x, 5.0);
    EXPECT_EQ(info.stCenter.y, 0.0);
}
