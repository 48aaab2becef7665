#include "shapes/ShapesToGCode.h"
#include "shapes/WorkAreaFile.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <cmath>

// A work area of 10,000 polygons of 6 points: loaded, saved, and written as G-code in ten passes each.

namespace {
stShapeCuttingInfo Job()
{
    stShapeCuttingInfo info;
    for (int n = 0; n < 10'000; ++n) {
        stEngShape shape = stEngShape::NewPolygon();
        shape.pPolygon->strShapeName = QStringLiteral("Shape_%1").arg(n + 1);
        for (int corner = 0; corner < 6; ++corner)
            shape.pPolygon->lstVertices.push_back({n % 100 + std::cos(corner * 1.2), n / 100 + std::sin(corner * 1.2)});
        info.lstShapes.push_back(std::move(shape));
    }
    return info;
}

struct stFixture
{
    QTemporaryDir folder;
    QString strArea = folder.filePath(QStringLiteral("area.xml")),
            strProgram = folder.filePath(QStringLiteral("a.txt"));
    stShapeCuttingInfo job = Job();
    QStringList lstNotices;
};

void Load(benchmark::State& state)
{
    stFixture f;
    SaveWorkArea(f.strArea, f.job);
    for (auto _ : state) {
        stShapeCuttingInfo info;
        LoadWorkArea(f.strArea, info, f.lstNotices);
        if (info.lstShapes.size() != f.job.lstShapes.size()) state.SkipWithError("shapes are missing");
    }
}
void Save(benchmark::State& state)
{
    stFixture f;
    for (auto _ : state)
        if (!SaveWorkArea(f.strArea, f.job)) state.SkipWithError("not saved");
}
void WriteGCode(benchmark::State& state)
{
    stFixture f;
    for (auto _ : state)
        if (!WriteShapesAsGCode(
                f.strProgram, f.job, 5.0, [] { return true; }, f.lstNotices))
            state.SkipWithError("not written");
}
BENCHMARK(Load)->Unit(benchmark::kMillisecond);
BENCHMARK(Save)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteGCode)->Unit(benchmark::kMillisecond);
}   // namespace

BENCHMARK_MAIN();
