#include "shapes/EllipsePath.h"

#include "common/UnitConverter.h"
#include "config/AppConfig.h"
#include "shapes/PolygonEdit.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr double FULL_TURN = 6.2832;          // as the system's own pi has it
constexpr double MAX_POINTS = 10'000'000.0;   // of one path
constexpr double AT_THE_MIDDLE = 1e-05;       // mm along X: nearer to the minor axis is on it
constexpr stFloatPoint Point(double x, double y)
{
    return {x, y};
}

// Half of a diameter as the axes have it, mm. Each half cut to whole position units: wanted, the tool's path and the
// outline then lie on them.
double SemiAxis(double fDiameter, bool bInside)
{
    const int iHalf = CUnitConverter::GetInt(fDiameter) / 2,
              iTool = CUnitConverter::GetInt(AppConfig::m_fEndMillDia) / 2;
    return CUnitConverter::GetDouble(bInside ? iHalf - iTool : iHalf + iTool);
}

// From (a, 0) to (0, b) in equal steps along X.
ShapePath Quadrant(double a, double b, double fStep)
{
    ShapePath path;
    double x = a;
    for (bool bLast = false;;) {
        path.push_back(Point(x, std::sqrt(std::abs(1.0 - x * x / (a * a))) * b));
        if (bLast) return path;
        x -= fStep;
        bLast = x <= AT_THE_MIDDLE;
        if (bLast) x = 0.0;
    }
}

// The quadrant mirrored to a whole turn, counter-clockwise from (a, 0) and back to it.
ShapePath Around(ShapePath path)
{
    const size_t n = path.size();
    path.reserve(4 * n);
    for (size_t i = n - 1; i-- > 0;) path.push_back(Point(-path[i].x, path[i].y));
    for (size_t j = path.size() - 1; j-- > n - 1;) path.push_back(Point(path[j].x, -path[j].y));
    for (size_t i = n - 1; i-- > 0;) path.push_back(Point(path[i].x, -path[i].y));
    return path;
}

// The first point from uFrom on whose angle is not below fAngle; the size if there is none.
size_t FindAngle(const ShapePath& path, size_t uFrom, double fAngle)
{
    for (; uFrom < path.size(); ++uFrom) {
        double fAt = std::atan2(path[uFrom].y, path[uFrom].x);
        if (fAt < 0.0) fAt += FULL_TURN;
        if (fAt >= fAngle) break;
    }
    return uFrom;
}

// Only the points from the start angle up to the end angle; none when the two are equal.
void Trim(ShapePath& path, double fStart, double fEnd)
{
    size_t uFirst = FindAngle(path, 0, fStart);
    if (uFirst == path.size()) uFirst = 0;
    size_t uEnd = FindAngle(path, uFirst, fEnd);
    if (uEnd == path.size() || uEnd == 0) uEnd = path.size() - 2;
    if (uEnd < uFirst) uEnd = uFirst;
    path.erase(path.begin() + static_cast<std::ptrdiff_t>(uEnd), path.end());
    path.erase(path.begin(), path.begin() + static_cast<std::ptrdiff_t>(uFirst));
    path.shrink_to_fit();
}

QString WhyNoPath(const stEllipse& ellipse, double a)
{
    const double fStep = ellipse.fXAxisStep;
    if (ellipse.bHole && SemiAxis(ellipse.fMinorAxisDia, true) < 0.0)
        return QStringLiteral("its pocket is narrower than the end-mill");   // which would cut beyond it
    if (a == 0.0) return QStringLiteral("its major axis is as wide as the end-mill");
    if (!std::isfinite(fStep) || !(fStep > 0.0)) return QStringLiteral("its X step is not above zero");
    if (!(4.0 * a / fStep <= MAX_POINTS)) return QStringLiteral("its X step is too small");
    return {};
}
}   // namespace

QString CreateEllipsePoints(stEllipse& ellipse)
{
    ellipse.lstPoints.clear();
    const double a = SemiAxis(ellipse.fMajorAxisDia, ellipse.bHole), b = SemiAxis(ellipse.fMinorAxisDia, ellipse.bHole);
    if (const QString strWhy = WhyNoPath(ellipse, a); !strWhy.isEmpty())
        return QStringLiteral("%1 has no points: %2").arg(ellipse.strShapeName, strWhy);

    ShapePath path = Around(Quadrant(a, b, ellipse.fXAxisStep));
    if (ellipse.fArcStartAngle > 0.0 || ellipse.fArcEndAngle < 360.0)
        Trim(path, ellipse.fArcStartAngle * SHAPE_RADIANS_PER_DEGREE, ellipse.fArcEndAngle * SHAPE_RADIANS_PER_DEGREE);
    const double fTurn = ellipse.fOrientation * SHAPE_RADIANS_PER_DEGREE;
    const double fCos = std::cos(fTurn), fSin = std::sin(fTurn);
    for (stFloatPoint& point : path)
        point = {ellipse.stCenter.x + point.x * fCos + point.y * fSin,
                 ellipse.stCenter.y - point.x * fSin + point.y * fCos};
    ellipse.lstPoints = std::move(path);
    if (!ellipse.lstPoints.empty()) return {};
    return QStringLiteral("%1 has no points: no point of it lies in its arc").arg(ellipse.strShapeName);
}

double CountEllipsePoints(const stEllipse& ellipse)
{
    const double a = SemiAxis(ellipse.fMajorAxisDia, ellipse.bHole);
    return WhyNoPath(ellipse, a).isEmpty() ? 4.0 * std::max(a, 0.0) / ellipse.fXAxisStep + 5.0 : 0.0;
}

std::vector<stEngShape> MakeEllipseRings(const stEllipse& outline, QString& strWhy)
{
    static constexpr double MAX_RING_POINTS = 5'000'000.0, LEAST_OF_RING = 500.0;   // so that their number ends too
    std::vector<stEngShape> lstRings;
    double fPoints = 0.0;
    const double r = AppConfig::m_fEndMillDia / 2.0;
    if (!(r > 0.0)) return lstRings;
    double fMajor = outline.fMajorAxisDia / 2.0, fMinor = outline.fMinorAxisDia / 2.0;
    const double fRings = std::trunc(fMinor / r);
    for (double n = 0.0; n < fRings; ++n) {
        fMajor -= r;
        fMinor -= r;
        if (fMajor < r || fMinor < r) break;
        stEngShape shape = stEngShape::NewEllipse();
        stEllipse& ring = *shape.pEllipse;
        ring.stCenter = outline.stCenter;
        ring.fMajorAxisDia = fMajor * 2.0;
        ring.fMinorAxisDia = fMinor * 2.0;
        ring.fOrientation = outline.fOrientation;
        ring.fXAxisStep = outline.fXAxisStep;
        ring.fArcStartAngle = outline.fArcStartAngle;
        ring.fArcEndAngle = outline.fArcEndAngle;
        ring.bHole = true;
        if ((fPoints += std::max(LEAST_OF_RING, CountEllipsePoints(ring))) > MAX_RING_POINTS) {
            strWhy = QStringLiteral("The rings of this pocket have too many points: use a larger X step");
            return {};
        }
        lstRings.push_back(std::move(shape));
    }
    return lstRings;
}

double SnapXStep(double fStep)
{
    const qint32 lPulse = CUnitConverter::GetInt(AppConfig::m_fAxisMovPerPulse[X_AXIS]);
    const qint32 lStep = CUnitConverter::GetInt(fStep);
    if (lPulse <= 0) return fStep;
    if (lStep < lPulse) return AppConfig::m_fAxisMovPerPulse[X_AXIS];
    if (lStep % lPulse == 0) return fStep;
    return CUnitConverter::GetDouble(lStep / lPulse * lPulse);
}
