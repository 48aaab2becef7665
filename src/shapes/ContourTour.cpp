#include "shapes/ContourTour.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {
// In single precision, as the tour has always been measured: it decides what counts as a tie. The differences are taken
// in double: the centre of a degenerate ellipse can be any integer.
float Distance(double fX, double fY)
{
    return static_cast<float>(std::sqrt(fX * fX + fY * fY));
}

// The stops that are left, linked from left to right. The nearest one is looked for to both sides until no stop beyond
// can be nearer, so that a grainy scan of 100,000 contours takes no hour.
class CStops
{
public:
    explicit CStops(const std::vector<cv::Point>& centres)
        : m_Centres(centres), m_lstLeft(centres.size()), m_lstRight(centres.size())
    {
        std::vector<size_t> order(centres.size());
        std::iota(order.begin(), order.end(), size_t(0));
        std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) { return centres[a].x < centres[b].x; });
        for (size_t n = 0; n < order.size(); ++n) {
            m_lstLeft[order[n]] = n > 0 ? order[n - 1] : NONE;
            m_lstRight[order[n]] = n + 1 < order.size() ? order[n + 1] : NONE;
        }
    }

    // Takes the stop out; the result is the nearest one left, the lowest of several. NONE: it was the last.
    size_t TakeAndFindNext(size_t uStop)
    {
        const size_t uLeft = m_lstLeft[uStop], uRight = m_lstRight[uStop];
        if (uLeft != NONE) m_lstRight[uLeft] = uRight;
        if (uRight != NONE) m_lstLeft[uRight] = uLeft;
        stBest best;
        Search(uStop, uLeft, m_lstLeft, best);
        Search(uStop, uRight, m_lstRight, best);
        return best.uStop;
    }
    static constexpr size_t NONE = SIZE_MAX;

private:
    struct stBest
    {
        size_t uStop = NONE;
        float fDistance = INFINITY;
    };
    void Search(size_t uFrom, size_t uStop, const std::vector<size_t>& next, stBest& best) const
    {
        const cv::Point& from = m_Centres[uFrom];
        for (; uStop != NONE; uStop = next[uStop]) {
            const double fX = double(m_Centres[uStop].x) - from.x;
            if (Distance(fX, 0.0) > best.fDistance) return;
            const float fDistance = Distance(fX, double(m_Centres[uStop].y) - from.y);
            if (fDistance < best.fDistance || (fDistance == best.fDistance && uStop < best.uStop))
                best = {uStop, fDistance};
        }
    }

    const std::vector<cv::Point>& m_Centres;
    std::vector<size_t> m_lstLeft, m_lstRight;
};
}   // namespace

Contours OrderContours(Contours contours, std::vector<cv::Point> centres, size_t uFirst)
{
    if (contours.empty()) return contours;
    if (contours.size() == 1) return {contours[0], contours[0]};

    // Taking a contour takes the centre at the same place, so that the pairs never change: only those are toured.
    centres.resize(std::min(contours.size(), centres.size()));
    CStops stops(centres);
    Contours ordered;
    ordered.reserve(contours.size());
    std::vector<bool> lstTaken(contours.size(), false);
    size_t uNext = centres.empty() ? CStops::NONE : uFirst < centres.size() ? uFirst : 0;
    while (uNext != CStops::NONE) {
        ordered.push_back(std::move(contours[uNext]));
        lstTaken[uNext] = true;
        uNext = stops.TakeAndFindNext(uNext);
    }
    for (size_t n = 0; n < contours.size(); ++n)
        if (!lstTaken[n]) ordered.push_back(std::move(contours[n]));
    return ordered;
}
