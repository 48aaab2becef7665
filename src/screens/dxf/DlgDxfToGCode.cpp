#include "screens/dxf/DlgDxfToGCode.h"

#include "config/AppConfig.h"
#include "screens/host/ScreenHost.h"
#include "ui_DlgDxfToGCode.h"
#include "widgets/ButtonStyle.h"
#include "widgets/Look.h"

static constexpr double NO_LIMIT = 10000.0;   // mm down, where no home sensor tells how far the axis may go
static constexpr double SECONDS_PER_MINUTE = 60.0;

dlgDxfToGCode::dlgDxfToGCode(QWidget* pParent) : QDialog(pParent), m_pUi(std::make_unique<Ui::dlgDxfToGCode>())
{
    m_pUi->setupUi(this);
    setStyleSheet(CLook::WINDOW_STYLE);
    for (QPushButton* pButton : findChildren<QPushButton*>()) pButton->setStyleSheet(BTN_BKGND_GRAY);
    for (QLabel* pLabel : {m_pUi->Hdg_Tool, m_pUi->Hdg_Depth}) pLabel->setStyleSheet(CLook::HEADING_STYLE);
    m_pUi->Lbl_Feed->setText(AppConfig::m_GCodeRunSettings.bUsePrgmFeed
                                 ? QStringLiteral("counts: \"Use Program\nFeed\" is on")
                                 : QStringLiteral("does not count: \"Use\nProgram Feed\" is off"));
}

dlgDxfToGCode::~dlgDxfToGCode() = default;

double dlgDxfToGCode::Ask(QPushButton* pButton, const char* szTitle, const char* szLabel, double fValue, double fLow,
                          double fHigh, bool bSign)
{
    stFloatPoint limits;
    limits.x = fLow;
    limits.y = fHigh;
    return HostOf(*this).OpenKeypad(pButton, QLatin1String(szTitle), QLatin1String(szLabel),
                                    QString::number(fValue, 'f', PRECISION), limits, bSign, PRECISION);
}

// How deep Z may go below the work, as the negative number that the operator thinks of.
static double DeepestZ()
{
    return AppConfig::m_bHomeSensorsUsed ? AppConfig::m_fAxisNegDirLimit[Z_AXIS] : -NO_LIMIT;
}

void dlgDxfToGCode::on_Btn_Feed_clicked()
{
    m_stSettings.fFeed = Ask(m_pUi->Btn_Feed, "Feed in mm/min", "Feed", m_stSettings.fFeed, 1.0,
                             AppConfig::m_fMinMaxAxisFeed * SECONDS_PER_MINUTE);
}

void dlgDxfToGCode::on_Btn_EndMillDia_clicked()
{
    m_stSettings.fToolDia =
        Ask(m_pUi->Btn_EndMillDia, "End-Mill Dia in mm", "End-Mill", m_stSettings.fToolDia, 1.0, 100.0);
}

void dlgDxfToGCode::on_Btn_AxisStep_Z_clicked()
{
    m_stSettings.fStepDown =
        Ask(m_pUi->Btn_AxisStep_Z, "Z Step in mm", "z Step", m_stSettings.fStepDown, 0.0, -DeepestZ());
}

void dlgDxfToGCode::on_Btn_ShapeDepth_clicked()
{
    m_stSettings.fTotalDepth = -Ask(m_pUi->Btn_ShapeDepth, "Total Depth", "Depth", -m_stSettings.fTotalDepth,
                                    DeepestZ(), -AppConfig::m_fAxisMovPerPulse[Z_AXIS], true);
}

void dlgDxfToGCode::on_Btn_Ok_clicked()
{
    close();
}
