#include "common/ArcReading.h"
#include "common/UnitConverter.h"
#include "machine/MoveSpy.h"
#include "support/LoggedScreen.h"

#include <bit>
#include <cmath>
#include <limits>
#include <random>

// Arcs beyond the reference cases: the shape of random ones, what is refused, and what happens on their way.

namespace {
double Printed4(double fValue)
{
    return QString::number(fValue, 'f', 4).toDouble();
}
quint64 Bits(double fValue)
{
    return std::bit_cast<quint64>(fValue);
}
}   // namespace

TEST(Round4, EqualsPrintingAndReadingBackBitByBit)
{
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> exponent(-8.0, 13.0), unit(-1.0, 1.0);
    for (int n = 0; n < 100'000; ++n) {
        double fValue = unit(random) * std::pow(10.0, exponent(random));
        if (n % 3 == 0) fValue = (std::floor(fValue * 1e4) + 0.5) / 1e4;   // close to a half
        if (n % 5 == 0) fValue = std::nextafter(fValue, n % 2 ? 1e9 : -1e9);
        if (n % 7 == 0)
            fValue = double(qint64(random() % 2'000'001) - 1'000'000) / 32768.0;   // some are halves exactly
        ASSERT_EQ(Bits(Round4(fValue)), Bits(Printed4(fValue))) << QString::number(fValue, 'g', 17).toStdString();
    }
    EXPECT_TRUE(std::isnan(Round4(std::nan(""))));
}

struct stArcRefusal
{
    const char* szName;
    stArcShape arc;
    QString strWhy;
    size_t uPoints;   // where it is not refused
};

class ArcLimits : public testing::TestWithParam<stArcRefusal>
{
};

TEST_P(ArcLimits, AreHeld)
{
    std::vector<stArcPoint> points;
    QString strWhy;
    EXPECT_EQ(WalkArc(GetParam().arc, points, strWhy), GetParam().strWhy.isEmpty());
    EXPECT_EQ(strWhy, GetParam().strWhy);
    EXPECT_EQ(points.size(), GetParam().uPoints);
}
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
INSTANTIATE_TEST_SUITE_P(
    Shapes, ArcLimits,
    testing::Values(
        stArcRefusal{"CentreNotFinite", {{0, 0}, {9, 0}, {5, NOT_A_NUMBER}, 5, DIR_CW, false, 0.1}, ARC_TOO_SMALL, 0},
        stArcRefusal{"RadiusNotFinite", {{0, 0}, {9, 0}, {5, 0}, HUGE_VAL, DIR_CW, false, 0.1}, ARC_TOO_SMALL, 0},
        stArcRefusal{"NoStep", {{0, 0}, {10, 0}, {5, 0}, 5, DIR_CW, false, 0.0}, ARC_TOO_SMALL, 0},
        stArcRefusal{"TooManyPoints", {{0, 0}, {10, 0}, {5, 0}, 5, DIR_CW, false, 9.9e-7}, ARC_TOO_SMALL, 0},
        stArcRefusal{"StepTooSmallToMove", {{0, 0}, {10, 0}, {5, 0}, 5, DIR_CW, false, 1e-300}, ARC_TOO_SMALL, 0},
        stArcRefusal{"OneStepBeyondIsClamped", {{0, 0}, {10.5, 0}, {5, 0}, 5, DIR_CW, false, 0.5}, "", 20},
        stArcRefusal{"OneUnitMoreIsNot",
                     {{0, 0}, {10.5001, 0}, {5, 0}, 5, DIR_CW, false, 0.5},
                     "End Point X:10.5001 is outside the circle by 0.5001mm",
                     0},
        // Rounding leaves the last point before the turn a hair more than a step from the end: it would go round for
        // ever.
        stArcRefusal{"Endless", {{0.624, -0.75}, {1.374, 0}, {0.624, 0}, 0.75, DIR_CW, false, 0.3}, ARC_TOO_SMALL, 0}),
    [](const auto& param) { return param.param.szName; });

TEST(ArcWalk, TheFirstTwoStepsOfAFullCircleAreNotBoundedByIt)
{
    std::vector<stArcPoint> points;
    QString strWhy;
    ASSERT_TRUE(WalkArc({{0, 0}, {0, 0}, {5, 0}, 5, DIR_CW, true, 8}, points, strWhy));
    ASSERT_GE(points.size(), 3u);
    EXPECT_EQ(points[0].fFirst, 8.0);
    EXPECT_EQ(points[1].fFirst, 16.0) << "beyond the circle, which ends at 10";
    EXPECT_EQ(points[1].fSecond, Printed4(std::sqrt(11.0 * 11.0 - 25.0)));
    EXPECT_EQ(points[2].fFirst, 10.0);
}

// The end lies a little beyond the right-hand extreme, above the centre: a walk towards it moves to the right. Were the
// direction taken from the end as clamped, level with the centre, it would be another.
TEST(ArcWalk, TheDirectionAtTheEndIsThatOfTheEndAsProgrammed)
{
    std::vector<stArcPoint> points;
    QString strWhy;
    ASSERT_TRUE(WalkArc({{0, 0}, {10.05, 0}, {5, 0}, 5, DIR_CW, false, 1}, points, strWhy));
    EXPECT_EQ(points.size(), 10u);
    ASSERT_TRUE(WalkArc({{5, 5}, {-0.05, -0.1}, {5, 0}, 5, DIR_CW, false, 1}, points, strWhy));
    EXPECT_EQ(points.back().fFirst, 0.0);
    EXPECT_GT(points.size(), 14u) << "round by the right and below";
}

// ---- On the machine -------------------------------------------------------------------------------------------------

class ArcTest : public CMoveTest
{
protected:
    bool Arc(GCodeTokens tokens, eDirection eDir = DIR_CW)
    {
        SetProgram({std::move(tokens)});
        stGCodeEllipseInfo info;
        info.eDir = eDir;
        const bool bOk = m_App.CutArc(0, info);
        m_App.Settle();
        return bOk;
    }
};

TEST_F(ArcTest, RotaryAxesRunToZeroAndTheLogSaysSoOnce)
{
    CLoggedScreen screen;
    AppConfig::m_iMchType = 5;
    AppConfig::m_GCodeRunSettings.fAxisStep = 1.0;
    Begin({0, 0, 0, 0, 2.0});
    EXPECT_TRUE(Arc({"G2", "X10", "I5", "J0"}));
    EXPECT_EQ(m_App.Units()[B_AXIS], 0);
    EXPECT_EQ(screen.m_lstLog, QStringList({"1 Arc moves A-Axis and B-Axis to 0.0000"}));
    EXPECT_TRUE(Arc({"G2", "X0", "Y0", "I-5", "J0"}));
    EXPECT_EQ(screen.m_lstLog.size(), 1);
}

// What is told of an arc before it is run is what the machine then does.
struct stFate
{
    double fRadius, fFrom, fSweep;   // degrees, counter-clockwise
    const char* szFate;
    bool bEndsAtZero = false;   // of the plane; else the centre lies at X50 Y50
};
class ArcFates : public ArcTest, public testing::WithParamInterface<stFate>
{
};
TEST_P(ArcFates, AreToldAsTheyRun)
{
    const stFate& fate = GetParam();
    const auto On = [&](double fDegrees) {
        const double fAngle = fDegrees * M_PI / 180.0;
        return stFloatPoint{fate.fRadius * std::cos(fAngle), fate.fRadius * std::sin(fAngle)};
    };
    const stFloatPoint first = On(fate.fFrom), last = On(fate.fFrom + fate.fSweep);
    const stFloatPoint centre = fate.bEndsAtZero ? stFloatPoint{-last.x, -last.y} : stFloatPoint{50, 50};
    const stArcPoint start{Round4(centre.x + first.x), Round4(centre.y + first.y)};
    const stArcPoint end{Round4(centre.x + last.x), Round4(centre.y + last.y)};
    const stArcPoint offset{Round4(-first.x), Round4(-first.y)};
    const double fWay = fate.fRadius * fate.fSweep * M_PI / 180.0;
    EXPECT_STREQ(WhatBecomesOf({start, end, offset, DIR_CCW, fWay / fate.fRadius}, {0.001, 0.001, 0.1}, 0.102)
                     .toUtf8()
                     .constData(),
                 fate.szFate);

    Begin();
    ASSERT_TRUE(Move({}, {start.fFirst, start.fSecond}));
    double fCut = 0.0;
    stFloatPoint at = m_App.Position();
    const size_t uBefore = m_App.m_lstTargets.size();
    const auto Word = [](char cLetter, double fValue) { return cLetter + std::to_string(fValue); };
    const bool bRuns =
        Arc({"G3", Word('X', end.fFirst), Word('Y', end.fSecond), Word('I', offset.fFirst), Word('J', offset.fSecond)},
            DIR_CCW);
    ASSERT_EQ(bRuns, QLatin1String("is refused") != QLatin1String(fate.szFate));
    for (size_t n = uBefore; n < m_App.m_lstTargets.size(); ++n) {
        const stFloatPoint& to = m_App.m_lstTargets[n];
        fCut += std::hypot(to.x - at.x, to.y - at.y);
        at = to;
    }
    if (!bRuns || QLatin1String(fate.szFate).startsWith(QLatin1String("may"))) return;
    EXPECT_EQ(std::abs(fCut - fWay) < 0.15, !*fate.szFate) << fCut;
}
INSTANTIATE_TEST_SUITE_P(All, ArcFates,
                         testing::Values(stFate{11, 0, 360, ""}, stFate{11, 40, 360, "is not cut"},
                                         stFate{11, 40, 360, "", true}, stFate{11, 0.002, 360, "may not be cut"},
                                         stFate{7, 0, 180, "becomes a full circle", true}, stFate{7, 0, 180, ""},
                                         stFate{11, 70, 280, ""}, stFate{0.633, 10, 357, "is not cut"},
                                         stFate{0.633, 45, 357, "is not cut"}, stFate{0.633, 90, 357, "is not cut"},
                                         stFate{0.633, 270, 357, "is not cut"}, stFate{0.633, 0, 357, ""},
                                         stFate{0.0005, 0, 90, "is refused"}));

// ---- On a measured surface ------------------------------------------------------------------------------------------

class SurfaceTest : public ArcTest
{
protected:
    SurfaceTest()
    {
        AppConfig::m_bUseZProfile = true;
        AppConfig::m_GCodeRunSettings.fAxisStep = 2.5;
        AppConfig::m_ZProfileInfo.lstPoints = {{{0, 0, 0.1}, {5, 0, 0.2}, {10, 0, 0.3}}, {{10, 5, 0.4}, {5, 5, 0.5}}};
    }
};

// Columns so close that none counts as nearer than the first of the cell, which is the one before the node.
TEST_F(SurfaceTest, ANodeOfTheGridIsTheFarBorderOfItsCell)
{
    AppConfig::m_ZProfileInfo.lstPoints = {{{0, 0, 0.1}, {0.01, 0, 0.2}, {0.02, 0, 0.3}},
                                           {{0, 30, 0.4}, {0.01, 30, 0.5}, {0.02, 30, 0.6}}};
    Begin({0.01, 8, 0});
    stFloatPoint end{0.01, 10, 0};
    EXPECT_TRUE(m_App.ZProfileMove({0.01, 8, 0}, end));
    EXPECT_EQ(end.z, 0.1);
}

TEST_F(SurfaceTest, WhatNoWalkCanServeIsRefused)
{
    Begin();
    auto& info = AppConfig::m_ZProfileInfo;
    const auto Refused = [&](const char* szWhy) {
        stFloatPoint end{10, 5, 0};
        EXPECT_FALSE(m_App.ZProfileMove({}, end)) << szWhy;
        EXPECT_EQ(m_App.TakeErrors(), QStringList({szWhy}));
    };
    info.fXYStep = 0.0;
    Refused("X-Y Step of the Z-Profile is too small");
    info.fXYStep = 10.0;
    info.lstPoints[1].clear();
    Refused("Z-Profile is not usable: a row has no points");
}
