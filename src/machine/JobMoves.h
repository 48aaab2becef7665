#pragma once
#include "machine/Handshake.h"
#include "machine/Messages.h"
#include "machine/Position.h"
#include "machine/WorkObserver.h"

// Straight coordinated moves: how fast each axis runs, and the hand-over to the pulse loop. mm, work coordinates;
// worker, the auto mode running. False: refused or stopped; a refusal has been told.
class CJobMoves
{
public:
    CJobMoves(CMachineAxes& axes, CMessages& messages, CHandshake& handshake, const CPosition& position,
              const CWatchedWork& watched)
        : m_Axes(axes), m_Messages(messages), m_Handshake(handshake), m_Position(position), m_Watched(watched)
    {
    }

    // From where the axes stand; waits for the move before. bSetAccVel: plans too. bWait: until it has ended.
    bool G00_Move(const stFloatPoint& target, bool bSetAccVel, bool bWait)
    {
        return Move(target, bSetAccVel, bWait, G00_MOVE);
    }
    bool G01_Move(const stFloatPoint& target, bool bSetAccVel, bool bWait)
    {
        return Move(target, bSetAccVel, bWait, G01_MOVE);
    }
    // A single axis, the others staying; planned and waited for.
    bool MoveAxis(eAxis axis, double fPos, eGMoveCmnd eCmnd)
    {
        return Move(m_Position.HereBut(axis, fPos), true, true, eCmnd);
    }
    // The speeds of the move to come; the one before may still run. A refused table marks its axis, and the move that
    // needs it fails with the reason.
    void SetAccAndVel(const stFloatPoint& from, const stFloatPoint& to, eGMoveCmnd eCmnd);
    // Planned as a feed move and not waited for.
    bool Cut(const stFloatPoint& from, const stFloatPoint& to)
    {
        SetAccAndVel(from, to, G01_MOVE);
        return G01_Move(to, false, false);
    }
    bool ExecuteMovCmnd(const stFloatPoint& from, const stFloatPoint& to, bool bSetAccVel, bool bWait,
                        eGMoveCmnd eCmnd);
    // As a program writes it, a minute, in its units.
    void SetAxisFeed(double fFeed);

private:
    bool Move(const stFloatPoint& target, bool bSetAccVel, bool bWait, eGMoveCmnd eCmnd);
    void Plan(const stFloatPoint& from, const stFloatPoint& to, eGMoveCmnd eCmnd);
    bool IsInReach(const stFloatPoint& to);
    bool SelectAxes(const stFloatPoint& to, const double* pDelta);

    CMachineAxes& m_Axes;
    CMessages& m_Messages;
    CHandshake& m_Handshake;
    const CPosition& m_Position;
    const CWatchedWork& m_Watched;
};
