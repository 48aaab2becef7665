#include "machine/Handshake.h"

#include "config/AppConfig.h"
#include "time/Wait.h"

static constexpr qint64 POLL_US = 1000000;

void CHandshake::Abandon()
{
    m_bAbandoned.Exchange(true);   // before the pause goes: the worker that wakes must see it
    m_bPause = false;
}

void CHandshake::ForgetLast()
{
    m_bAbandoned = false;
    // What the last operation has left for the interface must not be taken for the new one's.
    m_bOperationFinished = false;
    m_bToolChangePause = false;
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
}

bool CHandshake::AnswerToolChange()
{
    if (!m_bToolChangePause) return false;
    m_bPause = true;
    m_bToolChangePause = false;
    return true;
}

bool CHandshake::WaitWhilePaused()
{
    while (m_bPause) {
        CWait::SleepUs(POLL_US);
        if (IsStopRequested()) return false;
    }
    return true;
}

bool CHandshake::WaitForToolChange()
{
    while (!m_bPause) {
        CWait::SleepUs(POLL_US);
        if (IsStopRequested()) return false;
    }
    return true;
}

void CHandshake::Leave(bool bFinished)
{
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
