#include "motion/PulseLoops.h"
#include "support/FakeClock.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <new>

// The pulse loops in one thread, on a clock that the test moves.

using Edges = std::vector<CPinLog::stEdge>;

thread_local int g_iAllocations = 0;   // by this thread; other suites count with it
// Never inlined: where only one of a pair is, the compiler sees malloc beside delete, or new beside free, and takes
// them for a mismatch.
[[gnu::noinline]] void* operator new(size_t uSize)
{
    ++g_iAllocations;
    if (void* p = std::malloc(uSize)) return p;
    throw std::bad_alloc();
}
[[gnu::noinline]] void* operator new(size_t uSize, const std::nothrow_t&) noexcept
{
    ++g_iAllocations;
    return std::malloc(uSize);
}
[[gnu::noinline]] void operator delete(void* p) noexcept
{
    std::free(p);
}
[[gnu::noinline]] void operator delete(void* p, size_t) noexcept
{
    std::free(p);
}

// ---- Coordinated moves
// ------------------------------------------------------------------------------------------------

class CoordinatedLoop : public testing::Test
{
protected:
    stAxisTrack Track(quint16 uPin, quint32 uPulses, double fHigh, double fLow)
    {
        stAxisTrack track;
        track.bDone = false;
        track.uPulsePin = uPin;
        track.fConstHigh = fHigh;
        track.fConstLow = fLow;
        track.uRampDown = track.uTotal = uPulses;
        track.lDelta = 10;
        track.pAcc = &m_uAcc;
        track.pCurPos = &m_lPos[uPin];
        return track;
    }
    quint64 Run(std::span<stAxisTrack> tracks) { return RunMove(tracks, m_bRun, m_bSimulation, m_Clock, m_Pins); }

    CFakeClock m_Clock{100};
    CPinLog m_Pins{m_Clock};
    CShared<bool> m_bRun = true, m_bSimulation = false;
    CShared<quint32> m_uAcc = 0;
    CShared<qint32> m_lPos[8] = {};
};

TEST_F(CoordinatedLoop, LostTimeIsCaughtUpAndNeverAdded)
{
    m_Clock.StallAt(5'000, 2'500);
    stAxisTrack x = Track(2, 3, 2'000, 2'000);

    const quint64 uEnd = Run(std::span(&x, 1));

    EXPECT_EQ(m_Pins.edges, (Edges{{100, 2, 1},
                                   {2'000, 2, 0},
                                   {4'000, 2, 1},
                                   {7'500, 2, 0},   // due at 6'000
                                   {8'000, 2, 1},   // back on schedule
                                   {10'000, 2, 0}}));
    EXPECT_EQ(12'000u, uEnd) << "the last low time is waited for";
    EXPECT_EQ(30, m_lPos[2]);
}

// Late edges go out back to back, one a round: wanted, since the position must be right.
TEST_F(CoordinatedLoop, EdgesThatAStallSwallowedFollowOneARound)
{
    m_Clock.StallAt(1'000, 3'000);
    stAxisTrack x = Track(2, 3, 500, 500);
    Run(std::span(&x, 1));
    EXPECT_EQ(m_Pins.edges,
              (Edges{{100, 2, 1}, {500, 2, 0}, {4'000, 2, 1}, {4'100, 2, 0}, {4'200, 2, 1}, {4'300, 2, 0}}));
}

TEST_F(CoordinatedLoop, AxesShareOneTimeAndOneReadingARoundAndGoInTheirOrder)
{
    std::vector<stAxisTrack> tracks = {Track(2, 2, 300, 700), Track(4, 1, 300, 700), Track(5, 3, 100, 400)};
    const int iAllocations = g_iAllocations;
    Run(tracks);
    EXPECT_EQ(iAllocations, g_iAllocations) << "nothing is allocated in a move";
    EXPECT_EQ(m_Pins.edges, (Edges{{100, 2, 1},
                                   {100, 4, 1},
                                   {100, 5, 1},
                                   {200, 5, 0},
                                   {300, 2, 0},
                                   {300, 4, 0},
                                   {500, 5, 1},
                                   {600, 5, 0},
                                   {1'000, 2, 1},
                                   {1'000, 5, 1},
                                   {1'100, 5, 0},
                                   {1'300, 2, 0}}));
    EXPECT_EQ(20, m_Clock.Readings()) << "one reading a round, up to the end of the last low time at 2'000";
}

TEST_F(CoordinatedLoop, RampsGoUpAndDownTheSameTableAndTheUpwardCountIsReadAfresh)
{
    const double high[] = {10, 20}, low[] = {990, 480};
    stAxisTrack x = Track(2, 5, 30, 70);
    m_uAcc = 2;
    x.uRampDown = 3;
    x.lDecel = 1;
    x.pHigh = high;
    x.pLow = low;
    CFakeClock clock(1);
    CPinLog pins(clock);
    clock.At(1'000, [&] { m_uAcc = 1; });   // the second pulse is then one of constant speed
    RunMove(std::span(&x, 1), m_bRun, m_bSimulation, clock, pins);
    EXPECT_EQ(pins.edges, (Edges{{1, 2, 1},
                                 {10, 2, 0},
                                 {1'000, 2, 1},
                                 {1'030, 2, 0},
                                 {1'100, 2, 1},
                                 {1'130, 2, 0},
                                 {1'200, 2, 1},
                                 {1'220, 2, 0},
                                 {1'700, 2, 1},
                                 {1'710, 2, 0}}));
}

TEST_F(CoordinatedLoop, AStopEndsItWithinOneRoundAndThePositionIsThatOfThePulsesMade)
{
    m_Clock.At(4'500, [this] { m_bRun = false; });
    stAxisTrack x = Track(2, 100, 1'000, 1'000);
    const quint64 uEnd = Run(std::span(&x, 1));
    EXPECT_EQ(4'500u, uEnd);
    EXPECT_EQ(5u, m_Pins.edges.size()) << "0, 1000, 2000, 3000, 4000";
    EXPECT_EQ(30, m_lPos[2]) << "counted at the rising edge";
}

TEST_F(CoordinatedLoop, SimulationIsSilentAndTakesAsLong)
{
    m_bSimulation = true;
    stAxisTrack x = Track(2, 3, 2'000, 2'000);
    EXPECT_EQ(12'000u, Run(std::span(&x, 1)));
    EXPECT_TRUE(m_Pins.edges.empty());
    EXPECT_EQ(30, m_lPos[2]);
}

// ---- One axis by itself ---------------------------------------------------------------------------------------------

class SingleAxisLoop : public testing::Test
{
protected:
    SingleAxisLoop()
    {
        m_Run.uPulsePin = 2;
        m_Run.uHomePin = 23;
        m_Run.uProbePin = 21;
        m_Run.high = m_High;
        m_Run.low = m_Low;
        m_Run.fConstHigh = 10;
        m_Run.fConstLow = 20;
        m_Run.lDelta = -10;
    }
    void Run() { RunAxis(m_Run, m_bMoving, m_Clock, m_Pins); }
    size_t Pulses() const { return m_Pins.edges.size() / 2; }

    const double m_High[3] = {10, 10, 10}, m_Low[3] = {90, 60, 30};
    CShared<qint32> m_lPos = 0;
    CShared<bool> m_bDecelerate = false, m_bHoming = false, m_bWatch = false, m_bSimulation = false, m_bMoving = true;
    stAxisRun m_Run{.lCurPos = m_lPos,
                    .bDecelerate = m_bDecelerate,
                    .bHoming = m_bHoming,
                    .bWatchZProbe = m_bWatch,
                    .bSimulation = m_bSimulation};
    CFakeClock m_Clock{1};
    CPinLog m_Pins{m_Clock};
};

// A wait starts from the reading behind the pin write: lateness stretches a pulse and never shortens the next.
TEST_F(SingleAxisLoop, AStallStretchesItsPulseOnly)
{
    m_Run.uConst = 3;
    m_Clock.StallAt(40, 100);
    Run();
    EXPECT_EQ(m_Pins.edges, (Edges{{0, 2, 1}, {11, 2, 0}, {32, 2, 1}, {140, 2, 0}, {161, 2, 1}, {172, 2, 0}}));
    EXPECT_EQ(-30, m_lPos);
}

TEST_F(SingleAxisLoop, AReleaseRampsDownFromTheSpeedReached)
{
    m_Run.uAcc = m_Run.uDec = 3;
    m_Run.uConst = 100;
    m_Clock.At(150, [this] { m_bDecelerate = true; });   // in the second pulse: two pulses up, two down
    Run();
    EXPECT_EQ(4u, Pulses());
    EXPECT_TRUE(m_bMoving) << "the loop's owner lowers the flag";
}

TEST_F(SingleAxisLoop, SensorAndProbeEndItBehindTheirPulseOnlyWhereTheyAreWatched)
{
    struct stCase
    {
        const char* szWhat;
        bool bSensors, bHoming, bProbeAxis, bWatch;
        int iPin;
        size_t uPulses;
    };
    for (const stCase& c : {stCase{"homing, on the sensor at the start", true, true, false, false, 23, 0},
                            stCase{"on the sensor, not homing", true, false, false, false, 23, 7},
                            stCase{"homing, no sensors in use", false, true, false, false, 23, 7},
                            stCase{"probe high at the start: one pulse", false, false, true, true, 21, 1},
                            stCase{"probe not watched", false, false, true, false, 21, 7},
                            stCase{"probe on another axis", false, false, false, true, 21, 7}}) {
        m_Pins.edges.clear();
        m_Pins.inputs = {{c.iPin, 1}};
        m_Run.bSensors = c.bSensors;
        m_Run.bProbeAxis = c.bProbeAxis;
        m_bHoming = c.bHoming;
        m_bWatch = c.bWatch;
        m_Run.uAcc = m_Run.uDec = 3;
        m_Run.uConst = 1;
        m_bMoving = true;
        Run();
        EXPECT_EQ(c.uPulses, Pulses()) << c.szWhat;
    }
}

TEST_F(SingleAxisLoop, SimulationIsSilentButReadsItsSensors)
{
    m_bSimulation = true;
    m_Run.bSensors = true;
    m_bHoming = true;
    m_Run.uConst = 100;
    m_Clock.At(200, [this] { m_Pins.inputs[23] = 1; });
    Run();
    EXPECT_TRUE(m_Pins.edges.empty());
    EXPECT_FALSE(m_bMoving);
    EXPECT_EQ(-70, m_lPos);
}

TEST_F(SingleAxisLoop, APulseCostsTwoWritesAndNoAllocation)
{
    m_Run.uAcc = m_Run.uDec = 3;
    m_Run.uConst = 10;
    const int iAllocations = g_iAllocations;
    Run();
    EXPECT_EQ(iAllocations, g_iAllocations);
    EXPECT_EQ(32u, m_Pins.edges.size());
    EXPECT_EQ(0, m_Pins.iReads) << "no input is read where none is watched";
}
