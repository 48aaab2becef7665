#include "carving/ImgCarving.h"

#include "carving/CarvingWalk.h"
#include "common/PictureFile.h"
#include "common/UnitConverter.h"
#include "config/AppConfig.h"

#include <QImageReader>

#include <algorithm>
#include <limits>

// ---- The picture ----------------------------------------------------------------------------------------------------

std::unique_ptr<QImage> LoadCarvingImage(const QString& strPath, QString& strWhy, QString& strNotice)
{
    QImageReader reader(strPath);
    reader.setDecideFormatFromContent(true);
    const auto TooLarge = [](const QSize& size) {
        return size.width() > MAX_IMAGE_SIDE || size.height() > MAX_IMAGE_SIDE;
    };
    const QString strTooLarge = QStringLiteral("Image must not have more than %1 rows or columns").arg(MAX_IMAGE_SIDE);
    if (TooLarge(reader.size())) {   // many formats tell it ahead
        strWhy = strTooLarge;
        return nullptr;
    }
    auto pImage = std::make_unique<QImage>();
    const QString strMissing = WhyNotWhole(strPath);
    if (!strMissing.isEmpty() || !reader.read(pImage.get()) || pImage->isNull()) {
        strWhy = WhyTooLarge(strPath);
        if (strWhy.isEmpty())
            strWhy = QStringLiteral("Image of up to %1 rows and columns and %2 pixels could not be loaded: %3")
                         .arg(MAX_IMAGE_SIDE)
                         .arg(MostPixels())
                         .arg(strMissing.isEmpty() ? reader.errorString() : strMissing);
        return nullptr;
    }
    if (TooLarge(pImage->size())) {
        strWhy = strTooLarge;
        return nullptr;
    }
    if (pImage->hasAlphaChannel()) strNotice = QStringLiteral("Transparency of the image is ignored");
    // Lines are read as one byte a pixel: grey ones of two bytes or of a bit are converted too.
    if (!pImage->isGrayscale() || pImage->depth() != 8) pImage->convertTo(QImage::Format_Grayscale8);
    if (pImage->isNull()) {
        strWhy = QStringLiteral("Image could not be loaded: it is too large for the memory of this computer");
        return nullptr;
    }
    return pImage;
}

void FindGreyLevels(const QImage& image, unsigned char& iMin, unsigned char& iMax)
{
    iMin = 255;
    iMax = 0;
    for (int row = 0; row < image.height(); ++row) {
        const uchar* pLine = image.constScanLine(row);   // padded to four bytes behind the width
        const auto [pLeast, pMost] = std::minmax_element(pLine, pLine + image.width());
        iMin = std::min(iMin, *pLeast);
        iMax = std::max(iMax, *pMost);
    }
}

void MakeDepthMap(const QImage& image, double fDepth, stImgZProfileInfo& map)
{
    map.iRows = static_cast<qint16>(image.height());
    map.iCols = static_cast<qint16>(image.width());
    map.fDepth = fDepth;
    map.ppDepth.Allocate(image.height(), image.width());
    unsigned char iMin = 0, iMax = 0;
    FindGreyLevels(image, iMin, iMax);

    double depths[256] = {};
    if (iMin != iMax) {
        const double fFactor = fDepth / (iMax - iMin);
        for (int level = iMin; level <= iMax; ++level) depths[level] = (iMax - level) * fFactor;
    } else if (iMin != 255) {
        depths[iMin] = fDepth;
    }
    for (int row = 0; row < map.iRows; ++row) {
        const uchar* pLine = image.constScanLine(row);
        std::transform(pLine, pLine + map.iCols, map.ppDepth[row], [&depths](uchar level) { return depths[level]; });
    }
}

// ---- The grid -------------------------------------------------------------------------------------------------------

namespace {
// At least 1, and rounded up. By a sum that is walked, not by a division: the two differ where the target is a whole
// number of pixels but for the last bits.
int PixelsTo(double fTarget, double fPixel, int iBound)
{
    int iCount = 0;
    double fSum = 0.0;
    do {
        ++iCount;
        fSum += fPixel;
    } while (fSum < fTarget && iCount < iBound);
    return iCount;
}

struct stGridPlan
{
    int iToolPixels, iXStepPixels, iYStepPixels;
    int iWorkCols;      // with the padding
    int iRows, iCols;   // of the grid
    qint32 lPixel;      // position units
};

stGridPlan PlanGrid(const stImgCarvingInfo& info, int iRows, int iCols)
{
    const double fPixel = info.fLength / iCols;
    stGridPlan plan{};
    plan.lPixel = CUnitConverter::GetInt(fPixel);
    plan.iXStepPixels = PixelsTo(info.fXStep, fPixel, iCols);
    plan.iYStepPixels = PixelsTo(info.fYStep, fPixel, iRows);
    plan.iToolPixels = PixelsTo(AppConfig::m_fEndMillDia, fPixel, iCols);

    const int a = iCols - plan.iToolPixels, b = iRows - plan.iToolPixels;
    plan.iWorkCols = iCols;
    if (a % plan.iXStepPixels != 0) plan.iWorkCols += plan.iXStepPixels - a % plan.iXStepPixels;
    // The columns' figure decides whether rows are added: wanted. Rows that fitted grow by a whole step, and where none
    // are added the last rows may go uncarved.
    int iWorkRows = iRows;
    if (a % plan.iYStepPixels != 0) iWorkRows += plan.iYStepPixels - b % plan.iYStepPixels;
    plan.iCols = (plan.iWorkCols - plan.iToolPixels) / plan.iXStepPixels + 1;
    plan.iRows = (iWorkRows - plan.iToolPixels) / plan.iYStepPixels + 1;
    return plan;
}

// By way of whole units of one pixel: wanted, every row lies on a position that the axis can count.
void FitSteps(stImgCarvingInfo& info, const stGridPlan& plan)
{
    info.fXStep = CUnitConverter::GetDouble(plan.lPixel * plan.iXStepPixels);
    info.fYStep = CUnitConverter::GetDouble(plan.lPixel * plan.iYStepPixels);
}

// The least value of each window of a line, every so many values. Two passes over the line, whatever the window's
// width: a window is the end of one block of its width and the beginning of the next.
class CLineMinima
{
public:
    CLineMinima(int iLength, int iWidth, int iStep)
        : m_iWidth(iWidth), m_iStep(iStep), m_Line(static_cast<size_t>(iLength)), m_Begin(m_Line.size()),
          m_End(m_Line.size())
    {
    }
    // Short of the length the last value is repeated.
    void Find(const double* pValues, int iCount, double* pMinima, int iMinima)
    {
        const auto itEnd = std::copy(pValues, pValues + iCount, m_Line.begin());
        std::fill(itEnd, m_Line.end(), pValues[iCount - 1]);
        const size_t uLength = m_Line.size(), uWidth = static_cast<size_t>(m_iWidth);
        for (size_t n = 0; n < uLength; ++n)
            m_Begin[n] = n % uWidth == 0 ? m_Line[n] : std::min(m_Begin[n - 1], m_Line[n]);
        for (size_t n = uLength; n-- > 0;)
            m_End[n] = n + 1 == uLength || (n + 1) % uWidth == 0 ? m_Line[n] : std::min(m_End[n + 1], m_Line[n]);
        for (int n = 0; n < iMinima; ++n) {
            const size_t uFirst = static_cast<size_t>(n) * static_cast<size_t>(m_iStep);
            pMinima[n] = std::min(m_End[uFirst], m_Begin[uFirst + uWidth - 1]);
        }
    }

private:
    const int m_iWidth, m_iStep;
    std::vector<double> m_Line, m_Begin, m_End;
};

// The same down the columns, a block of rows at a time: the memory is that of two blocks.
class CWindowMinima
{
public:
    CWindowMinima(const stImgZProfileInfo& map, const stGridPlan& plan)
        : m_Map(map), m_Plan(plan), m_Lines(plan.iWorkCols, plan.iToolPixels, plan.iXStepPixels),
          m_iHeight(std::min<int>(plan.iToolPixels, map.iRows)),   // rows below the last one are copies of it
          m_Begin(static_cast<size_t>(plan.iCols))
    {
        m_Ends.Allocate(m_iHeight, plan.iCols);
        m_Next.Allocate(m_iHeight, plan.iCols);
    }
    // Negated, to the grid.
    void Find(CLengthMap& grid)
    {
        ReadBlock(0);
        for (int first = 0, row = 0; row < m_Plan.iRows; first += m_iHeight) {
            for (int n = m_iHeight - 2; n >= 0; --n) Lower(m_Next[n], m_Next[n + 1]);
            std::swap(m_Ends, m_Next);
            ReadBlock(first + m_iHeight);
            std::fill(m_Begin.begin(), m_Begin.end(), std::numeric_limits<double>::infinity());
            for (int n = 0; n < m_iHeight && row < m_Plan.iRows; ++n) {
                if (n > 0) Lower(m_Begin.data(), m_Next[n - 1]);
                if (first + n != row * m_Plan.iYStepPixels) continue;
                std::transform(m_Begin.begin(), m_Begin.end(), m_Ends[n], grid[row++],
                               [](double a, double b) { return -std::min(a, b); });
            }
        }
    }

private:
    void ReadBlock(int iFirst)
    {
        for (int n = 0; n < m_iHeight; ++n)
            m_Lines.Find(m_Map.ppDepth[std::min<int>(iFirst + n, m_Map.iRows - 1)], m_Map.iCols, m_Next[n],
                         m_Plan.iCols);
    }
    void Lower(double* pRow, const double* pOther) const
    {
        std::transform(pRow, pRow + m_Begin.size(), pOther, pRow, [](double a, double b) { return std::min(a, b); });
    }

    const stImgZProfileInfo& m_Map;
    const stGridPlan& m_Plan;
    CLineMinima m_Lines;
    const int m_iHeight;
    CLengthMap m_Ends, m_Next;     // the least from each row of a block to its end; the rows of the block behind it
    std::vector<double> m_Begin;   // the least of the first rows of that block
};
}   // namespace

void MakeCarvingGrid(const stImgZProfileInfo& map, stImgCarvingInfo& info)
{
    info.ppZMap.Free();
    const stGridPlan plan = PlanGrid(info, map.iRows, map.iCols);
    info.iRows = static_cast<qint16>(plan.iRows);
    info.iCols = static_cast<qint16>(plan.iCols);
    FitSteps(info, plan);
    info.iToolPixels = static_cast<qint16>(plan.iToolPixels);
    info.iXStepPixels = static_cast<qint16>(plan.iXStepPixels);
    info.iYStepPixels = static_cast<qint16>(plan.iYStepPixels);
    if (plan.iRows <= 0) return;   // WhyNotCarved has said so
    info.ppZMap.Allocate(plan.iRows, plan.iCols);
    CWindowMinima(map, plan).Find(info.ppZMap);
}

QString WhyNotCarved(const stImgCarvingData& data)
{
    const stImgCarvingInfo& info = *data.pInfo;
    if (!data.pImage) return QStringLiteral("No Image loaded");
    if (!(info.fLength > 0.0)) return QStringLiteral("Carving Length is not defined");
    if (!(info.fWidth > 0.0)) return QStringLiteral("Carving Width is not defined");
    if (!(info.fDepth > 0.0)) return QStringLiteral("Carving Depth is not defined");
    for (const double fSize : {info.fLength, info.fWidth, info.fDepth})
        if (!CUnitConverter::FitsLong(fSize)) return QStringLiteral("Carving is too large: no axis can count so far");
    // In units, as the levels count: a smaller step would never come to the depth.
    if (!(CUnitConverter::GetLong(info.fZStep) > 0)) return QStringLiteral("Carving Z-Step is not defined");
    if (CUnitConverter::GetInt(info.fLength / data.pImage->width()) <= 0)
        return QStringLiteral("Carving Length is too small for the image");
    if (PlanGrid(info, data.pImage->height(), data.pImage->width()).iRows <= 0)
        return QStringLiteral("Image is too low for the End-Mill: there is no row to carve");
    return {};
}

QString WhyNotStarted(const stImgCarvingData& data)
{
    if (const QString strWhy = WhyNotCarved(data); !strWhy.isEmpty()) return strWhy;
    const stGridPlan plan = PlanGrid(*data.pInfo, data.pImage->height(), data.pImage->width());
    if (data.pInfo->iStartRow / plan.iYStepPixels < plan.iRows) return {};
    return QStringLiteral("Start Row is behind the last row of the carving");
}

QString NoticeOfSteps(const stImgCarvingData& data, bool bMultiPass)
{
    if (!WhyNotStarted(data).isEmpty()) return {};
    stImgCarvingInfo info;   // all but the grid
    info.fLength = data.pInfo->fLength;
    info.fDepth = data.pInfo->fDepth;
    info.fXStep = data.pInfo->fXStep;
    info.fYStep = data.pInfo->fYStep;
    info.fZStep = data.pInfo->fZStep;
    double fWidest = 0.0;
    int iPass = 0;
    const auto FitsTool = [&fWidest] {
        return CUnitConverter::GetLong(fWidest) <= CUnitConverter::GetLong(AppConfig::m_fEndMillDia);
    };
    RunCarvingPasses(info, bMultiPass, [&] {
        ++iPass;
        const double fX = info.fXStep, fY = info.fYStep;
        FitSteps(info, PlanGrid(info, data.pImage->height(), data.pImage->width()));
        fWidest = std::max(info.fXStep, info.fYStep);
        return FitsTool() && (info.fXStep != fX || info.fYStep != fY);   // the same steps stay the same
    });
    if (FitsTool()) return {};
    return QStringLiteral("The step of %1 mm in pass %2 is wider than the End-Mill of %3 mm: material stays in between")
        .arg(fWidest)
        .arg(iPass)
        .arg(AppConfig::m_fEndMillDia);
}
