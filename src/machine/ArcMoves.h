#pragma once
#include "machine/SurfaceMoves.h"

// All of one arc, mm.
struct stGCodeEllipseInfo
{
    stFloatPoint stStart, stEnd, stCenter;
    bool bFullCircle = false;
    double fRadius = 0.0;
    eDirection eDir = DIR_CW;   // G02 clockwise, G03 counter-clockwise
};

// The axes of the selected plane.
struct stArcPlane
{
    int iFirst, iSecond, iThird;
    static stArcPlane Selected();
};

// Arcs: a chain of short straight moves, built whole before the first one runs. mm, work coordinates; worker. False:
// refused or stopped; a refusal has been told.
class CArcMoves
{
public:
    CArcMoves(CMachineAxes& axes, CMessages& messages, CHandshake& handshake, CSurfaceMoves& surface)
        : m_Axes(axes), m_Messages(messages), m_Handshake(handshake), m_Surface(surface)
    {
    }

    // The present position as the start; its third axis is that of the end too.
    void Begin(stGCodeEllipseInfo& info) const;
    // In X and Y, whatever the plane, by start, end and radius. Ends level in Y divide by zero; the arc is then refused
    // for its centre.
    static void FindArcCenter(stGCodeEllipseInfo& info);
    // What the words of a line have left open, and then the arc.
    bool Cut(stGCodeEllipseInfo& info);
    bool G02_G03_Move(stGCodeEllipseInfo* pInfo);

private:
    CMachineAxes& m_Axes;
    CMessages& m_Messages;
    CHandshake& m_Handshake;
    CSurfaceMoves& m_Surface;
};
