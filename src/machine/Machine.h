#pragma once
#include "machine/ArcMoves.h"
#include "machine/AxisCommands.h"
#include "machine/Homing.h"
#include "machine/JobMoves.h"
#include "machine/Position.h"
#include "machine/Spindle.h"
#include "machine/SurfaceMoves.h"

// What the machine can do. Its bases are what everybody sees of it: the axes, the messages, the hand-shake between
// interface and worker, and whoever watches. Its members do the work; each knows only the faces that it was given.
class CMachine : public CMachineAxes, public CMessages, public CHandshake, public CWatchedWork
{
public:
    CMachine();
    CMachine(const CMachine&) = delete;
    CMachine& operator=(const CMachine&) = delete;

    // Each axis in use from its settings, its place as the work zero. Interface, before anything moves.
    void SetUpAxes();
    // Everything stands at once, without a ramp; a paused job is abandoned. Returns within 50 ms.
    void StopAll();
    // No operation that has not ended, none that still leaves its worker, no axis that moves: the place that every
    // start, and every change of what a worker reads, asks.
    bool IsFree() const { return m_eOperation == OP_NONE && !IsWorkerBusy() && m_AxisCommands.IsMachineIdle(); }
    // Spindle and coolants; also in simulation.
    void SwitchOff();

    CAxisCommands m_AxisCommands{*this, *this, *this, *this};
    CPosition m_Position{*this, *this};
    CHoming m_Homing{*this, m_AxisCommands, m_Position, *this};
    CSpindle m_Spindle{*this, *this, *this};
    CJobMoves m_JobMoves{*this, *this, *this, m_Position, *this};
    CSurfaceMoves m_SurfaceMoves{*this, m_JobMoves};
    CArcMoves m_ArcMoves{*this, *this, *this, m_SurfaceMoves};
};
