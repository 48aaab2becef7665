#include "zprofile/ZProfileSummary.h"

#include "config/AppConfig.h"

#include <algorithm>
#include <limits>

namespace {
struct stRange
{
    double fLow = std::numeric_limits<double>::infinity(), fHigh = -fLow;
    void Add(double fValue)
    {
        fLow = std::min(fLow, fValue);
        fHigh = std::max(fHigh, fValue);
    }
};
}   // namespace

stZProfileSummary SummarizeZProfile()
{
    const auto& grid = AppConfig::m_ZProfileInfo.lstPoints;
    stRange x, y, z;
    for (const auto& row : grid)
        for (const stFloatPoint& node : row) {
            x.Add(node.x);
            y.Add(node.y);
            z.Add(node.z);
        }
    stZProfileSummary summary;
    summary.uRows = grid.size();
    if (x.fLow > x.fHigh) return summary;   // no node at all
    summary.uNodes = grid.front().size();
    summary.fLeft = x.fLow;
    summary.fRight = x.fHigh;
    summary.fFront = y.fLow;
    summary.fBack = y.fHigh;
    summary.fLowest = z.fLow;
    summary.fHighest = z.fHigh;
    return summary;
}
