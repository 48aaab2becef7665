#pragma once
#include "machine/Handshake.h"
#include "machine/Messages.h"
#include "machine/WorkObserver.h"
#include "motion/MachineAxes.h"

// Commands to single axes, and the waits for them. mm and mm/s. False: refused or stopped; a refusal has been told.
class CAxisCommands
{
public:
    CAxisCommands(CMachineAxes& axes, CMessages& messages, const CHandshake& handshake, const CWatchedWork& watched)
        : m_Axes(axes), m_Messages(messages), m_Handshake(handshake), m_Watched(watched)
    {
    }

    // ---- Any thread ----
    bool IsMachineIdle() const;
    bool IsAutoModeMoving() const;   // a coordinated move, of which the single axes say nothing
    QString GetAxisErrMsg(eAxis axis) const { return m_Axes.m_AxisCtrl[axis].GetErrorMsg(); }
    void Stop(eAxis axis) { m_Axes.m_AxisCtrl[axis].Stop(); }
    void RequestStop();   // of all axes; returns at once
    void StopAxes();      // and waits until they stand
    void DeccelerateAxis(eAxis axis) { m_Axes.m_AxisCtrl[axis].DeccelerateAxis(); }

    // ---- The thread that commands ----
    bool MoveAbs(eAxis axis, double fPos);
    bool MoveRel(eAxis axis, double fDist);
    void JogPos(eAxis axis);
    void JogNeg(eAxis axis);
    bool MoveAxisHome(eAxis axis, bool bWait);
    bool MoveWorkZero(eAxis axis, bool bWait);
    bool IsStopped() const { return m_Handshake.IsStopRequestedBehind(); }
    // Holds while the pause is set: ahead of every single-axis move that belongs to an operation. False: stopped.
    bool MayBegin() const { return m_Handshake.WaitWhilePaused() && !m_Handshake.IsStopRequested(); }
    // Behind a start without a wait: an axis that began just behind a stop that it could not see stops again. Worker.
    bool StillWanted(eAxis axis);
    // Held by the pause, and not behind a stop. Worker.
    bool EngMoveAxisAbs(eAxis axis, double fPos, bool bWait);
    bool EngMoveAxisRel(eAxis axis, double fDist, bool bWait);
    // A refused table marks its axis, and the move that needs it fails with the reason.
    void SetVelocityAcc(eAxis axis, double fVel, double fAcc);
    // All axes to their working feeds. Soon: on pooled threads, for which only the next move of each waits.
    void ResetAccVel(bool bSoon = false);
    // Of the axes that are marked, at most five minutes. Never true behind a stop: axes that it has halted have not
    // arrived.
    bool WaitForMotionFinish(const signed char* pSelection);

private:
    bool PushRefusal(eAxis axis, bool bAccepted);
    bool WaitForAxis(eAxis axis);
    bool IsAnyMoving(const signed char* pSelection) const;

    CMachineAxes& m_Axes;
    CMessages& m_Messages;
    const CHandshake& m_Handshake;
    const CWatchedWork& m_Watched;
};
