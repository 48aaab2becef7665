#include "screens/camera/DlgVideoRecSettings.h"

#include "camera/CncCamera.h"
#include "common/Paths.h"
#include "config/AppConfig.h"
#include "screens/host/ScreenHost.h"
#include "ui_DlgVideoRecSettings.h"
#include "widgets/ButtonStyle.h"
#include "widgets/Look.h"
#include "widgets/Questions.h"

#include <QFileDialog>

#include <algorithm>

static constexpr double LOWEST_FPS = 16.0, HIGHEST_FPS = 25.0;

CDlgVideoRecSettings::CDlgVideoRecSettings(CCncCamera& camera, QWidget* pHost)
    : QDialog(pHost), m_pUi(std::make_unique<Ui::CDlgVideoRecSettings>()), m_Camera(camera)
{
    m_pUi->setupUi(this);
    setStyleSheet(CLook::WINDOW_STYLE);
    setFixedSize(size());
    for (QPushButton* pButton : findChildren<QPushButton*>()) pButton->setStyleSheet(BTN_BKGND_GRAY);
}

CDlgVideoRecSettings::~CDlgVideoRecSettings() = default;

void CDlgVideoRecSettings::ConfigSettings()
{
    ShowFile();
    m_pUi->Btn_VideoRecFps->setText(QString::number(m_Camera.m_fRecFps) + QStringLiteral("\nFrames/Sec"));
}

// The end of a path is what tells files apart.
void CDlgVideoRecSettings::ShowFile()
{
    const QLabel& label = *m_pUi->Lbl_VideoRecFile;
    m_pUi->Lbl_VideoRecFile->setText(
        label.fontMetrics().elidedText(m_Camera.m_strRecFile, Qt::ElideLeft, label.width() - 8));
}

void CDlgVideoRecSettings::on_Btn_BrowseVideoRecFile_clicked()
{
    const QString strFilter = QStringLiteral("Avi Files(*.avi)");
    const QString strTyped = QFileDialog::getSaveFileName(this, QStringLiteral("Select file name"),
                                                          CPaths::Map(AppConfig::m_strLastFolderPath), strFilter,
                                                          nullptr, QFileDialog::DontUseNativeDialog);
    if (strTyped.isEmpty()) return;
    const QString strEnding = QStringLiteral(".avi");
    const QString strFile = strTyped.endsWith(strEnding) ? strTyped : strTyped + strEnding;
    if (!MayReplace(this, strTyped, strFile)) return;
    m_Camera.m_strRecFile = strFile;
    ShowFile();
}

void CDlgVideoRecSettings::on_Btn_VideoRecFps_clicked()
{
    m_pUi->Btn_VideoRecFps->setStyleSheet(BTN_BKGND_BLUE);
    // Any number may be typed: it is brought into the range without a word.
    const double fTyped = HostOf(*this).OpenKeypad(nullptr, QStringLiteral("Video Frames/sec"), QString(),
                                                   QString::number(m_Camera.m_fRecFps), {}, false, 0);
    m_Camera.m_fRecFps = std::clamp(fTyped, LOWEST_FPS, HIGHEST_FPS);
    ConfigSettings();
    m_pUi->Btn_VideoRecFps->setStyleSheet(BTN_BKGND_GRAY);
}

void CDlgVideoRecSettings::Close(bool bOk)
{
    m_bOk = bOk;
    done(bOk ? Accepted : Rejected);
}

void CDlgVideoRecSettings::on_Btn_Ok_clicked()
{
    Close(true);
}
void CDlgVideoRecSettings::on_Btn_Cancel_clicked()
{
    Close(false);
}
