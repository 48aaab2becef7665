#include "shapes/PolygonEdit.h"

#include <gtest/gtest.h>

namespace {
void ExpectPath(const ShapePath& path, const ShapePath& expected)
{
    ASSERT_EQ(path.size(), expected.size());
    for (size_t n = 0; n < path.size(); ++n) {
        EXPECT_NEAR(path[n].x, expected[n].x, 1e-9) << n;
        EXPECT_NEAR(path[n].y, expected[n].y, 1e-9) << n;
    }
}
const ShapePath TRIANGLE{{1, 2}, {5, 2}, {5, 8}};

TEST(PolygonEdit, ClosesOnceAndOnlyWhatIsOpen)
{
    ShapePath path = TRIANGLE;
    EXPECT_TRUE(CloseShape(path));
    ExpectPath(path, {{1, 2}, {5, 2}, {5, 8}, {1, 2}});
    EXPECT_FALSE(CloseShape(path));
    path.back().y += 1e-12;   // exactly, not within a pulse
    EXPECT_TRUE(CloseShape(path));
    path = {{1, 2}, {5, 2}};   // apart in X alone
    EXPECT_TRUE(CloseShape(path));
    ShapePath none;
    EXPECT_FALSE(CloseShape(none));
}

TEST(PolygonEdit, ScalesAboutTheFirstVertexAndBack)
{
    ShapePath path = TRIANGLE;
    ScaleShape(path, 2.0);
    ExpectPath(path, {{1, 2}, {9, 2}, {9, 14}});
    ScaleShape(path, 0.5);
    ExpectPath(path, TRIANGLE);
    ShapePath none;
    ScaleShape(none, 2.0);
}

TEST(PolygonEdit, TurnsClockwiseAboutTheMiddleOfItsExtent)
{
    ShapePath path = TRIANGLE;
    CloseShape(path);
    const stFloatPoint middle = MiddleOf(path);
    EXPECT_EQ(middle.x, 3.0);
    EXPECT_EQ(middle.y, 5.0);
    TurnShape(path, std::atan(1.0) * 2.0, middle);
    ExpectPath(path, {{0, 7}, {0, 3}, {6, 3}, {0, 7}});
    EXPECT_EQ(path.front().x, path.back().x);
    EXPECT_EQ(path.front().y, path.back().y);
    EXPECT_EQ(MiddleOf(ShapePath{}).x, 0.0);

    std::vector<stEngShape> shapes{stEngShape::NewPolygon(), stEngShape::NewPolygon(), stEngShape::NewPolygon()};
    shapes[1].pPolygon->lstVertices = {{-7, 1}};
    shapes[2].pPolygon->lstVertices = TRIANGLE;
    EXPECT_EQ(MiddleOf(shapes).x, -1.0);   // an empty one counts for nothing
    EXPECT_EQ(MiddleOf(shapes).y, 4.5);
}

TEST(PolygonEdit, ToolOffsetShiftsAlongXWhereASegmentRisesOrFallsInBoth)
{
    // Up right, down right, down left, up left, and the closing point.
    const ShapePath diamond{{0, 0}, {4, 3}, {8, 0}, {4, -3}};
    ExpectPath(ApplyToolOffset(diamond, QStringLiteral("G41"), 2.0), {{-1, 0}, {4, 4}, {7, 0}, {4, -2}, {0, 1}});
    ExpectPath(ApplyToolOffset(diamond, QStringLiteral("G42"), 2.0), {{1, 0}, {4, 2}, {9, 0}, {4, -4}, {0, -1}});
    ExpectPath(ApplyToolOffset({}, QStringLiteral("G41"), 2.0), {});
}
}   // namespace
