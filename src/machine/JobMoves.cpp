#include "machine/JobMoves.h"

#include "common/UnitConverter.h"
#include "config/AppConfig.h"
#include "motion/AllAxisCtrl.h"

#include <array>
#include <cmath>

// One sixtieth as this system has it: a feed of 600 a minute is 10.00002 a second.
static constexpr double PER_MINUTE_TO_PER_SECOND = 0.0166667;

bool CJobMoves::Move(const stFloatPoint& target, bool bSetAccVel, bool bWait, eGMoveCmnd eCmnd)
{
    return m_Watched.Watched(
        [&] {
            return stWorkCommand{.eKind = WORK_MOVE, .eCmnd = eCmnd, .to = target, .bPlan = bSetAccVel, .bWait = bWait};
        },
        [&] {
            CAllAxisCtrl::WaitForMotion();
            stFloatPoint from;
            for (int axis = 0; axis < MAX_AXES; ++axis) AxisOf(from, axis) = m_Axes.m_AxisCtrl[axis].GetCurPos();
            return ExecuteMovCmnd(from, target, bSetAccVel, bWait, eCmnd);
        });
}

bool CJobMoves::IsInReach(const stFloatPoint& to)
{
    for (int axis = 0; axis < CMachineAxes::AxesInUse(); ++axis) {
        const double fTarget = AxisOf(to, axis);
        if (CUnitConverter::FitsLong(fTarget) &&
            m_Axes.m_AxisCtrl[axis].CheckValidMotion(CUnitConverter::GetLong(fTarget)))
            continue;
        m_Messages.PushErrMsg(QStringLiteral("Position to move must be within the motion limits"));
        return false;
    }
    return true;
}

bool CJobMoves::ExecuteMovCmnd(const stFloatPoint& from, const stFloatPoint& to, bool bSetAccVel, bool bWait,
                               eGMoveCmnd eCmnd)
{
    if (!m_Handshake.WaitWhilePaused() || m_Handshake.IsStopRequested() || !IsInReach(to)) return false;
    if (bSetAccVel) SetAccAndVel(from, to, eCmnd);

    double delta[MAX_AXES] = {};
    bool bMoves = false;
    for (int axis = 0; axis < CMachineAxes::AxesInUse(); ++axis) {
        delta[axis] = std::abs(CUnitConverter::Distance(AxisOf(from, axis), AxisOf(to, axis)));
        bMoves |= !(delta[axis] < AppConfig::m_fAxisMovPerPulse[axis]);
    }
    if (!bMoves) return true;
    if (!SelectAxes(to, delta) || !CAllAxisCtrl::StartMotion()) return false;
    if (bWait) CAllAxisCtrl::WaitForMotion();
    return true;
}

// Exactly one pulse passes the test above and moves no axis here: the two are strict in opposite senses on purpose.
bool CJobMoves::SelectAxes(const stFloatPoint& to, const double* pDelta)
{
    for (int axis = 0; axis < CMachineAxes::AxesInUse(); ++axis) {
        if (!(pDelta[axis] > AppConfig::m_fAxisMovPerPulse[axis])) continue;
        if (const QString strWhy = m_Axes.m_AxisCtrl[axis].GetBuildError(); !strWhy.isEmpty()) {
            m_Messages.PushErrMsg(strWhy);
            return false;
        }
    }
    for (int axis = 0; axis < CMachineAxes::AxesInUse(); ++axis) {
        const bool bMoves = pDelta[axis] > AppConfig::m_fAxisMovPerPulse[axis];
        CAllAxisCtrl::m_lstAxisToMov[axis] = bMoves;
        if (bMoves && !m_Axes.m_AxisCtrl[axis].SetAxisMovParams(AxisOf(to, axis))) {
            // The counts are those of an older move: none may start.
            m_Messages.PushErrMsg(m_Axes.m_AxisCtrl[axis].GetErrorMsg());
            return false;
        }
    }
    return true;
}

// ---- Planning -------------------------------------------------------------------------------------------------------

namespace {
// The longest axis, which gets the full feed; of equal ones the earliest, since a later one must be strictly longer.
// Where the axis chosen so far goes less than a pulse the role is handed on.
int MainAxis(const std::array<double, MAX_AXES>& delta, int iAxes)
{
    int iMain = X_AXIS;
    for (int axis = Y_AXIS; axis < iAxes; ++axis) {
        const double fDist = delta[size_t(axis)], fMax = delta[size_t(iMain)];
        if ((fMax < fDist && fDist >= AppConfig::m_fAxisMovPerPulse[axis]) ||
            fMax < AppConfig::m_fAxisMovPerPulse[iMain])
            iMain = axis;
    }
    return iMain;
}

// mm/s of the main axis.
double PlannedFeed(eGMoveCmnd eCmnd, bool bPrgmFeed, int iMain)
{
    if (eCmnd == G00_MOVE) return AppConfig::m_fMinMaxAxisFeed;
    const double fPercentX = AppConfig::m_fAxisFeedPercent[X_AXIS];
    if (!bPrgmFeed) return AppConfig::m_fUserAxisFeed[iMain] * fPercentX;
    // The limit goes by the override of X and the feed by that of the main axis. Wanted: the operator's slider keeps
    // all of them equal.
    const double fFeed = AppConfig::m_GCodeRunSettings.fFeed;
    if (fFeed * fPercentX > AppConfig::m_fMinMaxAxisFeed) return AppConfig::m_fMinMaxAxisFeed;
    return fFeed * AppConfig::m_fAxisFeedPercent[iMain];
}
}   // namespace

void CJobMoves::SetAccAndVel(const stFloatPoint& from, const stFloatPoint& to, eGMoveCmnd eCmnd)
{
    m_Watched.Watched([&] { return stWorkCommand{.eKind = WORK_PLAN, .eCmnd = eCmnd, .from = from, .to = to}; },
                      [&] { Plan(from, to, eCmnd); });
}

void CJobMoves::Plan(const stFloatPoint& from, const stFloatPoint& to, eGMoveCmnd eCmnd)
{
    const int iAxes = CMachineAxes::AxesInUse();
    std::array<double, MAX_AXES> delta{};
    for (int axis = 0; axis < iAxes; ++axis)
        delta[size_t(axis)] = std::abs(CUnitConverter::Distance(AxisOf(from, axis), AxisOf(to, axis)));

    const int iMain = MainAxis(delta, iAxes);
    const bool bPrgmFeed = m_Handshake.m_eOperation == OP_GCODE && AppConfig::m_GCodeRunSettings.bUsePrgmFeed;
    const double fFeed = PlannedFeed(eCmnd, bPrgmFeed, iMain);
    const double fAcc = AppConfig::m_fAxisAcc[iMain];
    m_Axes.m_AxisCtrl[iMain].SetVelocityAcc(fFeed, fAcc);
    for (int axis = 0; axis < iAxes; ++axis) {
        if (axis == iMain || !(delta[size_t(axis)] > AppConfig::m_fAxisMovPerPulse[axis])) continue;
        const double fRatio = delta[size_t(axis)] / delta[size_t(iMain)];
        m_Axes.m_AxisCtrl[axis].SetVelocityAcc(fFeed * fRatio, fAcc * fRatio);   // so that all axes arrive together
    }
}

void CJobMoves::SetAxisFeed(double fFeed)
{
    m_Watched.Watched([&] { return stWorkCommand{.eKind = WORK_PRGM_FEED, .fValue = fFeed}; },
                      [&] {
                          if (AppConfig::m_eSelUnits == 1) fFeed *= INCH_TO_MM_MUL_FACTOR;
                          AppConfig::m_GCodeRunSettings.fFeed = fFeed * PER_MINUTE_TO_PER_SECOND;
                      });
}
