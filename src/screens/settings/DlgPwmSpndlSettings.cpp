#include "screens/settings/DlgPwmSpndlSettings.h"

#include "config/AppConfig.h"
#include "machine/PwmSettings.h"
#include "screens/host/SettingsInput.h"
#include "ui_DlgPwmSpndlSettings.h"
#include "widgets/Look.h"

static const stNumberField MIN_FREQ = {.strTitle = QStringLiteral("Lowest Frequency(Hz)"),
                                       .strCaption = QStringLiteral("Lowest Freq(Hz)"),
                                       .fRange = {.x = CPwmSettings::LOWEST_FREQ, .y = CPwmSettings::HIGHEST_FREQ},
                                       .iDecimals = 0};
static const stNumberField MAX_FREQ = {.strTitle = QStringLiteral("Highest Frequency(Hz)"),
                                       .strCaption = QStringLiteral("Highest Freq(Hz)"),
                                       .fRange = MIN_FREQ.fRange,
                                       .iDecimals = 0};
static const stNumberField DELAY = {.strTitle = QStringLiteral("Delay after a Speed Change(ms)"),
                                    .strCaption = QStringLiteral("Delay(ms)"),
                                    .fRange = {.y = CPwmSettings::LONGEST_DELAY},
                                    .iDecimals = 0};

CDlgPwmSpndlSettings::CDlgPwmSpndlSettings(QWidget* pHost)
    : QDialog(pHost), m_pUi(std::make_unique<Ui::CDlgPwmSpndlSettings>())
{
    m_pUi->setupUi(this);
    setStyleSheet(CLook::WINDOW_STYLE);
    setFixedSize(size());
    ConfigSettings();
}

CDlgPwmSpndlSettings::~CDlgPwmSpndlSettings() = default;

void CDlgPwmSpndlSettings::ConfigSettings()
{
    const stPwmSpindleSettings& pwm = AppConfig::m_stPwmSpndlSettings;
    ShowSwitch(m_pUi->Btn_UsePwmCtrl, AppConfig::m_bPWMCtrlUsed, QStringLiteral("Spindle Speed by PWM"));
    ShowNumber(m_pUi->Btn_PwmMinFreq, MIN_FREQ, pwm.iMinFreq);
    ShowNumber(m_pUi->Btn_PwmMaxFreq, MAX_FREQ, pwm.iMaxFreq);
    ShowNumber(m_pUi->Btn_PwmTimeDelay, DELAY, pwm.iTimeDelay);
    m_pUi->Lbl_FreqStep->setText(QStringLiteral("%1 Hz\nper speed step").arg(pwm.iFreqStep));
}

void CDlgPwmSpndlSettings::on_Btn_UsePwmCtrl_clicked()
{
    CScreenHost& host = HostOf(*this);
    if (RefuseMachineInUse(host)) return;
    CPwmSettings::UsePwmCtrl(!AppConfig::m_bPWMCtrlUsed);
    host.EnableDisableSpindleSpeedCtrl(AppConfig::m_bPWMCtrlUsed);
    ConfigSettings();
}

// The speed bar's value gets its frequency anew.
void CDlgPwmSpndlSettings::FrequencyChanged(const QString& strRefused)
{
    CScreenHost& host = HostOf(*this);
    if (!strRefused.isEmpty())
        host.AddLogMsg(strRefused, MSG_ERROR);
    else if (AppConfig::m_bPWMCtrlUsed)
        host.EnableDisableSpindleSpeedCtrl(true);
    ConfigSettings();
}

void CDlgPwmSpndlSettings::on_Btn_PwmMinFreq_clicked()
{
    CScreenHost& host = HostOf(*this);
    if (RefuseMachineInUse(host)) return;
    const double fOld = AppConfig::m_stPwmSpndlSettings.iMinFreq;
    if (const auto fNew = AskNumber(host, m_pUi->Btn_PwmMinFreq, MIN_FREQ, fOld))
        FrequencyChanged(CPwmSettings::SetMinFreq(*fNew));
}

void CDlgPwmSpndlSettings::on_Btn_PwmMaxFreq_clicked()
{
    CScreenHost& host = HostOf(*this);
    if (RefuseMachineInUse(host)) return;
    const double fOld = AppConfig::m_stPwmSpndlSettings.iMaxFreq;
    if (const auto fNew = AskNumber(host, m_pUi->Btn_PwmMaxFreq, MAX_FREQ, fOld))
        FrequencyChanged(CPwmSettings::SetMaxFreq(*fNew));
}

void CDlgPwmSpndlSettings::on_Btn_PwmTimeDelay_clicked()
{
    CScreenHost& host = HostOf(*this);
    if (RefuseMachineInUse(host)) return;
    const double fOld = AppConfig::m_stPwmSpndlSettings.iTimeDelay;
    if (const auto fNew = AskNumber(host, m_pUi->Btn_PwmTimeDelay, DELAY, fOld)) CPwmSettings::SetTimeDelay(*fNew);
}
