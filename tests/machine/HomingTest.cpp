#include "common/Paths.h"
#include "common/UnitConverter.h"
#include "machine/WorkerFixture.h"

#include <QFile>

namespace {
// Homing, work zero and probe end to end: the machine behind the pins has sensors where its carriages really are.

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
    bool NoneHoming() const
    {
        return !m_App.m_AxisCtrl[0].m_bHoming && !m_App.m_AxisCtrl[1].m_bHoming && !m_App.m_AxisCtrl[2].m_bHoming;
    }
};

TEST_F(Homing, ARefusedAxisStopsTheOthersWhoseSensorsNobodyWouldWatch)
{
    AppConfig::m_fAxisAcc[Y_AXIS] = 0.0;
    Build(WithSensors());
    m_App.TakeErrors();
    m_App.RunAs(OP_MCH_HOME);
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
        Build(WithSensors());
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

TEST_F(Homing, StartsByItselfWhereAskedAndForgetsOldHomes)
{
    AppConfig::m_bAutoHmOnStartup = true;
    m_App.SetMchHome();
    Build(WithSensors());
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
class CAxisOrder : public CEdgeRecorder
{
public:
    void OnEdge(int iAxis, ePinRole, int, qint64) override
    {
        if (!m_str.endsWith(QLatin1Char("XYZAB"[iAxis]))) m_str += QLatin1Char("XYZAB"[iAxis]);
    }
    QString m_str;
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
    CAxisOrder order;
    m_pMachine->SetRecorder(&order);
    ASSERT_TRUE(m_App.MoveWorkZeroAll());
    m_pMachine->SetRecorder(nullptr);
    EXPECT_EQ(m_App.m_lstMoves, QStringList("Z " + QString::number(safe.fHeight)));
    EXPECT_TRUE(order.m_str.startsWith('Z') && order.m_str.endsWith('Z') && order.m_str.count('Z') == 2);
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
        return false;
    };
    m_App.RunAs(OP_Z_PROFILE);
    EXPECT_EQ(m_App.m_lstMoves, QStringList("Z 5"));
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
    EXPECT_NEAR(AppConfig::m_fAxisWorkZero[X_AXIS], bSet ? 20.0 + zero.fPos : 20.0, 1e-12);
    EXPECT_EQ(AppConfig::m_fAxisWorkZero[Y_AXIS], bAll ? -7.0 : 0.0);
    EXPECT_EQ(m_App.GetCurPos(X_AXIS), bSet ? 0.0 : zero.fPos);
    EXPECT_EQ(m_App.m_AxisCtrl[X_AXIS].m_lNegLimit, -CUnitConverter::GetLong(AppConfig::m_fAxisWorkZero[X_AXIS]));
}
INSTANTIATE_TEST_SUITE_P(Places, NewWorkZero,
                         testing::Combine(testing::Values(stZero{-20.0, true}, stZero{-20.0001, false},
                                                          stZero{160.0, true}, stZero{160.0001, false}),
                                          testing::Bool()));

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
