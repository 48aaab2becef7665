#pragma once
#include "common/MachineTypes.h"

#include <vector>

class QImage;

// The part of the work piece that a relief shows, mm in work coordinates. One of no size is that of what was cut.
struct stReliefBlock
{
    double fLength = 0.0, fWidth = 0.0;   // from X and Y 0
    double fPixel = 0.1;
    double fDepth = 0.0;   // black; 0: the deepest cut
};

// What a flat tool has left of a block whose surface is Z 0. Fed by one thread at a time.
class CRelief
{
public:
    explicit CRelief(double fToolDia) : m_fRadius(fToolDia / 2.0) {}
    // The tool's tip goes there in a straight line.
    void MoveTo(const stFloatPoint& to);
    // A pixel for each place: white the surface, black the depth. 16-bit grey; the far side of Y is on top.
    QImage Draw(stReliefBlock block) const;

private:
    struct stCut
    {
        stFloatPoint from, to;
    };
    class CBoard;
    void FindExtent(stReliefBlock& block, stFloatPoint& corner) const;

    const double m_fRadius;
    stFloatPoint m_Last;
    bool m_bStarted = false;
    std::vector<stCut> m_lstCuts;   // with an end below the surface
};
