#include "screens/gcode/DlgGCodeSettings.h"

#include "config/AppConfig.h"
#include "screens/host/ScreenHost.h"
#include "ui_DlgGCodeSettings.h"
#include "widgets/ButtonStyle.h"
#include "widgets/Look.h"

#include <algorithm>

static const QString PLAIN_STYLE = BTN_BKGND_GRAY, SELECTED_STYLE = BTN_BKGND_BLUE;
static constexpr int STEP_DECIMALS = 4;
static constexpr double LARGEST_STEP = 10.0;   // mm

static void PaintToggle(QPushButton* pButton, bool bOn)
{
    pButton->setStyleSheet(bOn ? BTN_BKGND_GREEN : BTN_BKGND_GRAY);
}

static void Toggle(QPushButton* pButton, bool& bField)
{
    bField = !bField;
    PaintToggle(pButton, bField);
}

dlgGCodeSettings::dlgGCodeSettings(QWidget* pParent) : QDialog(pParent), m_pUi(std::make_unique<Ui::dlgGCodeSettings>())
{
    m_pUi->setupUi(this);
    setStyleSheet(CLook::WINDOW_STYLE);
    for (QPushButton* pButton : findChildren<QPushButton*>()) pButton->setStyleSheet(BTN_BKGND_GRAY);
    for (QLabel* pLabel : {m_pUi->Hdg_Words, m_pUi->Hdg_Corner}) pLabel->setStyleSheet(CLook::HEADING_STYLE);
}

dlgGCodeSettings::~dlgGCodeSettings() = default;

void dlgGCodeSettings::ConfigSettings()
{
    const stGCodeRunSettings& settings = AppConfig::m_GCodeRunSettings;
    PaintToggle(m_pUi->Btn_UsePrgmFeed, settings.bUsePrgmFeed);
    PaintToggle(m_pUi->Btn_GCode_SaveExecStatus, settings.bSaveExecStatus);
    PaintToggle(m_pUi->Btn_GCode_UsePrgmSpindleSpeed, settings.bUsePrgmSpindleSpeed);
    m_pUi->Btn_GCode_AxisStep->setText(QString::number(settings.fAxisStep, 'f', STEP_DECIMALS) +
                                       QStringLiteral("\nAxis Step"));
    UpdateHomeRefBtnGr(CornerButton(settings.iHomeRef));
}

void dlgGCodeSettings::on_Btn_UsePrgmFeed_clicked()
{
    Toggle(m_pUi->Btn_UsePrgmFeed, AppConfig::m_GCodeRunSettings.bUsePrgmFeed);
}
void dlgGCodeSettings::on_Btn_GCode_SaveExecStatus_clicked()
{
    Toggle(m_pUi->Btn_GCode_SaveExecStatus, AppConfig::m_GCodeRunSettings.bSaveExecStatus);
}
void dlgGCodeSettings::on_Btn_GCode_UsePrgmSpindleSpeed_clicked()
{
    Toggle(m_pUi->Btn_GCode_UsePrgmSpindleSpeed, AppConfig::m_GCodeRunSettings.bUsePrgmSpindleSpeed);
}

void dlgGCodeSettings::on_Btn_GCode_AxisStep_clicked()
{
    double& fStep = AppConfig::m_GCodeRunSettings.fAxisStep;
    stFloatPoint range;
    range.x = std::min(AppConfig::m_fAxisMovPerPulse[X_AXIS], AppConfig::m_fAxisMovPerPulse[Y_AXIS]);
    range.y = LARGEST_STEP;
    const QString strName = QStringLiteral("Axis Step");
    fStep = HostOf(*this).OpenKeypad(m_pUi->Btn_GCode_AxisStep, strName, strName,
                                     QString::number(fStep, 'f', STEP_DECIMALS), range, false, STEP_DECIMALS);
}

// ---- Reference corner: one group of buttons -------------------------------------------------------------------------

QPushButton* dlgGCodeSettings::CornerButton(qint32 iHomeRef) const
{
    switch (iHomeRef) {
    case 0: return m_pUi->Btn_GCodeHmPosTLU;
    case 2: return m_pUi->Btn_GCodeHmPosTRU;
    case 4: return m_pUi->Btn_GCodeHmPosBRU;
    case 6: return m_pUi->Btn_GCodeHmPosBLU;
    case 8: return m_pUi->Btn_GCodeHmPosCenter;
    default: return nullptr;
    }
}

void dlgGCodeSettings::UpdateHomeRefBtnGr(QPushButton* pButton)
{
    if (m_pHomeRefBtn) m_pHomeRefBtn->setStyleSheet(PLAIN_STYLE);
    m_pHomeRefBtn = pButton;
    if (m_pHomeRefBtn) m_pHomeRefBtn->setStyleSheet(SELECTED_STYLE);
}

void dlgGCodeSettings::SelectCorner(qint32 iHomeRef)
{
    AppConfig::m_GCodeRunSettings.iHomeRef = iHomeRef;
    UpdateHomeRefBtnGr(CornerButton(iHomeRef));
}

void dlgGCodeSettings::on_Btn_GCodeHmPosTLU_clicked()
{
    SelectCorner(0);
}
void dlgGCodeSettings::on_Btn_GCodeHmPosTRU_clicked()
{
    SelectCorner(2);
}
void dlgGCodeSettings::on_Btn_GCodeHmPosBRU_clicked()
{
    SelectCorner(4);
}
void dlgGCodeSettings::on_Btn_GCodeHmPosBLU_clicked()
{
    SelectCorner(6);
}
void dlgGCodeSettings::on_Btn_GCodeHmPosCenter_clicked()
{
    SelectCorner(8);
}

void dlgGCodeSettings::on_Btn_Close_clicked()
{
    close();
}
