#include "dxf/DxfToGCode.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cmath>
#include <random>
#include <sstream>

// Grouping of 100,000 segments (closed outlines whose segments lie about the file in any order) and of a star of 50,000
// lines from one point; reading a drawing; passing over 200 MiB of something else.

namespace {
RawSeg Line(Point from, Point to)
{
    RawSeg seg;
    seg.ptStart = from;
    seg.ptEnd = to;
    return seg;
}

std::vector<RawSeg> Outlines()
{
    std::vector<RawSeg> lst;
    for (int n = 0; n < 1000; ++n)
        for (int p = 0; p < 100; ++p) {
            const auto At = [&](int iPoint) {
                const double fAngle = 2 * M_PI * iPoint / 100;
                return Point{30.0 * (n % 40) + 10 * std::cos(fAngle), 30.0 * (n / 40) + 10 * std::sin(fAngle)};
            };
            lst.push_back(p % 2 == 0 ? Line(At(p), At((p + 1) % 100)) : Line(At((p + 1) % 100), At(p)));
        }
    std::mt19937 random(1);
    std::shuffle(lst.begin(), lst.end(), random);
    return lst;
}

std::vector<RawSeg> Star()
{
    std::vector<RawSeg> lst;
    for (int n = 0; n < 50'000; ++n) lst.push_back(Line({0, 0}, {100 * std::cos(n * 1e-4), 100 * std::sin(n * 1e-4)}));
    return lst;
}

void Group(benchmark::State& state, const std::vector<RawSeg>& lst)
{
    size_t uPaths = 0;
    for (auto _ : state) uPaths = group_paths(lst, 1e-05).size();
    state.counters["paths"] = static_cast<double>(uPaths);
}
BENCHMARK_CAPTURE(Group, Outlines, Outlines())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Group, Star, Star())->Unit(benchmark::kMillisecond);

void Read(benchmark::State& state, const std::string& strText)
{
    size_t uSegments = 0;
    for (auto _ : state) {
        std::istringstream stream(strText);
        DXFReader reader(stream);
        uSegments = parse_entities(reader).size();
    }
    state.counters["segments"] = static_cast<double>(uSegments);
}
std::string Drawing()
{
    std::ostringstream out;
    out << "0\nSECTION\n2\nENTITIES\n";
    for (const RawSeg& seg : Outlines())
        out << "0\nLINE\n8\n0\n10\n"
            << seg.ptStart.x << "\n20\n"
            << seg.ptStart.y << "\n11\n"
            << seg.ptEnd.x << "\n21\n"
            << seg.ptEnd.y << "\n";
    return out.str();
}
BENCHMARK_CAPTURE(Read, Drawing, Drawing())->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Read, OneLineOf200MiB, std::string(200u << 20, 'x'))->Unit(benchmark::kMillisecond);
}   // namespace

BENCHMARK_MAIN();
