#include "preview/ToolPath.h"

#include <algorithm>
#include <cmath>

void CToolPath::AddMove(const stFloatPoint& from, const stFloatPoint& to, bool bRapid)
{
    const auto SamePlace = [](const stPoint& last, const stFloatPoint& at) {
        return last.fX == static_cast<float>(at.x) && last.fY == static_cast<float>(at.y) &&
               last.fZ == static_cast<float>(at.z);
    };
    if (m_lstPoints.empty() || !SamePlace(m_lstPoints.back(), from)) Add(from, bRapid, true);
    if (!SamePlace(m_lstPoints.back(), to)) Add(to, bRapid, false);
}

void CToolPath::Add(const stFloatPoint& at, bool bRapid, bool bJump)
{
    if (m_lstPoints.empty()) m_Min = m_Max = at;
    for (int axis = X_AXIS; axis <= Z_AXIS; ++axis) {
        AxisOf(m_Min, axis) = std::min(AxisOf(m_Min, axis), AxisOf(at, axis));
        AxisOf(m_Max, axis) = std::max(AxisOf(m_Max, axis), AxisOf(at, axis));
    }
    m_lstPoints.push_back(
        {static_cast<float>(at.x), static_cast<float>(at.y), static_cast<float>(at.z), bRapid, bJump});
    if (m_lstPoints.size() >= MAX_POINTS) Thin();
}

static double Distance(const CToolPath::stPoint& a, const CToolPath::stPoint& b)
{
    return std::hypot(static_cast<double>(a.fX) - b.fX, static_cast<double>(a.fY) - b.fY,
                      static_cast<double>(a.fZ) - b.fZ);
}

// Leaves out what lies closer to the last point kept than a tolerance that doubles until half of the points are gone.
// The last point stays: the path goes on there.
void CToolPath::Thin()
{
    const double fSize = std::hypot(m_Max.x - m_Min.x, m_Max.y - m_Min.y, m_Max.z - m_Min.z);
    m_fTolerance = std::max({m_fTolerance, fSize / 1e5, 1e-6});
    while (m_lstPoints.size() > MAX_POINTS / 2) {
        size_t uKept = 0;
        for (size_t n = 1; n < m_lstPoints.size(); ++n) {
            const stPoint& point = m_lstPoints[n];
            const bool bLast = n + 1 == m_lstPoints.size();
            if (bLast || Distance(m_lstPoints[uKept], point) >= m_fTolerance) m_lstPoints[++uKept] = point;
        }
        m_lstPoints.resize(uKept + 1);
        m_fTolerance *= 2.0;
    }
}
