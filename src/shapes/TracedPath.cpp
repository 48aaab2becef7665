#include "shapes/TracedPath.h"

#include "config/AppConfig.h"

#include <cmath>
#include <opencv2/imgproc.hpp>

cv::Point EllipseCentre(const Contour& contour)
{
    return cv::fitEllipse(contour).center;
}

ShapePath ClosedPath(const Contour& contour, const stPixelsToMM& conversion)
{
    const auto Scaled = [&](int iPixels, double fScale) {
        return conversion.bDivide ? double(iPixels) / fScale : double(iPixels) * fScale;
    };
    ShapePath path;
    path.reserve(contour.size() + 1);
    for (const cv::Point& pixel : contour) {
        const double fX = conversion.fX0 + Scaled(pixel.x - conversion.iColumn0, conversion.fXScale);
        const double fY = conversion.fY0 + Scaled(conversion.iRow0 - pixel.y, conversion.fYScale);
        if (std::abs(pixel.x - fX) > AppConfig::m_fAxisMovPerPulse[X_AXIS] ||
            std::abs(pixel.y - fY) > AppConfig::m_fAxisMovPerPulse[Y_AXIS])
            path.push_back({fX, fY});
    }
    if (!path.empty()) path.push_back(path.front());
    return path;
}
