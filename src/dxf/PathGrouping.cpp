#include "dxf/PathGrouping.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <deque>
#include <unordered_map>
#include <utility>

double sqr(double f)
{
    return f * f;
}

double dist2(const Point& a, const Point& b)
{
    return sqr(a.x - b.x) + sqr(a.y - b.y);
}

bool near(const Point& a, const Point& b, double fTol)
{
    return dist2(a, b) <= fTol * fTol;
}

namespace {
// The ends of all unused segments in a grid of cells. Cells are numbered by whole doubles and never by integers, which
// a coordinate may not fit. Rounding is monotone, so that a point within the tolerance lies in one of the cells of the
// coordinates less and plus twice the tolerance, or of the one between; where doubles are coarser than the cells, only
// equal points are near.
class CEndIndex
{
public:
    static constexpr size_t NONE = SIZE_MAX;

    CEndIndex(const std::vector<RawSeg>& lstSegs, double fTol);
    // The lowest unused segment that has an end near the point.
    size_t LowestNear(const Point& point);
    void Use(size_t uSeg) { m_lstUsed[uSeg] = true; }
    bool IsUsed(size_t uSeg) const { return m_lstUsed[uSeg]; }

private:
    struct stCell
    {
        double x, y;
        bool operator==(const stCell&) const = default;
    };
    struct stHash
    {
        size_t operator()(const stCell& cell) const
        {
            const uint64_t uX = std::bit_cast<uint64_t>(cell.x), uY = std::bit_cast<uint64_t>(cell.y);
            uint64_t u = (uX ^ std::rotl(uY, 32)) * 0x9e3779b97f4a7c15u;
            u = (u ^ (u >> 29) ^ uY) * 0xbf58476d1ce4e5b9u;
            return static_cast<size_t>(u ^ (u >> 32));
        }
    };
    struct stSpan
    {
        double lst[3];
        int iCount = 0;
    };

    // Beyond what the quotient can hold only equal points are near, and each is a cell of its own; so it is for a
    // tolerance of 0. + 0.0: the cells of 0 and -0 are one.
    double CellOf(double f) const
    {
        const double fCell = std::floor(f / m_fCell);
        return (std::isfinite(fCell) ? fCell : f) + 0.0;
    }
    stSpan CellsAround(double f) const;
    const Point& End(size_t uEnd) const
    {
        return uEnd % 2 == 0 ? m_lstSegs[uEnd / 2].ptStart : m_lstSegs[uEnd / 2].ptEnd;
    }
    size_t LowestIn(size_t& uFirst, const Point& point, size_t uBelow);

    const std::vector<RawSeg>& m_lstSegs;
    const double m_fTol, m_fReach, m_fCell;
    std::vector<bool> m_lstUsed;
    // A list of ends for each cell, in ascending order; end 2n is the start of segment n, 2n + 1 its end.
    std::unordered_map<stCell, size_t, stHash> m_Cells;
    std::vector<size_t> m_lstNext;
};

CEndIndex::CEndIndex(const std::vector<RawSeg>& lstSegs, double fTol)
    : m_lstSegs(lstSegs), m_fTol(fTol), m_fReach(2.0 * std::abs(fTol)), m_fCell(8.0 * std::abs(fTol)),
      m_lstUsed(lstSegs.size(), false), m_lstNext(2 * lstSegs.size(), NONE)
{
    m_Cells.reserve(2 * lstSegs.size());
    for (size_t uEnd = m_lstNext.size(); uEnd-- > 0;) {
        const Point& point = End(uEnd);
        if (!std::isfinite(point.x) || !std::isfinite(point.y)) continue;   // near nothing
        size_t& uFirst = m_Cells.try_emplace({CellOf(point.x), CellOf(point.y)}, NONE).first->second;
        m_lstNext[uEnd] = std::exchange(uFirst, uEnd);
    }
}

CEndIndex::stSpan CEndIndex::CellsAround(double f) const
{
    stSpan span;
    for (const double fCell : {CellOf(f - m_fReach), CellOf(f), CellOf(f + m_fReach)})
        if (span.iCount == 0 || fCell != span.lst[span.iCount - 1]) span.lst[span.iCount++] = fCell;
    return span;
}

// Used ends are unlinked on the way, so that each is met once.
size_t CEndIndex::LowestIn(size_t& uFirst, const Point& point, size_t uBelow)
{
    size_t* pLink = &uFirst;
    while (*pLink != NONE && *pLink / 2 < uBelow) {
        const size_t uEnd = *pLink;
        if (m_lstUsed[uEnd / 2])
            *pLink = m_lstNext[uEnd];
        else if (near(End(uEnd), point, m_fTol))
            return uEnd / 2;
        else
            pLink = &m_lstNext[uEnd];
    }
    return uBelow;
}

size_t CEndIndex::LowestNear(const Point& point)
{
    size_t uLowest = NONE;
    if (!std::isfinite(point.x) || !std::isfinite(point.y)) return uLowest;
    const stSpan columns = CellsAround(point.x), rows = CellsAround(point.y);
    for (int c = 0; c < columns.iCount; ++c)
        for (int r = 0; r < rows.iCount; ++r) {
            const auto found = m_Cells.find({columns.lst[c], rows.lst[r]});
            if (found != m_Cells.end()) uLowest = LowestIn(found->second, point, uLowest);
        }
    return uLowest;
}

Segment Reversed(Segment seg)
{
    std::swap(seg.ptStart, seg.ptEnd);
    if (seg.eKind == SEG_ARC) seg.bCcw = !seg.bCcw;
    return seg;
}

bool ExtendTail(std::deque<Segment>& chain, const std::vector<RawSeg>& lstSegs, CEndIndex& index, double fTol)
{
    const Point tail = chain.back().ptEnd;
    const size_t uSeg = index.LowestNear(tail);
    if (uSeg == CEndIndex::NONE) return false;
    index.Use(uSeg);
    const Segment& seg = lstSegs[uSeg];
    chain.push_back(near(seg.ptStart, tail, fTol) ? seg : Reversed(seg));
    return true;
}

bool ExtendHead(std::deque<Segment>& chain, const std::vector<RawSeg>& lstSegs, CEndIndex& index, double fTol)
{
    const Point head = chain.front().ptStart;
    const size_t uSeg = index.LowestNear(head);
    if (uSeg == CEndIndex::NONE) return false;
    index.Use(uSeg);
    const Segment& seg = lstSegs[uSeg];
    chain.push_front(near(seg.ptEnd, head, fTol) ? seg : Reversed(seg));
    return true;
}
}   // namespace

std::vector<Path> group_paths(std::vector<RawSeg> lstSegs, double fTol)
{
    CEndIndex index(lstSegs, fTol);
    std::vector<Path> lstPaths;
    for (size_t n = 0; n < lstSegs.size(); ++n) {
        if (index.IsUsed(n)) continue;
        index.Use(n);
        std::deque<Segment> chain{lstSegs[n]};
        while (ExtendTail(chain, lstSegs, index, fTol) || ExtendHead(chain, lstSegs, index, fTol)) {
        }
        lstPaths.push_back({{chain.begin(), chain.end()}, near(chain.front().ptStart, chain.back().ptEnd, fTol)});
    }
    return lstPaths;
}
