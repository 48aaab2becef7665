#pragma once
#include "common/MachineTypes.h"
#include "machine/Handshake.h"
#include "machine/Messages.h"
#include "machine/WorkObserver.h"

#include <QMutex>

// The spindle: the only writer of its two relays, and the one that knows whether they are closed. Closing is refused
// behind a stop, and moves no relay in simulation; opening always opens both.
class CSpindle
{
public:
    CSpindle(CMessages& messages, const CHandshake& handshake, const CWatchedWork& watched)
        : m_Messages(messages), m_Handshake(handshake), m_Watched(watched)
    {
    }

    // ---- Any thread ----
    // On: the other relay is left as it is, wanted; whoever starts a spindle asks IsClosed first.
    void TurnOnOffSpindle(bool bOn, eDirection eDir);
    // As it was last written: an expansion board does not tell.
    bool IsClosed(eDirection eDir) const { return m_bClosed[eDir]; }
    // Empty, or why a job must not start the spindle this way: nothing reverses one that turns.
    QString WhyNotStarted(eDirection eDir) const;
    // "Spindle still turns CW"; empty: it stands.
    QString WhyStillTurning() const;
    // A touch: off where a relay is closed, whatever the button shows, else on. Whether it is on now. Interface.
    bool Toggle(eDirection eDir);

    // ---- What is shown of it; interface ----
    void CountAsOff();     // the operator may change the tool, whatever turns
    void FollowRelays();   // what the relays say, and nothing of a program that is over

    // ---- Worker ----
    // Off the other way, a pause, then on. False: stopped meanwhile, and it has not started.
    bool StartFromProgram(eDirection eDir);
    void StopFromProgram();
    // rev/min, and the run-up. The frequency reaches the pin with the next tick of the supervision loop.
    void SetSpindleSpeed(int iSpeed);

private:
    void SetSpeed(int iSpeed);
    void WriteRelay(eDirection eDir, bool bClose);
    bool Close(eDirection eDir, bool bStop);
    void Switch(bool bOn, eDirection eDir);

    CMessages& m_Messages;
    const CHandshake& m_Handshake;
    const CWatchedWork& m_Watched;
    QMutex
        m_Mutex;   // around what is decided by the relays and written to them: a touch may meet a word of the program
    CShared<bool> m_bClosed[2] = {false, false};   // by eDirection
};
