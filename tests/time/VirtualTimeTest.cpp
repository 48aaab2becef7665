#include "time/Wait.h"

#include <gtest/gtest.h>
#include <string>

// Runs on virtual time: they overlap, and everything comes in the order of time and rank.

namespace {
class CTimedRun : public CVirtualRun
{
public:
    CTimedRun(std::string& strLog, std::string strName, qint64 lLength)
        : m_strLog(strLog), m_strName(std::move(strName)), m_lLength(lLength)
    {
    }
    bool IsDue() const override { return m_bDue; }
    qint64 Run(qint64 lStart) override
    {
        m_bDue = false;
        m_bBusy = true;
        return lStart + m_lLength;
    }
    void Finish() override
    {
        m_bBusy = false;
        m_strLog += m_strName + "@" + std::to_string(CWait::Now()) + " ";
    }
    bool m_bDue = false, m_bBusy = false;

private:
    std::string& m_strLog;
    const std::string m_strName;
    const qint64 m_lLength;
};
}   // namespace

class VirtualTime : public testing::Test
{
protected:
    void Start(CTimedRun& run, int iRun)
    {
        m_Time.SetRun(iRun, &run);
        run.m_bDue = true;
    }
    void Event(qint64 lAt, const char* szName)
    {
        m_Time.AddEvent(
            {lAt, [this, szName] { m_strLog += std::string(szName) + "@" + std::to_string(m_Time.Now()) + " "; }, {}});
    }
    CVirtualTime m_Time;
    std::string m_strLog;
    CTimedRun m_X{m_strLog, "X", 500}, m_Y{m_strLog, "Y", 300}, m_Z{m_strLog, "Z", 500};
};

TEST_F(VirtualTime, RunsOverlapAndEndInOrderOfTimeThenRankBeforeEventsThenLimits)
{
    Start(m_Z, 3);
    Start(m_X, 1);
    CWait::SpinBeyond(99);   // the direction of Y settles while the others already move
    Start(m_Y, 2);
    Event(500, "event");
    EXPECT_FALSE(CWait::SpinUntil([] { return false; }, 400));
    EXPECT_EQ("Y@400 X@500 Z@500 event@500 ", m_strLog);
    EXPECT_EQ(500, m_Time.Now());
}

TEST_F(VirtualTime, APredicateIsSeenAtTheTimeAtWhichItComesTrue)
{
    Start(m_X, 1);
    EXPECT_TRUE(CWait::SpinUntil([&] { return !m_X.m_bBusy && !m_X.m_bDue; }));
    EXPECT_EQ(500, m_Time.Now());
    EXPECT_TRUE(CWait::SleepUntil([] { return true; }, 10));
    EXPECT_EQ(500, m_Time.Now());
}

TEST_F(VirtualTime, AnEventMayAddEventsAndWaitItself)
{
    m_Time.AddEvent({100,
                     [this] {
                         Event(150, "late");
                         CWait::SpinUntil([] { return false; }, 100);
                         m_strLog += "waited@" + std::to_string(m_Time.Now()) + " ";
                     },
                     {}});
    CWait::SpinUntil([] { return false; }, 120);
    EXPECT_EQ("late@150 waited@200 ", m_strLog);
    EXPECT_EQ(200, m_Time.Now());
}

TEST_F(VirtualTime, AWaitThatNothingWillEndIsToldOnceAndGivenUp)
{
    int iStuck = 0;
    m_Time.m_fnStuck = [&] { ++iStuck; };
    EXPECT_FALSE(CWait::SpinUntil([] { return false; }));
    EXPECT_EQ(1, iStuck);
}

TEST_F(VirtualTime, EachTimedSleepIsSupervisedOnceAndPooledTasksAreDoneAtOnce)
{
    int iCalls = 0;
    m_Time.m_fnSupervise = [&] { ++iCalls; };
    CWait::SleepUs(2000000);
    EXPECT_EQ(1, iCalls);
    EXPECT_EQ(2'000'000'000, m_Time.Now());
    RunPooled([&] { iCalls = 10; });
    EXPECT_EQ(10, iCalls);
}
