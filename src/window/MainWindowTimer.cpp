#include "config/AppConfig.h"
#include "hardware/RpiGpio.h"
#include "hardware/VantorGpio.h"
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
        SendSpindleFrequency();
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

void MainWindow::SendSpindleFrequency()
{
    const quint16 iFreq = AppConfig::m_stPwmSpndlSettings.iCurFreq;
    if (!AppConfig::m_bPWMCtrlUsed || m_iLastPwmFreq == iFreq) return;
    m_iLastPwmFreq = iFreq;
    CVANTORGPIO::PwmStart();
}

// One of each kind a tick, so that a flood of messages does not hold the window.
void MainWindow::ShowNextMessages()
{
    AddLogMsg(m_AppControl.GetErrMsg(), MSG_ERROR);
    AddLogMsg(m_AppControl.GetInfoMsg(), MSG_INFO);
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
    if (!m_AppControl.m_bStartBtnPressRequest) return;
    m_BtnStart.SetPressed();
    m_AppControl.m_bStartBtnPressRequest = false;
}

void MainWindow::ShowToolChangePause()
{
    if (!m_AppControl.m_bToolChangePause) return;
    AppConfig::m_bSpindleOn = false;
    // "Off" in lower case and only here: wanted, it tells a tool change from a spindle that was switched off.
    ShowSpindle(m_pUi->Btn_SpindleCWOnOff, true, BTN_BKGND_GRAY, SPINDLE_CW + QStringLiteral("Off"));
    m_pUi->Btn_SpindleCCWOnOff->setStyleSheet(BTN_BKGND_GRAY);
    m_pUi->Btn_SpindleCCWOnOff->setText(SPINDLE_CCW + QStringLiteral("Off"));
    Btn_Pause_pressed();   // takes the flag
    EnableJogPanel(true);
}

void MainWindow::NoteOperationEnd()
{
    if (!m_AppControl.m_bOperationFinished) return;
    m_AppControl.m_bOperationFinished = false;
    OnOperationFinish();
}

void MainWindow::ShowCarvingRow()
{
    if (m_AppControl.m_eOperation == OP_IMG_CARVING) m_dlgImageCarving.FollowCarving();
}

void MainWindow::ShowToolPathsOfJob()
{
    const qint32 iOperation = m_AppControl.m_eOperation;
    if (iOperation == OP_SHAPES || iOperation == OP_IMG_CARVING || iOperation == OP_GCODE) DrawToolPaths();
}

// Changes of the input, not its level: the round button works independently of it.
void MainWindow::WatchEmergencyStopInput()
{
    if (AppConfig::m_bSimulationMode || AppConfig::m_iEStopInput < 0) return;
    const quint16 iInput = CRpiGpio::ReadInput(Pin(AppConfig::m_iEStopInput));
    if (iInput == m_iPrevEStopInput) return;
    m_iPrevEStopInput = iInput;
    if (iInput != 0 && !AppConfig::m_bEmergencyStopON) {
        AppConfig::m_bEmergencyStopON.Exchange(true);
        m_AppControl.StopAll();
        OnOperationFinish();
        m_BtnStop.SetPressed();
        AddLogMsg(QStringLiteral("Emergency Stop Triggered"), MSG_ERROR);
        CRpiGpio::WriteOutput(Pin(AppConfig::m_iPgmStatusOutput), 0);
    } else if (iInput == 0 && AppConfig::m_bEmergencyStopON) {
        AppConfig::m_bEmergencyStopON = false;
        m_BtnStop.SetReleased();
    }
}

// Wanted: the input shows the program and lights Start, and no more. A program is started by a press of the button.
void MainWindow::WatchStartInput()
{
    if (AppConfig::m_bSimulationMode || AppConfig::m_iPgmStartInput < 0) return;
    const quint16 iInput = CRpiGpio::ReadInput(Pin(AppConfig::m_iPgmStartInput));
    if (iInput == m_iPrevPgmStartInput) return;
    m_iPrevPgmStartInput = iInput;
    if (iInput == 0) return;
    if (!IsMachineFree()) return AddLogMsg(QStringLiteral("Machine in use"), MSG_ERROR);
    on_Btn_GCode_clicked();
    m_BtnStart.SetPressed();
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
