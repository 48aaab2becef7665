#include "machine/Homing.h"

#include "common/OperatorScreen.h"
#include "common/UnitConverter.h"
#include "config/AppConfig.h"
#include "hardware/RpiGpio.h"

#include <algorithm>

static constexpr double NO_LIMIT_DOWN = -10000.0;   // mm; a probing without sensors ends at the probe or nowhere
static constexpr double PROBE_RETRACT = 3.0;        // mm above the new zero

void CHoming::Select(const signed char* pAxes)
{
    std::copy_n(pAxes, MAX_AXES, m_lstAxesToHome);
    m_Position.ClearHome(pAxes);
}

void CHoming::AutoHomingFinished()
{
    for (int axis = 0; axis < CMachineAxes::AxesInUse(); ++axis) Axis(axis).EndWatch();
}

// ---- Machine home ---------------------------------------------------------------------------------------------------

void CHoming::MoveMchHomeAll()
{
    if (FindHomeSensors() && (!(AppConfig::m_fHomeRepeatOffset > 0.0) || ApproachSensorsSlowly()) &&
        !m_Commands.IsStopped()) {
        m_Position.SetMchHome(m_lstAxesToHome);
        for (int axis = 0; axis < CMachineAxes::AxesInUse(); ++axis)
            Axis(axis).SetVelocityAcc(AppConfig::m_fAxisFeed[axis], AppConfig::m_fAxisAcc[axis]);
    }
    AutoHomingFinished();
}

// Z first and alone: the tool leaves the work before anything moves sideways.
bool CHoming::FindHomeSensors()
{
    for (int axis = 0; axis < CMachineAxes::AxesInUse(); ++axis) {
        if (!m_lstAxesToHome[axis]) continue;
        Axis(axis).SetVelocityAcc(AppConfig::m_fAxisJogFeed[axis], AppConfig::m_fAxisAcc[axis]);
        Axis(axis).BeginWatch(Axis(axis).m_bHoming);
    }
    if (m_lstAxesToHome[Z_AXIS] && (!m_Commands.MayBegin() || !m_Commands.MoveAxisHome(Z_AXIS, true))) return false;

    signed char selection[MAX_AXES] = {};
    for (int axis = 0; axis < CMachineAxes::AxesInUse(); ++axis) {
        if (axis == Z_AXIS || !m_lstAxesToHome[axis]) continue;
        selection[axis] = 1;
        if (!SendHome(static_cast<eAxis>(axis))) return false;
    }
    return m_Commands.WaitForMotionFinish(selection);
}

// A refusal stops the axes that are already on their way: with the homing given up nobody would watch their sensors.
bool CHoming::SendHome(eAxis axis)
{
    if (m_Commands.MayBegin() && m_Commands.MoveAxisHome(axis, false) && m_Commands.StillWanted(axis)) return true;
    for (int other = 0; other < CMachineAxes::AxesInUse(); ++other)
        if (Axis(other).GetAxisState()) Axis(other).Stop();
    return false;
}

bool CHoming::ApproachSensorsSlowly()
{
    m_Position.SetMchHome(m_lstAxesToHome);   // makes relative moves acceptable
    for (int axis = 0; axis < CMachineAxes::AxesInUse(); ++axis) {
        if (!m_lstAxesToHome[axis]) continue;
        AxisCtrl& ctrl = Axis(axis);
        if (!m_Commands.MayBegin()) break;   // the wait below gives the reason
        ctrl.m_bHoming = false;
        const bool bHomeIsPositive = AppConfig::m_eAxisHomeDir[axis] == AppConfig::m_eAxisPosDir[axis];
        (void)ctrl.MoveRel(bHomeIsPositive ? -AppConfig::m_fHomeRepeatOffset : AppConfig::m_fHomeRepeatOffset);
    }
    const bool bBackedOff = m_Commands.WaitForMotionFinish(m_lstAxesToHome);
    m_Position.ClearHome(m_lstAxesToHome);   // also where it failed: a homing that was cut off has homed nothing
    if (!bBackedOff) return false;

    for (int axis = 0; axis < CMachineAxes::AxesInUse(); ++axis) {
        if (!m_lstAxesToHome[axis]) continue;
        Axis(axis).SetVelocityAcc(AppConfig::m_fAxisHomeFeed[axis], AppConfig::m_fAxisAcc[axis]);
        Axis(axis).BeginWatch(Axis(axis).m_bHoming);
        if (!SendHome(static_cast<eAxis>(axis))) return false;
    }
    return m_Commands.WaitForMotionFinish(m_lstAxesToHome);
}

// ---- Work zero ------------------------------------------------------------------------------------------------------

bool CHoming::MoveWorkZeroAll()
{
    return m_Watched.Watched([] { return stWorkCommand{.eKind = WORK_ZERO}; }, [&] { return GoToWorkZero(); });
}

bool CHoming::GoToWorkZero()
{
    if (!m_Commands.EngMoveAxisAbs(Z_AXIS, CPosition::SafeHeight(), true)) return false;   // it has pushed why

    signed char selection[MAX_AXES] = {};
    for (int axis = 0; axis < CMachineAxes::AxesInUse(); ++axis) {
        if (axis == Z_AXIS) continue;
        selection[axis] = 1;
        if (!m_Commands.MayBegin()) return false;
        if (!m_Commands.MoveWorkZero(static_cast<eAxis>(axis), false)) {
            COperatorScreen::Get().OnOperationFinish();
            return false;
        }
        if (!m_Commands.StillWanted(static_cast<eAxis>(axis))) return false;
    }
    return m_Commands.WaitForMotionFinish(selection) && m_Commands.MayBegin() && m_Commands.MoveWorkZero(Z_AXIS, true);
}

void CHoming::MoveZSafePos()
{
    (void)m_Commands.MoveAbs(Z_AXIS, CPosition::SafeHeight());
}

// ---- Probe ----------------------------------------------------------------------------------------------------------

// The axis stops within the pulse on which the probe closes, and the move ends as any other: the probe input then tells
// whether it was the surface.
void CHoming::SetZ0usingZProbe()
{
    AxisCtrl& z = Axis(Z_AXIS);
    z.SetVelocityAcc(AppConfig::m_fAxisJogFeed[Z_AXIS], AppConfig::m_fAxisAcc[Z_AXIS]);
    const double fTarget =
        AppConfig::m_bHomeSensorsUsed ? CUnitConverter::GetDouble(static_cast<int>(z.m_lNegLimit)) : NO_LIMIT_DOWN;
    z.BeginWatch(z.m_bWatchZProbe);
    (void)m_Commands.EngMoveAxisAbs(Z_AXIS, fTarget, true);
    // A probing that was given up has found nothing, wherever the probe is.
    if (!m_Commands.IsStopped() && CRpiGpio::ReadInput(Pin(AppConfig::m_iZProbeInput)) != 0)
        (void)m_Position.SetWorkZero(Z_AXIS);
    z.EndWatch();
    z.SetVelocityAcc(AppConfig::m_fAxisFeed[Z_AXIS], AppConfig::m_fAxisAcc[Z_AXIS]);
    (void)m_Commands.EngMoveAxisAbs(Z_AXIS, PROBE_RETRACT, true);
}
