#include "machine/Handshake.h"

#include "config/AppConfig.h"
#include "time/Wait.h"

static constexpr qint64 POLL_US = 1000000;

void CHandshake::Abandon()
{
    m_bAbandoned.Exchange(true);   // before the pause goes: the worker that wakes must see it
    m_bPause = false;
}

bool CHandshake::TogglePause()
{
    const bool bPaused = !m_bPause;
    m_bPause = bPaused;
    return bPaused;
}

void CHandshake::ForgetLast()
{
    m_bAbandoned = false;
    // What the last operation has left for the interface must not be taken for the new one's.
    m_bOperationFinished = false;
    m_bToolChangePause = false;
    m_bStartBtnPressRequest = false;
}

void CHandshake::Begin(eOperation eCode)
{
    m_bWorkerBusy = true;
    m_eOperation = eCode;
}

void CHandshake::TakeNoteOfEnd()
{
    m_eOperation = OP_NONE;
    m_bPause = false;
    m_bOperationFinished = false;
    m_bToolChangePause = false;
    m_bStartBtnPressRequest = false;
}

bool CHandshake::AnswerToolChange()
{
    if (!m_bToolChangePause) return false;
    m_bPause = true;
    m_bToolChangePause = false;
    return true;
}

bool CHandshake::SleepUnlessStopped(qint64 lUs) const
{
    return !CWait::SleepUnless([this] { return IsStopRequested(); }, lUs);
}

bool CHandshake::WaitWhilePaused() const
{
    if (!m_bPause) return true;
    while (m_bPause)
        if (!SleepUnlessStopped(POLL_US)) return false;
    return !IsStopRequested();   // whoever gives a held job up lowers the pause as well
}

bool CHandshake::WaitForToolChange()
{
    while (!m_bPause && m_bToolChangePause)
        if (!SleepUnlessStopped(POLL_US)) {
            m_bToolChangePause = false;   // nobody is to answer any more
            return false;
        }
    return !IsStopRequested();
}

void CHandshake::Leave(bool bFinished)
{
    m_bExecSingleLine = false;   // the Start button is dead while it stands
    m_bWorkerBusy = false;
    if (bFinished) m_bOperationFinished = true;
}

void CHandshake::ReadLeave() const
{
    (void)static_cast<bool>(m_bWorkerBusy);
    (void)static_cast<bool>(m_bOperationFinished);
}

bool CHandshake::IsStopRequested() const
{
    return AppConfig::m_bEmergencyStopON || m_bAbandoned;
}

bool CHandshake::IsStopRequestedBehind() const
{
    return m_bAbandoned.Ordered() || AppConfig::m_bEmergencyStopON.Ordered();
}
