#include "machine/ArcMoves.h"

#include "common/ArcReading.h"
#include "common/OperatorScreen.h"
#include "common/UnitConverter.h"
#include "config/AppConfig.h"
#include "motion/AllAxisCtrl.h"

#include <QtMath>

#include <cmath>

static stArcPoint InPlane(const stFloatPoint& pos, const stArcPlane& plane)
{
    return {AxisOf(pos, plane.iFirst), AxisOf(pos, plane.iSecond)};
}

static stArcShape InPlane(const stGCodeEllipseInfo& info, const stArcPlane& plane)
{
    return {.start = InPlane(info.stStart, plane),
            .end = InPlane(info.stEnd, plane),
            .center = InPlane(info.stCenter, plane),
            .fRadius = info.fRadius,
            .eDir = info.eDir,
            .bFullCircle = info.bFullCircle,
            .fStep = AppConfig::m_GCodeRunSettings.fAxisStep};
}

stArcPlane stArcPlane::Selected()
{
    switch (AppConfig::m_PlaneSel) {
    case 17: return {X_AXIS, Y_AXIS, Z_AXIS};
    case 18: return {X_AXIS, Z_AXIS, Y_AXIS};
    default: return {Y_AXIS, Z_AXIS, X_AXIS};
    }
}

void CArcMoves::Begin(stGCodeEllipseInfo& info) const
{
    for (int axis = X_AXIS; axis <= Z_AXIS; ++axis) AxisOf(info.stStart, axis) = m_Axes.m_AxisCtrl[axis].GetCurPos();
    // End words of the plane that are not named count as 0.0, not as the present position: wanted.
    const int iThird = stArcPlane::Selected().iThird;
    AxisOf(info.stEnd, iThird) = AxisOf(info.stStart, iThird);
}

bool CArcMoves::Cut(stGCodeEllipseInfo& info)
{
    const stArcPlane plane = stArcPlane::Selected();
    stArcShape arc = InPlane(info, plane);
    if (!CompleteArc(arc,
                     {AppConfig::m_fAxisMovPerPulse[plane.iFirst], AppConfig::m_fAxisMovPerPulse[plane.iSecond]})) {
        m_Messages.PushErrMsg(ARC_TOO_SMALL);
        return false;
    }
    AxisOf(info.stEnd, plane.iFirst) = arc.end.fFirst;
    AxisOf(info.stEnd, plane.iSecond) = arc.end.fSecond;
    info.fRadius = arc.fRadius;
    info.bFullCircle = arc.bFullCircle;
    return G02_G03_Move(&info);
}

void CArcMoves::FindArcCenter(stGCodeEllipseInfo& info)
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

bool CArcMoves::G02_G03_Move(stGCodeEllipseInfo* pInfo)
{
    const stArcPlane plane = stArcPlane::Selected();
    std::vector<stArcPoint> chain;
    QString strWhy;
    if (!WalkArc(InPlane(*pInfo, plane), chain, strWhy)) {
        m_Messages.PushErrMsg(strWhy);
        return false;
    }
    stFloatPoint from;
    for (int axis = X_AXIS; axis <= Z_AXIS; ++axis) AxisOf(from, axis) = m_Axes.m_AxisCtrl[axis].GetCurPos();
    // A and B are 0.0 in every point of the chain: wanted. An operator who left them elsewhere is told.
    if (AppConfig::m_iMchType == 5 &&
        (m_Axes.m_AxisCtrl[A_AXIS].GetCurPosLong() != 0 || m_Axes.m_AxisCtrl[B_AXIS].GetCurPosLong() != 0))
        TellNotice(QStringLiteral("Arc moves A-Axis and B-Axis to 0.0000"));

    const double fThird = AxisOf(from, plane.iThird), fThirdEnd = AxisOf(pInfo->stEnd, plane.iThird);
    const double fRise = fThirdEnd - AxisOf(pInfo->stStart, plane.iThird);
    const bool bHelix = std::abs(fRise) > AppConfig::m_fAxisMovPerPulse[plane.iThird];
    const double fPoints = static_cast<double>(chain.size());
    for (size_t n = 0; n < chain.size(); ++n) {
        if (!m_Handshake.WaitWhilePaused() || m_Handshake.IsStopRequested()) return false;
        stFloatPoint point;
        AxisOf(point, plane.iFirst) = chain[n].fFirst;
        AxisOf(point, plane.iSecond) = chain[n].fSecond;
        const double fSpread =
            n + 1 == chain.size() ? fThirdEnd : fThird + static_cast<double>(n + 1) * fRise / fPoints;
        AxisOf(point, plane.iThird) = bHelix ? fSpread : fThird;
        if (!m_Surface.CutOrFollow(from, point)) return false;
        from = point;
    }
    CAllAxisCtrl::WaitForMotion();
    return true;
}
