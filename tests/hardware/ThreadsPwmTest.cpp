#include "config/AppConfig.h"
#include "hardware/Pwm.h"
#include "platform/virtual/VirtualPins.h"
#include "support/CleanMachine.h"

#include <QElapsedTimer>

// Counts the halves that were shorter than asked for, and those that the first frequency can't have made.
class ThreadsPwm : public CCleanMachine, public CPinObserver
{
protected:
    ThreadsPwm() { CVirtualPins::SetObserver(this); }
    ~ThreadsPwm() override { CVirtualPins::SetObserver(nullptr); }
    void OnWrite(int iPin, int iLevel) override
    {
        if (iPin != 12) return;
        const qint64 lNow = m_Clock.nsecsElapsed();
        if (m_iWrites > 0 && iLevel == m_iLast) ++m_iRepeats;
        if (m_iWrites > 0 && lNow - m_lLast < m_lShortest) ++m_iEarly;
        if (m_iWrites > 0 && lNow - m_lLast < 500'000) ++m_iFast;
        m_lLast = lNow;
        m_iLast = iLevel;
        ++m_iWrites;
    }
    template <class Fn> static bool Wait(Fn fnCondition)
    {
        for (int n = 0; n < 10000 && !fnCondition(); ++n) QThread::msleep(1);
        return fnCondition();
    }

    QElapsedTimer m_Clock = [] {
        QElapsedTimer clock;
        clock.start();
        return clock;
    }();
    qint64 m_lLast = 0;   // of the writing thread
    int m_iLast = -1;
    std::atomic<qint64> m_lShortest = 500'000;
    std::atomic<int> m_iWrites = 0, m_iEarly = 0, m_iRepeats = 0, m_iFast = 0;
    CPWM m_Pwm;
};

TEST_F(ThreadsPwm, HoldsEachHalfFollowsTheFrequencyAndLeavesThePinLow)
{
    AppConfig::m_stPwmSpndlSettings.iCurFreq = 1000;
    m_Pwm.PwmStart();
    ASSERT_TRUE(Wait([this] { return m_iWrites > 9; }));
    EXPECT_EQ(m_iEarly, 0);
    m_lShortest = 0;
    AppConfig::m_stPwmSpndlSettings.iCurFreq = 20000;
    EXPECT_TRUE(Wait([this] { return m_iFast > 9; })) << "the new frequency is not in force";
    EXPECT_EQ(m_iRepeats, 0);
    m_Pwm.PwmStop();
    ASSERT_TRUE(m_Pwm.wait(10000));
    EXPECT_EQ(CVirtualPins::Level(12), 0);
}

TEST_F(ThreadsPwm, WithoutAFrequencyThePinStaysLow)
{
    AppConfig::m_stPwmSpndlSettings.iCurFreq = 0;
    m_Pwm.PwmStart();
    ASSERT_TRUE(m_Pwm.wait(10000));
    EXPECT_EQ(m_iWrites, 1);
    EXPECT_EQ(CVirtualPins::Level(12), 0);
}
