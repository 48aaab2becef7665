#include "machine/AxisCommands.h"

#include "config/AppConfig.h"
#include "motion/AllAxisCtrl.h"
#include "time/Wait.h"

#include <algorithm>

// An alarm, not a stop: axes that are still moving behind it keep running.
static constexpr qint64 MOTION_TIMEOUT_NS = 300'000'000'000;

bool CAxisCommands::IsMachineIdle() const
{
    return std::none_of(m_Axes.m_AxisCtrl, m_Axes.m_AxisCtrl + CMachineAxes::AxesInUse(),
                        [](const AxisCtrl& ctrl) { return ctrl.GetAxisState(); });
}

bool CAxisCommands::IsAutoModeMoving() const
{
    return CAllAxisCtrl::GetMotionState();
}

void CAxisCommands::RequestStop()
{
    for (int axis = 0; axis < CMachineAxes::AxesInUse(); ++axis) m_Axes.m_AxisCtrl[axis].RequestStop();
}
void CAxisCommands::StopAxes()
{
    for (int axis = 0; axis < CMachineAxes::AxesInUse(); ++axis) m_Axes.m_AxisCtrl[axis].Stop();
}

bool CAxisCommands::PushRefusal(eAxis axis, bool bAccepted)
{
    if (!bAccepted) m_Messages.PushErrMsg(m_Axes.m_AxisCtrl[axis].GetErrorMsg());
    return bAccepted;
}

bool CAxisCommands::MoveAbs(eAxis axis, double fPos)
{
    return PushRefusal(axis, m_Axes.m_AxisCtrl[axis].MoveAbs(fPos));
}
bool CAxisCommands::MoveRel(eAxis axis, double fDist)
{
    return PushRefusal(axis, m_Axes.m_AxisCtrl[axis].MoveRel(fDist));
}
void CAxisCommands::JogPos(eAxis axis)
{
    PushRefusal(axis, m_Axes.m_AxisCtrl[axis].Jog(AppConfig::m_eAxisPosDir[axis]));
}
void CAxisCommands::JogNeg(eAxis axis)
{
    PushRefusal(axis, m_Axes.m_AxisCtrl[axis].Jog(Opposite(AppConfig::m_eAxisPosDir[axis])));
}

bool CAxisCommands::MoveAxisHome(eAxis axis, bool bWait)
{
    if (!PushRefusal(axis, m_Axes.m_AxisCtrl[axis].MoveAxisHome())) return false;
    return !bWait || WaitForAxis(axis);
}
bool CAxisCommands::MoveWorkZero(eAxis axis, bool bWait)
{
    if (!PushRefusal(axis, m_Axes.m_AxisCtrl[axis].MoveWorkZero())) return false;
    return !bWait || WaitForAxis(axis);
}

bool CAxisCommands::EngMoveAxisAbs(eAxis axis, double fPos, bool bWait)
{
    return m_Watched.Watched(
        [&] { return stWorkCommand{.eKind = WORK_AXIS_TO, .axis = axis, .bWait = bWait, .fValue = fPos}; },
        [&] {
            if (!MayBegin() || !MoveAbs(axis, fPos) || !StillWanted(axis)) return false;
            return !bWait || WaitForAxis(axis);
        });
}

bool CAxisCommands::EngMoveAxisRel(eAxis axis, double fDist, bool bWait)
{
    return m_Watched.Watched(
        [&] { return stWorkCommand{.eKind = WORK_AXIS_BY, .axis = axis, .bWait = bWait, .fValue = fDist}; },
        [&] {
            if (!MayBegin() || !MoveRel(axis, fDist) || !StillWanted(axis)) return false;
            return !bWait || WaitForAxis(axis);
        });
}

bool CAxisCommands::StillWanted(eAxis axis)
{
    if (!m_Handshake.IsStopRequestedBehind()) return true;
    m_Axes.m_AxisCtrl[axis].RequestStop();
    return false;
}

void CAxisCommands::SetVelocityAcc(eAxis axis, double fVel, double fAcc)
{
    m_Watched.Watched(
        [&] { return stWorkCommand{.eKind = WORK_AXIS_SPEED, .axis = axis, .fValue = fVel, .fAcc = fAcc}; },
        [&] { m_Axes.m_AxisCtrl[axis].SetVelocityAcc(fVel, fAcc); });
}

void CAxisCommands::ResetAccVel(bool bSoon)
{
    m_Watched.Watched([] { return stWorkCommand{.eKind = WORK_RESET_SPEEDS}; },
                      [&] {
                          for (int axis = 0; axis < CMachineAxes::AxesInUse(); ++axis) {
                              const double fVel = AppConfig::m_fAxisFeed[axis], fAcc = AppConfig::m_fAxisAcc[axis];
                              if (bSoon)
                                  m_Axes.m_AxisCtrl[axis].SetVelocityAccSoon(fVel, fAcc);
                              else
                                  m_Axes.m_AxisCtrl[axis].SetVelocityAcc(fVel, fAcc);
                          }
                      });
}

bool CAxisCommands::WaitForAxis(eAxis axis)
{
    signed char selection[MAX_AXES] = {};
    selection[axis] = 1;
    return WaitForMotionFinish(selection);
}

bool CAxisCommands::IsAnyMoving(const signed char* pSelection) const
{
    for (int axis = 0; axis < CMachineAxes::AxesInUse(); ++axis)
        if (pSelection[axis] && m_Axes.m_AxisCtrl[axis].GetAxisState()) return true;
    return false;
}

bool CAxisCommands::WaitForMotionFinish(const signed char* pSelection)
{
    const int iAxes = CMachineAxes::AxesInUse();
    if (std::none_of(pSelection, pSelection + iAxes, [](signed char cFlag) { return cFlag != 0; })) return true;
    const bool bEnded =
        CWait::SpinUntil([&] { return m_Handshake.IsStopRequested() || !IsAnyMoving(pSelection); }, MOTION_TIMEOUT_NS);
    // Behind the look at the axes: whoever stops raises the flag before they stand.
    const bool bStop = m_Handshake.IsStopRequestedBehind();
    if (bEnded && !bStop) return true;
    for (int axis = 0; axis < iAxes; ++axis) {
        if (!pSelection[axis] || !m_Axes.m_AxisCtrl[axis].GetAxisState()) continue;
        if (!bStop)
            m_Messages.PushErrMsg(QStringLiteral("Error:") + AppConfig::m_strAxisNames[axis] +
                                  QStringLiteral(" Motion Timeout"));
        else if (m_Handshake.IsAbandoned())
            m_Axes.m_AxisCtrl[axis].Stop();   // started just behind the StopAll that has ended the operation
    }
    return false;
}
