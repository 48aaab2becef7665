#include "screens/zprofile/DlgJobSettings.h"

#include "common/Paths.h"
#include "config/AppConfig.h"
#include "screens/host/PressedBtn.h"
#include "screens/host/SettingsInput.h"
#include "screens/zprofile/DlgZProfiler.h"
#include "ui_DlgJobSettings.h"
#include "widgets/ButtonStyle.h"
#include "widgets/Look.h"
#include "widgets/Questions.h"
#include "zprofile/ZProfileFile.h"
#include "zprofile/ZProfileSummary.h"

#include <QFileDialog>
#include <QTimer>

#include <utility>

static constexpr int GRID_POLL_MS = 100;

static const QString FILE_FILTER = QStringLiteral("text files(*.txt)");
static const QString FILE_TITLE = QStringLiteral("Select a file to Open...");   // of both file dialogs: wanted

CdlgJobSettings::CdlgJobSettings(QWidget* pParent) : QDialog(pParent), m_pUi(std::make_unique<Ui::CdlgJobSettings>())
{
    m_pUi->setupUi(this);
    for (QPushButton* pButton : findChildren<QPushButton*>()) pButton->setStyleSheet(BTN_BKGND_GRAY);
    for (QLabel* pLabel : {m_pUi->Hdg_ZProfile, m_pUi->Hdg_Grid}) pLabel->setStyleSheet(CLook::HEADING_STYLE);
    for (QLabel* pLabel : {m_pUi->Lbl_GridRows, m_pUi->Lbl_GridNodes, m_pUi->Lbl_GridAlong, m_pUi->Lbl_GridAcross,
                           m_pUi->Lbl_GridHeights, m_pUi->Lbl_GridUse})
        pLabel->setStyleSheet(CLook::VALUE_STYLE);
}

CdlgJobSettings::~CdlgJobSettings() = default;

void CdlgJobSettings::ConfigSettings()
{
    ResetUI();
}

void CdlgJobSettings::ResetUI()
{
    EnableButtons(true);
    m_pUi->Btn_CreateZProfile->setStyleSheet(BTN_BKGND_GRAY);
    ShowGrid();
}

void CdlgJobSettings::EnableButtons(bool bEnable)
{
    for (QPushButton* pButton : findChildren<QPushButton*>()) pButton->setEnabled(bEnable);
}

// ---- Grid in force --------------------------------------------------------------------------------------------------

void CdlgJobSettings::showEvent(QShowEvent* pEvent)
{
    QDialog::showEvent(pEvent);
    ShowGrid();
}

static QString Range(double fLow, double fHigh)
{
    return QStringLiteral("%1 to %2 mm").arg(fLow, 0, 'f', PRECISION).arg(fHigh, 0, 'f', PRECISION);
}

void CdlgJobSettings::ShowGrid()
{
    if (Host().IsWorkerRunning()) {   // it may be writing the grid, for a moment also after a stop
        if (!std::exchange(m_bGridAwaited, true))
            QTimer::singleShot(GRID_POLL_MS, this, [this] {
                m_bGridAwaited = false;
                ShowGrid();
            });
        return;
    }
    const stZProfileSummary grid = SummarizeZProfile();
    const bool bNone = grid.uNodes == 0;
    const QString strNone = QStringLiteral("-");
    m_pUi->Lbl_GridRows->setText(QString::number(grid.uRows));
    m_pUi->Lbl_GridNodes->setText(QString::number(grid.uNodes));
    m_pUi->Lbl_GridAlong->setText(bNone ? strNone : Range(grid.fLeft, grid.fRight));
    m_pUi->Lbl_GridAcross->setText(bNone ? strNone : Range(grid.fFront, grid.fBack));
    m_pUi->Lbl_GridHeights->setText(bNone ? strNone : Range(grid.fLowest, grid.fHighest));
    m_pUi->Lbl_GridUse->setText(AppConfig::m_bUseZProfile ? QStringLiteral("Yes") : QStringLiteral("No"));
}

// ---- Create ---------------------------------------------------------------------------------------------------------

void CdlgJobSettings::on_Btn_CreateZProfile_clicked()
{
    CPressedBtn press(Host(), m_pUi->Btn_CreateZProfile);
    if (!CreateZProfile()) return;
    press.StayOn();   // until the measurement ends
    m_pUi->Lbl_GridRows->setText(QStringLiteral("Measuring..."));
}

bool CdlgJobSettings::CreateZProfile()
{
    if (Host().IsEmergencyStopOn()) return false;
    if (Host().Refused(Host().WhyNotHomed())) return false;
    if (!AppConfig::m_ZProfileInfo.lstPoints.empty() &&
        !AskYes(this, QStringLiteral("Z-Profile already created. Create new?")))
        return false;
    dlgZProfiler dialog(parentWidget());
    dialog.ConfigSettings();
    if (dialog.exec() != QDialog::Accepted) return false;
    EnableButtons(false);
    if (Host().StartZProfile()) return true;
    EnableButtons(true);   // refused; the worker has said why
    return false;
}

// ---- File -----------------------------------------------------------------------------------------------------------

void CdlgJobSettings::on_Btn_SaveZProfile_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_SaveZProfile);
    if (!RefuseMachineInUse(Host())) SaveZProfileAs();
}

void CdlgJobSettings::SaveZProfileAs()
{
    if (!HasZProfile()) return Host().AddLogMsg(ZProfileNotCreated(), MSG_ERROR);
    const QString strTyped = QFileDialog::getSaveFileName(this, FILE_TITLE, CPaths::Map(HOME_FOLDER), FILE_FILTER,
                                                          nullptr, QFileDialog::DontUseNativeDialog);
    if (strTyped.isEmpty()) return;
    const QString strPath = ZProfileFileName(strTyped);
    if (!MayReplace(this, strTyped, strPath)) return;
    if (SaveZProfile(strPath))
        Host().AddLogMsg(QStringLiteral("Z-Profile saved to\n") + strPath, MSG_INFO);
    else
        Host().AddLogMsg(QStringLiteral("Z-Profile not saved: file not writable or disk full\n") + strPath, MSG_ERROR);
}

void CdlgJobSettings::on_Btn_LoadZProfile_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_LoadZProfile);
    if (!RefuseMachineInUse(Host())) LoadZProfileFrom();
}

void CdlgJobSettings::LoadZProfileFrom()
{
    if (!AppConfig::m_ZProfileInfo.lstPoints.empty() &&
        !AskYes(this, QStringLiteral("Z-Profile already created. Load new?")))
        return;
    const QString strPath = QFileDialog::getOpenFileName(this, FILE_TITLE, CPaths::Map(HOME_FOLDER), FILE_FILTER,
                                                         nullptr, QFileDialog::DontUseNativeDialog);
    if (strPath.isEmpty()) return;
    if (LoadZProfile(strPath))
        Host().AddLogMsg(QStringLiteral("Z-Profile loaded from\n") + strPath, MSG_INFO);
    else
        Host().AddLogMsg(QStringLiteral("File read error\n") + strPath, MSG_ERROR);
    if (EndUseOfNoZProfile()) Host().AddLogMsg(Z_PROFILE_NOT_USED, MSG_NOTICE);
    ShowGrid();
}
