#pragma once
#include "dxf/PathGrouping.h"

#include <ostream>
#include <string>
#include <vector>

// A DXF drawing becomes a G-code program: its lines followed on their centres, in passes. mm.

struct stDXF2GCode
{
    std::string strDxfFile;     // full path of the input
    double fToolDia = 1.0;      // told in the program's head, moves nothing
    double fStepDown = 1.0;     // of one pass, above 0
    double fTotalDepth = 1.0;   // above 0
    double fReserved = 0.0;     // used by nothing
    double fFeed = 600.0;       // mm per minute
    double fZSafe = 5.0;        // of the rapid moves
};

// "part.dxf" gives "part..ncc": the dot of the ending stays. Without a dot ".ncc" alone is left.
std::string DxfOutputName(const std::string& strDxfFile);

// Writes the program to a file, which is complete or, if it is not there before, not there. Empty, or why not. Throws
// what parse_entities throws. Arcs that will not be what is drawn are told on the operator's log. Any thread.
std::string ConvertDxf(const stDXF2GCode& settings, const std::string& strOutput, size_t& uPaths);
// The same beside the drawing, told on the standard error stream. 0: done; 1: refused.
int CreateGcodeFromDxf(stDXF2GCode settings);

// The number of passes; 0 where it is none that can be counted.
int PassesOf(double fStepDown, double fTotalDepth);

// The moves of all paths, down one pass before any goes deeper, shifted by the offsets towards 0.
void emit_paths(std::ostream& out, const std::vector<Path>& lstPaths, double stepDown, double totalDepth, double feed,
                double zSafe, double offX, double offY);
