#include "common/Refusals.h"
#include "machine/WorkerFixture.h"

namespace {
struct stSpeed
{
    int iSpeed, iMinFreq, iMaxFreq, iMinSpeed, iMaxSpeed, iFreq;
};
class SpindleSpeed : public CWorkerTest, public testing::WithParamInterface<stSpeed>
{
};
TEST_P(SpindleSpeed, GivesTheFrequencyInSixteenBits)
{
    const stSpeed& s = GetParam();
    stPwmSpindleSettings& pwm = AppConfig::m_stPwmSpndlSettings;
    pwm.iMinFreq = quint16(s.iMinFreq);
    pwm.iMaxFreq = quint16(s.iMaxFreq);
    pwm.iMinSpeed = quint16(s.iMinSpeed);
    pwm.iMaxSpeed = quint16(s.iMaxSpeed);
    pwm.iTimeDelay = 40000;
    pwm.iCurFreq = 77;
    m_App.SetSpindleSpeed(s.iSpeed);   // the slide bar rules
    EXPECT_EQ(pwm.iCurFreq, 77);
    EXPECT_EQ(m_Time.Now(), 0);
    AppConfig::m_GCodeRunSettings.bUsePrgmSpindleSpeed = true;
    m_App.SetSpindleSpeed(s.iSpeed);
    EXPECT_EQ(pwm.iCurFreq, s.iFreq);
    EXPECT_EQ(m_Time.Now(), 40'000'000'000);
    EXPECT_EQ(m_App.m_lstErrMsg.size(), s.iMinSpeed == s.iMaxSpeed ? 1 : 0);
}
INSTANTIATE_TEST_SUITE_P(
    Speeds, SpindleSpeed,
    testing::Values(stSpeed{24000, 100, 3000, 1000, 24000, 3000}, stSpeed{1000, 100, 3000, 1000, 24000, 100},
                    stSpeed{12345, 100, 3000, 1000, 24000, 1530},   // 100 + 11345 * 2900 / 23000 = 1530.45...
                    stSpeed{0, 100, 3000, 1000, 24000, 65510},      // 100 - 126.08 is -26, which wraps
                    stSpeed{2147483647, 0, 65535, 0, 1, 1},         // 2147483647 * 65535 is 1 modulo 65536
                    stSpeed{2000, 3000, 100, 1000, 2000, 100},      // differences in 16 bits: 62636 per 1000
                    stSpeed{5000, 100, 3000, 1000, 1000, 77}));

class Spindle : public CWorkerTest
{
protected:
    static int Relays()   // 1 CW, 2 CCW, 3 both
    {
        return CVirtualPins::Level(AppConfig::m_lstMCodesPin[3]) +
               2 * CVirtualPins::Level(AppConfig::m_lstMCodesPin[4]);
    }
    CSpindle& m_Spindle = m_App.m_Spindle;
};

TEST_F(Spindle, ATouchGoesByTheOutputsAndNothingReversesOneThatTurns)
{
    Build();
    AppConfig::m_bSpindleOn = true;   // a look that is not true
    EXPECT_TRUE(m_Spindle.Toggle(DIR_CW));
    EXPECT_EQ(Relays(), 1);
    EXPECT_EQ(m_Spindle.WhyStillTurning(), "Spindle still turns CW");
    AppConfig::m_bSpindleOn = false;
    EXPECT_FALSE(m_Spindle.Toggle(DIR_CCW));
    EXPECT_EQ(Relays(), 0);

    m_Spindle.TurnOnOffSpindle(true, DIR_CCW);
    AppConfig::m_bAutoSpindleOnCW = true;
    const GCodeProgram program(1);
    EXPECT_FALSE(m_App.StartGCode(&program));
    EXPECT_EQ(m_App.TakeErrors(), QStringList("Spindle turns CCW: turn it off, it starts CW"));
    EXPECT_EQ(m_App.m_eOperation, OP_NONE);
    EXPECT_EQ(Relays(), 2);
}

TEST_F(Spindle, BehindAStopAndInSimulationNoRelayClosesAndBothAlwaysOpen)
{
    Build();
    m_Spindle.TurnOnOffSpindle(true, DIR_CW);
    AppConfig::m_bEmergencyStopON = true;
    EXPECT_FALSE(m_Spindle.Toggle(DIR_CW));
    EXPECT_EQ(Relays(), 0);
    EXPECT_FALSE(m_Spindle.Toggle(DIR_CW));
    EXPECT_EQ(Relays(), 0);
    EXPECT_EQ(m_App.TakeErrors(), QStringList(RELEASE_EMERGENCY_SWITCH));
    AppConfig::m_bEmergencyStopON = false;
    m_Spindle.TurnOnOffSpindle(true, DIR_CCW);
    AppConfig::m_bSimulationMode = true;
    EXPECT_FALSE(m_Spindle.Toggle(DIR_CW));
    EXPECT_EQ(Relays(), 0);
    EXPECT_TRUE(m_Spindle.Toggle(DIR_CW));
    EXPECT_EQ(Relays(), 0);
    EXPECT_FALSE(m_Spindle.Toggle(DIR_CW)) << "the touch behind it";
}
}   // namespace
