#include "machine/Spindle.h"

#include "common/Refusals.h"
#include "config/AppConfig.h"
#include "machine/MCodeOutputs.h"

#include <cmath>

static QString NameOf(eDirection eDir)
{
    return eDir == DIR_CW ? QStringLiteral("CW") : QStringLiteral("CCW");
}

void CSpindle::WriteRelay(eDirection eDir, bool bClose)
{
    m_bClosed[eDir] = bClose;
    WriteMCodeOutput(eDir == DIR_CW ? 3 : 4, bClose ? 1 : 0);
}

// bStop: a stop is asked for. One that comes in between opens it again.
bool CSpindle::Close(eDirection eDir, bool bStop)
{
    if (bStop || AppConfig::m_bEmergencyStopON) return false;
    if (!AppConfig::m_bSimulationMode) WriteRelay(eDir, true);
    if (!AppConfig::m_bEmergencyStopON.Ordered()) return true;
    WriteRelay(eDir, false);
    return false;
}

void CSpindle::TurnOnOffSpindle(bool bOn, eDirection eDir)
{
    const QMutexLocker lock(&m_Mutex);
    Switch(bOn, eDir);
}

void CSpindle::Switch(bool bOn, eDirection eDir)
{
    if (!bOn) {
        WriteRelay(DIR_CW, false);
        WriteRelay(DIR_CCW, false);
    } else if (!Close(eDir, false)) {   // a job that was given up does not forbid it
        return m_Messages.PushErrMsg(RELEASE_EMERGENCY_SWITCH);
    }
    AppConfig::m_bSpindleOn = bOn;
}

QString CSpindle::WhyNotStarted(eDirection eDir) const
{
    const eDirection eOther = Opposite(eDir);
    if (!m_bClosed[eOther]) return {};
    return QStringLiteral("Spindle turns %1: turn it off, it starts %2").arg(NameOf(eOther), NameOf(eDir));
}

QString CSpindle::WhyStillTurning() const
{
    for (const eDirection eDir : {DIR_CW, DIR_CCW})
        if (m_bClosed[eDir]) return QStringLiteral("Spindle still turns ") + NameOf(eDir);
    return {};
}

bool CSpindle::Toggle(eDirection eDir)
{
    const QMutexLocker lock(&m_Mutex);
    const bool bTurns = m_bClosed[DIR_CW] || m_bClosed[DIR_CCW];
    const bool bOn = !bTurns && !(AppConfig::m_bSimulationMode && AppConfig::m_bSpindleOn);
    Switch(bOn, eDir);
    return AppConfig::m_bSpindleOn;
}

void CSpindle::CountAsOff()
{
    AppConfig::m_bSpindleOn = false;
}

void CSpindle::FollowRelays()
{
    AppConfig::m_bSpindleOnOffStatusChangeInGCode = false;
    AppConfig::m_bSpindleOn = m_bClosed[DIR_CW] || m_bClosed[DIR_CCW];
}

bool CSpindle::StartFromProgram(eDirection eDir)
{
    const eDirection eOther = Opposite(eDir);
    {
        const QMutexLocker lock(&m_Mutex);
        WriteRelay(eOther, false);
    }
    if (!m_Handshake.SleepUnlessStopped(OUTPUT_PAUSE_US)) return false;
    const QMutexLocker lock(&m_Mutex);
    if (m_bClosed[eOther]) WriteRelay(eOther, false);   // a touch in the pause has closed it again
    if (!Close(eDir, m_Handshake.IsStopRequested())) return false;
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
    (void)m_Handshake.SleepUnlessStopped(pwm.iTimeDelay * 1000);   // run-up
}
