#include "machine/PwmSettings.h"

#include "config/AppConfig.h"
#include "hardware/VantorGpio.h"

static stPwmSpindleSettings& Pwm()
{
    return AppConfig::m_stPwmSpndlSettings;
}

// The rest of the division, not its result: wanted, the speeds of a spindle that was set up by these steps stay.
static void UpdateFreqStep()
{
    Pwm().iFreqStep = static_cast<quint16>((Pwm().iMaxFreq - Pwm().iMinFreq) % 24);
}

static QString SetLine(int iMin, int iMax)
{
    if (iMin >= iMax) return QStringLiteral("Lowest frequency must be below\nthe highest frequency");
    Pwm().iMinFreq = static_cast<quint16>(iMin);
    Pwm().iMaxFreq = static_cast<quint16>(iMax);
    UpdateFreqStep();
    return QString();
}

QString CPwmSettings::SetMinFreq(double fFreq)
{
    return SetLine(qRound(fFreq), Pwm().iMaxFreq);
}
QString CPwmSettings::SetMaxFreq(double fFreq)
{
    return SetLine(Pwm().iMinFreq, qRound(fFreq));
}

void CPwmSettings::SetTimeDelay(double fDelay)
{
    Pwm().iTimeDelay = static_cast<quint16>(qRound(fDelay));
}

void CPwmSettings::UsePwmCtrl(bool bUse)
{
    AppConfig::m_bPWMCtrlUsed = bUse;
    if (bUse)
        CVANTORGPIO::PwmStart();
    else
        CVANTORGPIO::PwmStop();
}
