#include "shapes/PictureTrace.h"
#include "shapes/Pocket.h"
#include "shapes/TextTrace.h"

#include <QGuiApplication>

#include <benchmark/benchmark.h>
#include <opencv2/imgproc.hpp>

// Texts are retraced at each keystroke, on the picture of the work area; a picture of 5,000 round spots is traced and
// ordered; a pocket over most of the work area.

namespace {
void Text(benchmark::State& state)
{
    stTextToTrace text;
    text.font = QFont("DejaVu Sans");
    text.strText = "Sphinx of\nquartz 12";
    size_t uPaths = 0;
    for (auto _ : state) uPaths = TraceText(text, {QSize(480, 338), 25, 1.6}).size();
    state.counters["paths"] = static_cast<double>(uPaths);
}
BENCHMARK(Text)->Unit(benchmark::kMillisecond);

void Spots(benchmark::State& state)
{
    stPictureToTrace picture;
    picture.img = cv::Mat(2000, 2000, CV_8UC1, cv::Scalar(255));
    picture.uMinVertices = 2;
    for (int n = 0; n < 5000; ++n)
        cv::circle(picture.img, {15 + 28 * (n % 70), 14 + 27 * (n / 70)}, 4 + n % 7, cv::Scalar(0), cv::FILLED);
    size_t uPaths = 0;
    for (auto _ : state) uPaths = TracePicture(picture).size();
    state.counters["paths"] = static_cast<double>(uPaths);
}
BENCHMARK(Spots)->Unit(benchmark::kMillisecond);

void Pocket(benchmark::State& state)
{
    const ShapePath outline{{5, 5}, {250, 5}, {250, 180}, {5, 180}, {5, 5}};
    size_t uRings = 0;
    for (auto _ : state) uRings = MakePocketRings(outline, {QSize(480, 338), 25, 1.6}, 3.0).size();
    state.counters["rings"] = static_cast<double>(uRings);
}
BENCHMARK(Pocket)->Unit(benchmark::kMillisecond);
}   // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
