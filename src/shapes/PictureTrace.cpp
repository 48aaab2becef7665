#include "shapes/PictureTrace.h"

#include "shapes/TracedPath.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>

namespace {
// An ellipse needs more points than 4; of a shorter contour its leftmost point stands for it, the first of several.
cv::Point ReferencePoint(const Contour& contour)
{
    if (contour.size() > 4) return EllipseCentre(contour);
    return *std::min_element(contour.begin(), contour.end(),
                             [](const cv::Point& a, const cv::Point& b) { return a.x < b.x; });
}

// The leftmost of the contours with an ellipse; contour 0 leads, whatever it has, until one lies left of it.
size_t Leftmost(const Contours& contours, const std::vector<cv::Point>& references)
{
    size_t uFirst = 0;
    for (size_t n = 0; n < contours.size(); ++n)
        if (contours[n].size() > 4 && references[n].x < references[uFirst].x) uFirst = n;
    return uFirst;
}
}   // namespace

std::vector<ShapePath> TracePicture(const stPictureToTrace& picture)
{
    if (picture.img.empty() || picture.img.type() != CV_8UC1) return {};
    cv::Mat dark;
    cv::threshold(picture.img, dark, picture.uThreshold, 255.0, cv::THRESH_BINARY_INV);
    Contours contours;
    cv::findContours(dark, contours, cv::RETR_LIST, cv::CHAIN_APPROX_SIMPLE);

    std::vector<cv::Point> references;
    for (const Contour& contour : contours) references.push_back(ReferencePoint(contour));
    const size_t uFirst = Leftmost(contours, references);
    const double fXScale = picture.fShapeLength / dark.cols, fYScale = picture.fShapeWidth / dark.rows;
    const auto ToMM = [&](const cv::Point& pixel) -> stFloatPoint {
        return {picture.stImgOffset.x + pixel.x * fXScale, picture.stImgOffset.y + (dark.rows - pixel.y) * fYScale};
    };
    std::vector<ShapePath> lstPaths;
    for (const Contour& contour : OrderContours(std::move(contours), std::move(references), uFirst))
        if (contour.size() > picture.uMinVertices && contour.size() < picture.uMaxVertices)
            lstPaths.push_back(ClosedPath(contour, ToMM));
    return lstPaths;
}
