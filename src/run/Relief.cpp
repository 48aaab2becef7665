#include "run/Relief.h"

#include <QImage>

#include <algorithm>
#include <cmath>
#include <limits>

void CRelief::MoveTo(const stFloatPoint& to)
{
    if (m_bStarted && std::min(m_Last.z, to.z) < 0.0) m_lstCuts.push_back({m_Last, to});
    m_Last = to;
    m_bStarted = true;
}

// Heights at the middles of pixels, row 0 at the far side.
class CRelief::CBoard
{
public:
    CBoard(int iCols, int iRows, double fPixel, const stFloatPoint& corner)
        : m_iCols(iCols), m_iRows(iRows), m_fPixel(fPixel), m_Corner(corner),
          m_lstZ(static_cast<size_t>(iCols) * static_cast<size_t>(iRows))
    {
    }
    void Cut(const stCut& cut, double fRadius)
    {
        const auto [fLeft, fRight] = std::minmax(cut.from.x, cut.to.x);
        const auto [fFront, fBack] = std::minmax(cut.from.y, cut.to.y);
        const int iFirstCol = Index(fLeft - fRadius - m_Corner.x), iLastCol = Index(fRight + fRadius - m_Corner.x);
        const int iFirstRow = m_iRows - 1 - Index(fBack + fRadius - m_Corner.y);
        const int iLastRow = m_iRows - 1 - Index(fFront - fRadius - m_Corner.y);
        for (int row = std::max(0, iFirstRow); row <= std::min(m_iRows - 1, iLastRow); ++row)
            for (int col = std::max(0, iFirstCol); col <= std::min(m_iCols - 1, iLastCol); ++col) {
                double& fZ = m_lstZ[static_cast<size_t>(row) * static_cast<size_t>(m_iCols) + static_cast<size_t>(col)];
                fZ = std::min(fZ, LeastOver(cut, fRadius, m_Corner.x + (col + 0.5) * m_fPixel,
                                            m_Corner.y + (m_iRows - row - 0.5) * m_fPixel));
            }
    }
    double At(int iRow, int iCol) const
    {
        return m_lstZ[static_cast<size_t>(iRow) * static_cast<size_t>(m_iCols) + static_cast<size_t>(iCol)];
    }
    double Lowest() const { return *std::min_element(m_lstZ.begin(), m_lstZ.end()); }

private:
    int Index(double fDistance) const { return static_cast<int>(std::floor(fDistance / m_fPixel)); }
    // The lowest that the tool is while its disc covers the place: at one end of that part of the way.
    static double LeastOver(const stCut& cut, double fRadius, double fX, double fY)
    {
        const double dx = cut.to.x - cut.from.x, dy = cut.to.y - cut.from.y;
        const double px = cut.from.x - fX, py = cut.from.y - fY;
        const double a = dx * dx + dy * dy, b = px * dx + py * dy, c = px * px + py * py - fRadius * fRadius;
        double fFirst = 0.0, fLast = 1.0;
        if (a > 0.0) {
            const double fRoot = b * b - a * c;
            if (fRoot < 0.0) return 0.0;
            fFirst = std::max(fFirst, (-b - std::sqrt(fRoot)) / a);
            fLast = std::min(fLast, (-b + std::sqrt(fRoot)) / a);
        }
        if (a > 0.0 ? fFirst > fLast : c > 0.0) return 0.0;
        const double dz = cut.to.z - cut.from.z;
        return cut.from.z + std::min(fFirst * dz, fLast * dz);
    }

    const int m_iCols, m_iRows;
    const double m_fPixel;
    const stFloatPoint m_Corner;
    std::vector<double> m_lstZ;
};

void CRelief::FindExtent(stReliefBlock& block, stFloatPoint& corner) const
{
    stFloatPoint far;
    corner.x = corner.y = std::numeric_limits<double>::max();
    far.x = far.y = std::numeric_limits<double>::lowest();
    for (const stCut& cut : m_lstCuts)
        for (const stFloatPoint& point : {cut.from, cut.to})
            for (const int axis : {X_AXIS, Y_AXIS}) {
                AxisOf(corner, axis) = std::min(AxisOf(corner, axis), AxisOf(point, axis) - m_fRadius);
                AxisOf(far, axis) = std::max(AxisOf(far, axis), AxisOf(point, axis) + m_fRadius);
            }
    if (m_lstCuts.empty()) corner = far = {};
    block.fLength = far.x - corner.x;
    block.fWidth = far.y - corner.y;
}

QImage CRelief::Draw(stReliefBlock block) const
{
    static constexpr double MAX_SIDE = 4000.0;   // pixels of a block that nobody has measured
    stFloatPoint corner;
    if (!(block.fLength > 0.0)) {
        FindExtent(block, corner);
        block.fPixel = std::max(block.fPixel, std::max(block.fLength, block.fWidth) / MAX_SIDE);
    }
    const int iCols = std::max(1, static_cast<int>(std::lround(block.fLength / block.fPixel)));
    const int iRows = std::max(1, static_cast<int>(std::lround(block.fWidth / block.fPixel)));
    CBoard board(iCols, iRows, block.fPixel, corner);
    for (const stCut& cut : m_lstCuts) board.Cut(cut, m_fRadius);
    const double fDepth = block.fDepth > 0.0 ? block.fDepth : -board.Lowest();

    QImage image(iCols, iRows, QImage::Format_Grayscale16);
    for (int row = 0; row < iRows; ++row) {
        auto* pLine = reinterpret_cast<quint16*>(image.scanLine(row));
        for (int col = 0; col < iCols; ++col) {
            const double fShare = fDepth > 0.0 ? std::clamp(-board.At(row, col) / fDepth, 0.0, 1.0) : 0.0;
            pLine[col] = static_cast<quint16>(std::lround(65535.0 * (1.0 - fShare)));
        }
    }
    return image;
}
