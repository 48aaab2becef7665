#include "machine/Spindle.h"

#include "config/AppConfig.h"
#include "machine/MCodeOutputs.h"
#include "time/Wait.h"

#include <cmath>

static void WriteRelay(eDirection eDir, bool bOn)
{
    WriteMCodeOutput(eDir == DIR_CW ? 3 : 4, bOn ? 1 : 0);
}

void CSpindle::TurnOnOffSpindle(bool bOn, eDirection eDir)
{
    if (!bOn) {
        WriteRelay(DIR_CW, false);
        WriteRelay(DIR_CCW, false);
    } else {
        WriteRelay(eDir, true);
    }
    AppConfig::m_bSpindleOn = bOn;
}

bool CSpindle::Toggle(eDirection eDir)
{
    const bool bOn = !AppConfig::m_bSpindleOn;
    AppConfig::m_bSpindleOn = bOn;
    WriteRelay(eDir, bOn);
    return bOn;
}

bool CSpindle::StartFromProgram(eDirection eDir)
{
    WriteRelay(Opposite(eDir), false);
    CWait::SleepUs(OUTPUT_PAUSE_US);
    if (m_Handshake.IsStopRequested()) return false;   // a spindle must not start behind a stop
    WriteRelay(eDir, true);
    AppConfig::m_bSpindleOn = true;
    AppConfig::m_bSpindleDirInGcode = eDir == DIR_CCW;
    AppConfig::m_bSpindleOnOffStatusChangeInGCode = true;
    return true;
}

void CSpindle::StopFromProgram()
{
    TurnOnOffSpindle(false, DIR_CW);
    AppConfig::m_bSpindleOnOffStatusChangeInGCode = true;
}

void CSpindle::SetSpindleSpeed(int iSpeed)
{
    m_Watched.Watched([&] { return stWorkCommand{.eKind = WORK_SPINDLE_SPEED, .fValue = static_cast<double>(iSpeed)}; },
                      [&] { SetSpeed(iSpeed); });
}

void CSpindle::SetSpeed(int iSpeed)
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
        m_Messages.PushErrMsg(QStringLiteral("Spindle speed not changed: its lowest and highest speed must differ"));
    }
    CWait::SleepUs(pwm.iTimeDelay * 1000);   // run-up
}
