#include "control/AppControl.h"
#include "hardware/VantorGpio.h"
#include "time/Wait.h"

#include <cmath>

static constexpr quint16 M_SPINDLE_CW = 3, M_SPINDLE_CCW = 4;

static void WriteMCodeOutput(quint16 uCode, quint8 ucLevel)
{
    CVANTORGPIO::WriteOutput(Pin(AppConfig::m_lstMCodesPin[uCode]), ucLevel);
}

// The other relay is left as it is: wanted, the interface locks the other direction and a program stops in between.
void AppControl::TurnOnOffSpindle(bool bOn, eDirection eDir)
{
    if (!bOn) {
        WriteMCodeOutput(M_SPINDLE_CW, 0);
        WriteMCodeOutput(M_SPINDLE_CCW, 0);
    } else {
        WriteMCodeOutput(eDir == DIR_CW ? M_SPINDLE_CW : M_SPINDLE_CCW, 1);
    }
    AppConfig::m_bSpindleOn = bOn;
}

// The frequency reaches the pin with the next tick of the supervision loop.
void AppControl::SetSpindleSpeed(int iSpeed)
{
    if (!AppConfig::m_GCodeRunSettings.bUsePrgmSpindleSpeed) return;   // the slide bar rules
    stPwmSpindleSettings& pwm = AppConfig::m_stPwmSpndlSettings;
    const double fRatio = static_cast<double>(static_cast<quint16>(pwm.iMaxFreq - pwm.iMinFreq)) /
                          static_cast<double>(static_cast<quint16>(pwm.iMaxSpeed - pwm.iMinSpeed));
    if (std::isfinite(fRatio)) {
        // Not clamped; what does not fit in 16 bits wraps, by way of an integer that holds it.
        const double fFreq = pwm.iMinFreq + (static_cast<double>(iSpeed) - pwm.iMinSpeed) * fRatio;
        pwm.iCurFreq = static_cast<quint16>(static_cast<qint64>(fFreq));
    } else {
        PushErrMsg(QStringLiteral("Spindle speed not changed: its lowest and highest speed must differ"));
    }
    CWait::SleepUs(pwm.iTimeDelay * 1000);   // run-up
}
