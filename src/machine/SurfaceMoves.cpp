#include "machine/SurfaceMoves.h"

#include "common/UnitConverter.h"
#include "config/AppConfig.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr double SAME = SMALL_NUMBER_TO_AVOID_ROUND_ERRORS;   // mm
constexpr double MAX_PIECES = 10'000'000.0;                   // of one move

using Grid = std::vector<std::vector<stFloatPoint>>;

// A cell by the index of its lower node along X in row 0, and of its lower row.
struct stCell
{
    size_t ix, iy;
};

// Rows of odd number were measured backwards, and are read by the stored index all the same: wanted.
double Height(const Grid& rows, size_t iy, size_t ix)
{
    return rows[iy][std::min(ix, rows[iy].size() - 1)].z;   // a shorter row ends with its last node
}

// The height at the corner of the cell that is nearest; of equal ones the earlier in the order of the tests.
double NearestHeight(const Grid& rows, stCell cell, double x, double y)
{
    const double x0 = rows[0][cell.ix].x, x1 = rows[0][cell.ix + 1].x;
    const double y0 = rows[cell.iy][0].y, y1 = rows[cell.iy + 1][0].y;
    const auto Distance = [&](double fX, double fY) { return std::sqrt((fX - x) * (fX - x) + (fY - y) * (fY - y)); };
    double fBest = Distance(x0, y0), fHeight = Height(rows, cell.iy, cell.ix);
    const auto Try = [&](double fDist, size_t iy, size_t ix) {
        if (!(fBest - fDist > SAME)) return;
        fBest = fDist;
        fHeight = Height(rows, iy, ix);
    };
    Try(Distance(x1, y0), cell.iy, cell.ix + 1);
    Try(Distance(x0, y1), cell.iy + 1, cell.ix);
    Try(Distance(x1, y1), cell.iy + 1, cell.ix + 1);
    return fHeight;
}

// Beyond the grid the nearest border cell: the surface continues flat.
stCell WalkCell(const Grid& rows, double x, double y)
{
    stCell cell{rows[0].size() - 2, rows.size() - 2};
    for (size_t c = 1; c < rows[0].size(); ++c)
        if (rows[0][c].x >= x) {
            cell.ix = c - 1;
            break;
        }
    for (size_t r = 1; r < rows.size(); ++r)
        if (rows[r][0].y >= y) {
            cell.iy = r - 1;
            break;
        }
    return cell;
}

// On a grid that starts at 0.0 this is the first cell wherever a target above it is: required as it stands.
stCell PlungeCell(const Grid& rows, double x, double y)
{
    stCell cell{rows[0].size() - 2, rows.size() - 2};
    for (size_t i = 0; i + 1 < rows[0].size(); ++i)
        if (rows[0][i].x <= x) {
            cell.ix = i;
            break;
        }
    for (size_t r = 0; r + 1 < rows.size(); ++r)
        if (rows[r][0].y <= y) {
            cell.iy = r;
            break;
        }
    return cell;
}

bool Usable(const Grid& rows)
{
    return rows.size() > 1 && rows[0].size() > 1 &&
           std::none_of(rows.begin(), rows.end(), [](const auto& row) { return row.empty(); });
}
}   // namespace

bool CSurfaceMoves::CutOrFollow(const stFloatPoint& from, stFloatPoint& to)
{
    if (AppConfig::m_bUseZProfile && AppConfig::m_ZProfileInfo.lstPoints.size() > 1) return ZProfileMove(from, to);
    return m_Moves.Cut(from, to);
}

bool CSurfaceMoves::ZProfileMove(const stFloatPoint& start, stFloatPoint& end)
{
    const double dx = std::abs(CUnitConverter::Distance(start.x, end.x));
    const double dy = std::abs(CUnitConverter::Distance(start.y, end.y));
    const bool bToSurface = std::abs(end.z) < SAME;
    const bool bWalk = bToSurface && std::abs(start.z) < SAME && (dx > SAME || dy > SAME);
    const bool bPlunge = bToSurface && start.z > SAME;
    // Targets that no axis can take go the plain way, which refuses them.
    if ((bWalk || bPlunge) && CUnitConverter::FitsLong(end.x) && CUnitConverter::FitsLong(end.y)) {
        const Grid& rows = AppConfig::m_ZProfileInfo.lstPoints;
        if (!Usable(rows)) {
            m_Messages.PushErrMsg(QStringLiteral("Z-Profile is not usable: a row has no points"));
            return false;
        }
        if (bWalk) return Walk(start, end);
        end.z = NearestHeight(rows, PlungeCell(rows, end.x, end.y), start.x, start.y);
    }
    return m_Moves.Cut(start, end);
}

bool CSurfaceMoves::Walk(const stFloatPoint& start, stFloatPoint& end)
{
    const Grid& rows = AppConfig::m_ZProfileInfo.lstPoints;
    const double dx = std::abs(CUnitConverter::Distance(start.x, end.x));
    const double dy = std::abs(CUnitConverter::Distance(start.y, end.y));
    const double fSlope = dx > SAME ? (end.y - start.y) / (end.x - start.x) : 0.0;
    const double fIntercept = dx > SAME ? start.y - start.x * fSlope : 0.0;
    const int iDrive = dx < dy ? Y_AXIS : X_AXIS;
    const double fStart = AxisOf(start, iDrive), fEnd = AxisOf(end, iDrive);
    const double fDir = fStart > fEnd ? -1.0 : 1.0;
    const double fXYStep = AppConfig::m_ZProfileInfo.fXYStep;
    if (!(std::abs(fEnd - fStart) / (fXYStep / 2.0) < MAX_PIECES) || !(fXYStep > 0.0)) {
        m_Messages.PushErrMsg(QStringLiteral("X-Y Step of the Z-Profile is too small"));
        return false;
    }

    stFloatPoint prev = start, p = start;   // A and B keep their start values throughout
    double fCur = fStart;
    for (int n = 1; std::abs(fCur - fEnd) > SAME; ++n) {
        AxisOf(p, iDrive) = fStart + (fDir * fXYStep / 2.0) * n;
        const double fLeft = (fEnd - AxisOf(p, iDrive)) * fDir;
        // An exact hit counts as reached on Y and not on X: kept, the walk ends there all the same.
        if (iDrive == Y_AXIS ? fLeft <= 0.0 : fLeft < 0.0) {
            p.x = end.x;
            p.y = end.y;
        } else if (iDrive == Y_AXIS) {
            p.x = dx > SAME ? (p.y - fIntercept) / fSlope : end.x;
        } else {
            p.y = dy > SAME ? p.x * fSlope + fIntercept : end.y;
        }
        p.z = NearestHeight(rows, WalkCell(rows, p.x, p.y), p.x, p.y);
        if (!m_Moves.Cut(prev, p)) return false;
        prev = p;
        fCur = AxisOf(prev, iDrive);
    }
    end.z = p.z;
    return true;
}
