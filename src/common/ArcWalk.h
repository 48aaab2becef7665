#pragma once
#include "common/MachineTypes.h"

#include <QString>

#include <vector>

// The chord points of an arc in its plane. The walk goes along the plane's first axis in fixed steps, takes the second
// coordinate from the circle, and turns round at the circle's extremes. mm; no state; any thread.

struct stArcPoint
{
    double fFirst = 0.0, fSecond = 0.0;
};

struct stArcShape
{
    stArcPoint start, end, center;
    double fRadius = 0.0;
    eDirection eDir = DIR_CW;
    bool bFullCircle = false;
    double fStep = 0.1;
};

inline const QString ARC_TOO_SMALL = QStringLiteral("Error: Arc too small to execute: Arc Radius");
inline constexpr size_t MAX_ARC_POINTS = 10'000'000;

// All points of the arc, the end as the last one. False: refused, and strWhy holds the operator's text: the end lies
// outside the circle by more than a step; the shape is not finite, the step not above 0, the points too many.
bool WalkArc(const stArcShape& arc, std::vector<stArcPoint>& points, QString& strWhy);

// To four decimals, as printing and reading back gives it, bit by bit.
double Round4(double fValue);
