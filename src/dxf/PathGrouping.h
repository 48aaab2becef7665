#pragma once
#include "dxf/DxfReader.h"

#include <vector>

// Chains the segments of a drawing into paths. No shared state; any thread.

struct Path
{
    std::vector<Segment> lstSegs;   // in cutting order, each from its ptStart to its ptEnd
    bool bClosed = false;           // the end meets the start
};

double sqr(double f);
double dist2(const Point& a, const Point& b);
// At most fTol apart. Points that are not finite are near nothing.
bool near(const Point& a, const Point& b, double fTol);

// Each path begins with the first segment left, grows at its tail as far as it goes, then at its head, and again at its
// tail after each. The segment of the lowest index wins, as it lies before reversed. Paths come in the order of their
// first segments.
std::vector<Path> group_paths(std::vector<RawSeg> lstSegs, double fTol);
