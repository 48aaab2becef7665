#include "machine/MotorSettings.h"

#include "machine/WorkerFixture.h"

using A = AppConfig;

namespace {
// From a start with this board over the selected ones.
struct stBoards
{
    int iStart;
    std::vector<int> lstSelected;
    int iAxes;
    bool bMoves;
};
class BoardChange : public CWorkerTest, public testing::WithParamInterface<stBoards>
{
};
TEST_P(BoardChange, AxesWithoutPinsOfTheirOwnMakeNoMove)
{
    A::m_eVantorCtrl = GetParam().iStart;
    A::ApplyBoardPins();
    Build();
    CMotorSettings motors(m_App);
    for (const int iBoard : GetParam().lstSelected) motors.SelectBoard(iBoard);
    EXPECT_EQ(A::m_iMchType, GetParam().iAxes);
    EXPECT_EQ(A::m_eVantorCtrl, GetParam().lstSelected.back());
    for (const eAxis axis : {A_AXIS, B_AXIS}) {
        m_App.m_AxisCtrl[axis].SetVelocityAcc(10.0, 600.0);   // as the jog panel does
        m_App.JogPos(axis);
        EXPECT_EQ(m_App.m_AxisCtrl[axis].GetAxisState(), GetParam().bMoves);
        const QString strName = A::m_strAxisNames[axis];
        EXPECT_EQ(m_App.TakeErrors().value(0),
                  GetParam().bMoves ? "" : strName + " can't move before the application is restarted");
        m_App.Stop(axis);
    }
    m_App.JogPos(X_AXIS);
    EXPECT_TRUE(m_App.m_AxisCtrl[X_AXIS].GetAxisState());
}
INSTANTIATE_TEST_SUITE_P(Ways, BoardChange,
                         testing::Values(stBoards{VTR3_CTRL, {VTR5_CTRL}, 5, false},
                                         stBoards{VTR5_CTRL, {VTR3_CTRL}, 3, false},
                                         stBoards{VTR5_CTRL, {VTR3_CTRL, VTR5_CTRL}, 5, true},
                                         stBoards{VTR5_CTRL, {SPI_CTRL_16}, 5, true}));

// Of Y too, whose own highest feed is low: it goes along with the longest axis.
TEST_F(CWorkerTest, TheMemoryOfTheLongestRampIsThereAheadOfItsBuild)
{
    A::m_fMaxAxisFeed[X_AXIS] = 400.0;
    Build();
    for (const int iCurve : {0, 1}) {
        A::m_eAxisFeedtype = iCurve;
        CMotorSettings(m_App).ReserveRamps();
        for (const eAxis axis : {X_AXIS, Y_AXIS}) {
            AxisCtrl& ctrl = m_App.m_AxisCtrl[axis];
            const size_t t = 1u - ctrl.m_ucCurTable;
            const double* pMemory = ctrl.m_lstLowTime[t].data();
            ASSERT_TRUE(ctrl.SetVelocityAcc(400.0, A::m_fAxisAcc[X_AXIS]));
            EXPECT_EQ(ctrl.m_lstLowTime[t].data(), pMemory) << axis << ' ' << iCurve;
        }
    }
}

class SpoiltHomes : public CWorkerTest
{
};
TEST_F(SpoiltHomes, AreForgottenAndToldAndTheOthersKept)
{
    A::m_bHomeSensorsUsed = true;
    Build();
    CMotorSettings motors(m_App);
    const auto LostBy = [&](auto&& fnChange) {
        m_App.SetMchHome();
        m_Screen.m_lstCalls.clear();
        fnChange();
        QString strLost;
        for (int axis = 0; axis < 3; ++axis)
            if (!m_App.m_AxisCtrl[axis].IsAxisHomeSet()) strLost += QStringLiteral("XYZ").at(axis);
        EXPECT_EQ(m_Screen.m_lstCalls.filter(QStringLiteral("homed again")).isEmpty(), strLost.isEmpty());
        return strLost;
    };
    EXPECT_EQ(LostBy([&] { motors.SetPosDir(Y_AXIS, DIR_CCW); }), "Y");
    EXPECT_EQ(LostBy([&] { motors.SetHomeDir(Z_AXIS, DIR_CCW); }), "Z");
    EXPECT_EQ(LostBy([&] { motors.SetMovPerPulse(X_AXIS, A::m_fAxisMovPerPulse[X_AXIS]); }), "");
    EXPECT_EQ(LostBy([&] { motors.SetMovPerPulse(X_AXIS, 0.002); }), "X");
    EXPECT_EQ(LostBy([&] { motors.CopyToGroup(X_AXIS); }), "YZ");
    EXPECT_EQ(LostBy([&] { motors.SelectBoard(VTR5_CTRL); }), "XYZ");
    A::m_bHomeSensorsUsed = false;
    EXPECT_EQ(LostBy([&] { motors.UseHomeSensors(true); }), "XYZ");
    EXPECT_EQ(LostBy([&] { motors.SetPosLimit(X_AXIS, 55.0); }), "");
}
}   // namespace
