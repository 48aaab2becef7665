#pragma once
#include "shapes/ContourTour.h"
#include "shapes/ShapeModel.h"

#include <functional>

// What tracing a text and tracing a picture have in common. Interface thread.

// The centre of the ellipse that fits the contour best, on whole pixels. Needs more than 4 points.
cv::Point EllipseCentre(const Contour& contour);

// The contour as a closed path; fnToMM turns pixels of a picture, whose rows count downwards, into mm. A vertex whose
// pixel numbers equal its mm within a pulse is left out: wanted, although it compares two units.
ShapePath ClosedPath(const Contour& contour, const std::function<stFloatPoint(const cv::Point&)>& fnToMM);
