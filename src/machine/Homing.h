#pragma once
#include "machine/AxisCommands.h"
#include "machine/Position.h"

// The sequences that find or take a place: machine home, work zero, the surface under the probe. Worker.
class CHoming
{
public:
    CHoming(CMachineAxes& axes, CAxisCommands& commands, CPosition& position, const CWatchedWork& watched)
        : m_Axes(axes), m_Commands(commands), m_Position(position), m_Watched(watched)
    {
    }

    // The axes that the next machine homing is of; their homes are forgotten. Interface, while no operation runs.
    void Select(const signed char* pAxes);
    void MoveMchHomeAll();
    // No axis watches its home sensor any more; one that still moves does so until it stands.
    void AutoHomingFinished();
    // Z to the safe height, the others to zero, then Z. False: refused or stopped; why has been told.
    bool MoveWorkZeroAll();
    // Z, and does not wait.
    void MoveZSafePos();
    // The surface under the probe becomes the zero of Z.
    void SetZ0usingZProbe();

private:
    bool FindHomeSensors();
    bool SendHome(eAxis axis);
    bool ApproachSensorsSlowly();
    bool GoToWorkZero();
    AxisCtrl& Axis(int axis) { return m_Axes.m_AxisCtrl[axis]; }

    CMachineAxes& m_Axes;
    CAxisCommands& m_Commands;
    CPosition& m_Position;
    const CWatchedWork& m_Watched;
    signed char m_lstAxesToHome[MAX_AXES] = {1, 1, 1, 1, 1};   // of the homing that runs
};
