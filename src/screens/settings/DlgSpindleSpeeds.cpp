#include "screens/settings/DlgSpindleSpeeds.h"

#include "config/AppConfig.h"
#include "screens/host/SettingsInput.h"
#include "ui_DlgSpindleSpeeds.h"
#include "widgets/Look.h"

#include <iterator>
#include <limits>

static constexpr int STEPS = static_cast<int>(std::size(AppConfig::m_iSpindleSpeeds));

static QPushButton* StepButton(const QWidget& dialog, int iStep)
{
    return dialog.findChild<QPushButton*>(QStringLiteral("Btn_SpindleSpeed_%1").arg(iStep + 1));
}

static stNumberField Field(int iStep)
{
    return {.strTitle = QStringLiteral("Spindle Speed %1(RPM)").arg(iStep + 1),
            .strCaption = QStringLiteral("Step %1").arg(iStep + 1),
            .fRange = {.y = std::numeric_limits<qint16>::max()},
            .iDecimals = 0};
}

CDlgSpindleSpeeds::CDlgSpindleSpeeds(QWidget* pHost) : QDialog(pHost), m_pUi(std::make_unique<Ui::CDlgSpindleSpeeds>())
{
    m_pUi->setupUi(this);
    setStyleSheet(CLook::WINDOW_STYLE);
    setFixedSize(size());
    for (int iStep = 0; iStep < STEPS; ++iStep)
        connect(StepButton(*this, iStep), &QPushButton::clicked, this, [this, iStep] { Edit(iStep); });
    ConfigSettings();
}

CDlgSpindleSpeeds::~CDlgSpindleSpeeds() = default;

void CDlgSpindleSpeeds::ConfigSettings()
{
    for (int iStep = 0; iStep < STEPS; ++iStep)
        ShowNumber(StepButton(*this, iStep), Field(iStep), AppConfig::m_iSpindleSpeeds[iStep]);
}

void CDlgSpindleSpeeds::Edit(int iStep)
{
    CScreenHost& host = HostOf(*this);
    if (RefuseMachineInUse(host)) return;
    qint16& iSpeed = AppConfig::m_iSpindleSpeeds[iStep];
    if (const auto fNew = AskNumber(host, StepButton(*this, iStep), Field(iStep), iSpeed))
        iSpeed = static_cast<qint16>(qRound(*fNew));
}
