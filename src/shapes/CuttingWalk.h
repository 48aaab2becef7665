#pragma once
#include "config/AppConfig.h"
#include "shapes/ShapeModel.h"

#include <algorithm>
#include <cmath>

// The tool's way over the shapes of a job: one walk for the cutter and for the program that is written of it, so that
// the two cannot drift apart. A visitor does what the walk says; where it returns a bool, false ends the job.
//
//   bool Begin(const stEngShape&)     the shape is about to be cut
//   bool Lift()                       to the safe height, here
//   bool Travel(const stFloatPoint&)  above the first point
//   bool Descend()                    to the surface
//   bool Plunge(double fDepth)        to the depth of a pass
//   bool MayGoOn()                    before each point: holds while the job is paused
//   bool Cut(stFloatPoint)            to the next point of the path
//   void EndPass()
//   bool End()                        behind the last pass
//   void Skip(const QString&)         a shape or a job that can't be cut, and why
// A visitor that has a way of its own of cutting a shape's passes has also
//   bool CutItsWay(const stEngShape&, stPasses)
// and HasItsWay, which says for which shapes.

// The depths of a shape's passes.
struct stPasses
{
    double fStep, fEnd;   // mm; the step is above 0
    double fDepth = 0.0;
    // To the next pass. False: it is the last one, exactly at the end depth.
    bool Next()
    {
        fDepth -= fStep;   // added up step by step: wanted, the depths are those of the passes before
        if (!(fDepth <= fEnd)) return true;
        fDepth = fEnd;
        return false;
    }
};

// The machine's resolution, by the printed form: repeated passes land on the same positions.
inline stFloatPoint Printed(const stFloatPoint& point)
{
    return {QString::number(point.x, 'f', PRECISION).toDouble(), QString::number(point.y, 'f', PRECISION).toDouble()};
}

inline bool IsWithinPulse(const stFloatPoint& a, const stFloatPoint& b)
{
    return std::abs(a.x - b.x) <= AppConfig::m_fAxisMovPerPulse[X_AXIS] &&
           std::abs(a.y - b.y) <= AppConfig::m_fAxisMovPerPulse[Y_AXIS];
}

// An open path is cut to and fro, so that the tool stays in the work between passes; a closed one always forwards.
template <class Visitor> bool WalkPasses(const ShapePath& path, stPasses passes, Visitor& visitor)
{
    const bool bOpen = !IsWithinPulse(path.back(), path.front());
    const auto iCount = static_cast<std::ptrdiff_t>(path.size());
    std::ptrdiff_t i = 1, iStep = 1;
    for (bool bMore = true; bMore;) {
        bMore = passes.Next();
        if (!visitor.Plunge(passes.fDepth)) return false;
        for (; i >= 0 && i < iCount; i += iStep) {
            if (!visitor.MayGoOn()) return false;
            const stFloatPoint& point = path[static_cast<size_t>(i)];
            // From the neighbour and not from the last point that was cut: wanted, a dense path is dropped as a whole.
            if (IsWithinPulse(point, path[static_cast<size_t>(i - iStep)])) continue;
            if (!visitor.Cut(Printed(point))) return false;
        }
        if (bOpen) iStep = -iStep;
        i = iStep > 0 ? 1 : iCount - 2;
        visitor.EndPass();
    }
    return true;
}

// Points of all passes of a job: a small file must not ask for days of writing, nor for a disk full of lines.
inline constexpr double MAX_POINTS_TO_CUT = 100'000'000.0;

// Points of all passes of a shape, at least one a pass.
inline double PointsToCut(const stEngShape& shape, double fZStep)
{
    const double fPasses = std::max(1.0, std::ceil(-shape.Common().fDepth / fZStep));
    return fPasses * static_cast<double>(shape.Path().size());
}

// Empty, or why the shape can't be cut. Coordinates that are finite but out of reach are left to the moves.
inline QString WhyNotCut(const stEngShape& shape)
{
    if (shape.Path().empty()) return QStringLiteral("it has no points");
    if (!std::isfinite(shape.Common().fDepth)) return QStringLiteral("its depth is not finite");
    for (const stFloatPoint& point : shape.Path())
        if (!std::isfinite(point.x) || !std::isfinite(point.y)) return QStringLiteral("a point is not finite");
    return {};
}

template <class Visitor> bool WalkShape(const stEngShape& shape, double fZStep, Visitor& visitor)
{
    const ShapePath& path = shape.Path();
    const stPasses passes{fZStep, shape.Common().fDepth};
    if (!visitor.Begin(shape) || !visitor.Lift() || !visitor.Travel(path.front()) || !visitor.Descend()) return false;
    if constexpr (requires { visitor.HasItsWay(shape); })
        if (visitor.HasItsWay(shape)) return visitor.CutItsWay(shape, passes) && visitor.End();
    return WalkPasses(path, passes, visitor) && visitor.End();
}

// Of the shapes of a job in their order: empty, or why the next one is skipped.
class CShapesToCut
{
public:
    explicit CShapesToCut(double fZStep) : m_fZStep(fZStep) {}
    QString WhySkipped(const stEngShape& shape)
    {
        QString strWhy = WhyNotCut(shape);
        const double fWithIt = m_fPoints + PointsToCut(shape, m_fZStep);
        if (strWhy.isEmpty() && !(fWithIt <= MAX_POINTS_TO_CUT))
            strWhy = QStringLiteral("the job has too many points for its passes");
        if (strWhy.isEmpty()) m_fPoints = fWithIt;
        return strWhy.isEmpty() ? strWhy : QStringLiteral("%1 is skipped: %2").arg(shape.Common().strShapeName, strWhy);
    }

private:
    const double m_fZStep;
    double m_fPoints = 0.0;
};

template <class Visitor> bool WalkJob(const stShapeCuttingInfo& info, Visitor& visitor)
{
    if (!(info.fZStep > 0.0) || !std::isfinite(info.fZStep)) {
        visitor.Skip(QStringLiteral("Shapes are not cut: Z Step must be greater than zero"));
        return true;
    }
    CShapesToCut shapes(info.fZStep);
    for (const stEngShape& shape : info.lstShapes) {
        if (const QString strWhy = shapes.WhySkipped(shape); !strWhy.isEmpty())
            visitor.Skip(strWhy);
        else if (!WalkShape(shape, info.fZStep, visitor))
            return false;
    }
    return true;
}
