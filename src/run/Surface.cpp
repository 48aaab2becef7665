#include "run/Surface.h"

#include <algorithm>

CSurface::CSurface(std::vector<std::vector<stFloatPoint>> rows) : m_Rows(std::move(rows))
{
    std::erase_if(m_Rows, [](const auto& row) { return row.empty(); });
    for (auto& row : m_Rows)
        std::sort(row.begin(), row.end(), [](const stFloatPoint& a, const stFloatPoint& b) { return a.x < b.x; });
    std::sort(m_Rows.begin(), m_Rows.end(), [](const auto& a, const auto& b) { return a.front().y < b.front().y; });
}

static double Between(double fAt, double fFrom, double fTo, double fLow, double fHigh)
{
    return fTo > fFrom ? fLow + (fHigh - fLow) * std::clamp((fAt - fFrom) / (fTo - fFrom), 0.0, 1.0) : fLow;
}

double CSurface::HeightInRow(const std::vector<stFloatPoint>& row, double fX)
{
    const auto right =
        std::lower_bound(row.begin(), row.end(), fX, [](const stFloatPoint& node, double x) { return node.x < x; });
    if (right == row.begin()) return row.front().z;
    if (right == row.end()) return row.back().z;
    const auto left = right - 1;
    return Between(fX, left->x, right->x, left->z, right->z);
}

double CSurface::Height(double fX, double fY) const
{
    const auto behind =
        std::lower_bound(m_Rows.begin(), m_Rows.end(), fY, [](const auto& row, double y) { return row.front().y < y; });
    if (behind == m_Rows.begin()) return HeightInRow(m_Rows.front(), fX);
    if (behind == m_Rows.end()) return HeightInRow(m_Rows.back(), fX);
    const auto before = behind - 1;
    return Between(fY, before->front().y, behind->front().y, HeightInRow(*before, fX), HeightInRow(*behind, fX));
}
