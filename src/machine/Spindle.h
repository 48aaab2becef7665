#pragma once
#include "common/MachineTypes.h"
#include "machine/Handshake.h"
#include "machine/Messages.h"
#include "machine/WorkObserver.h"

// The spindle: the only writer of its two relays.
class CSpindle
{
public:
    CSpindle(CMessages& messages, const CHandshake& handshake, const CWatchedWork& watched)
        : m_Messages(messages), m_Handshake(handshake), m_Watched(watched)
    {
    }

    // Any thread. On: the other relay is left as it is, wanted, the interface locks the other direction and a program
    // stops in between.
    void TurnOnOffSpindle(bool bOn, eDirection eDir);
    // A press: on, or off by the relay of this direction alone. The result is whether it is on now. Interface.
    bool Toggle(eDirection eDir);

    // ---- Worker ----
    // Off the other way, a pause, then on. False: stopped meanwhile, and it has not started.
    bool StartFromProgram(eDirection eDir);
    void StopFromProgram();
    // rev/min, and the run-up. The frequency reaches the pin with the next tick of the supervision loop.
    void SetSpindleSpeed(int iSpeed);

private:
    void SetSpeed(int iSpeed);

    CMessages& m_Messages;
    const CHandshake& m_Handshake;
    const CWatchedWork& m_Watched;
};
