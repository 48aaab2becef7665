#include "config/AppConfig.h"
#include "motion/AllAxisCtrl.h"
#include "platform/virtual/VirtualPins.h"
#include "support/CleanMachine.h"
#include "time/Wait.h"

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

TEST_F(AxisRules, AJogBeyondItsLimitIsRefusedBecauseItWouldRunTheOtherWay)
{
    AppConfig::m_bHomeSensorsUsed = true;
    AppConfig::m_fAxisNegDirLimit[X_AXIS] = -1.0;
    AppConfig::m_fAxisPosDirLimit[X_AXIS] = 1.0;
    m_X.ConfigAxis();
    m_X.SetCurPos(1.5);
    EXPECT_FALSE(m_X.Jog(DIR_CW));
    EXPECT_EQ("X Axis is beyond its limit of 1.0000, jog the other way", m_X.GetErrorMsg());
    EXPECT_TRUE(m_X.Jog(DIR_CCW));
    CWait::SpinUntil([this] { return !m_X.GetAxisState(); });
    EXPECT_EQ(-10000, m_X.GetCurPosLong());
    m_X.SetCurPos(-1.5);
    EXPECT_FALSE(m_X.Jog(DIR_CCW));
}

TEST_F(AxisRules, ASensorIsWatchedUntilTheAxisStandsAlsoWhenNobodyWaitsForIt)
{
    AppConfig::m_bHomeSensorsUsed = true;
    const int iSensor = AppConfig::m_iAxisMchHomeSensorInput[X_AXIS] = 20;
    CVirtualPins::SetInput(iSensor, 0);
    m_X.m_bHoming = true;
    ASSERT_TRUE(m_X.MoveAxisHome());
    CWait::SpinBeyond(1'000'000);
    m_X.EndWatch();
    EXPECT_TRUE(m_X.m_bHoming);
    m_X.RequestStop();
    CWait::SpinUntil([this] { return m_X.m_bThreadIdle; });
    EXPECT_TRUE(m_X.m_bHoming) << "its thread may come late, and this be the watch of the next homing";
    EXPECT_FALSE(m_X.MoveAbs(1.0) || m_X.m_bHoming) << "dropped by the next command, which asks for a home";
    m_X.m_bWatchZProbe = true;
    m_X.EndWatch();   // standing: at once
    EXPECT_FALSE(m_X.m_bWatchZProbe);
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
    AppConfig::m_bSimulationMode = false;
    m_X.PutDirection();   // the pin catches up
    EXPECT_EQ(1, CVirtualPins::Level(AppConfig::m_iAxisDirOutput[X_AXIS]));
    EXPECT_EQ(lThen + 5001, m_Time.Now());
}
