#include "common/UnitConverter.h"
#include "control/AppControl.h"
#include "gcode/GCodeWords.h"
#include "machine/ArcWalk.h"
#include "motion/AllAxisCtrl.h"
#include "time/Wait.h"

#include <QtMath>

#include <algorithm>
#include <cmath>

// Arcs: a chain of short straight moves, built whole before the first one runs.

namespace {
struct stPlane
{
    int iFirst, iSecond, iThird;
};

stPlane SelectedPlane()
{
    switch (AppConfig::m_PlaneSel) {
    case 17: return {X_AXIS, Y_AXIS, Z_AXIS};
    case 18: return {X_AXIS, Z_AXIS, Y_AXIS};
    default: return {Y_AXIS, Z_AXIS, X_AXIS};
    }
}

bool BelowPulse(double fDist, int axis)
{
    return std::abs(fDist) < AppConfig::m_fAxisMovPerPulse[axis];
}

stArcPoint InPlane(const stFloatPoint& pos, const stPlane& plane)
{
    return {AxisOf(pos, plane.iFirst), AxisOf(pos, plane.iSecond)};
}
}   // namespace

// False: refused and told.
bool AppControl::ReadArcWords(unsigned int uLine, stGCodeEllipseInfo& info)
{
    const qint32 iAbsRel = AppConfig::m_GCodeRunSettings.sAbsRel;
    for (const std::string& strToken : m_pGCodeProgram->at(uLine)) {
        if (IsComment(strToken)) break;
        const char cLetter = TokenLetter(strToken);
        const double fValue = TokenFloat(strToken);
        if (cLetter >= 'X' && cLetter <= 'Z') {
            const int axis = cLetter - 'X';
            AxisOf(info.stEnd, axis) = (iAbsRel * m_AxisCtrl[axis].GetCurPos() + fValue) * m_fUnitFactor;
        } else if (cLetter >= 'I' && cLetter <= 'K') {
            const int axis = cLetter - 'I';
            const double fOffset = fValue * m_fUnitFactor;   // from the start point, in G90 too
            AxisOf(info.stCenter, axis) =
                BelowPulse(fOffset, axis) ? m_AxisCtrl[axis].GetCurPos() : AxisOf(info.stStart, axis) + fOffset;
        } else if (cLetter == 'R') {
            info.fRadius = fValue * m_fUnitFactor;
            if (BelowPulse(info.fRadius, X_AXIS) || BelowPulse(info.fRadius, Y_AXIS)) {
                PushErrMsg(ARC_TOO_SMALL);
                return false;
            }
            FindArcCenter(info);   // sees the end words read so far: the order of the words matters
            info.fRadius = std::abs(info.fRadius);
        } else if (cLetter == 'F') {
            if (!TakePrgmFeed(fValue, uLine)) return false;
        } else if (cLetter == 'S') {
            SetSpindleSpeed(CutTo<int>(fValue));
        }
    }
    return true;
}

bool AppControl::CutArc(unsigned int uLine, stGCodeEllipseInfo& info)
{
    const stPlane plane = SelectedPlane();
    for (int axis = X_AXIS; axis <= Z_AXIS; ++axis) AxisOf(info.stStart, axis) = m_AxisCtrl[axis].GetCurPos();
    // End words of the plane that are not named count as 0.0, not as the present position: wanted.
    AxisOf(info.stEnd, plane.iThird) = AxisOf(info.stStart, plane.iThird);
    if (!ReadArcWords(uLine, info)) return false;

    const stArcPoint center = InPlane(info.stCenter, plane), end = InPlane(info.stEnd, plane);
    if (BelowPulse(center.fFirst - m_AxisCtrl[plane.iFirst].GetCurPos(), plane.iFirst) &&
        BelowPulse(center.fSecond - m_AxisCtrl[plane.iSecond].GetCurPos(), plane.iSecond)) {
        PushErrMsg(ARC_TOO_SMALL);
        return false;
    }
    // An end at the zero point of the plane counts as not given: such an arc runs as a full circle, on purpose.
    if (BelowPulse(end.fFirst, plane.iFirst) && BelowPulse(end.fSecond, plane.iSecond)) {
        AxisOf(info.stEnd, plane.iFirst) = AxisOf(info.stStart, plane.iFirst);
        AxisOf(info.stEnd, plane.iSecond) = AxisOf(info.stStart, plane.iSecond);
        info.bFullCircle = true;
    }
    if (info.fRadius < AppConfig::m_fAxisMovPerPulse[plane.iFirst]) {
        const stArcPoint start = InPlane(info.stStart, plane);
        const double p = CUnitConverter::Distance(start.fFirst, center.fFirst);
        const double q = CUnitConverter::Distance(start.fSecond, center.fSecond);
        info.fRadius = std::sqrt(p * p + q * q);
    }
    return G02_G03_Move(&info);
}

// In X and Y, whatever the plane. Ends level in Y divide by zero; the arc is then refused for its centre.
void AppControl::FindArcCenter(stGCodeEllipseInfo& info)
{
    const double dx = info.stEnd.x - info.stStart.x, dy = info.stEnd.y - info.stStart.y, R = info.fRadius;
    const double h = (dx * dx + dy * dy) * 0.5;
    const double k = dy * std::sqrt(std::abs((R * R + R * R) / h - 1.0));
    const double a1 = (dx + k) * 0.5, b1 = (h - dx * a1) / dy;
    const double a2 = (dx - k) * 0.5, b2 = (h - dx * a2) / dy;
    const double s = qAtan2((b1 - dy) * a1 - (a1 - dx) * b1, a1 * b1 + (a1 - dx) * (b1 - dy));
    // A negative radius asks for the arc above 180 degrees: the other centre.
    const bool bFirst = (info.eDir == DIR_CW) == (R > 0.0) ? s < 0.0 : s > 0.0;
    info.stCenter.x = info.stStart.x + (bFirst ? a1 : a2);
    info.stCenter.y = info.stStart.y + (bFirst ? b1 : b2);
}

bool AppControl::G02_G03_Move(stGCodeEllipseInfo* pInfo)
{
    const stPlane plane = SelectedPlane();
    std::vector<stArcPoint> chain;
    QString strWhy;
    if (!WalkArc({.start = InPlane(pInfo->stStart, plane),
                  .end = InPlane(pInfo->stEnd, plane),
                  .center = InPlane(pInfo->stCenter, plane),
                  .fRadius = pInfo->fRadius,
                  .eDir = pInfo->eDir,
                  .bFullCircle = pInfo->bFullCircle,
                  .fStep = AppConfig::m_GCodeRunSettings.fAxisStep},
                 chain, strWhy)) {
        PushErrMsg(strWhy);
        return false;
    }
    stFloatPoint from;
    for (int axis = X_AXIS; axis <= Z_AXIS; ++axis) AxisOf(from, axis) = m_AxisCtrl[axis].GetCurPos();
    // A and B are 0.0 in every point of the chain: wanted. An operator who left them elsewhere is told.
    if (AppConfig::m_iMchType == 5 &&
        (m_AxisCtrl[A_AXIS].GetCurPosLong() != 0 || m_AxisCtrl[B_AXIS].GetCurPosLong() != 0))
        COperatorScreen::Get().AddLogMsg(QStringLiteral("Arc moves A-Axis and B-Axis to 0.0000"), MSG_NOTICE);

    const double fThird = AxisOf(from, plane.iThird), fThirdEnd = AxisOf(pInfo->stEnd, plane.iThird);
    const double fRise = fThirdEnd - AxisOf(pInfo->stStart, plane.iThird);
    const bool bHelix = std::abs(fRise) > AppConfig::m_fAxisMovPerPulse[plane.iThird];
    const double fPoints = static_cast<double>(chain.size());
    for (size_t n = 0; n < chain.size(); ++n) {
        if (!WaitWhilePaused() || IsStopRequested()) return false;
        stFloatPoint point;
        AxisOf(point, plane.iFirst) = chain[n].fFirst;
        AxisOf(point, plane.iSecond) = chain[n].fSecond;
        const double fSpread =
            n + 1 == chain.size() ? fThirdEnd : fThird + static_cast<double>(n + 1) * fRise / fPoints;
        AxisOf(point, plane.iThird) = bHelix ? fSpread : fThird;
        if (!CutOrFollowSurface(from, point)) return false;
        from = point;
    }
    CAllAxisCtrl::WaitForMotion();
    return true;
}
