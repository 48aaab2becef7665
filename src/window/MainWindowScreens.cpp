#include "config/AppConfig.h"
#include "widgets/DlgKeyPad.h"
#include "window/MainWindowUi.h"

#include <QMessageBox>

void MainWindow::ShowScreen(QWidget* pScreen, QPushButton* pButton)
{
    if (m_pCurDlg) m_pCurDlg->hide();
    m_pCurDlg = pScreen;
    m_pCurDlg->show();
    if (m_pCurDlgBtn) m_pCurDlgBtn->setStyleSheet(SCREEN_BTN_UNSELECTED);
    m_pCurDlgBtn = pButton;
    m_pCurDlgBtn->setStyleSheet(SCREEN_BTN_SELECTED);
}

void MainWindow::on_Btn_JobSettings_clicked()
{
    ShowScreen(&m_dlgJobSettings, m_pUi->Btn_JobSettings);
}
void MainWindow::on_Btn_GCode_clicked()
{
    ShowScreen(&m_dlgGCode, m_pUi->Btn_GCode);
}
void MainWindow::on_Btn_ShapeCarving_clicked()
{
    m_dlgShapes.UpdatePlungeFeed();
    ShowScreen(&m_dlgShapes, m_pUi->Btn_ShapeCarving);
}
void MainWindow::on_Btn_ImageCarving_clicked()
{
    m_dlgImageCarving.UpdatePlungeFeed();
    ShowScreen(&m_dlgImageCarving, m_pUi->Btn_ImageCarving);
}
void MainWindow::on_Btn_UserSettings_clicked()
{
    ShowScreen(&m_dlgUserSettings, m_pUi->Btn_UserSettings);
}
void MainWindow::on_Btn_MachineSettings_clicked()
{
    if (PassSettingsLock()) ShowScreen(&m_dlgMachineSettings, m_pUi->Btn_MachineSettings);
}

bool MainWindow::PassSettingsLock()
{
    while (AppConfig::m_bAppPassword) {
        CDlgKeyPad keypad(this);
        keypad.SetCurValue(QString());
        keypad.setWindowTitle(QStringLiteral("Passkey"));
        keypad.exec();
        if (keypad.m_strNewValue == AppConfig::m_strAppPassword) return true;
        const auto eAnswer = QMessageBox::critical(this, QStringLiteral("Error"), QStringLiteral("Wrong Pass Key"),
                                                   QMessageBox::Retry | QMessageBox::Abort);
        if (eAnswer != QMessageBox::Retry) return false;
    }
    return true;
}
