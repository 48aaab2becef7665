#include "shapes/ContourTour.h"

#include <algorithm>
#include <cmath>

namespace {
struct stStop
{
    size_t uContour;
    cv::Point centre;
};

// In single precision, as the tour has always been measured: it decides what counts as a tie. The differences are taken
// in double: the centre of a degenerate ellipse can be any integer.
float Distance(const cv::Point& from, const cv::Point& to)
{
    const double fX = double(to.x) - double(from.x), fY = double(to.y) - double(from.y);
    return static_cast<float>(std::sqrt(fX * fX + fY * fY));
}

size_t NearestTo(const cv::Point& from, const std::vector<stStop>& lstStops)
{
    size_t uBest = 0;
    float fBest = Distance(from, lstStops[0].centre);
    for (size_t n = 1; n < lstStops.size(); ++n) {
        const float fDistance = Distance(from, lstStops[n].centre);
        if (fDistance < fBest) {
            fBest = fDistance;
            uBest = n;
        }
    }
    return uBest;
}
}   // namespace

Contours OrderContours(Contours contours, std::vector<cv::Point> centres, size_t uFirst)
{
    if (contours.empty()) return contours;
    if (contours.size() == 1) return {contours[0], contours[0]};

    // Taking a contour takes the centre at the same place, so that the pairs never change: only those are toured.
    std::vector<stStop> lstStops;
    for (size_t n = 0; n < std::min(contours.size(), centres.size()); ++n) lstStops.push_back({n, centres[n]});
    Contours ordered;
    ordered.reserve(contours.size());
    std::vector<bool> lstTaken(contours.size(), false);
    for (size_t uNext = uFirst < lstStops.size() ? uFirst : 0; !lstStops.empty();) {
        const stStop stop = lstStops[uNext];
        lstStops.erase(lstStops.begin() + static_cast<std::ptrdiff_t>(uNext));
        ordered.push_back(std::move(contours[stop.uContour]));
        lstTaken[stop.uContour] = true;
        if (!lstStops.empty()) uNext = NearestTo(stop.centre, lstStops);
    }
    for (size_t n = 0; n < contours.size(); ++n)
        if (!lstTaken[n]) ordered.push_back(std::move(contours[n]));
    return ordered;
}
