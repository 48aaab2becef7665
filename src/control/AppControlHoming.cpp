#include "common/UnitConverter.h"
#include "control/AppControl.h"
#include "hardware/RpiGpio.h"

#include <algorithm>

static constexpr double NO_LIMIT_DOWN = -10000.0;   // mm; a probing without sensors ends at the probe or nowhere
static constexpr signed char ALL_AXES[MAX_AXES] = {1, 1, 1, 1, 1};
static constexpr double PROBE_RETRACT = 3.0;   // mm above the new zero

// ---- Small commands -------------------------------------------------------------------------------------------------

bool AppControl::StartHoming(const signed char* pAxes)
{
    if (!AppConfig::m_bHomeSensorsUsed) {
        PushErrMsg(QStringLiteral("Homing Sensor not Enabled for all Axis"));
        return false;
    }
    if (!ClaimWorker()) return false;
    std::copy_n(pAxes, MAX_AXES, m_lstAxesToHome);
    ClearHomeOf(pAxes);
    LaunchOperation(OP_MCH_HOME);
    return true;
}

bool AppControl::StartMchHomingSequence()
{
    return StartHoming(ALL_AXES);
}
bool AppControl::StartMchHomingSequence(eAxis axis)
{
    signed char selection[MAX_AXES] = {};
    selection[axis] = 1;
    return StartHoming(selection);
}

bool AppControl::StartWorkHomingSequence()
{
    if (!GetHomeDone()) {
        PushErrMsg(QStringLiteral("Homing not done! Use \"Move Home\" in user Settings"));
        return false;
    }
    if (!ClaimWorker()) return false;
    LaunchOperation(OP_WORK_HOME);
    return true;
}

void AppControl::StartZ0usingZProbeSeq()
{
    if (ClaimWorker()) LaunchOperation(OP_Z_PROBE);
}

bool AppControl::GetHomeDone() const
{
    return !AppConfig::m_bHomeSensorsUsed ||
           std::all_of(m_AxisCtrl, m_AxisCtrl + AxesInUse(), [](const AxisCtrl& ctrl) { return ctrl.IsAxisHomeSet(); });
}

void AppControl::SetHomeOf(const signed char* pAxes)
{
    for (int axis = 0; axis < AxesInUse(); ++axis)
        if (pAxes[axis]) m_AxisCtrl[axis].SetMchHome();
}
void AppControl::ClearHomeOf(const signed char* pAxes)
{
    for (int axis = 0; axis < AxesInUse(); ++axis)
        if (pAxes[axis]) m_AxisCtrl[axis].ClearHome();
}
void AppControl::SetMchHome()
{
    SetHomeOf(ALL_AXES);
}
void AppControl::ClearHome()
{
    ClearHomeOf(ALL_AXES);
}
void AppControl::AutoHomingFinished()
{
    for (int axis = 0; axis < AxesInUse(); ++axis) m_AxisCtrl[axis].m_bHoming = false;
}

bool AppControl::PushRefusal(eAxis axis, bool bAccepted)
{
    if (!bAccepted) PushErrMsg(m_AxisCtrl[axis].GetErrorMsg());
    return bAccepted;
}

bool AppControl::WaitForAxis(eAxis axis)
{
    signed char selection[MAX_AXES] = {};
    selection[axis] = 1;
    return WaitForMotionFinish(selection);
}

bool AppControl::MoveAxisHome(eAxis axis, bool bWait)
{
    if (!PushRefusal(axis, m_AxisCtrl[axis].MoveAxisHome())) return false;
    return !bWait || WaitForAxis(axis);
}

bool AppControl::MoveWorkZero(eAxis axis, bool bWait)
{
    if (!PushRefusal(axis, m_AxisCtrl[axis].MoveWorkZero())) return false;
    return !bWait || WaitForAxis(axis);
}

bool AppControl::MoveAbs(eAxis axis, double fPos)
{
    return PushRefusal(axis, m_AxisCtrl[axis].MoveAbs(fPos));
}
bool AppControl::MoveRel(eAxis axis, double fDist)
{
    return PushRefusal(axis, m_AxisCtrl[axis].MoveRel(fDist));
}
void AppControl::JogPos(eAxis axis)
{
    PushRefusal(axis, m_AxisCtrl[axis].Jog(AppConfig::m_eAxisPosDir[axis]));
}
void AppControl::JogNeg(eAxis axis)
{
    PushRefusal(axis, m_AxisCtrl[axis].Jog(Opposite(AppConfig::m_eAxisPosDir[axis])));
}

// With sensors the setting is a machine position, without them a height above the work whose sign does not count.
double AppControl::SafeHeight()
{
    const double fSafe = AppConfig::m_fZSafePos;
    if (AppConfig::m_bHomeSensorsUsed) return fSafe - AppConfig::m_fAxisWorkZero[Z_AXIS];
    return fSafe >= 0.0 ? fSafe : -fSafe;
}

void AppControl::MoveZSafePos()
{
    (void)MoveAbs(Z_AXIS, SafeHeight());
}

// ---- Homing ---------------------------------------------------------------------------------------------------------

void AppControl::MoveMchHomeAll()
{
    if (FindHomeSensors() && (!(AppConfig::m_fHomeRepeatOffset > 0.0) || ApproachSensorsSlowly())) {
        SetHomeOf(m_lstAxesToHome);
        for (int axis = 0; axis < AxesInUse(); ++axis)
            m_AxisCtrl[axis].SetVelocityAcc(AppConfig::m_fAxisFeed[axis], AppConfig::m_fAxisAcc[axis]);
    }
    AutoHomingFinished();
}

// Z first and alone: the tool leaves the work before anything moves sideways.
bool AppControl::FindHomeSensors()
{
    for (int axis = 0; axis < AxesInUse(); ++axis) {
        if (!m_lstAxesToHome[axis]) continue;
        m_AxisCtrl[axis].SetVelocityAcc(AppConfig::m_fAxisJogFeed[axis], AppConfig::m_fAxisAcc[axis]);
        m_AxisCtrl[axis].m_bHoming = true;
    }
    if (m_lstAxesToHome[Z_AXIS] && !MoveAxisHome(Z_AXIS, true)) return false;

    signed char selection[MAX_AXES] = {};
    for (int axis = 0; axis < AxesInUse(); ++axis) {
        if (axis == Z_AXIS || !m_lstAxesToHome[axis]) continue;
        selection[axis] = 1;
        if (!SendHome(static_cast<eAxis>(axis))) return false;
    }
    return WaitForMotionFinish(selection);
}

// A refusal stops the axes that are already on their way: with the homing given up nobody would watch their sensors.
bool AppControl::SendHome(eAxis axis)
{
    if (MoveAxisHome(axis, false)) return true;
    for (int other = 0; other < AxesInUse(); ++other)
        if (m_AxisCtrl[other].GetAxisState()) m_AxisCtrl[other].Stop();
    return false;
}

bool AppControl::ApproachSensorsSlowly()
{
    SetHomeOf(m_lstAxesToHome);   // makes relative moves acceptable
    for (int axis = 0; axis < AxesInUse(); ++axis) {
        if (!m_lstAxesToHome[axis]) continue;
        AxisCtrl& ctrl = m_AxisCtrl[axis];
        ctrl.m_bHoming = false;
        const bool bHomeIsPositive = AppConfig::m_eAxisHomeDir[axis] == AppConfig::m_eAxisPosDir[axis];
        (void)ctrl.MoveRel(bHomeIsPositive ? -AppConfig::m_fHomeRepeatOffset : AppConfig::m_fHomeRepeatOffset);
    }
    const bool bBackedOff = WaitForMotionFinish(m_lstAxesToHome);
    ClearHomeOf(m_lstAxesToHome);   // also where it failed: a homing that was cut off has homed nothing
    if (!bBackedOff) return false;

    for (int axis = 0; axis < AxesInUse(); ++axis) {
        if (!m_lstAxesToHome[axis]) continue;
        m_AxisCtrl[axis].SetVelocityAcc(AppConfig::m_fAxisHomeFeed[axis], AppConfig::m_fAxisAcc[axis]);
        m_AxisCtrl[axis].m_bHoming = true;
        if (!SendHome(static_cast<eAxis>(axis))) return false;
    }
    return WaitForMotionFinish(m_lstAxesToHome);
}

// ---- Work zero ------------------------------------------------------------------------------------------------------

bool AppControl::MoveWorkZeroAll()
{
    if (!EngMoveAxisAbs(Z_AXIS, SafeHeight(), true)) return false;   // it has pushed why

    signed char selection[MAX_AXES] = {};
    for (int axis = 0; axis < AxesInUse(); ++axis) {
        if (axis == Z_AXIS) continue;
        selection[axis] = 1;
        if (!MoveWorkZero(static_cast<eAxis>(axis), false)) {
            COperatorScreen::Get().OnOperationFinish();
            return false;
        }
    }
    return WaitForMotionFinish(selection) && MoveWorkZero(Z_AXIS, true);
}

// Where the axis stands in machine coordinates; false, with a message: outside the machine.
bool AppControl::CheckNewWorkZero(eAxis axis, qint64& lMachinePos)
{
    lMachinePos = static_cast<qint64>(CUnitConverter::GetLong(GetCurPos(axis))) +
                  CUnitConverter::GetLong(AppConfig::m_fAxisWorkZero[axis]);
    if (lMachinePos >= CUnitConverter::GetLong(AppConfig::m_fAxisNegDirLimit[axis]) &&
        lMachinePos <= CUnitConverter::GetLong(AppConfig::m_fAxisPosDirLimit[axis]))
        return true;
    // Position units, in two notations: wanted, the text stays as operators know it.
    PushErrMsg(QStringLiteral("Work Zero for ") + AppConfig::m_strAxisNames[axis] +
               QStringLiteral(" must be in between ") + QString::number(m_AxisCtrl[axis].m_lNegLimit) +
               QStringLiteral(" and ") +
               QString::number(static_cast<double>(m_AxisCtrl[axis].m_lPosLimit), 'f', PRECISION));
    return false;
}

bool AppControl::SetWorkZero(eAxis axis)
{
    qint64 lMachinePos = 0;
    if (AppConfig::m_bHomeSensorsUsed) {
        if (!CheckNewWorkZero(axis, lMachinePos)) return false;
        AppConfig::m_fAxisWorkZero[axis] = CUnitConverter::GetDouble(static_cast<long long>(lMachinePos));
        AppConfig::SaveConfig(CONFIG_FILE);
    }
    m_AxisCtrl[axis].SetWorkZero();
    if (AppConfig::m_bHomeSensorsUsed) COperatorScreen::Get().UpdateWorkArea();
    PushInfoMsg(AppConfig::m_strAxisNames[axis] + QStringLiteral(" Work Zero is set"));
    return true;
}

// An axis outside the machine is told and set all the same, unlike in the form for one axis: wanted, the operator who
// sets all axes at once has chosen this corner of the work.
void AppControl::SetWorkZero()
{
    if (AppConfig::m_bHomeSensorsUsed) {
        qint64 lMachinePos[MAX_AXES] = {};
        for (int axis = 0; axis < AxesInUse(); ++axis)
            (void)CheckNewWorkZero(static_cast<eAxis>(axis), lMachinePos[axis]);
        for (int axis = 0; axis < AxesInUse(); ++axis)
            AppConfig::m_fAxisWorkZero[axis] = CUnitConverter::GetDouble(static_cast<long long>(lMachinePos[axis]));
        AppConfig::SaveConfig(CONFIG_FILE);
    }
    for (int axis = 0; axis < AxesInUse(); ++axis) m_AxisCtrl[axis].SetWorkZero();
    if (AppConfig::m_bHomeSensorsUsed) COperatorScreen::Get().UpdateWorkArea();
    PushInfoMsg(QStringLiteral("Work Zero is set"));
}

// The axis stops within the pulse on which the probe closes, and the move ends as any other: the probe input then tells
// whether it was the surface.
void AppControl::SetZ0usingZProbe()
{
    AxisCtrl& z = m_AxisCtrl[Z_AXIS];
    z.SetVelocityAcc(AppConfig::m_fAxisJogFeed[Z_AXIS], AppConfig::m_fAxisAcc[Z_AXIS]);
    const double fTarget =
        AppConfig::m_bHomeSensorsUsed ? CUnitConverter::GetDouble(static_cast<int>(z.m_lNegLimit)) : NO_LIMIT_DOWN;
    z.m_bWatchZProbe = true;
    (void)EngMoveAxisAbs(Z_AXIS, fTarget, true);
    if (CRpiGpio::ReadInput(Pin(AppConfig::m_iZProbeInput)) != 0) (void)SetWorkZero(Z_AXIS);
    z.m_bWatchZProbe = false;
    z.SetVelocityAcc(AppConfig::m_fAxisFeed[Z_AXIS], AppConfig::m_fAxisAcc[Z_AXIS]);
    (void)EngMoveAxisAbs(Z_AXIS, PROBE_RETRACT, true);
}
