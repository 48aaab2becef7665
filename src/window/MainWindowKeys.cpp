#include "common/Paths.h"
#include "config/AppConfig.h"
#include "time/Wait.h"
#include "window/MainWindowUi.h"
#include "window/UsbProgram.h"

#include <QApplication>
#include <QKeyEvent>

#include <algorithm>

static constexpr int LOWEST_FEED = 10, HIGHEST_FEED = 150;   // percent
static constexpr int LOWEST_SPEED = 1, HIGHEST_SPEED = 15;   // by key; the bar itself goes to 24, wanted

// ---- Who gets the keys ----------------------------------------------------------------------------------------------

void MainWindow::GrabKeyboard(bool bGrab)
{
    m_bGrabWanted = bGrab;
    DropKeys();
    UpdateKeyboardGrab();
}

// While a box, a keypad or a file dialog is open every key is its own: the grab would send its figures here and jog.
void MainWindow::UpdateKeyboardGrab()
{
    if (m_bGrabWanted && AppConfig::m_bKeyboardCtrlUsed && !QApplication::activeModalWidget())
        grabKeyboard();
    else if (QWidget::keyboardGrabber() == this)
        releaseKeyboard();
}

bool MainWindow::event(QEvent* pEvent)
{
    switch (pEvent->type()) {
    case QEvent::WindowBlocked:
    case QEvent::WindowDeactivate: DropKeys(); break;
    default: break;
    }
    const bool bDone = QMainWindow::event(pEvent);
    if (pEvent->type() == QEvent::WindowBlocked || pEvent->type() == QEvent::WindowUnblocked) UpdateKeyboardGrab();
    return bDone;
}

// Of the application. The emergency stop by key acts also while something modal has the keyboard.
bool MainWindow::eventFilter(QObject* pObject, QEvent* pEvent)
{
    const QEvent::Type eType = pEvent->type();
    if (eType != QEvent::KeyPress && eType != QEvent::KeyRelease && eType != QEvent::ShortcutOverride)
        return QMainWindow::eventFilter(pObject, pEvent);
    const auto* pKey = static_cast<QKeyEvent*>(pEvent);
    if (pKey->key() != Qt::Key_Enter || !AppConfig::m_bKeyboardCtrlUsed || !QApplication::activeModalWidget())
        return QMainWindow::eventFilter(pObject, pEvent);
    if (eType == QEvent::KeyPress && !pKey->isAutoRepeat()) ToggleEmergencyStop();
    return true;
}

// ---- Press and release ----------------------------------------------------------------------------------------------

void MainWindow::keyPressEvent(QKeyEvent* pEvent)
{
    if (pEvent->isAutoRepeat() || !AppConfig::m_bKeyboardCtrlUsed || !m_bGrabWanted) return;
    stKeyState state;
    state.bContinuous = m_bKeyModeContinuous;
    state.iOperation = m_AppControl.m_eOperation;
    state.bSpeedCtrl = AppConfig::m_bPWMCtrlUsed && !AppConfig::m_GCodeRunSettings.bUsePrgmSpindleSpeed;
    DoKey(DecideKeyPress(pEvent->key(), state), pEvent->key());
}

void MainWindow::keyReleaseEvent(QKeyEvent* pEvent)
{
    if (pEvent->isAutoRepeat() || !AppConfig::m_bKeyboardCtrlUsed || !m_bGrabWanted) return;
    EndKeyJog();
    const int iKey = pEvent->key();
    if (m_iKeyHoldCode == iKey && m_KeyHoldTimer.isValid() && m_KeyHoldTimer.elapsed() < KEY_SHORT_MS)
        DoKey(DecideShortPress(iKey, m_bKeyModeContinuous), iKey);
    m_iKeyHoldCode = -1;
}

// The release of a key that is down will come to another window.
void MainWindow::DropKeys()
{
    EndKeyJog();
    m_iKeyHoldCode = -1;
}

// Whichever key it was: all three ramp down together.
void MainWindow::EndKeyJog()
{
    if (!m_bKeyJogging) return;
    m_bKeyJogging = false;
    for (const eAxis axis : {X_AXIS, Y_AXIS, Z_AXIS}) m_AppControl.DeccelerateAxis(axis);
}

// ---- Actions --------------------------------------------------------------------------------------------------------

void MainWindow::DoKey(const stKeyDecision& decision, int iKey)
{
    const auto LogError = [this](const char* szText) { AddLogMsg(QString::fromLatin1(szText), MSG_ERROR); };
    switch (decision.eAction) {
    case KEY_NOTHING: break;
    case KEY_TOGGLE_STOP: return ToggleEmergencyStop();
    case KEY_FEED_OVERRIDE: return ChangeFeedByKey(decision.iStep);
    case KEY_SPEED_OVERRIDE: return ChangeSpeedByKey(decision.iStep);
    case KEY_NO_SPEED_CTRL: return LogError("Spindle Speed Control not available");
    case KEY_SPINDLE_CW: return SwitchSpindleByKey();
    case KEY_LIGHT_START: return m_BtnStart.SetPressed();
    case KEY_TOGGLE_MODE: m_bKeyModeContinuous = !m_bKeyModeContinuous; break;
    case KEY_REFUSE_BUSY: return LogError("Axis in use");
    case KEY_LOAD_STICK:
        on_Btn_GCode_clicked();
        AddLogMsg(QStringLiteral("Loading G-Code from USB"), MSG_INFO);
        return LoadGCodeFromUSBOnKeyPress();
    case KEY_SHOW_AND_LIGHT_START: on_Btn_GCode_clicked(); return m_BtnStart.SetPressed();
    case KEY_MEASURE_HOLD:
        m_KeyHoldTimer.start();
        CWait::SleepUs(10);
        m_iKeyHoldCode = iKey;
        break;
    case KEY_JOG: return JogByKey(decision.axis, decision.iStep);
    case KEY_SET_JOG_STEP:
        m_fKeyJogStep =
            JogStepOf(iKey, std::max({AppConfig::m_fAxisMovPerPulse[X_AXIS], AppConfig::m_fAxisMovPerPulse[Y_AXIS],
                                      AppConfig::m_fAxisMovPerPulse[Z_AXIS]}));
        break;
    case KEY_MOVE_ALL_ZERO: return on_Btn_MoveWorkZero_clicked();
    case KEY_HOME_ALL: return m_dlgUserSettings.on_Btn_AutoHomeSequence_clicked();
    case KEY_MOVE_Z_ZERO:
    case KEY_MOVE_XY_ZERO: return MoveZeroByKey(decision.eAction);
    case KEY_SET_Z_ZERO:
    case KEY_SET_ALL_ZERO:
    case KEY_SET_XY_ZERO: return SetZeroByKey(decision.eAction);
    }
}

void MainWindow::ChangeFeedByKey(int iStep)
{
    const auto iFeed = static_cast<short>(std::clamp(m_G01FeedBar.GetValue() + iStep, LOWEST_FEED, HIGHEST_FEED));
    OnG01FeedChange(iFeed);
    m_G01FeedBar.setValue(iFeed);
}

void MainWindow::ChangeSpeedByKey(int iStep)
{
    const auto iSpeed =
        static_cast<short>(std::clamp(m_SpindleSpeedBar.GetValue() + iStep, LOWEST_SPEED, HIGHEST_SPEED));
    OnSpindleSpeedChange(iSpeed);
    m_SpindleSpeedBar.setValue(iSpeed);
}

// A button that is off is off for the key too: with the other direction running both relays would close.
void MainWindow::SwitchSpindleByKey()
{
    if (!m_pUi->Btn_SpindleCWOnOff->isEnabled()) return AddLogMsg(QStringLiteral("Spindle runs CCW"), MSG_ERROR);
    on_Btn_SpindleCWOnOff_clicked();
}

void MainWindow::JogByKey(eAxis axis, int iSign)
{
    if (!m_bKeyModeContinuous) {
        (void)m_AppControl.MoveRel(axis, iSign * m_fKeyJogStep);
        return;
    }
    AxisCtrl& ctrl = m_AppControl.m_AxisCtrl[axis];
    if (ctrl.GetAxisState()) return;
    m_bKeyJogging = true;
    ctrl.SetVelocityAcc(AppConfig::m_fAxisJogFeed[axis], AppConfig::m_fAxisAcc[axis]);
    if (iSign > 0)
        m_AppControl.JogPos(axis);
    else
        m_AppControl.JogNeg(axis);
}

// An operation may have begun since the key went down.
void MainWindow::MoveZeroByKey(eKeyAction eAction)
{
    if (m_AppControl.m_eOperation != OP_NONE) return AddLogMsg(QStringLiteral("Axis in use"), MSG_ERROR);
    if (eAction == KEY_MOVE_Z_ZERO) {
        (void)m_AppControl.MoveWorkZero(Z_AXIS, false);
        return;
    }
    (void)m_AppControl.MoveWorkZero(X_AXIS, false);
    (void)m_AppControl.MoveWorkZero(Y_AXIS, false);
}

void MainWindow::SetZeroByKey(eKeyAction eAction)
{
    if (RefuseBusy()) return;   // the same
    if (eAction == KEY_SET_ALL_ZERO) return m_AppControl.SetWorkZero();
    if (eAction == KEY_SET_Z_ZERO) {
        (void)m_AppControl.SetWorkZero(Z_AXIS);
        return;
    }
    (void)m_AppControl.SetWorkZero(X_AXIS);
    (void)m_AppControl.SetWorkZero(Y_AXIS);
}

void MainWindow::LoadGCodeFromUSBOnKeyPress()
{
    const stUsbProgram program = FindUsbProgram(CPaths::MountFolder());
    if (!program.bStickFound) return AddLogMsg(QStringLiteral("No USB drive detected!"), MSG_ERROR);
    if (program.strFile.isEmpty()) return AddLogMsg(QStringLiteral("No G-Code files found"), MSG_ERROR);
    (void)m_dlgGCode.LoadFromStick(program.strFile);
}
