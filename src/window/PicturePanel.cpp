#include "window/PicturePanel.h"

#include "camera/CncCamera.h"
#include "common/Operation.h"
#include "config/AppConfig.h"
#include "control/AppControl.h"
#include "screens/camera/DlgVideoRecSettings.h"
#include "screens/host/ScreenHost.h"
#include "widgets/ButtonStyle.h"
#include "widgets/MyView.h"

#include <QPushButton>

static constexpr QRect PLACE(10, 480, 520, 270);
static constexpr double SMALLEST_WORK = 1.0, LARGEST_WORK = 10000.0;   // mm
static constexpr int SIZE_DECIMALS = 2;                                // what the buttons have room for

static const QString LENGTH_LABEL = QStringLiteral("Length(X)"), WIDTH_LABEL = QStringLiteral("Width(Y)"),
                     HEIGHT_LABEL = QStringLiteral("Height(Z)");

static const QString START_RECORDING = QStringLiteral(":/res/StartVideoRec.png");

static void ShowSize(QPushButton* pButton, const QString& strLabel, double fSize)
{
    pButton->setText(QString::number(fSize, 'f', SIZE_DECIMALS) + QLatin1Char('\n') + strLabel);
}

void CPicturePanel::SetUp(QWidget* pParent)
{
    ShowSize(m_Widgets.pLength, LENGTH_LABEL, m_Picture.Length());
    ShowSize(m_Widgets.pWidth, WIDTH_LABEL, m_Picture.Width());
    ShowSize(m_Widgets.pHeight, HEIGHT_LABEL, m_Picture.Height());
    m_Widgets.pToolPaths->setStyleSheet(BTN_BKGND_GREEN);
    m_Widgets.pRecord->setIcon(QIcon(START_RECORDING));
    CMyView& view = m_Widgets.view;
    view.setParent(pParent);
    view.setObjectName(QStringLiteral("m_ToolPathView"));
    view.m_colBkGnd = QColor(0, 0, 0, 255);
    view.setGeometry(PLACE);
    view.EnableZoom(true);
    view.show();
}

// ---- Path of the tool -----------------------------------------------------------------------------------------------

void CPicturePanel::Clear()
{
    m_Picture.Clear(m_Host.Machine().m_eOperation, AppConfig::m_GCodeRunSettings.iHomeRef);
    Show();
}

void CPicturePanel::Draw()
{
    const AppControl& machine = m_Host.Machine();
    stFloatPoint pos;
    for (const eAxis axis : {X_AXIS, Y_AXIS, Z_AXIS}) AxisOf(pos, axis) = machine.GetCurPos(axis);
    m_Picture.Draw(pos, machine.m_eOperation, AppConfig::m_GCodeRunSettings.iHomeRef);
    Show();
}

void CPicturePanel::FollowJob()
{
    if (IsCutting(m_Host.Machine().m_eOperation)) Draw();
}

void CPicturePanel::Show()
{
    if (m_CncCamera.IsCamOpen()) return;   // the picture is drawn on all the same
    m_Widgets.view.DisplayImage(&m_Picture.Image());
}

// ---- Size of the work piece -----------------------------------------------------------------------------------------

double CPicturePanel::AskSize(QPushButton* pButton, const QString& strTitle, const QString& strLabel, double fSize)
{
    stFloatPoint range;
    range.x = SMALLEST_WORK;
    range.y = LARGEST_WORK;
    return m_Host.OpenKeypad(pButton, strTitle, strLabel, QString::number(fSize, 'f', SIZE_DECIMALS), range, false,
                             SIZE_DECIMALS);
}

void CPicturePanel::AskLength()
{
    if (m_Host.Refused(m_Host.WhyNotFree())) return;   // the keypad would take Stop away
    m_Picture.SetLength(
        AskSize(m_Widgets.pLength, QStringLiteral("Workpiece Length"), LENGTH_LABEL, m_Picture.Length()));
    Clear();
}

void CPicturePanel::AskWidth()
{
    if (m_Host.Refused(m_Host.WhyNotFree())) return;
    m_Picture.SetWidth(AskSize(m_Widgets.pWidth, QStringLiteral("Workpiece Width"), WIDTH_LABEL, m_Picture.Width()));
    Clear();
}

void CPicturePanel::AskHeight()
{
    if (m_Host.Refused(m_Host.WhyNotFree())) return;
    SetHeight(AskSize(m_Widgets.pHeight, QStringLiteral("Workpiece Height"), HEIGHT_LABEL, m_Picture.Height()));
    Clear();
}

void CPicturePanel::SetHeight(double fHeight)
{
    m_Picture.SetHeight(fHeight);
    ShowSize(m_Widgets.pHeight, HEIGHT_LABEL, fHeight);
    Show();
}

// ---- Camera ---------------------------------------------------------------------------------------------------------

void CPicturePanel::SelectToolPaths()
{
    CloseCamera();
    m_Widgets.pToolPaths->setStyleSheet(BTN_BKGND_GREEN);
    m_Widgets.pCamera->setStyleSheet(BTN_BKGND_GRAY);
    m_Widgets.pRecord->setEnabled(false);
    Show();
    FollowJob();
}

void CPicturePanel::CloseCamera()
{
    if (m_CncCamera.IsCamOpen()) m_CncCamera.StopVideoCapture();
}

void CPicturePanel::SelectCamera()
{
    if (m_CncCamera.IsCamOpen()) return;
    m_Widgets.pCamera->setStyleSheet(BTN_BKGND_GREEN);
    if (m_CncCamera.StartVideoCapture()) {
        m_Widgets.pToolPaths->setStyleSheet(BTN_BKGND_GRAY);
        m_Widgets.pRecord->setEnabled(true);
        return;
    }
    m_Host.AddLogMsg(m_CncCamera.GetErrorMsg(), MSG_ERROR);
    m_Host.ResetBtnBkGnd(m_Widgets.pCamera, BTN_BKGND_GRAY);
}

void CPicturePanel::ToggleRecording()
{
    if (m_CncCamera.IsRecording()) {
        m_CncCamera.StopVideoRecord();
        m_Widgets.pRecord->setEnabled(m_CncCamera.IsCamOpen());   // a lost one leaves only the file to close
    } else if (!StartRecording()) {
        return;
    }
    const bool bRecording = m_CncCamera.IsRecording();
    m_Widgets.pRecord->setIcon(QIcon(bRecording ? QStringLiteral(":/res/StopVideoRec.png") : START_RECORDING));
    m_Widgets.pToolPaths->setEnabled(!bRecording);   // the camera is not left while it records
}

bool CPicturePanel::StartRecording()
{
    CDlgVideoRecSettings settings(m_CncCamera, m_Widgets.view.parentWidget());
    settings.ConfigSettings();
    settings.exec();
    if (!settings.IsConfirmed()) return false;
    if (m_CncCamera.StartVideoRecord(m_CncCamera.m_strRecFile)) return true;
    m_Host.AddLogMsg(m_CncCamera.GetErrorMsg(), MSG_ERROR);
    return false;
}

void CPicturePanel::ShowFrame()
{
    if (m_CncCamera.IsCamOpen()) {
        const QImage image = m_CncCamera.TakeImage();
        if (image.isNull()) return;
        m_CameraImage = image;
        m_Widgets.view.DisplayImage(&m_CameraImage);
        return;
    }
    const QString strWhy = m_CncCamera.GetErrorMsg();
    if (strWhy.isEmpty()) return;   // a frame from before the operator has left the camera
    m_Host.AddLogMsg(strWhy, MSG_ERROR);
    m_Widgets.pToolPaths->setStyleSheet(BTN_BKGND_GREEN);
    m_Widgets.pCamera->setStyleSheet(BTN_BKGND_GRAY);
    m_Widgets.pRecord->setEnabled(m_CncCamera.IsRecording());   // the file is still to be closed
    if (m_Host.Machine().m_eOperation == OP_NONE) Clear();
}
