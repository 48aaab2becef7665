#include "machine/MotorSettings.h"

#include "machine/PwmSettings.h"
#include "machine/WorkerFixture.h"

using A = AppConfig;

namespace {
class MotorSettings : public CWorkerTest
{
protected:
    MotorSettings() { Build(); }
    // An axis of 100 mm/s at an override of 80 percent.
    static void Feeds(int axis, double fUser, double fJog)
    {
        A::m_fMaxAxisFeed[axis] = 100.0;
        A::m_fUserAxisFeed[axis] = fUser;
        A::m_fAxisJogFeed[axis] = fJog;
        A::m_fAxisFeedPercent[axis] = 0.8;
    }
    AxisCtrl& Axis(int axis) { return m_App.m_AxisCtrl[axis]; }
    CMotorSettings m_Motors{m_App};
};

TEST_F(MotorSettings, AReducedMaximumPullsUserAndJogFeedToItsRoom)
{
    Feeds(Y_AXIS, 40.0, 50.0);
    EXPECT_EQ(m_Motors.SetMaxFeed(Y_AXIS, 30.0), "");
    EXPECT_EQ(A::m_fUserAxisFeed[Y_AXIS], 20.0);
    EXPECT_EQ(A::m_fAxisJogFeed[Y_AXIS], 20.0);
    EXPECT_EQ(A::m_fAxisFeed[Y_AXIS], 16.0);
    EXPECT_EQ(NextFeed(Y_AXIS), 16.0);                       // left with the working feed
    EXPECT_EQ(Axis(Y_AXIS).m_lstVelCurve.back(), 30000.0);   // recorded at the highest one
    EXPECT_FALSE(Axis(Y_AXIS).m_bStoreVelCurve);
}

TEST_F(MotorSettings, TheLeastMaximumCountsXYZAndThePlungeFeedFollowsZDown)
{
    A::m_fMaxAxisFeed[A_AXIS] = 5.0;
    A::m_fPlungeFeed = 15.0;
    m_Motors.SetMaxFeed(X_AXIS, 13.0);
    EXPECT_EQ(A::m_fMinMaxAxisFeed, 13.0);
    EXPECT_EQ(A::m_fPlungeFeed, 15.0);
    m_Motors.SetMaxFeed(Z_AXIS, 12.0);
    EXPECT_EQ(A::m_fMinMaxAxisFeed, 12.0);
    EXPECT_EQ(A::m_fPlungeFeed, 8.0);
    m_Motors.SetUserFeed(Z_AXIS, 6.0);
    m_Motors.SetUserFeed(Z_AXIS, 7.0);
    EXPECT_EQ(A::m_fPlungeFeed, 6.0);
}

TEST_F(MotorSettings, AFinerStepCutsTheFeedAndACoarserOneRaisesTheArcStep)
{
    A::m_fAxisFeed[X_AXIS] = 150.0;
    A::m_fMaxAxisFeed[X_AXIS] = 200.0;
    m_Motors.SetMovPerPulse(X_AXIS, 0.0001);
    EXPECT_FALSE(m_Motors.IsFeedCut());   // 1.5 million pulses a second are allowed
    A::m_fAxisFeed[X_AXIS] = 151.0;
    m_Motors.SetMovPerPulse(X_AXIS, 0.0001);
    EXPECT_TRUE(m_Motors.IsFeedCut());
    EXPECT_EQ(A::m_fAxisFeed[X_AXIS], 0.0001 * 1500000.0);
    EXPECT_EQ(CMotorSettings::HighestMaxFeed(X_AXIS), 0.0001 * 1500000.0);

    EXPECT_EQ(A::m_GCodeRunSettings.fAxisStep, 0.1);
    m_Motors.SetMovPerPulse(X_AXIS, 0.25);
    EXPECT_EQ(A::m_GCodeRunSettings.fAxisStep, 0.25);
    EXPECT_EQ(Axis(X_AXIS).m_lPosPerPulse, 2500);
    EXPECT_EQ(Axis(Y_AXIS).m_lPosPerPulse, 10);
}

TEST_F(MotorSettings, TheDutyReachesTheTablesWithTheNextRebuild)
{
    const auto HighTime = [this] { return Axis(X_AXIS).m_fConstHighTime[1 - Axis(X_AXIS).m_ucCurTable]; };
    const double fOld = HighTime();
    m_Motors.SetDutyCycle(X_AXIS, 0.5);
    EXPECT_EQ(HighTime(), fOld);
    m_Motors.SetAcc(X_AXIS, 500.0);
    EXPECT_DOUBLE_EQ(HighTime(), 2 * fOld);
}

TEST_F(MotorSettings, CurveTypeAndSamplingTimeRebuildAllFive)
{
    const auto Sizes = [this] {
        std::vector<size_t> sizes;
        for (int axis = 0; axis < MAX_AXES; ++axis)
            sizes.push_back(Axis(axis).m_lstHighTime[1 - Axis(axis).m_ucCurTable].size());
        return sizes;
    };
    A::m_fAxisAcc[B_AXIS] = 300.0;   // each axis by its own values
    EXPECT_EQ(m_Motors.SetSamplingTime(0.0011), "");
    EXPECT_EQ(A::m_iVelAccSamplingTime, 1100u);
    const auto trapezoid = Sizes();
    EXPECT_EQ(trapezoid[A_AXIS], trapezoid[X_AXIS]);
    EXPECT_GT(trapezoid[B_AXIS], trapezoid[X_AXIS]);
    m_Motors.ToggleCurveType();
    EXPECT_EQ(A::m_eAxisFeedtype, 1);
    for (int axis = 0; axis < MAX_AXES; ++axis) EXPECT_NE(Sizes()[size_t(axis)], trapezoid[size_t(axis)]) << axis;
    m_Motors.ToggleCurveType();
    EXPECT_EQ(A::m_eAxisFeedtype, 0);
    EXPECT_EQ(Sizes(), trapezoid);
}

TEST_F(MotorSettings, ARefusedRampIsToldAndLeavesNoPicture)
{
    A::m_fMaxAxisFeed[X_AXIS] = 1500.0;
    EXPECT_EQ(m_Motors.SetAcc(X_AXIS, 0.01), "X-Axis acceleration is too low for this feed");
    EXPECT_TRUE(Axis(X_AXIS).m_lstVelCurve.empty());
    EXPECT_EQ(m_Motors.SetMaxFeed(Y_AXIS, 0.0), "Y-Axis feed must be greater than zero");
}

TEST_F(MotorSettings, ACopyGoesToTheGroupOfItsAxis)
{
    for (const auto& [eFrom, eTo, eOther] : {std::tuple{Y_AXIS, Z_AXIS, A_AXIS}, {A_AXIS, B_AXIS, X_AXIS}}) {
        A::m_fAxisMovPerPulse[eFrom] = 0.002;
        A::m_fMaxAxisFeed[eFrom] = 9.0;
        A::m_fAxisAcc[eFrom] = 321.0;
        A::m_fAxisDutyCycle[eFrom] = 0.4;
        A::m_fAxisRateOfAcc[eFrom] = 4321.0;
        A::m_fUserAxisFeed[eTo] = 7.0;
        A::m_fAxisJogFeed[eTo] = 5.0;
        const double fOtherAcc = A::m_fAxisAcc[eOther];
        EXPECT_EQ(m_Motors.CopyToGroup(eFrom), "");
        EXPECT_EQ(A::m_fAxisMovPerPulse[eTo], 0.002);
        EXPECT_EQ(A::m_fMaxAxisFeed[eTo], 9.0);
        EXPECT_EQ(A::m_fAxisAcc[eTo], 321.0);
        EXPECT_EQ(A::m_fAxisDutyCycle[eTo], 0.4);
        EXPECT_EQ(A::m_fAxisRateOfAcc[eTo], 4321.0);
        EXPECT_EQ(A::m_fUserAxisFeed[eTo], 6.0);
        EXPECT_EQ(A::m_fAxisJogFeed[eTo], 5.0);
        EXPECT_EQ(Axis(eTo).m_lPosPerPulse, 20);
        EXPECT_EQ(NextFeed(eTo), 6.0);
        EXPECT_EQ(A::m_fAxisAcc[eOther], fOtherAcc);
        if (eTo == Z_AXIS) {
            EXPECT_EQ(A::m_fPlungeFeed, 6.0);
        }
    }
}

TEST_F(MotorSettings, AUserFeedIsNeverAboveItsRoomAndSetsTheAxis)
{
    A::m_fMaxAxisFeed[X_AXIS] = 25.0;
    A::m_fAxisFeedPercent[X_AXIS] = 0.5;
    m_Motors.SetUserFeed(X_AXIS, 16.6667);   // as the keypad prints 25 / 1.5
    EXPECT_EQ(A::m_fUserAxisFeed[X_AXIS], 25.0 / 1.5);
    EXPECT_EQ(NextFeed(X_AXIS), 25.0 / 1.5 * 0.5);
    m_Motors.SetJogFeed(X_AXIS, 17.0);
    EXPECT_EQ(A::m_fAxisJogFeed[X_AXIS], 25.0 / 1.5);
    m_Motors.UseG01FeedForJog(true);
    EXPECT_EQ(A::m_fAxisJogFeed[X_AXIS], A::m_fAxisFeed[X_AXIS]);
    EXPECT_EQ(A::m_fAxisJogFeed[A_AXIS], 10.0);   // not of this machine
    m_Motors.SetUserFeed(X_AXIS, 10.0);
    EXPECT_EQ(A::m_fAxisJogFeed[X_AXIS], 5.0);
}

TEST_F(MotorSettings, LimitsMustLieApart)
{
    A::m_bHomeSensorsUsed = true;
    const QString strPos = "Positive Limit Can't be less than\nor equal to Negative Limit";
    const QString strNeg = "Negative Limit Can't be greater than\nor equal to Positive Limit";
    EXPECT_EQ(m_Motors.SetPosLimit(Z_AXIS, -40.0), strPos);
    EXPECT_EQ(m_Motors.SetNegLimit(Z_AXIS, 0.0), strNeg);
    EXPECT_EQ(A::m_fAxisPosDirLimit[Z_AXIS], 0.0);
    EXPECT_EQ(A::m_fAxisNegDirLimit[Z_AXIS], -40.0);
    EXPECT_EQ(m_Motors.SetPosLimit(Z_AXIS, -39.9999), "");
    EXPECT_EQ(m_Motors.SetPosLimit(Z_AXIS, 2.5), "");
    EXPECT_EQ(m_Motors.SetNegLimit(Z_AXIS, 2.4), "");
    EXPECT_EQ(Axis(Z_AXIS).m_lPosLimit, 25000);
    EXPECT_EQ(Axis(Z_AXIS).m_lNegLimit, 24000);
    A::m_bHomeSensorsUsed = false;
    EXPECT_EQ(m_Motors.ConfigAxes(), "");
    EXPECT_EQ(Axis(Z_AXIS).m_lPosLimit, 100'000'000);
}

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

TEST_F(MotorSettings, OneAxisAloneHomesAndLeavesTheOthersTheirPlace)
{
    A::m_bHomeSensorsUsed = true;
    A::m_fAxisWorkZero[Y_AXIS] = -20.0;
    stVirtualMachine wiring = Wiring();
    wiring.axes[Y_AXIS].bSensorAbove = true;
    wiring.axes[Y_AXIS].fSensorAt = 0.0;
    wiring.axes[Y_AXIS].fStart = -4.0;
    Build(wiring);
    m_App.SetMchHome();
    m_App.m_AxisCtrl[X_AXIS].SetCurPos(7.0);
    ASSERT_TRUE(m_App.StartMchHomingSequence(Y_AXIS));
    m_App.wait();
    EXPECT_EQ(m_App.TakeErrors(), QStringList());
    EXPECT_TRUE(m_App.GetHomeDone());
    EXPECT_EQ(m_App.GetCurPos(Y_AXIS), 20.0);
    EXPECT_EQ(m_App.GetCurPos(X_AXIS), 7.0);
    EXPECT_EQ(m_pMachine->Carriage(X_AXIS), 0);
    EXPECT_EQ(m_pMachine->Carriage(Z_AXIS), 0);
    EXPECT_EQ(m_pMachine->Carriage(Y_AXIS), 0);   // at its sensor
}

TEST_F(MotorSettings, OneAxisThatFindsNoSensorLosesItsOwnHomeAlone)
{
    A::m_bHomeSensorsUsed = true;
    Build();
    m_App.SetMchHome();
    m_App.m_AxisCtrl[Z_AXIS].m_bNeedsRestart = true;   // its move is refused
    ASSERT_TRUE(m_App.StartMchHomingSequence(Z_AXIS));
    m_App.wait();
    EXPECT_FALSE(m_App.m_AxisCtrl[Z_AXIS].IsAxisHomeSet());
    EXPECT_TRUE(m_App.m_AxisCtrl[X_AXIS].IsAxisHomeSet() && m_App.m_AxisCtrl[Y_AXIS].IsAxisHomeSet());
    EXPECT_EQ(m_App.TakeErrors().size(), 1);
}

class PwmSettings : public CCleanMachine
{
};
TEST_F(PwmSettings, TheStepIsTheRestOfTheDivision)
{
    stPwmSpindleSettings& pwm = A::m_stPwmSpndlSettings;
    EXPECT_EQ(CPwmSettings::SetMaxFreq(2500.0), "");
    EXPECT_EQ(pwm.iFreqStep, 0);   // 2400 by 24
    EXPECT_EQ(CPwmSettings::SetMinFreq(150.0), "");
    EXPECT_EQ(pwm.iFreqStep, 22);   // 2350
    EXPECT_EQ(CPwmSettings::SetMinFreq(2500.0), "Lowest frequency must be below\nthe highest frequency");
    EXPECT_EQ(CPwmSettings::SetMaxFreq(150.0), "Lowest frequency must be below\nthe highest frequency");
    EXPECT_EQ(pwm.iMinFreq, 150);
    EXPECT_EQ(pwm.iMaxFreq, 2500);
    EXPECT_EQ(CPwmSettings::SetMaxFreq(151.0), "");
}
TEST_F(PwmSettings, TheLineFollowsItsSwitch)
{
    A::m_stPwmSpndlSettings.iCurFreq = 1000;
    CPwmSettings::UsePwmCtrl(true);
    EXPECT_TRUE(A::m_bPWMCtrlUsed);
    EXPECT_EQ(CVirtualPins::Mode(A::m_iSpindlePwmOutput), 8);
    CPwmSettings::UsePwmCtrl(false);
    EXPECT_FALSE(A::m_bPWMCtrlUsed);
    EXPECT_EQ(CVirtualPins::Mode(A::m_iSpindlePwmOutput), 7);
}
}   // namespace
