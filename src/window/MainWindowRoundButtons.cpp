#include "common/Refusals.h"
#include "config/AppConfig.h"
#include "motion/AllAxisCtrl.h"
#include "widgets/ButtonStyle.h"
#include "window/MainWindowUi.h"

#include <QTimer>

static constexpr int ROUND_BUTTON_MS = 100, BUTTON_MS = 150;   // a press stays visible so long

static const QString PAUSE_NOTICE =
    QStringLiteral("Execution Paused! All axis will be stopped after last command is completed");
static const QString WAIT_TO_RESET = QStringLiteral("Wait for Machine to Stop to Reset");

void MainWindow::RndBtnRefresh(CMyRndBtn* pButton)
{
    QTimer::singleShot(ROUND_BUTTON_MS, pButton, [pButton] {
        if (pButton->isEnabled()) pButton->SetReleased();
    });
}

void MainWindow::ResetBtnBkGnd(QPushButton* pButton, const QString& strStyle)
{
    QTimer::singleShot(BUTTON_MS, pButton, [pButton, strStyle] { pButton->setStyleSheet(strStyle); });
}

// ---- Start ----------------------------------------------------------------------------------------------------------

void MainWindow::RefuseStart(const QString& strMsg)
{
    AddLogMsg(strMsg, MSG_ERROR);
    RndBtnRefresh(&m_BtnStart);
}

bool MainWindow::IsSettingsScreenShown() const
{
    return m_pCurDlg == &m_dlgJobSettings || m_pCurDlg == &m_dlgUserSettings || m_pCurDlg == &m_dlgMachineSettings;
}

// Why the program that is held cannot be run now; empty: it can.
QString MainWindow::WhyNotStart()
{
    if (IsSettingsScreenShown()) return QStringLiteral("Please select G-Code/Shape-Cutting/Image-Carving Window");
    if (CdlgGCode::m_bGCodeLoading) return QStringLiteral("G-Code Loading. Please wait!");
    // The walk of a tool-change file lowers the first flag while the program is still exchanged.
    if (CdlgGCode::m_bGCodeCompiling || CdlgGCode::m_bProgramExchanged)
        return QStringLiteral("G-Code Compiling. Please wait!");
    return QString();
}

// True: the worker has started.
bool MainWindow::StartShownScreen()
{
    if (m_pCurDlg == &m_dlgGCode) return m_dlgGCode.StartGCode();
    if (m_pCurDlg == &m_dlgImageCarving) return m_dlgImageCarving.StartImgCarving();
    if (m_pCurDlg != &m_dlgShapes) return false;
    if (!m_dlgShapes.IsEditing()) return m_dlgShapes.StartShapeCutting();
    AddLogMsg(QStringLiteral("Finish editing shapes and click start"), MSG_ERROR);
    return false;
}

void MainWindow::Btn_Start_pressed()
{
    if (const QString strWhy = CSupervision::WhyNotReleased(); !strWhy.isEmpty()) return RefuseStart(strWhy);
    if (!m_AppControl.IsMachineIdle()) return RefuseStart(MACHINE_IN_USE);
    if (m_AppControl.m_bExecSingleLine) return RefuseStart(QString());
    if (const QString strWhy = WhyNotStart(); !strWhy.isEmpty()) return RefuseStart(strWhy);
    if (m_AppControl.m_eOperation != OP_NONE) {
        m_Supervision.Resume();
        m_bJogPanelTaken = true;
        EnableJogPanel(false);
    } else if (!StartShownScreen()) {
        return RefuseStart(QString());
    }
    m_BtnStart.setEnabled(false);   // stays drawn pressed
    m_BtnPause.setEnabled(true);
    m_BtnPause.SetReleased();
}

// A key, the start input or the program has drawn Start as pressed; the touch that follows is the press.
void MainWindow::Btn_Start_released()
{
    m_BtnStart.SetPressed();
    Btn_Start_pressed();
}

// ---- Pause and reset ------------------------------------------------------------------------------------------------

void MainWindow::Btn_Pause_pressed()
{
    if (m_AppControl.m_eOperation == OP_NONE) return RndBtnRefresh(&m_BtnPause);
    if (!m_Supervision.Pause()) AddLogMsg(PAUSE_NOTICE, MSG_NOTICE);
    m_BtnStart.setEnabled(true);
    m_BtnStart.SetReleased();
    m_BtnPause.setEnabled(false);
    m_BtnPause.SetPressed();
}

void MainWindow::Btn_Reset_pressed()
{
    RndBtnRefresh(&m_BtnReset);
    if (m_AppControl.m_eOperation == OP_NONE) return;
    if (!m_AppControl.m_bPause) return AddLogMsg(QStringLiteral("Pause execution to Reset"), MSG_ERROR);
    if (!m_AppControl.IsMachineIdle() || CAllAxisCtrl::GetMotionState()) return AddLogMsg(WAIT_TO_RESET, MSG_ERROR);
    ShowOperationEnd(m_Supervision.Abandon());
    AddLogMsg(QStringLiteral("Execution reset"), MSG_ERROR);
    m_BtnPause.setEnabled(true);
    m_BtnPause.SetReleased();
}

// ---- Emergency stop -------------------------------------------------------------------------------------------------

void MainWindow::Btn_Stop_pressed()
{
    try {
        ShowOperationEnd(m_Supervision.EmergencyStop());
        AddLogMsg(QStringLiteral("Emergency switch pressed"), MSG_ERROR);
        for (CMyRndBtn* pButton : {&m_BtnStart, &m_BtnPause}) {
            pButton->setEnabled(true);
            pButton->SetReleased();
        }
    } catch (...) {
        AddLogMsg(QStringLiteral("Stop Function throw the error"), MSG_ERROR);
    }
}

void MainWindow::Btn_Stop_released()
{
    if (CSupervision::ReleaseEmergencyStop()) return;
    AddLogMsg(QStringLiteral("Emergency Stop input is High"), MSG_ERROR);
    m_BtnStop.SetPressed();
}

// The latch is drawn first: with the input still high the stop stays in force and the button down.
void MainWindow::ToggleEmergencyStop()
{
    if (!AppConfig::m_bEmergencyStopON) {
        Btn_Stop_pressed();
        m_BtnStop.SetPressed();
    } else {
        m_BtnStop.SetReleased();
        Btn_Stop_released();
    }
}

// ---- The plain buttons under the jog panel --------------------------------------------------------------------------

void MainWindow::on_Btn_StartPause_clicked()
{
    QPushButton* pButton = m_pUi->Btn_StartPause;
    pButton->setStyleSheet(BTN_BKGND_GRAY);
    if (m_AppControl.m_bExecSingleLine || IsSettingsScreenShown()) return ResetBtnBkGnd(pButton, BTN_BKGND_START);
    if (m_AppControl.m_eOperation == OP_NONE) {
        const QString strWhy = WhyNotStart();
        AddLogMsg(strWhy, MSG_ERROR);
        if (!strWhy.isEmpty() || !StartShownScreen()) return ResetBtnBkGnd(pButton, BTN_BKGND_START);
    } else {
        m_AppControl.m_bPause = !m_AppControl.m_bPause;
    }
    const bool bPaused = m_AppControl.m_bPause;
    if (bPaused) AddLogMsg(PAUSE_NOTICE, MSG_NOTICE);
    pButton->setText(bPaused ? QStringLiteral("Resume") : QStringLiteral("Pause"));
    pButton->setStyleSheet(bPaused ? BTN_BKGND_BLUE : BTN_BKGND_PAUSE);
    m_pUi->Btn_Reset->setEnabled(bPaused);
}

void MainWindow::on_Btn_Reset_clicked()
{
    if (CAllAxisCtrl::GetMotionState()) return AddLogMsg(WAIT_TO_RESET, MSG_ERROR);
    ShowOperationEnd(m_Supervision.Abandon());
    AddLogMsg(QStringLiteral("Machine is reset"), MSG_ERROR);
    m_pUi->Btn_StartPause->setText(QStringLiteral("Start"));
    m_pUi->Btn_StartPause->setStyleSheet(BTN_BKGND_START);
    m_pUi->Btn_Reset->setEnabled(false);
}
