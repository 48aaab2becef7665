#include "common/Refusals.h"
#include "config/AppConfig.h"
#include "widgets/ButtonStyle.h"
#include "window/MainWindowUi.h"

#include <cmath>

static constexpr double SHOWN_AS_ZERO = 1e-5;   // mm, so that no "-0.0000" flickers

// The order of the steps is binding. One that must not go on ends the whole loop: after an error of which nothing is
// known the machine is not to be run.
void MainWindow::OnTimer()
{
    if (m_bInOnTimer) return;
    try {
        m_Supervision.SendSpindleFrequency();
        m_bInOnTimer = true;
        ShowNextMessages();
        ShowPositions();
        ShowStartRequest();
        ShowToolChangePause();
        NoteOperationEnd();
        ShowCarvingRow();
        ShowToolPathsOfJob();
        WatchEmergencyStopInput();
        WatchStartInput();
        ActOnHeldKey();
        ShowSpindleOfProgram();
        m_bInOnTimer = false;
    } catch (...) {
        m_bInOnTimer = true;
        AddLogMsg(QStringLiteral("Unknown error"), MSG_ERROR);
    }
}

// One of each kind a tick, so that a flood of messages does not hold the window.
void MainWindow::ShowNextMessages()
{
    const stMessages messages = m_Supervision.NextMessages();
    AddLogMsg(messages.strError, MSG_ERROR);
    AddLogMsg(messages.strInfo, MSG_INFO);
}

void MainWindow::ShowPositions()
{
    QString strText;
    for (int axis = 0; axis < MAX_AXES; ++axis) {
        double fPos = m_AppControl.GetCurPos(static_cast<eAxis>(axis));
        if (std::fabs(fPos) < SHOWN_AS_ZERO) fPos = 0.0;
        const bool bExists = AppConfig::m_iMchType != 3 || axis <= Z_AXIS;
        strText += bExists ? QString::number(fPos, 'f', PRECISION) : QStringLiteral("NA");
        strText += QLatin1Char('\n');
    }
    strText.chop(1);
    m_pUi->LE_CurPos->setText(strText);
}

void MainWindow::ShowStartRequest()
{
    if (m_Supervision.TakeStartRequest()) m_BtnStart.SetPressed();
}

void MainWindow::ShowToolChangePause()
{
    if (!m_Supervision.BeginToolChange()) return;
    // "Off" in lower case and only here: wanted, it tells a tool change from a spindle that was switched off.
    ShowSpindle(m_pUi->Btn_SpindleCWOnOff, true, BTN_BKGND_GRAY, SPINDLE_CW + QStringLiteral("Off"));
    m_pUi->Btn_SpindleCCWOnOff->setStyleSheet(BTN_BKGND_GRAY);
    m_pUi->Btn_SpindleCCWOnOff->setText(SPINDLE_CCW + QStringLiteral("Off"));
    Btn_Pause_pressed();   // takes the flag
    EnableJogPanel(true);
}

void MainWindow::NoteOperationEnd()
{
    if (m_Supervision.TakeOperationEnd()) OnOperationFinish();
}

void MainWindow::ShowCarvingRow()
{
    if (m_AppControl.m_eOperation == OP_IMG_CARVING) m_dlgImageCarving.FollowCarving();
}

void MainWindow::ShowToolPathsOfJob()
{
    if (IsCutting(m_AppControl.m_eOperation)) DrawToolPaths();
}

void MainWindow::WatchEmergencyStopInput()
{
    switch (m_Supervision.ReadStopInput()) {
    case STOP_INPUT_SAME: break;
    case STOP_INPUT_RISEN:
        ShowOperationEnd(m_Supervision.EmergencyStop());
        m_BtnStop.SetPressed();
        return AddLogMsg(QStringLiteral("Emergency Stop Triggered"), MSG_ERROR);
    case STOP_INPUT_FALLEN: return m_BtnStop.SetReleased();
    }
}

void MainWindow::WatchStartInput()
{
    switch (m_Supervision.ReadStartInput()) {
    case START_INPUT_SAME: break;
    case START_INPUT_REFUSED: return AddLogMsg(MACHINE_IN_USE, MSG_ERROR);
    case START_INPUT_RISEN: on_Btn_GCode_clicked(); return m_BtnStart.SetPressed();
    }
}

void MainWindow::ActOnHeldKey()
{
    if (m_iKeyHoldCode == 0 || !m_KeyHoldTimer.isValid() || m_KeyHoldTimer.elapsed() < KEY_HELD_MS) return;
    DoKey(DecideHeldKey(m_iKeyHoldCode), m_iKeyHoldCode);
    m_iKeyHoldCode = -1;
}

void MainWindow::ShowSpindleOfProgram()
{
    if (AppConfig::m_bAutoSpindleOnCW || AppConfig::m_bAutoSpindleOnCCW ||
        !AppConfig::m_bSpindleOnOffStatusChangeInGCode)
        return;
    const QString strOn = QStringLiteral("ON");
    QPushButton *pCW = m_pUi->Btn_SpindleCWOnOff, *pCCW = m_pUi->Btn_SpindleCCWOnOff;
    if (!AppConfig::m_bSpindleOn) {
        // The same text on both: wanted, the other direction is the one that a program leaves.
        ShowSpindle(pCW, true, BTN_BKGND_GRAY, SPINDLE_CCW + QStringLiteral("OFF"));
        ShowSpindle(pCCW, true, BTN_BKGND_GRAY, SPINDLE_CCW + QStringLiteral("OFF"));
    } else if (AppConfig::m_bSpindleDirInGcode) {
        ShowSpindle(pCCW, true, BTN_BKGND_GREEN, SPINDLE_CCW + strOn);
        ShowSpindle(pCW, false, BTN_BKGND_GRAY, pCW->text());
    } else {
        ShowSpindle(pCW, true, BTN_BKGND_GREEN, SPINDLE_CW + strOn);
        ShowSpindle(pCCW, false, BTN_BKGND_GRAY, pCCW->text());
    }
    AppConfig::m_bSpindleOnOffStatusChangeInGCode = false;
}
