#include "carving/ImgCarving.h"
#include "config/AppConfig.h"

#include <QRandomGenerator>

#include <benchmark/benchmark.h>
#include <sys/resource.h>

// The grid of a picture of 4,000 by 4,000 pixels of 0.05 mm, steps of one pixel, for a tool of so many pixels. Bound:
// below 2 s and 600 MiB with 100 pixels. peak_mib is the most that the process has held until then.

namespace {
void Grid(benchmark::State& state)
{
    static constexpr int SIDE = 4000;
    QImage image(SIDE, SIDE, QImage::Format_Grayscale8);
    QRandomGenerator random(1);
    for (int row = 0; row < SIDE; ++row) random.fillRange(reinterpret_cast<quint32*>(image.scanLine(row)), SIDE / 4);
    stImgCarvingInfo info;
    info.fLength = info.fWidth = 200.0;
    info.fXStep = info.fYStep = 0.05;
    AppConfig::m_fEndMillDia = 0.05 * static_cast<double>(state.range(0));
    for (auto _ : state) {
        stImgZProfileInfo map;
        MakeDepthMap(image, info.fDepth, map);
        MakeCarvingGrid(map, info);
    }
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    state.counters["peak_mib"] = static_cast<double>(usage.ru_maxrss) / 1024.0;
    state.counters["tool_pixels"] = info.iToolPixels;
}
BENCHMARK(Grid)->Arg(100)->Arg(10)->Arg(1000)->Unit(benchmark::kMillisecond);
}   // namespace

BENCHMARK_MAIN();
