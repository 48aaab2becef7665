#include "common/Wait.h"
#include "config/AppConfig.h"
#include "motion/AllAxisCtrl.h"
#include "platform/VirtualPins.h"
#include "support/CleanMachine.h"

// What an axis accepts and refuses, and how it splits a move. On virtual time.

class AxisRules : public CCleanMachine
{
protected:
    AxisRules()
    {
        for (int axis = 0; axis < 3; ++axis) {
            m_Axes.m_AxisCtrl[axis].m_sAxis = static_cast<qint16>(axis);
            m_Axes.m_AxisCtrl[axis].ConfigAxis();
        }
    }
    std::vector<quint32> Counts() const { return {m_X.m_uAccPulses, m_X.m_uConstPulses, m_X.m_uDecPulses}; }
    void WithSensors(double fWorkZero)
    {
        AppConfig::m_bHomeSensorsUsed = true;
        AppConfig::m_fAxisWorkZero[X_AXIS] = fWorkZero;
        m_X.ConfigAxis();
    }
    bool Move(double fPos)
    {
        const bool bOk = m_X.MoveAbs(fPos);
        CWait::SpinUntil([this] { return !m_X.GetAxisState(); });
        return bOk;
    }

    CVirtualTime m_Time;
    CMachineAxes m_Axes;
    AxisCtrl& m_X = m_Axes.m_AxisCtrl[X_AXIS];
};

TEST_F(AxisRules, AMoveOfExactlyTwoRampsIsALongOneWithoutConstantSpeed)
{
    using Three = std::vector<quint32>;
    ASSERT_EQ(328u, (m_X.SetAxisMovParams(1.0), m_X.m_lstHighTime[m_X.m_ucCurTable].size()));
    const std::pair<double, Three> cases[] = {{0.001, {1, 0, 0}},     {0.002, {2, 0, 0}},     {0.003, {2, 0, 1}},
                                              {0.655, {328, 0, 327}}, {0.656, {328, 0, 328}}, {0.657, {328, 1, 328}}};
    for (const auto& [fTo, counts] : cases) {
        ASSERT_TRUE(m_X.SetAxisMovParams(fTo));
        EXPECT_EQ(counts, Counts()) << fTo;
    }
    ASSERT_TRUE(m_X.SetAxisMovParams(0.0005));   // below one step
    EXPECT_EQ((Three{0, 0, 0}), Counts());
    EXPECT_EQ(0, m_X.m_lTargetPos);
}

TEST_F(AxisRules, SoftLimitsAreInclusiveAndToldInWorkCoordinates)
{
    WithSensors(100.0);   // machine limits 0 to 180: -100 to 80 from the work zero
    EXPECT_FALSE(Move(1.0));
    EXPECT_EQ("Homing not done! Use \"Move Home\" in user Settings", m_X.GetErrorMsg());
    m_X.SetMchHome();
    EXPECT_EQ(-100.0, m_X.GetCurPos());
    EXPECT_TRUE(m_X.CheckValidMotion(-1'000'000));
    EXPECT_TRUE(m_X.CheckValidMotion(800'000));
    for (const qint64 lBeyond : {-1'000'001, 800'001}) {
        EXPECT_FALSE(m_X.CheckValidMotion(lBeyond));
        EXPECT_EQ("X Axis Absolute Position value must be between -100.0000 and 80.0000", m_X.GetErrorMsg());
    }
    m_X.m_bHoming = true;   // a homing axis knows no limits
    EXPECT_TRUE(m_X.CheckValidMotion(99'000'000));
}

TEST_F(AxisRules, PositionsBeyond32BitsAreRefusedAndNothingMoves)
{
    for (const double fFar : {214748.3648, -1e300, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_FALSE(Move(fFar));
        EXPECT_EQ("Position to move must be within the motion limits", m_X.GetErrorMsg());
        EXPECT_FALSE(m_X.SetAxisMovParams(fFar));
        EXPECT_FALSE(m_X.MoveRel(fFar));
    }
    m_X.SetCurPos(200000.0);
    EXPECT_FALSE(m_X.MoveRel(20000.0));
    m_X.SetCurPos(-214748.0);   // the way itself may be longer than 32 bits
    ASSERT_TRUE(m_X.SetAxisMovParams(214748.0));
    EXPECT_EQ(429'496'000u, m_X.m_uAccPulses + m_X.m_uConstPulses + m_X.m_uDecPulses);
}

TEST_F(AxisRules, AnAxisWithoutTablesMakesNoMove)
{
    AppConfig::m_fAxisAcc[X_AXIS] = 0.0;
    EXPECT_FALSE(m_X.ConfigAxis());
    EXPECT_FALSE(Move(1.0));
    EXPECT_EQ(m_X.GetBuildError(), m_X.GetErrorMsg());
    EXPECT_FALSE(m_X.GetErrorMsg().isEmpty());
    EXPECT_EQ(0, m_X.GetCurPosLong());
    AppConfig::m_fAxisAcc[X_AXIS] = 600.0;
    ASSERT_TRUE(m_X.ConfigAxis());
    EXPECT_TRUE(Move(1.0));
    EXPECT_EQ(10000, m_X.GetCurPosLong());
}

TEST_F(AxisRules, ARequestThatAStoppedJobLeftBehindMovesNothing)
{
    CAllAxisCtrl::m_lstAxisToMov[X_AXIS] = true;
    ASSERT_TRUE(m_X.SetAxisMovParams(1.0));
    CAllAxisCtrl::m_bStartMotion = true;
    CAllAxisCtrl::StartAutoMode(&m_Axes);
    CWait::SpinBeyond(1'000'000);
    EXPECT_FALSE(CAllAxisCtrl::GetMotionState());
    EXPECT_EQ(0, m_X.GetCurPosLong());
}

TEST_F(AxisRules, NoAutoModeOutlivesAnEmergencyStopThatCameBeforeItsStart)
{
    AppConfig::m_bEmergencyStopON = true;
    CAllAxisCtrl::StartAutoMode(&m_Axes);
    CAllAxisCtrl::WaitForAutoModeEnd();
    EXPECT_FALSE(CAllAxisCtrl::m_bAutoModeRunning);
    EXPECT_FALSE(CAllAxisCtrl::StartMotion());
}

TEST_F(AxisRules, TheDirectionIsSettledForFiveMicrosecondsAlsoInSimulationWhereNoPinIsWritten)
{
    AppConfig::m_bSimulationMode = true;
    ASSERT_TRUE(m_X.MoveAbs(-1.0));
    EXPECT_EQ(5001, m_Time.Now());
    EXPECT_EQ(0, CVirtualPins::Level(AppConfig::m_iAxisDirOutput[X_AXIS]));
    CWait::SpinUntil([this] { return !m_X.GetAxisState(); });
    EXPECT_EQ(-10000, m_X.GetCurPosLong());
    const qint64 lThen = m_Time.Now();
    ASSERT_TRUE(m_X.SetAxisMovParams(-2.0));   // the same direction again: no settling in the coordinated mode
    EXPECT_EQ(lThen, m_Time.Now());
}
