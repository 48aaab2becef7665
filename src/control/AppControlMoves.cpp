#include "common/UnitConverter.h"
#include "control/AppControl.h"
#include "gcode/GCodeWords.h"
#include "motion/AllAxisCtrl.h"
#include "time/Wait.h"

#include <algorithm>
#include <array>
#include <cmath>

// Straight coordinated moves: how fast each axis runs, and the hand-over to the pulse loop.

static constexpr qint64 PAUSE_POLL_US = 1000000;
// One sixtieth as this system has it: a feed of 600 a minute is 10.00002 a second.
static constexpr double PER_MINUTE_TO_PER_SECOND = 0.0166667;

bool AppControl::WaitWhilePaused()
{
    while (m_bPause) {
        CWait::SleepUs(PAUSE_POLL_US);
        if (IsStopRequested()) return false;
    }
    return true;
}

stFloatPoint AppControl::HereBut(eAxis axis, double fPos) const
{
    stFloatPoint pos;
    GetAllAxisCurPos(pos);
    AxisOf(pos, axis) = fPos;
    return pos;
}

bool AppControl::MoveFromHere(const stFloatPoint& target, bool bSetAccVel, bool bWait, eGMoveCmnd eCmnd)
{
    CAllAxisCtrl::WaitForMotion();
    stFloatPoint from;
    for (int axis = 0; axis < MAX_AXES; ++axis) AxisOf(from, axis) = m_AxisCtrl[axis].GetCurPos();
    return ExecuteMovCmnd(from, target, bSetAccVel, bWait, eCmnd);
}

bool AppControl::G00_Move(stFloatPoint target, bool bSetAccVel, bool bWait)
{
    return MoveFromHere(target, bSetAccVel, bWait, G00_MOVE);
}

bool AppControl::G01_Move(stFloatPoint target, bool bSetAccVel, bool bWait)
{
    return MoveFromHere(target, bSetAccVel, bWait, G01_MOVE);
}

bool AppControl::ExecuteMovCmnd(stFloatPoint from, stFloatPoint to, bool bSetAccVel, bool bWait, eGMoveCmnd eCmnd)
{
    if (!WaitWhilePaused() || IsStopRequested()) return false;
    for (int axis = 0; axis < AxesInUse(); ++axis) {
        const double fTarget = AxisOf(to, axis);
        if (CUnitConverter::FitsLong(fTarget) && m_AxisCtrl[axis].CheckValidMotion(CUnitConverter::GetLong(fTarget)))
            continue;
        PushErrMsg(QStringLiteral("Position to move must be within the motion limits"));
        return false;
    }
    if (bSetAccVel) SetAccAndVel(from, to, eCmnd);

    double delta[MAX_AXES] = {};
    bool bMoves = false;
    for (int axis = 0; axis < AxesInUse(); ++axis) {
        delta[axis] = std::abs(CUnitConverter::Distance(AxisOf(from, axis), AxisOf(to, axis)));
        bMoves |= !(delta[axis] < AppConfig::m_fAxisMovPerPulse[axis]);
    }
    if (!bMoves) return true;
    if (!SelectAxes(to, delta) || !CAllAxisCtrl::StartMotion()) return false;
    if (bWait) CAllAxisCtrl::WaitForMotion();
    return true;
}

// Exactly one pulse passes the test above and moves no axis here: the two are strict in opposite senses on purpose.
bool AppControl::SelectAxes(const stFloatPoint& to, const double* pDelta)
{
    for (int axis = 0; axis < AxesInUse(); ++axis) {
        if (!(pDelta[axis] > AppConfig::m_fAxisMovPerPulse[axis])) continue;
        if (const QString strWhy = m_AxisCtrl[axis].GetBuildError(); !strWhy.isEmpty()) {
            PushErrMsg(strWhy);
            return false;
        }
    }
    for (int axis = 0; axis < AxesInUse(); ++axis) {
        const bool bMoves = pDelta[axis] > AppConfig::m_fAxisMovPerPulse[axis];
        CAllAxisCtrl::m_lstAxisToMov[axis] = bMoves;
        if (bMoves && !m_AxisCtrl[axis].SetAxisMovParams(AxisOf(to, axis))) {
            PushErrMsg(m_AxisCtrl[axis].GetErrorMsg());   // the counts are those of an older move: none may start
            return false;
        }
    }
    return true;
}

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

// A refused table marks its axis, and the move that needs it fails with the reason.
bool AppControl::SetAccAndVel(stFloatPoint from, stFloatPoint to, eGMoveCmnd eCmnd)
{
    std::array<double, MAX_AXES> delta{};
    for (int axis = 0; axis < AxesInUse(); ++axis)
        delta[size_t(axis)] = std::abs(CUnitConverter::Distance(AxisOf(from, axis), AxisOf(to, axis)));

    const int iMain = MainAxis(delta, AxesInUse());
    const bool bPrgmFeed = m_eOperation == OP_GCODE && AppConfig::m_GCodeRunSettings.bUsePrgmFeed;
    const double fFeed = PlannedFeed(eCmnd, bPrgmFeed, iMain);
    const double fAcc = AppConfig::m_fAxisAcc[iMain];
    m_AxisCtrl[iMain].SetVelocityAcc(fFeed, fAcc);
    for (int axis = 0; axis < AxesInUse(); ++axis) {
        if (axis == iMain || !(delta[size_t(axis)] > AppConfig::m_fAxisMovPerPulse[axis])) continue;
        const double fRatio = delta[size_t(axis)] / delta[size_t(iMain)];
        m_AxisCtrl[axis].SetVelocityAcc(fFeed * fRatio, fAcc * fRatio);   // so that all axes arrive together
    }
    return true;
}

bool AppControl::EngMoveAxisAbs(eAxis axis, double fPos, bool bWait)
{
    if (IsStopRequested() || !PushRefusal(axis, m_AxisCtrl[axis].MoveAbs(fPos))) return false;
    return !bWait || WaitForAxis(axis);
}

bool AppControl::EngMoveAxisRel(eAxis axis, double fDist, bool bWait)
{
    if (IsStopRequested() || !PushRefusal(axis, m_AxisCtrl[axis].MoveRel(fDist))) return false;
    return !bWait || WaitForAxis(axis);
}

void AppControl::SetAxisFeed(double fFeed)
{
    if (AppConfig::m_eSelUnits == 1) fFeed *= INCH_TO_MM_MUL_FACTOR;
    AppConfig::m_GCodeRunSettings.fFeed = fFeed * PER_MINUTE_TO_PER_SECOND;
}

bool AppControl::TakePrgmFeed(double fFeed, unsigned int uLine)
{
    if (!AppConfig::m_GCodeRunSettings.bUsePrgmFeed) return true;
    if (fFeed > 0.0) {
        SetAxisFeed(fFeed);
        return true;
    }
    PushErrMsg(QStringLiteral("Error:%1 - Feed, F-Code, must be greater than zero").arg(uLine));
    return false;
}

bool AppControl::GetPosToMov(unsigned int uLine, stFloatPoint& pos)
{
    return ReadMoveWords(uLine, pos) == eWords::COORDINATES;
}

AppControl::eWords AppControl::ReadMoveWords(unsigned int uLine, stFloatPoint& pos)
{
    pos = m_CurGCodePos;   // an axis that is not named keeps its value
    eWords eFound = eWords::NONE;
    static constexpr std::string_view AXIS_LETTERS = "XYZAB";
    for (const std::string& strToken : m_pGCodeProgram->at(uLine)) {
        if (IsComment(strToken)) break;
        const char cLetter = TokenLetter(strToken);
        const double fValue = TokenFloat(strToken);
        if (const size_t uAxis = AXIS_LETTERS.find(cLetter); uAxis != std::string_view::npos) {
            const int axis = static_cast<int>(uAxis);
            // Incremental inches scale the sum, the present position included: wanted, programs are written for it.
            AxisOf(pos, axis) =
                (AppConfig::m_GCodeRunSettings.sAbsRel * AxisOf(m_CurGCodePos, axis) + fValue) * m_fUnitFactor;
            eFound = eWords::COORDINATES;
        } else if (cLetter == 'F') {
            if (!TakePrgmFeed(fValue, uLine)) return eWords::REFUSED;
        } else if (cLetter == 'S') {
            SetSpindleSpeed(CutTo<int>(fValue));
        }
    }
    return eFound;
}

void AppControl::ToMchCoord(stFloatPoint& pos) const
{
    const qint32 iMode = AppConfig::m_GCodeRunSettings.sAbsRel;
    for (int axis = 0; axis < AxesInUse(); ++axis) {
        const double fPos = AxisOf(pos, axis) + iMode * m_AxisCtrl[axis].GetCurPos();
        // X alone is added: the asymmetry is required.
        AxisOf(pos, axis) = AppConfig::m_fAxisWorkZero[axis] + (axis == X_AXIS ? fPos : -fPos);
    }
}

void AppControl::GetAllAxisCurPos(stFloatPoint& pos) const
{
    for (int axis = 0; axis < AxesInUse(); ++axis) AxisOf(pos, axis) = m_AxisCtrl[axis].GetCurPos();
}

void AppControl::ResetAccVel()
{
    for (int axis = 0; axis < AxesInUse(); ++axis)
        m_AxisCtrl[axis].SetVelocityAcc(AppConfig::m_fAxisFeed[axis], AppConfig::m_fAxisAcc[axis]);
}

// A refused table marks its axis, as in planning.
void AppControl::SetVelocityAcc(eAxis axis, double fVel, double fAcc)
{
    m_AxisCtrl[axis].SetVelocityAcc(fVel, fAcc);
}
