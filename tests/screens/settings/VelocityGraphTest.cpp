#include "screens/settings/VelocityGraph.h"

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

TEST(VelocityGraph, AFirstPulseThatIsSeenAsAWaitIsTold)
{
    for (const double fFirst : {50.0, 0.1}) {
        const QImage image = CVelocityGraph({{fFirst, 1000.0}, 0.01, 10'000.0, "X", "mm"}).Draw({600, 300}, {});
        bool bTold = false;
        for (int x = 0; x < image.width(); ++x)
            for (int y = 0; y < 40; ++y) bTold |= image.pixelColor(x, y) == QColor(255, 160, 60);
        EXPECT_EQ(bTold, fFirst < 1.0);
    }
}
}   // namespace
