#include "machine/Position.h"

#include "common/OperatorScreen.h"
#include "common/Refusals.h"
#include "common/UnitConverter.h"
#include "config/AppConfig.h"

#include <algorithm>

bool CPosition::GetHomeDone() const
{
    return !AppConfig::m_bHomeSensorsUsed ||
           std::all_of(m_Axes.m_AxisCtrl, m_Axes.m_AxisCtrl + CMachineAxes::AxesInUse(),
                       [](const AxisCtrl& ctrl) { return ctrl.IsAxisHomeSet(); });
}

void CPosition::SetMchHome(const signed char* pAxes)
{
    for (int axis = 0; axis < CMachineAxes::AxesInUse(); ++axis)
        if (pAxes[axis]) m_Axes.m_AxisCtrl[axis].SetMchHome();
}
void CPosition::ClearHome(const signed char* pAxes)
{
    for (int axis = 0; axis < CMachineAxes::AxesInUse(); ++axis)
        if (pAxes[axis]) m_Axes.m_AxisCtrl[axis].ClearHome();
}
void CPosition::SetMchHome()
{
    SetMchHome(ALL_AXES);
}
void CPosition::ClearHome()
{
    ClearHome(ALL_AXES);
}

void CPosition::GetAllAxisCurPos(stFloatPoint& pos) const
{
    for (int axis = 0; axis < CMachineAxes::AxesInUse(); ++axis)
        AxisOf(pos, axis) = m_Axes.m_AxisCtrl[axis].GetCurPos();
}

stFloatPoint CPosition::HereBut(eAxis axis, double fPos) const
{
    stFloatPoint pos;
    GetAllAxisCurPos(pos);
    AxisOf(pos, axis) = fPos;
    return pos;
}

double CPosition::SafeHeight()
{
    const double fSafe = AppConfig::m_fZSafePos;
    if (AppConfig::m_bHomeSensorsUsed) return fSafe - AppConfig::m_fAxisWorkZero[Z_AXIS];
    return fSafe >= 0.0 ? fSafe : -fSafe;
}

void CPosition::ToMchCoord(stFloatPoint& pos) const
{
    const qint32 iMode = AppConfig::m_GCodeRunSettings.sAbsRel;
    for (int axis = 0; axis < CMachineAxes::AxesInUse(); ++axis) {
        const double fPos = AxisOf(pos, axis) + iMode * m_Axes.m_AxisCtrl[axis].GetCurPos();
        // X alone is added: the asymmetry is required.
        AxisOf(pos, axis) = AppConfig::m_fAxisWorkZero[axis] + (axis == X_AXIS ? fPos : -fPos);
    }
}

// ---- Simulation -----------------------------------------------------------------------------------------------------

void CPosition::BeginSimulation()
{
    for (int axis = 0; axis < MAX_AXES; ++axis) m_lBeforeSimulation[axis] = m_Axes.m_AxisCtrl[axis].GetCurPosLong();
    AppConfig::m_bSimulationMode = true;
}

void CPosition::EndSimulation()
{
    AppConfig::m_bSimulationMode = false;
    for (int axis = 0; axis < MAX_AXES; ++axis) m_Axes.m_AxisCtrl[axis].m_lCurPos = m_lBeforeSimulation[axis];
    for (int axis = 0; axis < m_Axes.m_iAxesSetUp; ++axis) m_Axes.m_AxisCtrl[axis].PutDirection();
}

bool CPosition::RefuseInSimulation()
{
    if (AppConfig::m_bSimulationMode) m_Messages.PushErrMsg(NOT_IN_SIMULATION);
    return AppConfig::m_bSimulationMode;
}

// ---- Work zero ------------------------------------------------------------------------------------------------------

// Where the axis stands in machine coordinates; false, with a message: outside the machine.
bool CPosition::CheckNewWorkZero(eAxis axis, qint64& lMachinePos)
{
    lMachinePos = static_cast<qint64>(CUnitConverter::GetLong(GetCurPos(axis))) +
                  CUnitConverter::GetLong(AppConfig::m_fAxisWorkZero[axis]);
    if (lMachinePos >= CUnitConverter::GetLong(AppConfig::m_fAxisNegDirLimit[axis]) &&
        lMachinePos <= CUnitConverter::GetLong(AppConfig::m_fAxisPosDirLimit[axis]))
        return true;
    // Position units, in two notations: wanted, the text stays as operators know it.
    const AxisCtrl& ctrl = m_Axes.m_AxisCtrl[axis];
    m_Messages.PushErrMsg(QStringLiteral("Work Zero for ") + AppConfig::m_strAxisNames[axis] +
                          QStringLiteral(" must be in between ") + QString::number(ctrl.m_lNegLimit) +
                          QStringLiteral(" and ") +
                          QString::number(static_cast<double>(ctrl.m_lPosLimit), 'f', PRECISION));
    return false;
}

bool CPosition::SetWorkZero(eAxis axis)
{
    if (RefuseInSimulation()) return false;
    qint64 lMachinePos = 0;
    if (AppConfig::m_bHomeSensorsUsed) {
        if (!CheckNewWorkZero(axis, lMachinePos)) return false;
        AppConfig::m_fAxisWorkZero[axis] = CUnitConverter::GetDouble(static_cast<long long>(lMachinePos));
        AppConfig::SaveConfig(CONFIG_FILE);
    }
    m_Axes.m_AxisCtrl[axis].SetWorkZero();
    if (AppConfig::m_bHomeSensorsUsed) COperatorScreen::Get().UpdateWorkArea();
    m_Messages.PushInfoMsg(AppConfig::m_strAxisNames[axis] + QStringLiteral(" Work Zero is set"));
    return true;
}

void CPosition::SetWorkZero()
{
    if (RefuseInSimulation()) return;
    const int iAxes = CMachineAxes::AxesInUse();
    if (AppConfig::m_bHomeSensorsUsed) {
        qint64 lMachinePos[MAX_AXES] = {};
        for (int axis = 0; axis < iAxes; ++axis) (void)CheckNewWorkZero(static_cast<eAxis>(axis), lMachinePos[axis]);
        for (int axis = 0; axis < iAxes; ++axis)
            AppConfig::m_fAxisWorkZero[axis] = CUnitConverter::GetDouble(static_cast<long long>(lMachinePos[axis]));
        AppConfig::SaveConfig(CONFIG_FILE);
    }
    for (int axis = 0; axis < iAxes; ++axis) m_Axes.m_AxisCtrl[axis].SetWorkZero();
    if (AppConfig::m_bHomeSensorsUsed) COperatorScreen::Get().UpdateWorkArea();
    m_Messages.PushInfoMsg(QStringLiteral("Work Zero is set"));
}
