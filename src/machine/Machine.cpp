#include "machine/Machine.h"

#include "config/AppConfig.h"
#include "machine/MCodeOutputs.h"
#include "motion/AllAxisCtrl.h"

CMachine::CMachine()
{
    // All five, also where SetUpAxes sets up three: a settings screen rebuilds every axis, each from its own values.
    for (int axis = 0; axis < MAX_AXES; ++axis) m_AxisCtrl[axis].m_sAxis = static_cast<qint16>(axis);
}

void CMachine::SetUpAxes()
{
    m_iAxesSetUp = AxesInUse();
    for (int axis = 0; axis < m_iAxesSetUp; ++axis) {
        AxisCtrl& ctrl = m_AxisCtrl[axis];
        ctrl.m_sAxis = static_cast<qint16>(axis);
        ctrl.ConfigAxis();
        ctrl.SetWorkZero();
        ctrl.PutDirection();   // the pins have just been set up
        if (const QString strWhy = ctrl.GetBuildError(); !strWhy.isEmpty()) PushErrMsg(strWhy);
    }
}

void CMachine::SwitchOff()
{
    m_Spindle.TurnOnOffSpindle(false, DIR_CW);
    for (const quint16 uCoolant : {quint16(7), quint16(8)})
        if (AppConfig::m_lstMCodesPin.contains(uCoolant))
            WriteMCodeOutput(uCoolant, 0);   // no pin 0 for one that is not
}

void CMachine::StopAll()
{
    Abandon();
    m_AxisCommands.RequestStop();   // all at once: none goes on while another is waited for
    CAllAxisCtrl::StopAutoMode();
    CAllAxisCtrl::WaitForAutoModeEnd();
    m_AxisCommands.StopAxes();
}
