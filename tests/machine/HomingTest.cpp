#include "common/Paths.h"
#include "common/Refusals.h"
#include "common/UnitConverter.h"
#include "machine/WorkerFixture.h"
#include "motion/MotionObserver.h"

#include <QFile>

#include <cmath>
#include <map>

namespace {
// Homing, work zero and probe end to end: the machine behind the pins has sensors where its carriages really are.

// The strokes of each axis: pulses of one direction without a longer rest than a direction's settling takes.
struct stStroke
{
    int iAxis;
    qint64 lFrom, lTo, lFirst, lLast;   // carriage pulses, ns
    double fSpeed;                      // mm/s between its last two pulses
};
class CStrokes : public CEdgeRecorder
{
public:
    void OnEdge(int iAxis, ePinRole eRole, int iLevel, qint64 lCarriage) override
    {
        const qint64 lNow = CVirtualTime::Current()->EdgeTime();
        if (eRole == ROLE_DIRECTION) m_Open.erase(iAxis);
        if (eRole != ROLE_PULSE || iLevel == 0) return;
        const auto open = m_Open.find(iAxis);
        if (open == m_Open.end()) {
            m_Open[iAxis] = m_lst.size();
            m_lst.push_back({iAxis, lCarriage, lCarriage, lNow, lNow, 0.0});
            return;
        }
        stStroke& stroke = m_lst[open->second];
        stroke.fSpeed = AppConfig::m_fAxisMovPerPulse[iAxis] * 1e9 / double(lNow - stroke.lLast);
        stroke.lTo = lCarriage;
        stroke.lLast = lNow;
    }
    std::vector<stStroke> Of(int iAxis) const
    {
        std::vector<stStroke> lst;
        std::copy_if(m_lst.begin(), m_lst.end(), std::back_inserter(lst),
                     [=](const stStroke& stroke) { return stroke.iAxis == iAxis; });
        return lst;
    }
    std::vector<stStroke> m_lst;

private:
    std::map<int, size_t> m_Open;
};

class Homing : public CWorkerTest
{
protected:
    Homing()
    {
        AppConfig::m_bHomeSensorsUsed = true;
        std::fill_n(AppConfig::m_fAxisHomeFeed, MAX_AXES, 2.0);
    }
    // Sensors at machine zero, on the side that the axis homes to; the carriages inside the machine.
    static stVirtualMachine WithSensors()
    {
        stVirtualMachine wiring = Wiring();
        for (int n = 0; n < AppConfig::m_iMchType; ++n) {
            stVirtualAxis& axis = wiring.axes[size_t(n)];
            axis.bSensorAbove = AppConfig::m_eAxisHomeDir[n] == AppConfig::m_eAxisPosDir[n];
            axis.fSensorAt = 0.0;
            axis.fStart = (axis.bSensorAbove ? -1.0 : 1.0) * (3.0 + n);
        }
        return wiring;
    }
    void BuildAtSensors(const stVirtualMachine& wiring = WithSensors())
    {
        Build(wiring);
        m_pMachine->SetRecorder(&m_Strokes);
    }
    void Home() { m_App.RunAs(OP_MCH_HOME); }
    bool NoneHoming() const
    {
        return !m_App.m_AxisCtrl[0].m_bHoming && !m_App.m_AxisCtrl[1].m_bHoming && !m_App.m_AxisCtrl[2].m_bHoming;
    }
    CStrokes m_Strokes;
};

TEST_F(Homing, EachAxisReachesItsSensorBacksOffAndReachesItSlowly)
{
    AppConfig::m_eVantorCtrl = VTR5_CTRL;
    AppConfig::ApplyBoardPins();
    AppConfig::m_fAxisWorkZero[X_AXIS] = 12.5;
    AppConfig::m_fAxisWorkZero[Z_AXIS] = -30.0;
    BuildAtSensors();
    Home();
    EXPECT_EQ(m_App.TakeErrors(), QStringList());
    EXPECT_TRUE(m_App.GetHomeDone());
    EXPECT_TRUE(NoneHoming());

    const qint64 lZDone = m_Strokes.Of(Z_AXIS).at(0).lLast;
    for (int axis = X_AXIS; axis <= B_AXIS; ++axis) {
        const auto lst = m_Strokes.Of(axis);
        ASSERT_EQ(lst.size(), 3u) << axis;
        const int iHomeSign = axis == Y_AXIS || axis == Z_AXIS ? 1 : -1;   // the others home downwards
        EXPECT_EQ(lst[0].lTo, 0);
        EXPECT_NEAR(lst[0].fSpeed, 10.0, 1e-3);   // jog feed, up to the sensor: no ramp
        EXPECT_EQ(lst[1].lTo, -5000 * iHomeSign);
        EXPECT_EQ(lst[2].lTo, 0);
        EXPECT_NEAR(lst[2].fSpeed, 2.0, 1e-3);
        EXPECT_TRUE(axis == Z_AXIS || lst[0].lFirst > lZDone);   // the tool has left the work
        EXPECT_EQ(m_pMachine->Carriage(axis), 0);
        EXPECT_EQ(m_App.GetCurPos(eAxis(axis)), -AppConfig::m_fAxisWorkZero[axis]);
        EXPECT_EQ(NextFeed(axis), 15.0);
    }
    for (const int axis : {Y_AXIS, A_AXIS, B_AXIS})
        EXPECT_LT(std::abs(m_Strokes.Of(X_AXIS)[0].lFirst - m_Strokes.Of(axis)[0].lFirst), 20'000);   // together
    for (const size_t uPhase : {1u, 2u})
        EXPECT_LT(std::abs(m_Strokes.Of(X_AXIS)[uPhase].lFirst - m_Strokes.Of(Z_AXIS)[uPhase].lFirst), 20'000);
}

TEST_F(Homing, WithoutRepetitionTheFastApproachCounts)
{
    AppConfig::m_fHomeRepeatOffset = 0.0;
    BuildAtSensors();
    AxisCtrl& x = m_App.m_AxisCtrl[X_AXIS];
    x.m_bMoving = true;   // the watch of a homing before, which ended on a moving axis, is not this one's
    x.EndWatch();
    x.m_bMoving = false;
    Home();
    EXPECT_EQ(m_Strokes.m_lst.size(), 3u);
    EXPECT_TRUE(m_App.GetHomeDone());
}

TEST_F(Homing, AnAxisOnItsSensorMakesNoPulseBacksOffAndReturns)
{
    stVirtualMachine wiring = WithSensors();
    wiring.axes[Y_AXIS].fStart = 0.2;
    BuildAtSensors(wiring);
    Home();
    const auto lst = m_Strokes.Of(Y_AXIS);
    ASSERT_EQ(lst.size(), 2u);
    EXPECT_EQ(lst[0].lTo, 200 - 5000);
    EXPECT_EQ(lst[1].lTo, 0);
    EXPECT_TRUE(m_App.GetHomeDone());
}

TEST_F(Homing, ARefusedAxisStopsTheOthersWhoseSensorsNobodyWouldWatch)
{
    AppConfig::m_fAxisAcc[Y_AXIS] = 0.0;
    BuildAtSensors();
    m_App.TakeErrors();
    Home();
    EXPECT_EQ(m_App.TakeErrors(), QStringList("Y-Axis acceleration must be greater than zero"));
    EXPECT_TRUE(m_App.IsMachineIdle());
    EXPECT_TRUE(NoneHoming());
    EXPECT_FALSE(m_App.GetHomeDone());
    EXPECT_EQ(m_pMachine->Carriage(Z_AXIS), 0);
    EXPECT_TRUE(m_App.m_bOperationFinished);
}

// At every moment of the sequence, the back-off too, where the positions were already valid once.
TEST_F(Homing, AStopLeavesTheMachineNotHomed)
{
    for (double fAt = 0.05; fAt < 3.8; fAt += 0.13) {
        BuildAtSensors();
        m_App.TakeNoteOfEnd();
        AppConfig::m_bEmergencyStopON = false;
        EmergencyStopAt(fAt);
        m_App.StartMchHomingSequence();
        m_App.wait();
        ASSERT_TRUE(AppConfig::m_bEmergencyStopON) << fAt;
        EXPECT_FALSE(m_App.GetHomeDone()) << fAt;
        EXPECT_TRUE(NoneHoming() && m_App.IsMachineIdle()) << fAt;
        EXPECT_EQ(m_App.TakeErrors(), QStringList());
    }
}

// Gives the job up just ahead of a first pulse: behind all questions, and where no StopAll sees the axis yet.
class CGiveUp : public CMotionObserver
{
public:
    explicit CGiveUp(AppControl& app) : m_App(app) { Set(this); }
    ~CGiveUp() override { Set(nullptr); }
    void OnAxisMove(int) override { m_App.Abandon(); }
    void OnCoordinatedMove() override {}
    void OnMoveEnd(int) override {}

private:
    AppControl& m_App;
};
TEST_F(Homing, AnAxisThatBeganBehindAGiveUpStopsAgain)
{
    AppConfig::m_bHomeSensorsUsed = false;
    BuildAtSensors();
    const CGiveUp giveUp(m_App);
    EXPECT_FALSE(m_App.m_AxisCommands.EngMoveAxisAbs(X_AXIS, 5.0, false));
    EXPECT_FALSE(m_App.m_AxisCtrl[X_AXIS].GetAxisState());
}

struct stHeld
{
    eOperation eCode;
    bool bFromStart, bReset;
};
class HeldOperation : public Homing, public testing::WithParamInterface<stHeld>
{
};
// Each of its moves waits at its head; a reset in the hold gives the operation up before any axis begins.
TEST_P(HeldOperation, BeginsNoAxisUntilItIsResumedAndNoneWhenItIsGivenUp)
{
    const auto [eCode, bFromStart, bReset] = GetParam();
    AppConfig::m_fZSafePos = -0.5;
    BuildAtSensors();
    m_pMachine->SetFlatSurface(m_pMachine->CarriageMm(Z_AXIS) - 4.0);
    m_App.SetMchHome();
    m_App.m_AxisCtrl[Y_AXIS].SetCurPos(-0.5);
    if (bFromStart)
        m_App.m_bPause = true;
    else
        At(0.02, [&] { m_App.m_bPause = true; });
    size_t uHeld = 0;
    At(60.0, [&] { uHeld = m_Strokes.m_lst.size(); });
    At(70.0, [&] {
        EXPECT_TRUE(m_App.IsMachineIdle());
        EXPECT_EQ(m_Strokes.m_lst.size(), uHeld) << "nothing has begun in between";
        bReset ? m_App.StopAll() : m_App.Resume();
    });
    m_App.RunAs(eCode);
    EXPECT_GE(m_Time.Now(), 70'000'000'000);
    EXPECT_EQ(uHeld == 0, bFromStart);
    EXPECT_EQ(m_Strokes.m_lst.size() > uHeld, !bReset);
    EXPECT_EQ(m_App.m_bOperationFinished, !bReset);
}
INSTANTIATE_TEST_SUITE_P(Operations, HeldOperation,
                         testing::Values(stHeld{OP_WORK_HOME, true, false}, stHeld{OP_WORK_HOME, false, true},
                                         stHeld{OP_MCH_HOME, true, true}, stHeld{OP_MCH_HOME, false, false},
                                         stHeld{OP_Z_PROBE, true, true}, stHeld{OP_Z_PROBE, false, false},
                                         stHeld{OP_Z_PROFILE, true, false}, stHeld{OP_Z_PROFILE, false, true}));

TEST_F(Homing, InSimulationNothingChangesTheTruthAndItsEndBringsAllBack)
{
    BuildAtSensors();
    m_App.SetMchHome();
    for (int axis = 0; axis < MAX_AXES; ++axis) m_App.m_AxisCtrl[axis].SetCurPos(axis + 1);
    m_App.m_CurGCodePos.x = 7.0;
    m_App.SetSimulation(true);
    EXPECT_FALSE(m_App.StartMchHomingSequence() || m_App.StartZ0usingZProbeSeq() || m_App.RunZProfile());
    EXPECT_FALSE(m_App.SetWorkZero(X_AXIS));
    m_App.SetWorkZero();
    EXPECT_EQ(m_App.TakeErrors(), QStringList(5, NOT_IN_SIMULATION));
    EXPECT_EQ(AppConfig::m_fAxisWorkZero[X_AXIS], 0.0);
    EXPECT_EQ(m_App.m_eOperation, OP_NONE);

    m_App.m_AxisCtrl[X_AXIS].m_eDir = DIR_CCW;   // as a simulated move leaves it
    for (AxisCtrl& axis : m_App.m_AxisCtrl) axis.SetCurPos(-9.0);
    m_App.m_CurGCodePos.x = -9.0;
    m_App.SetSimulation(false);
    for (int axis = 0; axis < MAX_AXES; ++axis) EXPECT_EQ(m_App.m_AxisCtrl[axis].GetCurPos(), axis + 1);
    EXPECT_EQ(m_App.m_CurGCodePos.x, 7.0);
    EXPECT_EQ(CVirtualPins::Level(AppConfig::m_iAxisDirOutput[X_AXIS]), 1);
}

TEST_F(Homing, StartsAreRefusedWithTheirReason)
{
    AppConfig::m_bAutoHmOnStartup = true;
    CVirtualPins::SetInput(AppConfig::m_iEStopInput = 31, 1);
    Build();
    EXPECT_EQ(m_App.GetErrMsg(), "Homing at start not begun: Emergency Stop input is High");
    EXPECT_FALSE(AppConfig::m_bEmergencyStopON) << "the first look at the input does all that a rise does";
    AppConfig::m_bEmergencyStopON = true;
    EXPECT_FALSE(m_App.StartMchHomingSequence());
    EXPECT_EQ(m_App.GetErrMsg(), RELEASE_EMERGENCY_SWITCH);
    AppConfig::m_bEmergencyStopON = false;
    EXPECT_FALSE(m_App.StartWorkHomingSequence());
    EXPECT_EQ(m_App.GetErrMsg(), "Homing not done! Use \"Move Home\" in user Settings");
    AppConfig::m_bHomeSensorsUsed = false;
    EXPECT_TRUE(m_App.GetHomeDone());
    EXPECT_FALSE(m_App.StartMchHomingSequence());
    EXPECT_EQ(m_App.GetErrMsg(), "Homing Sensor not Enabled for all Axis");
    EXPECT_EQ(m_App.m_eOperation, OP_NONE);
    EXPECT_FALSE(m_App.MoveAxisHome(X_AXIS, false));
    EXPECT_EQ(m_App.GetErrMsg(), "Home Sensors Not enabled");
    EXPECT_EQ(m_Screen.m_lstCalls, QStringList());
}

TEST_F(Homing, StartsByItselfWhereAskedAndForgetsOldHomes)
{
    AppConfig::m_bAutoHmOnStartup = true;
    m_App.SetMchHome();
    BuildAtSensors();
    m_App.wait();
    EXPECT_EQ(m_App.m_eOperation, OP_MCH_HOME);
    EXPECT_EQ(m_Screen.m_lstCalls, QStringList("busy"));
    EXPECT_TRUE(m_App.GetHomeDone());
    EXPECT_TRUE(m_App.m_bOperationFinished);
}

// ---- Work zero ------------------------------------------------------------------------------------------------------

struct stSafe
{
    bool bSensors;
    double fSafe, fWorkZero, fHeight;
};
class SafeHeight : public Homing, public testing::WithParamInterface<stSafe>
{
};
TEST_P(SafeHeight, IsReachedFirstAndZComesDownLast)
{
    const stSafe& safe = GetParam();
    AppConfig::m_bHomeSensorsUsed = safe.bSensors;
    AppConfig::m_fZSafePos = safe.fSafe;
    AppConfig::m_fAxisWorkZero[Z_AXIS] = safe.fWorkZero;
    AppConfig::m_fAxisPosDirLimit[Z_AXIS] = 50.0;
    Build();
    m_App.SetMchHome();
    for (AxisCtrl& axis : m_App.m_AxisCtrl) axis.SetCurPos(-1.0);
    m_pMachine->SetRecorder(&m_Strokes);
    ASSERT_TRUE(m_App.MoveWorkZeroAll());

    const auto& lst = m_Strokes.m_lst;
    ASSERT_EQ(lst.size(), 4u);
    EXPECT_EQ(lst[0].iAxis, Z_AXIS);
    EXPECT_EQ(lst[0].lTo, std::lround((safe.fHeight + 1.0) * 1000));
    EXPECT_GT(std::min(lst[1].lFirst, lst[2].lFirst), lst[0].lLast);
    EXPECT_LT(std::abs(lst[1].lFirst - lst[2].lFirst), 20'000);
    EXPECT_EQ(lst[3].iAxis, Z_AXIS);
    EXPECT_GT(lst[3].lFirst, std::max(lst[1].lLast, lst[2].lLast));
    for (const eAxis axis : {X_AXIS, Y_AXIS, Z_AXIS}) EXPECT_EQ(m_App.GetCurPos(axis), 0.0);

    m_App.MoveZSafePos();   // the same height, without waiting
    EXPECT_FALSE(m_App.IsMachineIdle());
    const signed char selection[MAX_AXES] = {1, 1, 1, 1, 1};
    EXPECT_TRUE(m_App.WaitForMotionFinish(selection));
    EXPECT_EQ(Z(), safe.fHeight);
}
INSTANTIATE_TEST_SUITE_P(Settings, SafeHeight,
                         testing::Values(stSafe{false, 5.0, 2.0, 5.0}, stSafe{false, -4.0, 2.0, 4.0},
                                         stSafe{true, 5.0, -20.0, 25.0}, stSafe{true, -4.0, -20.0, 16.0}));

TEST_F(Homing, ARefusedWayToWorkZeroIsToldOnce)
{
    AppConfig::m_fAxisPosDirLimit[Z_AXIS] = 10.0;
    Build();
    EXPECT_FALSE(m_App.MoveWorkZeroAll());
    EXPECT_EQ(m_App.TakeErrors(), QStringList("Homing not done! Use \"Move Home\" in user Settings"));
    EXPECT_EQ(m_Screen.m_lstCalls, QStringList());

    m_App.SetMchHome();
    m_App.m_AxisCtrl[Y_AXIS].ClearHome();
    EXPECT_FALSE(m_App.MoveWorkZeroAll());
    EXPECT_EQ(m_App.TakeErrors(), QStringList("Homing not done! Use \"Move Home\" in user Settings"));
    EXPECT_EQ(m_Screen.m_lstCalls, QStringList("finish"));
}

// The window ends the operation while the worker still runs: what follows goes by the operation all the same.
TEST_F(Homing, AnEarlyEndOnTheScreenDoesNotHideTheOperation)
{
    Build();
    m_App.SetMchHome();
    m_App.m_fnWorkZero = [&] {
        m_App.m_eOperation = OP_NONE;
        m_App.m_AxisCtrl[Y_AXIS].ClearHome();   // the way there fails
    };
    m_App.RunAs(OP_Z_PROFILE);
    EXPECT_EQ(m_App.m_lstMoves, QStringList({"Z 5", "Z 5"})) << "on the way, and at the end";
}

struct stZero
{
    double fPos;   // of the axis, work coordinates
    bool bInside;
};
class NewWorkZero : public Homing, public testing::WithParamInterface<std::tuple<stZero, bool>>
{
};
// Of one axis it must be inside the machine; of all axes it is told and set all the same.
TEST_P(NewWorkZero, IsHeldAgainstTheMachine)
{
    const auto& [zero, bAll] = GetParam();
    AppConfig::m_fAxisWorkZero[X_AXIS] = 20.0;   // 0 to 180 in machine coordinates
    Build();
    m_App.SetMchHome();
    m_App.m_AxisCtrl[X_AXIS].SetCurPos(zero.fPos);
    m_App.m_AxisCtrl[Y_AXIS].SetCurPos(-7.0);
    const bool bSet = zero.bInside || bAll;
    if (bAll)
        m_App.SetWorkZero();
    else
        EXPECT_EQ(m_App.SetWorkZero(X_AXIS), bSet);
    EXPECT_EQ(m_App.GetErrMsg(),   // position units, both
              zero.bInside ? "" : "Work Zero for X-Axis must be in between -200000 and 1600000.0000");
    EXPECT_EQ(m_App.GetInfoMsg(), !bSet ? "" : bAll ? "Work Zero is set" : "X-Axis Work Zero is set");
    EXPECT_EQ(QFile::exists(CPaths::Map(CONFIG_FILE)), bSet);
    EXPECT_EQ(m_Screen.m_lstCalls, bSet ? QStringList("area") : QStringList());
    EXPECT_NEAR(AppConfig::m_fAxisWorkZero[X_AXIS], bSet ? 20.0 + zero.fPos : 20.0, 1e-12);
    EXPECT_EQ(AppConfig::m_fAxisWorkZero[Y_AXIS], bAll ? -7.0 : 0.0);
    EXPECT_EQ(m_App.GetCurPos(X_AXIS), bSet ? 0.0 : zero.fPos);
    EXPECT_EQ(m_App.m_AxisCtrl[X_AXIS].m_lNegLimit, -CUnitConverter::GetLong(AppConfig::m_fAxisWorkZero[X_AXIS]));
}
INSTANTIATE_TEST_SUITE_P(Places, NewWorkZero,
                         testing::Combine(testing::Values(stZero{-20.0, true}, stZero{-20.0001, false},
                                                          stZero{160.0, true}, stZero{160.0001, false}),
                                          testing::Bool()));

TEST_F(Homing, WithoutSensorsAWorkZeroOnlyZeroesThePositions)
{
    AppConfig::m_bHomeSensorsUsed = false;
    AppConfig::m_fAxisWorkZero[X_AXIS] = 20.0;
    Build();
    for (const bool bAll : {false, true}) {
        m_App.m_AxisCtrl[X_AXIS].SetCurPos(999.0);
        if (bAll)
            m_App.SetWorkZero();
        else
            EXPECT_TRUE(m_App.SetWorkZero(X_AXIS));
        EXPECT_EQ(m_App.GetCurPos(X_AXIS), 0.0);
    }
    EXPECT_EQ(AppConfig::m_fAxisWorkZero[X_AXIS], 20.0);
    EXPECT_FALSE(QFile::exists(CPaths::Map(CONFIG_FILE)));
    EXPECT_EQ(m_Screen.m_lstCalls, QStringList());
}

TEST_F(Homing, JogsGoTheWayOfTheAxis)
{
    AppConfig::m_eAxisPosDir[X_AXIS] = DIR_CCW;
    Build();
    m_App.m_AxisCtrl[X_AXIS].SetCurPos(5.0);
    m_App.JogNeg(X_AXIS);
    EXPECT_EQ(m_App.m_AxisCtrl[X_AXIS].m_lTargetPos, m_App.m_AxisCtrl[X_AXIS].m_lNegLimit);
    m_App.JogPos(X_AXIS);
    EXPECT_EQ(m_App.GetErrMsg(), "Axis is in Motion");
    m_App.Stop(X_AXIS);
    m_App.JogPos(X_AXIS);
    EXPECT_EQ(m_App.m_AxisCtrl[X_AXIS].m_lTargetPos, m_App.m_AxisCtrl[X_AXIS].m_lPosLimit);
}

// ---- Z-probe --------------------------------------------------------------------------------------------------------

struct stProbe
{
    bool bSensors;
    double fSurface;                     // machine mm; the axis starts at 0
    double fCarriage, fPos, fWorkZero;   // afterwards
};
class ZProbe : public Homing, public testing::WithParamInterface<stProbe>
{
};
TEST_P(ZProbe, MakesTheSurfaceTheZeroAndRetracts)
{
    const stProbe& probe = GetParam();
    AppConfig::m_bHomeSensorsUsed = probe.bSensors;
    AppConfig::m_fAxisPosDirLimit[Z_AXIS] = 10.0;
    Build();
    m_App.SetMchHome();
    m_pMachine->SetFlatSurface(probe.fSurface);
    m_App.RunAs(OP_Z_PROBE);
    EXPECT_EQ(m_App.TakeErrors(), QStringList());
    EXPECT_NEAR(m_pMachine->CarriageMm(Z_AXIS), probe.fCarriage, 1e-9);
    EXPECT_EQ(Z(), probe.fPos);
    EXPECT_EQ(AppConfig::m_fAxisWorkZero[Z_AXIS], probe.fWorkZero);
    EXPECT_FALSE(m_App.m_AxisCtrl[Z_AXIS].m_bWatchZProbe);
}
INSTANTIATE_TEST_SUITE_P(Surfaces, ZProbe,
                         testing::Values(stProbe{false, -12.345, -9.345, 3.0, 0.0},
                                         stProbe{true, -12.345, -9.345, 3.0, -12.345},
                                         stProbe{true, 4.0, 2.999, 3.0, -0.001},    // touching already: one pulse
                                         stProbe{true, -1000.0, 3.0, 3.0, 0.0}));   // never: the old coordinate

}   // namespace
