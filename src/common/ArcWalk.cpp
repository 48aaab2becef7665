#include "common/ArcWalk.h"

#include "common/UnitConverter.h"

#include <cmath>

namespace {
// Behind a turn the walk goes on from one of two bounds in one of two directions: whoever turns more often repeats
// itself and never ends.
constexpr int MAX_TURNS = 4;

struct stWalk
{
    double fFirst, fStep;
    double fMin, fMax, fEnd;   // of the first coordinate
    int iDir, iEndDir;         // +1 or -1 along the first axis
    bool bFullCircle;
};

// Calls fnPoint(first coordinate, direction; 0 at a turn) for each point but the end. False: fnPoint gave up, or the
// walk never ends.
template <class F> bool Walk(stWalk walk, F&& fnPoint)
{
    if (walk.bFullCircle)
        // Away from the end, which would stop the walk at once. These two are not bounded by the circle: wanted so.
        for (int n = 0; n < 2; ++n) {
            walk.fFirst += walk.iDir * walk.fStep;
            if (!fnPoint(walk.fFirst, walk.iDir)) return false;
        }
    int iTurns = 0;
    while (walk.iDir != walk.iEndDir || !(walk.fStep >= std::abs(walk.fFirst - walk.fEnd))) {
        walk.fFirst += walk.iDir * walk.fStep;
        const bool bUpper = walk.fFirst >= walk.fMax;
        const bool bTurn = bUpper || walk.fFirst <= walk.fMin;
        if (bTurn) walk.fFirst = bUpper ? walk.fMax : walk.fMin;   // both at once: the upper one
        if (!fnPoint(walk.fFirst, bTurn ? 0 : walk.iDir)) return false;
        if (!bTurn) continue;
        if (++iTurns > MAX_TURNS) return false;
        walk.iDir = -walk.iDir;
    }
    return true;
}

// Along the first axis at a point of the circle; iLevel is for a point level with the centre.
int DirectionAt(const stArcPoint& center, const stArcPoint& point, eDirection eDir, int iLevel)
{
    const qint32 lCenter = CUnitConverter::GetInt(center.fSecond), lPoint = CUnitConverter::GetInt(point.fSecond);
    if (lCenter > lPoint) return eDir == DIR_CW ? -1 : 1;
    if (lCenter < lPoint) return eDir == DIR_CCW ? -1 : 1;
    return iLevel;
}

// Clamps an end that lies beyond the circle by up to a step.
bool ClampEnd(const stArcShape& arc, stWalk& walk, QString& strWhy)
{
    const double fAbove = CUnitConverter::Distance(walk.fMax, walk.fEnd);
    const double fBelow = CUnitConverter::Distance(walk.fEnd, walk.fMin);
    const double fBeyond = fAbove > 0.0 ? fAbove : fBelow;
    if (!(fBeyond > 0.0)) return true;
    if (fBeyond > CUnitConverter::GetDouble(CUnitConverter::GetInt(arc.fStep))) {
        // The label says X in every plane, also where the first axis is Y: wanted, the text is a fixed one.
        strWhy = QStringLiteral("End Point X:") + QString::number(walk.fEnd, 'f', PRECISION) +
                 QStringLiteral(" is outside the circle by ") + QString::number(fBeyond, 'f', PRECISION) +
                 QStringLiteral("mm");
        return false;
    }
    walk.fEnd = fAbove > 0.0 ? walk.fMax : walk.fMin;
    return true;
}
}   // namespace

bool WalkArc(const stArcShape& arc, std::vector<stArcPoint>& points, QString& strWhy)
{
    points.clear();
    const stArcPoint& center = arc.center;
    strWhy = ARC_TOO_SMALL;
    if (!std::isfinite(center.fFirst) || !std::isfinite(center.fSecond) || !std::isfinite(arc.fRadius)) return false;
    if (!(arc.fStep > 0.0)) return false;

    const qint32 lCenter = CUnitConverter::GetInt(center.fFirst);
    // The two level rules are mirrored: a walk that arrives at the right-hand extreme has been moving to the right.
    const int iStart = lCenter < CUnitConverter::GetInt(arc.start.fFirst) ? -1 : 1;
    const int iEnd = lCenter > CUnitConverter::GetInt(arc.end.fFirst) ? -1 : 1;
    stWalk walk{.fFirst = arc.start.fFirst,
                .fStep = arc.fStep,
                .fMin = Round4(center.fFirst - arc.fRadius),
                .fMax = Round4(center.fFirst + arc.fRadius),
                .fEnd = arc.end.fFirst,
                .iDir = DirectionAt(center, arc.start, arc.eDir, iStart),
                .iEndDir = DirectionAt(center, arc.end, arc.eDir, iEnd),   // of the end as programmed, before clamping
                .bFullCircle = arc.bFullCircle};
    if (!ClampEnd(arc, walk, strWhy)) return false;

    const double fSquare = CUnitConverter::GetRndDouble(arc.fRadius * arc.fRadius);
    const double fTurn = Round4(center.fSecond);
    const bool bEnds = Walk(walk, [&](double fFirst, int iDir) {
        const double fOff = fFirst - center.fFirst;
        const double fSign = (iDir == 1) == (arc.eDir == DIR_CW) ? 1.0 : -1.0;
        points.push_back(
            {fFirst, iDir == 0 ? fTurn : Round4(fSign * std::sqrt(std::abs(fSquare - fOff * fOff)) + center.fSecond)});
        return points.size() < MAX_ARC_POINTS;
    });
    if (!bEnds) {
        points = {};
        return false;
    }
    points.push_back({walk.fEnd, arc.end.fSecond});
    strWhy.clear();
    return true;
}

// By arithmetic and not by printing, which takes 0.5 us instead of 0.04: the machine stands while a chain is built, and
// a circle may have 20 000 points.
double Round4(double fValue)
{
    if (fValue == 0.0) return 0.0;   // printed without its sign
    // Below this size every half is a number of its own, so rounding the product cannot carry it across the half: it
    // is on the right side, or at the half, where the digits decide. The quotient is the double nearest to the decimal.
    constexpr double HALVES_EXIST_BELOW = 4503599627370496.0;   // 2^52
    const double fUnits = fValue * DECIMAL_MULTIPLYER;
    const double fDown = std::floor(fUnits), fRest = fUnits - fDown;
    if (std::abs(fUnits) < HALVES_EXIST_BELOW && fRest != 0.5)
        return std::copysign(fRest < 0.5 ? fDown : fDown + 1.0, fValue) / DECIMAL_MULTIPLYER;
    return QString::number(fValue, 'f', PRECISION).toDouble();
}
