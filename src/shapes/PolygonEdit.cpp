#include "shapes/PolygonEdit.h"

#include <algorithm>
#include <cmath>

namespace {
// The extent in x and y of all points that it is given.
class CExtent
{
public:
    void Add(const ShapePath& path)
    {
        for (const stFloatPoint& point : path) {
            if (m_bEmpty) m_Min = m_Max = point;
            m_bEmpty = false;
            m_Min = {std::min(m_Min.x, point.x), std::min(m_Min.y, point.y)};
            m_Max = {std::max(m_Max.x, point.x), std::max(m_Max.y, point.y)};
        }
    }
    stFloatPoint Middle() const { return {(m_Min.x + m_Max.x) / 2.0, (m_Min.y + m_Max.y) / 2.0}; }

private:
    stFloatPoint m_Min, m_Max;
    bool m_bEmpty = true;
};
}   // namespace

bool CloseShape(ShapePath& path)
{
    if (path.empty() || (path.back().x == path.front().x && path.back().y == path.front().y)) return false;
    path.push_back(stFloatPoint(path.front()));   // a copy: the vector may move its points first
    return true;
}

void ShiftShape(ShapePath& path, double fX, double fY)
{
    for (stFloatPoint& point : path) {
        point.x += fX;
        point.y += fY;
    }
}

void TurnShape(ShapePath& path, double fAngle, const stFloatPoint& centre)
{
    const double fCos = std::cos(fAngle), fSin = std::sin(fAngle);
    for (stFloatPoint& point : path) {
        const double dx = point.x - centre.x, dy = point.y - centre.y;
        point.x = centre.x + dx * fCos + dy * fSin;
        point.y = centre.y - dx * fSin + dy * fCos;
    }
}

void ScaleShape(ShapePath& path, double fFactor)
{
    if (path.empty()) return;
    const stFloatPoint first = path.front();
    for (stFloatPoint& point : path) {
        point.x *= fFactor;
        point.y *= fFactor;
    }
    ShiftShape(path, first.x - path.front().x, first.y - path.front().y);
}

stFloatPoint MiddleOf(const ShapePath& path)
{
    CExtent extent;
    extent.Add(path);
    return extent.Middle();
}

stFloatPoint MiddleOf(std::span<const stEngShape> shapes)
{
    CExtent extent;
    for (const stEngShape& shape : shapes) extent.Add(shape.Path());
    return extent.Middle();
}

ShapePath ApplyToolOffset(ShapePath path, const QString& strSide, double fEndMillDia)
{
    CloseShape(path);
    const double fOffset = (strSide == QLatin1String("G41") ? 0.5 : -0.5) * fEndMillDia;
    ShapePath shifted = path;
    for (size_t n = 0; n < path.size(); ++n) {
        const stFloatPoint& next = path[(n + 1) % path.size()];
        const double dx = next.x - path[n].x, dy = next.y - path[n].y;
        if ((dx > 0.0 && dy > 0.0) || (dx < 0.0 && dy < 0.0))
            shifted[n].x -= fOffset;
        else
            shifted[n].y += fOffset;
    }
    return shifted;
}
