#include "shapes/TracedPath.h"

#include "config/AppConfig.h"

#include <cmath>
#include <opencv2/imgproc.hpp>

cv::Point EllipseCentre(const Contour& contour)
{
    return cv::fitEllipse(contour).center;
}

ShapePath ClosedPath(const Contour& contour, const std::function<stFloatPoint(const cv::Point&)>& fnToMM)
{
    ShapePath path;
    path.reserve(contour.size() + 1);
    for (const cv::Point& pixel : contour) {
        const stFloatPoint at = fnToMM(pixel);
        if (std::abs(pixel.x - at.x) > AppConfig::m_fAxisMovPerPulse[X_AXIS] ||
            std::abs(pixel.y - at.y) > AppConfig::m_fAxisMovPerPulse[Y_AXIS])
            path.push_back(at);
    }
    if (!path.empty()) path.push_back(path.front());
    return path;
}
