#pragma once
#include <opencv2/core/types.hpp>
#include <vector>

using Contour = std::vector<cv::Point>;
using Contours = std::vector<Contour>;

// The contours in cutting order: from contour uFirst to the nearest remaining one, and so on, measured between their
// centres; the lower index wins a tie. The centres may be fewer than the contours: the tour ends with the last centre,
// and what remains follows in its order. One contour alone comes twice: wanted, it is cut twice.
Contours OrderContours(Contours contours, std::vector<cv::Point> centres, size_t uFirst);
