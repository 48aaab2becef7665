#include "shapes/Pocket.h"

#include "cases/Cases.h"

namespace {
QJsonArray RingArray(const std::vector<ShapePath>& lstRings)
{
    return GridArray(lstRings, 2);
}
ShapePath Square(double fFrom, double fTo)
{
    return {{fFrom, fFrom}, {fTo, fFrom}, {fTo, fTo}, {fFrom, fTo}, {fFrom, fFrom}};
}
const stDisplayScale SCALE{QSize(480, 338), 25, 1.6};

// Worked out by hand. 10 to 30 mm are pixels 41 to 73. A kernel of 3 takes a pixel off every side and leaves the first
// corner 1.41 pixels away, 0.88 mm; one of 4 would leave it 2.83 away. The square of 3 pixels is the first below 2 mm.
TEST(Pocket, ASquareShrinksByWholePixelsUntilItIsNarrowerThanTheTool)
{
    const std::vector<ShapePath> lstRings = MakePocketRings(Square(10, 30), SCALE, 2.0);
    ASSERT_EQ(lstRings.size(), 15u);
    for (int n = 0; n < 15; ++n)
        EXPECT_EQ(RingArray({lstRings[size_t(n)]}), RingArray({Square((17 + n) / 1.6, (47 - n) / 1.6)})) << n;
}

// 17 pixels across: rings of 15, 13 and so on to 3, the first below 2 mm.
TEST(Pocket, TheShorterSideEndsIt)
{
    EXPECT_EQ(MakePocketRings({{10, 10}, {20, 10}, {20, 60}, {10, 60}, {10, 10}}, SCALE, 2.0).size(), 7u);
    EXPECT_EQ(MakePocketRings({{10, 10}, {60, 10}, {60, 20}, {10, 20}, {10, 10}}, SCALE, 2.0).size(), 7u);
    // At 2 pixels a mm: rings of 39 to 3 pixels, and 3 are not below 1.5 mm, so that one of 1 pixel follows.
    EXPECT_EQ(MakePocketRings(Square(10, 30), {QSize(480, 338), 25, 2.0}, 1.5).size(), 20u);
}

// The middle of the lower side is as near to one corner of the ring as to the other: the first found counts.
TEST(Pocket, OfTwoVerticesEquallyNearTheLowerIndexIsTaken)
{
    const ShapePath outline{{20, 10}, {30, 10}, {30, 30}, {10, 30}, {10, 10}, {20, 10}};
    EXPECT_EQ(RingArray({MakePocketRings(outline, SCALE, 2.0).at(0)}), RingArray({Square(17 / 1.6, 47 / 1.6)}));
}

TEST(Pocket, EachRingStartsWhereTheRingBeforeItDoes)
{
    const ShapePath outline{{40, 40}, {10, 40}, {10, 10}, {40, 10}, {40, 40}};
    const std::vector<ShapePath> lstRings = MakePocketRings(outline, SCALE, 6.0);
    ASSERT_GT(lstRings.size(), 2u);
    double fCorner = 40;
    for (const ShapePath& ring : lstRings) {
        ASSERT_EQ(ring.size(), 5u);
        EXPECT_LT(ring[0].x, fCorner);
        EXPECT_EQ(ring[0].x, ring[0].y);
        EXPECT_LT(ring[1].x, ring[0].x) << "and goes the same way round";
        EXPECT_EQ(ring[1].y, ring[0].y);
        fCorner = ring[0].x;
    }
    const stFloatPoint& first = lstRings[0][0];
    EXPECT_LE(std::hypot(40 - first.x, 40 - first.y), 3.0) << "within half a tool of the outline's corner";
    EXPECT_GT(std::hypot(40 - first.x, 40 - first.y), 3.0 - 2 * 1.42 / 1.6) << "and a pixel more would be too far";
}

TEST(Pocket, TheFirstRingMayBeExactlyHalfAToolAway)
{
    // A pixel a mm; the first point is in the middle of a side. A kernel of 5 moves the side by 2 mm, one of 6 by 3.
    const ShapePath outline{{50, 10}, {90, 10}, {90, 90}, {10, 90}, {10, 10}, {50, 10}};
    const ShapePath ring = MakePocketRings(outline, {QSize(480, 338), 25, 1.0}, 4.0).at(0);
    for (const stFloatPoint& point : ring) EXPECT_TRUE(point.x == 12 || point.x == 88) << point.x;
}

TEST(Pocket, WhereTheToolDoesNotFitThereIsNoRing)
{
    EXPECT_TRUE(MakePocketRings({}, SCALE, 2.0).empty());
    EXPECT_TRUE(MakePocketRings(Square(10, 10.5), SCALE, 2.0).empty()) << "gone at the first erosion";
    EXPECT_TRUE(MakePocketRings(Square(10, 20), SCALE, 100.0).empty()) << "gone before half a tool is reached";
    EXPECT_TRUE(MakePocketRings({{10, 10}, {90, 10}, {90, 10.3}, {10, 10}}, SCALE, 2.0).empty()) << "a sliver";
}

TEST(Pocket, AnOutlineBeyondThePictureEnds)
{
    EXPECT_TRUE(MakePocketRings(Square(1000, 1100), SCALE, 2.0).empty()) << "outside";
    EXPECT_TRUE(MakePocketRings(Square(-1000, 1000), SCALE, 2.0).empty()) << "around it all";
    EXPECT_TRUE(MakePocketRings(Square(-1e300, 1e300), SCALE, 2.0).empty());
    EXPECT_TRUE(MakePocketRings(Square(10, 30), {QSize(0, 0), 25, 1.6}, 2.0).empty());
    // Half inside: the picture's edge counts as inside, the rest shrinks away from the outline's other sides.
    const std::vector<ShapePath> lstRings = MakePocketRings(Square(-100, 60), SCALE, 2.0);
    ASSERT_FALSE(lstRings.empty());
    for (const ShapePath& ring : lstRings)
        for (const stFloatPoint& point : ring) {
            EXPECT_GE(point.x, -25 / 1.6);
            EXPECT_LT(point.x, 60);
        }
}
}   // namespace
