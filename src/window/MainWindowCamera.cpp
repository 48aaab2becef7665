#include "screens/camera/DlgVideoRecSettings.h"
#include "widgets/ButtonStyle.h"
#include "window/MainWindowUi.h"

// The camera's picture in the place of the tool paths, and its recording.

void MainWindow::on_Btn_SelectCamera_clicked()
{
    if (m_CncCamera.IsCamOpen()) return;
    m_pUi->Btn_SelectCamera->setStyleSheet(BTN_BKGND_GREEN);
    if (m_CncCamera.StartVideoCapture()) {
        m_pUi->Btn_SelectToolPaths->setStyleSheet(BTN_BKGND_GRAY);
        m_pUi->Btn_CameraRecStop->setEnabled(true);
        return;
    }
    AddLogMsg(m_CncCamera.GetErrorMsg(), MSG_ERROR);
    ResetBtnBkGnd(m_pUi->Btn_SelectCamera, BTN_BKGND_GRAY);
}

void MainWindow::on_Btn_CameraRecStop_clicked()
{
    if (m_CncCamera.IsRecording()) {
        m_CncCamera.StopVideoRecord();
        m_pUi->Btn_CameraRecStop->setEnabled(m_CncCamera.IsCamOpen());   // a lost one leaves only the file to close
    } else if (!StartRecording()) {
        return;
    }
    const bool bRecording = m_CncCamera.IsRecording();
    m_pUi->Btn_CameraRecStop->setIcon(
        QIcon(bRecording ? QStringLiteral(":/res/StopVideoRec.png") : QStringLiteral(":/res/StartVideoRec.png")));
    m_pUi->Btn_SelectToolPaths->setEnabled(!bRecording);   // the camera is not left while it records
}

bool MainWindow::StartRecording()
{
    CDlgVideoRecSettings settings(m_CncCamera, this);
    settings.ConfigSettings();
    settings.exec();
    if (!settings.IsConfirmed()) return false;
    if (m_CncCamera.StartVideoRecord(m_CncCamera.m_strRecFile)) return true;
    AddLogMsg(m_CncCamera.GetErrorMsg(), MSG_ERROR);
    return false;
}

void MainWindow::OnNewCncCamImage()
{
    if (m_CncCamera.IsCamOpen()) {
        const QImage image = m_CncCamera.TakeImage();
        if (image.isNull()) return;
        m_CameraImage = image;
        m_ToolPathView.DisplayImage(&m_CameraImage);
        return;
    }
    const QString strWhy = m_CncCamera.GetErrorMsg();
    if (strWhy.isEmpty()) return;   // a frame from before the operator has left the camera
    AddLogMsg(strWhy, MSG_ERROR);
    m_pUi->Btn_SelectToolPaths->setStyleSheet(BTN_BKGND_GREEN);
    m_pUi->Btn_SelectCamera->setStyleSheet(BTN_BKGND_GRAY);
    m_pUi->Btn_CameraRecStop->setEnabled(m_CncCamera.IsRecording());   // the file is still to be closed
    if (m_AppControl.m_eOperation == OP_NONE) ClearToolGraphics();
}

void MainWindow::on_Btn_SelectToolPaths_clicked()
{
    if (m_CncCamera.IsCamOpen()) m_CncCamera.StopVideoCapture();
    m_pUi->Btn_SelectToolPaths->setStyleSheet(BTN_BKGND_GREEN);
    m_pUi->Btn_SelectCamera->setStyleSheet(BTN_BKGND_GRAY);
    m_pUi->Btn_CameraRecStop->setEnabled(false);
    UpdateToolPathView();
    ShowToolPathsOfJob();
}
