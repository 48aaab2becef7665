#include "settings/VelocityGraph.h"

#include <gtest/gtest.h>

namespace {
// A speed of 100 pulses/s is one pulse of 10 ms; 1000 pulses/s fill a sampling time of 10 ms with nine pulses more
// than the one that the builder's clock counts.
TEST(VelocityGraph, ASpeedLastsAsLongAsItsPulsesInTheTable)
{
    const CVelocityGraph graph({{50.0, 100.0, 1000.0}, 0.01, 10'000.0, "X", "mm"});
    const auto& points = graph.Points();
    ASSERT_EQ(points.size(), 4u);
    EXPECT_NEAR(points[0].x(), 0.0, 1e-12);
    EXPECT_NEAR(points[1].x(), 0.020, 1e-12);
    EXPECT_NEAR(points[2].x(), 0.030, 1e-12);
    EXPECT_NEAR(points[3].x(), 0.039, 1e-12);
    EXPECT_NEAR(points[2].y(), 10.0, 1e-12);
    EXPECT_EQ(points[3].y(), points[2].y());
    EXPECT_NEAR(graph.Distance(), 11 * 0.01, 1e-12);
}

TEST(VelocityGraph, GridStepsAreRound)
{
    EXPECT_DOUBLE_EQ(CVelocityGraph::GridStep(33.0, 6), 10.0);
    EXPECT_DOUBLE_EQ(CVelocityGraph::GridStep(10.0, 5), 2.0);
    EXPECT_DOUBLE_EQ(CVelocityGraph::GridStep(0.052, 5), 0.02);
    EXPECT_DOUBLE_EQ(CVelocityGraph::GridStep(1650.0, 6), 500.0);
    EXPECT_DOUBLE_EQ(CVelocityGraph::GridStep(5.0, 6), 1.0);
}

// The curve's pixels rise from left to right within the picture, whatever the length of the table.
TEST(VelocityGraph, TheCurveRisesAcrossThePicture)
{
    CVelocityGraph::stCurve curve{{}, 0.001, 10'000.0, "X", "mm"};
    for (int n = 1; n <= 2'000'000; ++n) curve.lstVel.push_back(n * 0.75);
    const QImage image = CVelocityGraph(std::move(curve)).Draw({540, 320}, "");
    const auto TopOf = [&image](int x) {
        for (int y = 0; y < image.height(); ++y)
            if (qGreen(image.pixel(x, y)) > 200 && qRed(image.pixel(x, y)) < 60) return y;
        return -1;
    };
    const int iLeft = TopOf(80), iMiddle = TopOf(280), iRight = TopOf(480);
    EXPECT_GT(iLeft, iMiddle);
    EXPECT_GT(iMiddle, iRight);
    EXPECT_GT(iRight, 40);
}

TEST(VelocityGraph, WithoutACurveTheReasonIsShown)
{
    const CVelocityGraph none({});
    EXPECT_NE(none.Draw({540, 320}, "refused"), none.Draw({540, 320}, ""));
}
}   // namespace
