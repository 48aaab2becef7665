#include "window/KeyPilot.h"

#include "common/Refusals.h"
#include "config/AppConfig.h"
#include "control/AppControl.h"
#include "control/Supervision.h"
#include "screens/host/ScreenHost.h"
#include "time/Wait.h"
#include "window/FeedPanel.h"
#include "window/SpindlePanel.h"
#include "window/StartStop.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

#include <algorithm>

void CKeyPilot::LogError(const QString& strMsg)
{
    m_Faces.host.AddLogMsg(strMsg, MSG_ERROR);
}

// ---- Who gets the keys ----------------------------------------------------------------------------------------------

void CKeyPilot::Grab(bool bGrab)
{
    m_bGrabWanted = bGrab;
    Drop();
    UpdateGrab();
}

void CKeyPilot::UpdateGrab()
{
    if (m_bGrabWanted && AppConfig::m_bKeyboardCtrlUsed && !QApplication::activeModalWidget())
        m_Faces.window.grabKeyboard();
    else if (QWidget::keyboardGrabber() == &m_Faces.window)
        m_Faces.window.releaseKeyboard();
}

void CKeyPilot::Drop()
{
    EndJog();
    m_iKeyHoldCode = -1;
}

bool CKeyPilot::TakeStopKey(QEvent& event)
{
    const QEvent::Type eType = event.type();
    if (eType != QEvent::KeyPress && eType != QEvent::KeyRelease && eType != QEvent::ShortcutOverride) return false;
    const auto& key = static_cast<const QKeyEvent&>(event);
    if (key.key() != Qt::Key_Enter || !AppConfig::m_bKeyboardCtrlUsed || !QApplication::activeModalWidget())
        return false;
    if (eType == QEvent::KeyPress && !key.isAutoRepeat()) m_Faces.startStop.ToggleStop();
    return true;
}

bool CKeyPilot::AreKeysOurs(const QKeyEvent& event) const
{
    return !event.isAutoRepeat() && AppConfig::m_bKeyboardCtrlUsed && m_bGrabWanted;
}

// ---- Press and release ----------------------------------------------------------------------------------------------

void CKeyPilot::Press(const QKeyEvent& event)
{
    if (!AreKeysOurs(event)) return;
    stKeyState state;
    state.bContinuous = m_bContinuous;
    state.iOperation = m_Faces.host.Machine().m_eOperation;
    state.bSpeedCtrl = AppConfig::m_bPWMCtrlUsed && !AppConfig::m_GCodeRunSettings.bUsePrgmSpindleSpeed;
    Do(DecideKeyPress(event.key(), state), event.key());
}

void CKeyPilot::Release(const QKeyEvent& event)
{
    if (!AreKeysOurs(event)) return;
    EndJog();
    const int iKey = event.key();
    if (m_iKeyHoldCode == iKey && m_KeyHoldTimer.isValid() && m_KeyHoldTimer.elapsed() < KEY_SHORT_MS)
        Do(DecideShortPress(iKey, m_bContinuous), iKey);
    m_iKeyHoldCode = -1;
}

void CKeyPilot::ActOnHeldKey()
{
    if (m_iKeyHoldCode == 0 || !m_KeyHoldTimer.isValid() || m_KeyHoldTimer.elapsed() < KEY_HELD_MS) return;
    Do(DecideHeldKey(m_iKeyHoldCode), m_iKeyHoldCode);
    m_iKeyHoldCode = -1;
}

// ---- Actions --------------------------------------------------------------------------------------------------------

void CKeyPilot::Do(const stKeyDecision& decision, int iKey)
{
    switch (decision.eAction) {
    case KEY_NOTHING: break;
    case KEY_TOGGLE_STOP: return m_Faces.startStop.ToggleStop();
    case KEY_FEED_OVERRIDE: return m_Faces.feeds.ChangeFeed(decision.iStep);
    case KEY_SPEED_OVERRIDE: return m_Faces.spindle.ChangeSpeed(decision.iStep);
    case KEY_NO_SPEED_CTRL: return LogError(CSpindlePanel::NoSpeedControl());
    case KEY_SPINDLE_CW: return m_Faces.spindle.ToggleByKey();
    case KEY_LIGHT_START: return m_Faces.startStop.LightStart();
    case KEY_TOGGLE_MODE: m_bContinuous = !m_bContinuous; break;
    case KEY_REFUSE_BUSY: return LogError(AXIS_IN_USE);
    case KEY_LOAD_STICK:
        m_Faces.fnShowProgram();
        m_Faces.host.AddLogMsg(QStringLiteral("Loading G-Code from USB"), MSG_INFO);
        return m_Faces.fnLoadStick();
    case KEY_SHOW_AND_LIGHT_START: m_Faces.fnShowProgram(); return m_Faces.startStop.LightStart();
    case KEY_MEASURE_HOLD:
        m_KeyHoldTimer.start();
        CWait::SleepUs(10);
        m_iKeyHoldCode = iKey;
        break;
    case KEY_JOG: return Jog(decision.axis, decision.iStep);
    case KEY_SET_JOG_STEP:
        m_fJogStep =
            JogStepOf(iKey, std::max({AppConfig::m_fAxisMovPerPulse[X_AXIS], AppConfig::m_fAxisMovPerPulse[Y_AXIS],
                                      AppConfig::m_fAxisMovPerPulse[Z_AXIS]}));
        break;
    case KEY_MOVE_ALL_ZERO: return m_Faces.fnMoveWorkZero();
    case KEY_HOME_ALL: return m_Faces.fnHomeAll();
    case KEY_MOVE_Z_ZERO:
    case KEY_MOVE_XY_ZERO: return MoveZero(decision.eAction);
    case KEY_SET_Z_ZERO:
    case KEY_SET_ALL_ZERO:
    case KEY_SET_XY_ZERO: return SetZero(decision.eAction);
    }
}

void CKeyPilot::Jog(eAxis axis, int iSign)
{
    if (m_Faces.host.IsEmergencyStopOn()) return;
    AppControl& machine = m_Faces.host.Machine();
    if (machine.IsWorkerBusy()) return LogError(AXIS_IN_USE);   // one that was given up still leaves
    if (!m_bContinuous) {
        (void)machine.MoveRel(axis, iSign * m_fJogStep);
        return;
    }
    AxisCtrl& ctrl = machine.m_AxisCtrl[axis];
    if (ctrl.GetAxisState()) return;
    m_bJogging = true;
    ctrl.SetVelocityAcc(AppConfig::m_fAxisJogFeed[axis], AppConfig::m_fAxisAcc[axis]);
    if (iSign > 0)
        machine.JogPos(axis);
    else
        machine.JogNeg(axis);
}

// Whichever key it was: all three ramp down together.
void CKeyPilot::EndJog()
{
    if (!m_bJogging) return;
    m_bJogging = false;
    // A jog that was refused or has met its limit left the machine free, and the axes may be an operation's by now.
    if (m_Faces.host.Machine().m_eOperation != OP_NONE || m_Faces.host.Machine().IsWorkerBusy()) return;
    for (const eAxis axis : {X_AXIS, Y_AXIS, Z_AXIS}) m_Faces.host.Machine().DeccelerateAxis(axis);
}

// An operation may have begun since the key went down.
void CKeyPilot::MoveZero(eKeyAction eAction)
{
    if (m_Faces.host.IsEmergencyStopOn()) return;
    AppControl& machine = m_Faces.host.Machine();
    if (machine.m_eOperation != OP_NONE || machine.IsWorkerBusy()) return LogError(AXIS_IN_USE);
    if (eAction == KEY_MOVE_Z_ZERO) {
        (void)machine.MoveWorkZero(Z_AXIS, false);
        return;
    }
    (void)machine.MoveWorkZero(X_AXIS, false);
    (void)machine.MoveWorkZero(Y_AXIS, false);
}

static bool Zeroes(eKeyAction eAction, int axis)
{
    if (eAction == KEY_SET_ALL_ZERO) return true;
    return eAction == KEY_SET_Z_ZERO ? axis == Z_AXIS : axis < Z_AXIS;
}

void CKeyPilot::SetZero(eKeyAction eAction)
{
    if (m_Faces.host.IsEmergencyStopOn()) return;
    for (const QString& strWhy : {CSupervision::WhyNotInSimulation(), m_Faces.supervision.WhyNotFree()})
        if (!strWhy.isEmpty()) return LogError(strWhy);   // it may have changed since the key went down
    AppControl& machine = m_Faces.host.Machine();
    for (int axis = 0; axis < CMachineAxes::AxesInUse(); ++axis)
        if (AppConfig::m_bHomeSensorsUsed && Zeroes(eAction, axis) && !machine.m_AxisCtrl[axis].IsAxisHomeSet())
            return LogError(HOMING_NOT_DONE_SHOWN);
    if (eAction == KEY_SET_ALL_ZERO) return machine.SetWorkZero();
    if (eAction == KEY_SET_Z_ZERO) {
        (void)machine.SetWorkZero(Z_AXIS);
        return;
    }
    (void)machine.SetWorkZero(X_AXIS);
    (void)machine.SetWorkZero(Y_AXIS);
}
