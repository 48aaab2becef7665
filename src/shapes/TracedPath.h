#pragma once
#include "shapes/ContourTour.h"
#include "shapes/ShapeModel.h"

// What tracing a text and tracing a picture have in common. Interface thread.

// The centre of the ellipse that fits the contour best, on whole pixels. Needs more than 4 points.
cv::Point EllipseCentre(const Contour& contour);

// From pixels of a picture, whose rows count downwards, to mm.
struct stPixelsToMM
{
    double fX0, fY0;           // mm
    int iColumn0, iRow0;       // the pixel at (fX0, fY0)
    double fXScale, fYScale;   // by which the pixels are multiplied, or divided with bDivide
    bool bDivide;              // the two are not the same in the last bit
};

// The contour as a closed path. A vertex whose pixel numbers equal its mm within a pulse is left out: wanted, although
// it compares two units.
ShapePath ClosedPath(const Contour& contour, const stPixelsToMM& conversion);
