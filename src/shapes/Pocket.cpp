#include "shapes/Pocket.h"

#include "shapes/ContourTour.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <optional>
#include <set>
#include <utility>

namespace {
class CPocket
{
public:
    CPocket(const stDisplayScale& scale, double fEndMillDia) : m_Scale(scale), m_fEndMillDia(fEndMillDia) {}
    std::vector<ShapePath> Rings(const ShapePath& outline);

private:
    int Pixel(double fMM) const;
    ShapePath ToMM(const Contour& contour) const;
    void Erode(const cv::Mat& from, cv::Mat& to, int iKernel) const;
    Contours OuterContours(const cv::Mat& mask, int iMethod) const;
    std::optional<int> KernelSize(const cv::Point& first) const;
    bool IsNarrow(const Contour& contour) const;

    const stDisplayScale m_Scale;
    const double m_fEndMillDia;
    cv::Mat m_Mask;
};

bool Differ(const stFloatPoint& a, const stFloatPoint& b)
{
    return a.x != b.x || a.y != b.y;
}

// Cut to where a pixel number can still be shifted and multiplied; the picture is much smaller.
int CPocket::Pixel(double fMM) const
{
    constexpr double fEnd = 1 << 20;
    const double fPixel = m_Scale.iMargin + m_Scale.fPixPerMM * fMM;
    return fPixel > -fEnd ? static_cast<int>(std::min(fPixel, fEnd)) : -static_cast<int>(fEnd);
}

// Y is not turned over, here and on the way to pixels: the mask is a mirror image of the display, to no effect.
ShapePath CPocket::ToMM(const Contour& contour) const
{
    ShapePath path;
    for (const cv::Point& pixel : contour)
        path.push_back(
            {(pixel.x - m_Scale.iMargin) / m_Scale.fPixPerMM, (pixel.y - m_Scale.iMargin) / m_Scale.fPixPerMM});
    return path;
}

void CPocket::Erode(const cv::Mat& from, cv::Mat& to, int iKernel) const
{
    cv::erode(from, to, cv::Mat::ones(iKernel, iKernel, CV_8UC1), cv::Point(-1, -1), 1, cv::BORDER_CONSTANT,
              cv::morphologyDefaultBorderValue());
}

Contours CPocket::OuterContours(const cv::Mat& mask, int iMethod) const
{
    Contours contours;
    cv::findContours(mask, contours, cv::RETR_EXTERNAL, iMethod);
    return contours;
}

// The largest kernel that leaves the outline's first point within half a tool. Nothing: the shape vanishes before.
std::optional<int> CPocket::KernelSize(const cv::Point& first) const
{
    for (int k = 2;; ++k) {
        cv::Mat eroded;
        Erode(m_Mask, eroded, k);
        const Contours contours = OuterContours(eroded, cv::CHAIN_APPROX_NONE);
        if (contours.empty()) return std::nullopt;
        double fNearest = std::numeric_limits<double>::infinity();
        for (const cv::Point& point : contours[0]) {
            // Not std::hypot, whose last bit is the C library's own, while a comparison decides about the rings.
            const double fX = double(point.x) - first.x, fY = double(point.y) - first.y;
            fNearest = std::min(fNearest, std::sqrt(fX * fX + fY * fY));
        }
        if (fNearest / m_Scale.fPixPerMM > m_fEndMillDia / 2.0) return std::max(k - 1, 3);
    }
}

bool CPocket::IsNarrow(const Contour& contour) const
{
    const cv::Rect rect = cv::boundingRect(contour);
    return rect.width / m_Scale.fPixPerMM < m_fEndMillDia || rect.height / m_Scale.fPixPerMM < m_fEndMillDia;
}

const stFloatPoint& NearestTo(const stFloatPoint& from, const ShapePath& path)
{
    const auto Distance = [&](const stFloatPoint& to) {
        const double fX = to.x - from.x, fY = to.y - from.y;
        return std::sqrt(fX * fX + fY * fY);
    };
    const stFloatPoint* pBest = &path[0];
    for (const stFloatPoint& point : path)
        if (Distance(point) < Distance(*pBest)) pBest = &point;
    return *pBest;
}

// The ring's vertices in the order of the ring before it, so that it starts near where that one does; what prints the
// same to four decimals once, closed.
ShapePath LinedUp(const ShapePath& previous, const ShapePath& ring)
{
    ShapePath path;
    std::set<std::pair<QString, QString>> seen;
    for (size_t n = 0; n < std::min(previous.size(), ring.size()); ++n) {
        const stFloatPoint& point = NearestTo(previous[n], ring);
        if (seen.emplace(QString::number(point.x, 'f', 4), QString::number(point.y, 'f', 4)).second)
            path.push_back(point);
    }
    if (!path.empty() && Differ(path.back(), path.front())) path.push_back(path.front());
    return path;
}

std::vector<ShapePath> CPocket::Rings(const ShapePath& outline)
{
    Contour pixels;
    for (const stFloatPoint& point : outline) pixels.emplace_back(Pixel(point.x), Pixel(point.y));
    m_Mask = cv::Mat::zeros(m_Scale.size.height(), m_Scale.size.width(), CV_8UC1);
    cv::fillPoly(m_Mask, Contours{pixels}, cv::Scalar(255), cv::LINE_8, 0);
    // Beyond the picture's edge counts as inside: what fills the picture would never grow smaller.
    if (cv::countNonZero(m_Mask) == static_cast<int>(m_Mask.total())) return {};
    const std::optional<int> kernel = KernelSize(pixels[0]);
    if (!kernel) return {};

    std::vector<ShapePath> lstRings;
    const auto NextContours = [&] {
        Erode(m_Mask, m_Mask, *kernel);
        return OuterContours(m_Mask, cv::CHAIN_APPROX_SIMPLE);
    };
    bool bStop = false;
    for (Contours contours = NextContours(); !contours.empty();) {
        lstRings.push_back(LinedUp(lstRings.empty() ? outline : lstRings.back(), ToMM(contours[0])));
        if (bStop) break;
        contours = NextContours();
        bStop = !contours.empty() && IsNarrow(contours[0]);   // one more ring, and the pocket ends
    }
    return lstRings;
}
}   // namespace

std::vector<ShapePath> MakePocketRings(const ShapePath& outline, const stDisplayScale& scale, double fEndMillDia)
{
    if (outline.size() <= 2 || scale.size.isEmpty() || !(scale.fPixPerMM > 0.0)) return {};
    return CPocket(scale, fEndMillDia).Rings(outline);
}
