#include "preview/ToolPathPicture.h"

#include "common/Operation.h"
#include "support/Application.h"

#include <gtest/gtest.h>

// The picture at start: 200 by 250 by 10 mm, side trunc(sqrt(200^2 + 250^2) + 10 + 50) = 380, middle at 190.
// cos and sin of 0.765 are 0.72138 and 0.69254, so that the corners (-100, -125), (-100, 125), (100, -125), (100, 125)
// lie at 190 - 162, 190 + 17; 190 + 18, 190 - 155; 190 - 18, 190 + 155; 190 + 162, 190 - 17.
namespace {
constexpr QPoint S0(28, 207), S1(208, 35), S2(172, 345), S3(352, 173), CENTER(190, 190);
constexpr int BOTTOM_LEFT = 6;

struct CPicture : CToolPathPicture
{
    CPicture() { NeedApplication(); }   // for the letters of the axes
};

QColor At(CToolPathPicture& picture, QPoint at)
{
    return picture.Image().pixelColor(at);
}
QColor Gray(int iLevel)
{
    return QColor(iLevel, iLevel, iLevel);
}

stFloatPoint Pos(double x, double y, double z)
{
    stFloatPoint pos;
    pos.x = x;
    pos.y = y;
    pos.z = z;
    return pos;
}

struct stBegin
{
    int iOperation, iHomeRef;
    QPoint begin, origin;   // last point of the empty picture, and where the tool at 0, 0, 0 is drawn
};
class PictureReference : public testing::TestWithParam<stBegin>
{
};
TEST_P(PictureReference, RulesWhereAProgramBeginsAndWhereItsZeroLies)
{
    CPicture picture;
    picture.Clear(OP_NONE, BOTTOM_LEFT);
    picture.Clear(GetParam().iOperation, GetParam().iHomeRef);
    EXPECT_EQ(picture.LastPoint(), GetParam().begin);
    picture.Draw({}, GetParam().iOperation, GetParam().iHomeRef);
    EXPECT_EQ(picture.LastPoint(), GetParam().origin);
}
INSTANTIATE_TEST_SUITE_P(All, PictureReference,
                         testing::Values(stBegin{OP_GCODE, 0, S0, S1}, stBegin{OP_GCODE, 2, S1, S3},
                                         stBegin{OP_GCODE, 4, S2, S2}, stBegin{OP_GCODE, 6, S3, S0},
                                         stBegin{OP_GCODE, 8, CENTER, CENTER}, stBegin{OP_GCODE, 3, S3, S0},
                                         stBegin{OP_SHAPES, 0, S3, S0}));

// Around the middle, so that the box is out of the way. 10 mm along X: 7.2 right, 6.9 down, both truncated.
TEST(ToolPathPicture, DrawsTheWayInTheBrightnessOfItsDepth)
{
    struct stCase
    {
        double fZ;
        QColor way;
    };
    for (const stCase& test :
         {stCase{0.0, Gray(255)}, stCase{9e-5, Gray(255)}, stCase{1e-4, Qt::yellow}, stCase{-0.5, Gray(243)},
          stCase{-10.0, Gray(30)}, stCase{-10.9, Gray(10)}, stCase{-500.0, Gray(10)}}) {
        CPicture picture;
        picture.Clear(OP_GCODE, 8);
        picture.Draw(Pos(0.0, 0.0, test.fZ), OP_GCODE, 8);
        picture.Draw(Pos(10.9, 0.0, test.fZ), OP_GCODE, 8);
        const int iDown = static_cast<int>(6.0 * test.fZ);
        EXPECT_EQ(picture.LastPoint(), CENTER + QPoint(7, 6 - iDown)) << test.fZ;
        picture.Draw(Pos(60.0, 0.0, test.fZ), OP_GCODE, 8);
        if (std::abs(iDown) < 100) {
            EXPECT_EQ(At(picture, CENTER + QPoint(20, 19 - iDown)), test.way) << test.fZ;
        }
    }
}

// The tool's icon covers the path above it for a tick, and must leave it whole. X and Y together run straight to the
// right (1.44 pixels a mm), Y against X straight up (1.38 pixels a mm).
TEST(ToolPathPicture, LeavesNothingOfTheToolAndNoGapInThePath)
{
    CPicture picture;
    picture.Clear(OP_GCODE, 8);
    for (int n = 0; n <= 40; ++n) picture.Draw(Pos(-n, n, 0.0), OP_GCODE, 8);
    const QPoint top = picture.LastPoint();
    EXPECT_EQ(top, CENTER - QPoint(0, 55));
    EXPECT_EQ(At(picture, top), QColor(255, 0, 0));
    EXPECT_EQ(At(picture, top + QPoint(0, -15)), QColor(255, 0, 0));
    for (int n = 0; n <= 40; ++n) picture.Draw(Pos(-40 + n, 40 + n, 0.0), OP_GCODE, 8);
    for (int y = top.y(); y <= CENTER.y(); ++y) EXPECT_EQ(At(picture, {CENTER.x(), y}), Gray(255)) << y;
    for (int x = top.x(); x < top.x() + 40; ++x) EXPECT_EQ(At(picture, {x, top.y()}), Gray(255)) << x;
    int iRed = 0;
    for (int y = 0; y < 380; ++y)
        for (int x = 0; x < 240; ++x) iRed += At(picture, {x, y}) == QColor(255, 0, 0);
    EXPECT_EQ(iRed, 0);
}

TEST(ToolPathPicture, TakesPositionsFarOutside)
{
    CPicture picture;
    picture.Clear(OP_GCODE, 6);
    for (const double f : {1e300, -1e300, 214748.0}) picture.Draw(Pos(f, f, f), OP_GCODE, 6);
    picture.Draw(Pos(10.0, 10.0, -1.0), OP_GCODE, 6);
    EXPECT_TRUE(picture.Image().rect().contains(picture.LastPoint()));
}
}   // namespace
