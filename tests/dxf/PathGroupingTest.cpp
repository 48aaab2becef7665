#include "dxf/PathGrouping.h"

#include <QString>

#include <cmath>
#include <deque>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {
RawSeg Line(Point from, Point to)
{
    RawSeg seg;
    seg.ptStart = from;
    seg.ptEnd = to;
    return seg;
}
void Reverse(RawSeg& seg)
{
    std::swap(seg.ptStart, seg.ptEnd);
    if (seg.eKind == SEG_ARC) seg.bCcw = !seg.bCcw;
}

// The plain form: a fresh walk over all segments at each extension.
std::vector<Path> PlainGrouping(std::vector<RawSeg> lst, double fTol)
{
    std::vector<char> used(lst.size(), 0);
    std::vector<Path> paths;
    for (size_t i = 0; i < lst.size(); ++i) {
        if (used[i]) continue;
        used[i] = 1;
        std::deque<size_t> chain{i};
        for (bool bExtended = true; bExtended;) {
            bExtended = false;
            const Point tail = lst[chain.back()].ptEnd;
            for (size_t j = 0; j < lst.size() && !bExtended; ++j) {
                if (used[j]) continue;
                const bool bAsItIs = near(lst[j].ptStart, tail, fTol);
                if (!bAsItIs && !near(lst[j].ptEnd, tail, fTol)) continue;
                if (!bAsItIs) Reverse(lst[j]);
                chain.push_back(j);
                used[j] = bExtended = true;
            }
            const Point head = lst[chain.front()].ptStart;
            for (size_t k = 0; k < lst.size() && !bExtended; ++k) {
                if (used[k]) continue;
                const bool bAsItIs = near(lst[k].ptEnd, head, fTol);
                if (!bAsItIs && !near(lst[k].ptStart, head, fTol)) continue;
                if (!bAsItIs) Reverse(lst[k]);
                chain.push_front(k);
                used[k] = bExtended = true;
            }
        }
        Path path;
        path.bClosed = near(lst[chain.front()].ptStart, lst[chain.back()].ptEnd, fTol);
        for (const size_t n : chain) path.lstSegs.push_back(lst[n]);
        paths.push_back(path);
    }
    return paths;
}
QString Shown(const std::vector<Path>& paths)
{
    QString strShown;
    for (const Path& path : paths) {
        strShown += path.bClosed ? "closed" : "open";
        for (const Segment& seg : path.lstSegs)
            for (const double f : {seg.ptStart.x, seg.ptStart.y, seg.ptEnd.x, seg.ptEnd.y, seg.ptCentre.x,
                                   seg.ptCentre.y, double(seg.eKind), double(seg.bCcw)})
                strShown += ' ' + QString::number(f, 'g', 17);
        strShown += '\n';
    }
    return strShown;
}

// Points on a small grid, so that most ends meet others, some a part of the tolerance beside them.
TEST(PathGrouping, GivesWhatThePlainFormGives)
{
    constexpr double fInf = std::numeric_limits<double>::infinity();
    struct stKind
    {
        double fPitch, fTol, fShift;
        int iGrid;
    };
    const stKind kinds[] = {{1, 1e-05, 0, 5},        {1e-05, 1e-05, 0, 12},
                            {2.5e-05, 1e-05, -3, 9}, {1, 1e-05, 1e13, 6},
                            {2048, 1e-05, 3e18, 6},  {1, 0, 0, 5},
                            {1, 1.0, 0, 30},         {1, -1.5, 0, 30},
                            {1e305, 1e-05, 0, 5},    {1e-05, 1e-05, 85.89934592, 12}};
    int iJoined = 0;
    for (unsigned uSeed = 0; uSeed < 40; ++uSeed)
        for (const stKind& kind : kinds) {
            std::mt19937 random(uSeed);
            const auto Below = [&](int n) { return int(random() % unsigned(n)); };
            const auto Coordinate = [&] {
                const int iOdd = Below(60);
                if (iOdd < 3) return std::array{fInf, -fInf, std::nan("")}[size_t(iOdd)];
                const double fNoise = Below(3) == 0 ? (Below(5) - 2) * 0.49 * kind.fTol : 0.0;
                return kind.fShift + (Below(kind.iGrid) - kind.iGrid / 2) * kind.fPitch +
                       (std::isfinite(fNoise) ? fNoise : 0.0);
            };
            std::vector<RawSeg> lst;
            for (int n = 0; n < 80; ++n) {
                lst.push_back(Line({Coordinate(), Coordinate()}, {Coordinate(), Coordinate()}));
                if (Below(3) == 0) {
                    lst.back().eKind = SEG_ARC;
                    lst.back().bCcw = Below(2) == 0;
                    lst.back().ptCentre = {double(Below(9)), double(Below(9))};
                }
                if (Below(8) == 0) lst.push_back(lst[size_t(Below(int(lst.size())))]);
            }
            const std::vector<Path> plain = PlainGrouping(lst, kind.fTol);
            ASSERT_EQ(Shown(group_paths(lst, kind.fTol)), Shown(plain))
                << uSeed << ' ' << kind.fPitch << ' ' << kind.fTol;
            iJoined += plain.size() < lst.size();
        }
    EXPECT_GT(iJoined, 300) << "most drawings have something to join";
}

TEST(PathGrouping, ToleranceIsADistanceAndIncludesItsEnd)
{
    const auto Paths = [](double fX, double fY) {
        return group_paths({Line({-1, 0}, {0, 0}), Line({fX, fY}, {5, 5})}, 0.25).size();
    };
    EXPECT_EQ(Paths(0.25, 0), 1u);
    EXPECT_EQ(Paths(0, -0.25), 1u);
    EXPECT_EQ(Paths(std::nextafter(0.25, 1), 0), 2u);
    EXPECT_EQ(Paths(0.2, 0.2), 2u) << "0.283 apart";
    EXPECT_EQ(Paths(-0.15, 0.2), 1u);
}

}   // namespace
