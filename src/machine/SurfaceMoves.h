#pragma once
#include "machine/JobMoves.h"

// Feed moves that follow a measured surface: cut into pieces, each at the height of the nearest node. mm, work
// coordinates; worker. False: refused or stopped; a refusal has been told.
class CSurfaceMoves
{
public:
    CSurfaceMoves(CMessages& messages, CJobMoves& moves) : m_Messages(messages), m_Moves(moves) {}

    // A feed move along the surface where the profile is in use, else a plain one. The height used stays in to.z:
    // wanted, the program goes on from where the tool is.
    bool CutOrFollow(const stFloatPoint& from, stFloatPoint& to);
    bool ZProfileMove(const stFloatPoint& start, stFloatPoint& end);

private:
    bool Walk(const stFloatPoint& start, stFloatPoint& end);

    CMessages& m_Messages;
    CJobMoves& m_Moves;
};
