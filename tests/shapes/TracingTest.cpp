#include "cases/Cases.h"
#include "config/AppConfig.h"
#include "shapes/ContourTour.h"
#include "shapes/PictureTrace.h"
#include "shapes/TextTrace.h"
#include "support/Application.h"
#include "support/CleanMachine.h"

#include <QImage>
#include <QJsonDocument>
#include <QPainter>

#include <limits>
#include <opencv2/imgproc.hpp>
#include <random>

namespace {
QJsonArray PathArray(const ShapePath& path)
{
    return PointsArray(path, 2);
}
struct stExtent
{
    double fLeft = 1e9, fRight = -1e9, fLow = 1e9, fHigh = -1e9;
};
stExtent ExtentOf(const std::vector<ShapePath>& lstPaths)
{
    stExtent extent;
    for (const ShapePath& path : lstPaths)
        for (const stFloatPoint& point : path) {
            extent.fLeft = std::min(extent.fLeft, point.x);
            extent.fRight = std::max(extent.fRight, point.x);
            extent.fLow = std::min(extent.fLow, point.y);
            extent.fHigh = std::max(extent.fHigh, point.y);
        }
    return extent;
}
cv::Mat White(int iWidth, int iHeight)
{
    return cv::Mat(iHeight, iWidth, CV_8UC1, cv::Scalar(255));
}
stPictureToTrace Picture(const cv::Mat& img, quint32 uMin = 2)
{
    stPictureToTrace picture;
    picture.img = img;
    picture.uMinVertices = uMin;
    return picture;
}

// A contour of one point, so that a tour can be read by its points.
Contours Marks(int iCount)
{
    Contours contours;
    for (int n = 0; n < iCount; ++n) contours.push_back({cv::Point(n, 0)});
    return contours;
}
std::vector<int> Tour(const std::vector<cv::Point>& centres, size_t uFirst, int iContours)
{
    std::vector<int> lst;
    for (const Contour& contour : OrderContours(Marks(iContours), centres, uFirst)) lst.push_back(contour[0].x);
    return lst;
}

TEST(ContourTour, GoesToTheNearestRemainingOneEachTime)
{
    EXPECT_EQ(Tour({{50, 0}, {0, 0}, {10, 0}, {70, 0}, {-5, 0}}, 1, 5), (std::vector{1, 4, 2, 0, 3}));
    EXPECT_EQ(Tour({{0, 0}, {3, 4}, {4, 3}, {0, -5}}, 0, 4), (std::vector{0, 1, 2, 3})) << "ties: the lower index";
    EXPECT_EQ(Tour({{0, 0}, {0, 9}, {6, 6}}, 0, 3), (std::vector{0, 2, 1})) << "8.5 is nearer than 9";
    EXPECT_EQ(Tour({{0, 0}, {16777217, 0}, {16777216, 0}}, 0, 3), (std::vector{0, 1, 2})) << "a tie in 32-bit floats";
}

// The plain form looks at all that are left.
TEST(ContourTour, EqualsThePlainFormOnManyTies)
{
    std::mt19937 random(7);
    for (const int iRange : {3, 40, 2000, 1 << 28})
        for (int n = 0; n < 30; ++n) {
            std::vector<cv::Point> centres(120);
            std::uniform_int_distribution<int> any(-iRange, iRange);
            for (cv::Point& centre : centres) centre = {any(random), any(random)};
            std::vector<int> expected{5}, left;
            for (int i = 0; i < 120; ++i)
                if (i != 5) left.push_back(i);
            while (!left.empty()) {
                const cv::Point from = centres[size_t(expected.back())];
                const auto Distance = [&](int i) {
                    const double fX = double(centres[size_t(i)].x) - from.x, fY = double(centres[size_t(i)].y) - from.y;
                    return float(std::sqrt(fX * fX + fY * fY));
                };
                const auto best =
                    std::min_element(left.begin(), left.end(), [&](int a, int b) { return Distance(a) < Distance(b); });
                expected.push_back(*best);
                left.erase(best);
            }
            ASSERT_EQ(Tour(centres, 5, 120), expected) << iRange;
        }
}

TEST(ContourTour, OneContourComesTwiceAndNoneNotAtAll)
{
    EXPECT_EQ(Tour({{5, 5}}, 0, 1), (std::vector{0, 0}));
    EXPECT_EQ(Tour({}, 0, 1), (std::vector{0, 0}));
    EXPECT_EQ(Tour({}, 0, 0), std::vector<int>{});
}

TEST(ContourTour, EndsWithTheLastCentreAndTheRestFollowsInItsOrder)
{
    EXPECT_EQ(Tour({{0, 0}, {90, 0}, {20, 0}}, 0, 6), (std::vector{0, 2, 1, 3, 4, 5}));
    EXPECT_EQ(Tour({}, 0, 3), (std::vector{0, 1, 2}));
    constexpr int iMin = std::numeric_limits<int>::min(), iMax = std::numeric_limits<int>::max();
    EXPECT_EQ(Tour({{iMin, iMin}, {iMax, iMax}, {0, 0}}, 0, 3), (std::vector{0, 2, 1})) << "centres at the ends";
}

class TracedPicture : public CCleanMachine
{
};
TEST_F(TracedPicture, IsStretchedToItsSizeAndStandsOnItsLowestRow)
{
    cv::Mat img = White(200, 100);
    cv::rectangle(img, cv::Rect(20, 0, 41, 31), cv::Scalar(0), cv::FILLED);
    stPictureToTrace picture = Picture(img);
    picture.stImgOffset = {1000, 2000};
    const std::vector<ShapePath> lstPaths = TracePicture(picture);
    ASSERT_EQ(lstPaths.size(), 2u) << "a contour alone comes twice";
    EXPECT_EQ(PathArray(lstPaths[0]),
              (QJsonArray{QJsonArray{1010, 2100}, QJsonArray{1010, 2070}, QJsonArray{1030, 2070},
                          QJsonArray{1030, 2100}, QJsonArray{1010, 2100}}));
    EXPECT_EQ(PathArray(lstPaths[1]), PathArray(lstPaths[0]));
}

// The points against OpenCV's own; the order worked out by hand: leftmost first, then the nearest, holes too.
TEST_F(TracedPicture, ContoursComeWholeFromTheLeftmostToTheNearest)
{
    cv::Mat img = White(300, 300);
    const cv::Point lstCentres[] = {{250, 60}, {40, 150}, {160, 250}, {120, 160}};
    for (const cv::Point& centre : lstCentres) cv::circle(img, centre, 20, cv::Scalar(0), cv::FILLED);
    cv::circle(img, lstCentres[2], 8, cv::Scalar(255), cv::FILLED);
    stPictureToTrace picture = Picture(img, 4);
    picture.fShapeLength = picture.fShapeWidth = 600;

    cv::Mat inverted = 255 - img;
    Contours contours;
    cv::findContours(inverted, contours, cv::RETR_LIST, cv::CHAIN_APPROX_SIMPLE);
    const std::vector<ShapePath> lstPaths = TracePicture(picture);
    ASSERT_EQ(lstPaths.size(), 5u);
    const std::pair<cv::Point, int> expected[] = {
        {lstCentres[1], 41}, {lstCentres[3], 41}, {lstCentres[2], 0}, {lstCentres[2], 0}, {lstCentres[0], 41}};
    for (size_t n = 0; n < 5; ++n) {
        const stExtent extent = ExtentOf({lstPaths[n]});
        EXPECT_EQ((extent.fLeft + extent.fRight) / 4, expected[n].first.x) << n;
        EXPECT_EQ(300 - (extent.fLow + extent.fHigh) / 4, expected[n].first.y) << n;
        int iSame = 0;
        for (const Contour& contour : contours) {
            ShapePath path;
            for (const cv::Point& p : contour) path.push_back({2.0 * p.x, 600.0 - 2.0 * p.y});
            path.push_back(path[0]);
            iSame += PathArray(path) == PathArray(lstPaths[n]);
        }
        EXPECT_EQ(iSame, 1) << n;
    }
}

TEST_F(TracedPicture, ContoursOfFewPointsLeadOnlyAsTheFirst)
{
    // Contours come from the bottom up. A square of four points in the middle is contour 0, and leads unless a round
    // one lies left of it; another square further left never leads.
    cv::Mat img = White(200, 200);
    cv::rectangle(img, cv::Rect(100, 180, 10, 10), cv::Scalar(0), cv::FILLED);
    cv::rectangle(img, cv::Rect(2, 100, 10, 10), cv::Scalar(0), cv::FILLED);
    cv::circle(img, {150, 50}, 10, cv::Scalar(0), cv::FILLED);
    stPictureToTrace picture = Picture(img);
    picture.fShapeLength = picture.fShapeWidth = 400;
    EXPECT_EQ(TracePicture(picture)[0][0].x, 200);
    cv::circle(img, {90, 50}, 10, cv::Scalar(0), cv::FILLED);
    EXPECT_EQ(ExtentOf({TracePicture(picture)[0]}).fLeft, 160);
    // The reference of the short one is its leftmost point: a round one between that and its middle does not lead.
    cv::circle(img, {90, 50}, 10, cv::Scalar(255), cv::FILLED);
    cv::circle(img, {103, 50}, 10, cv::Scalar(0), cv::FILLED);
    EXPECT_EQ(TracePicture(picture)[0][0].x, 200);
}

TEST_F(TracedPicture, VertexCountsAreStrictLimits)
{
    cv::Mat img = White(100, 100);
    cv::rectangle(img, cv::Rect(20, 20, 11, 11), cv::Scalar(0), cv::FILLED);
    const std::tuple<quint32, quint32, size_t> lst[] = {{3, 5, 2}, {4, 5, 0}, {3, 4, 0}, {4, 4, 0}, {100, 10000, 0}};
    for (const auto& [uMin, uMax, uFound] : lst) {
        stPictureToTrace picture = Picture(img, uMin);
        picture.uMaxVertices = uMax;
        EXPECT_EQ(TracePicture(picture).size(), uFound) << uMin << ' ' << uMax;
    }
}

TEST_F(TracedPicture, TheThresholdItselfIsDark)
{
    cv::Mat img = White(60, 40);
    cv::rectangle(img, cv::Rect(10, 10, 8, 8), cv::Scalar(0), cv::FILLED);
    cv::rectangle(img, cv::Rect(30, 10, 8, 8), cv::Scalar(90), cv::FILLED);
    const std::pair<quint16, size_t> lst[] = {{0, 2}, {89, 2}, {90, 2}, {255, 2}};
    std::vector<double> lstRight;
    for (const auto& [uThreshold, uFound] : lst) {
        stPictureToTrace picture = Picture(img);
        picture.fShapeLength = 600;
        picture.uThreshold = uThreshold;
        const std::vector<ShapePath> lstPaths = TracePicture(picture);
        EXPECT_EQ(lstPaths.size(), uFound) << uThreshold;
        lstRight.push_back(ExtentOf(lstPaths).fRight);
    }
    EXPECT_EQ(lstRight, (std::vector<double>{170, 170, 370, 590}));
}

TEST_F(TracedPicture, AVertexWhosePixelIsItsMillimetreIsLeftOut)
{
    // 100 by 100 at 1 mm a pixel: x is the pixel, y is it in row 50 alone, where a side of the square begins.
    cv::Mat img = White(100, 100);
    cv::rectangle(img, cv::Rect(20, 50, 31, 21), cv::Scalar(0), cv::FILLED);
    EXPECT_EQ(PathArray(TracePicture(Picture(img))[0]),
              (QJsonArray{QJsonArray{20, 30}, QJsonArray{50, 30}, QJsonArray{20, 30}}));
    // Row 70 is 30 mm, 40 off: a pulse of that is just enough.
    AppConfig::m_fAxisMovPerPulse[Y_AXIS] = std::nextafter(40.0, 0.0);
    EXPECT_EQ(TracePicture(Picture(img))[0].size(), 3u);
    AppConfig::m_fAxisMovPerPulse[Y_AXIS] = 40;
    EXPECT_TRUE(TracePicture(Picture(img))[0].empty());
    AppConfig::m_fAxisMovPerPulse[X_AXIS] = AppConfig::m_fAxisMovPerPulse[Y_AXIS] = 100;
    const std::vector<ShapePath> lstPaths = TracePicture(Picture(img));
    ASSERT_EQ(lstPaths.size(), 2u);
    EXPECT_TRUE(lstPaths[0].empty()) << "nothing is left to close";
}

TEST_F(TracedPicture, OddPicturesAreTakenOrRefused)
{
    EXPECT_TRUE(TracePicture(Picture({})).empty());
    EXPECT_TRUE(TracePicture(Picture(cv::Mat(5, 5, CV_8UC3, cv::Scalar(0, 0, 0)))).empty());
    EXPECT_TRUE(TracePicture(Picture(cv::Mat(5, 5, CV_16UC1, cv::Scalar(0)))).empty());
    const std::vector<ShapePath> lstPixel = TracePicture(Picture(cv::Mat::zeros(1, 1, CV_8UC1), 0));
    ASSERT_EQ(lstPixel.size(), 2u);
    EXPECT_EQ(PathArray(lstPixel[0]), (QJsonArray{QJsonArray{0, 100}, QJsonArray{0, 100}}));

    cv::Mat img = White(8000, 8000);
    cv::ellipse(img, {4000, 4000}, {3999, 2000}, 0, 0, 360, cv::Scalar(0), cv::FILLED);
    stPictureToTrace large = Picture(img);
    large.uMaxVertices = 1'000'000;
    const stExtent extent = ExtentOf(TracePicture(large));
    EXPECT_NEAR(extent.fRight - extent.fLeft, 100, 0.05);
    EXPECT_NEAR(extent.fHigh - extent.fLow, 50, 0.05);
}

// Text needs Qt's fonts, and those an application object.
class TracedText : public CCleanMachine
{
protected:
    TracedText() { NeedApplication(); }
    std::vector<ShapePath> Trace(const QString& strText)
    {
        m_Text.strText = strText;
        return TraceText(m_Text, m_Scale);
    }
    stTextToTrace m_Text = [] {
        stTextToTrace text;
        text.font = QFont("DejaVu Sans");
        return text;
    }();
    stDisplayScale m_Scale{QSize(480, 338), 25, 2.0};
};

TEST_F(TracedText, ALetterGivesItsOutlinesAndASingleOneComesTwice)
{
    const std::vector<ShapePath> lstO = Trace("O");
    ASSERT_EQ(lstO.size(), 2u);
    const stExtent a = ExtentOf({lstO[0]}), b = ExtentOf({lstO[1]});
    EXPECT_EQ(a.fLeft<b.fLeft, a.fRight> b.fRight) << "one inside the other";
    EXPECT_NE(a.fLeft, b.fLeft);

    const std::vector<ShapePath> lstI = Trace("I");
    ASSERT_EQ(lstI.size(), 2u);
    EXPECT_EQ(PathArray(lstI[0]), PathArray(lstI[1]));
    EXPECT_EQ(PathArray(lstI[0]).first(), PathArray(lstI[0]).last()) << "closed";
}

// The letters drawn here by themselves, and the contours of that picture in mm.
TEST_F(TracedText, ItsPointsAreThoseOfTheLettersContours)
{
    QImage image(480, 338, QImage::Format_Grayscale8);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.setPen(Qt::white);
    painter.setFont(QFont("DejaVu Sans", 60));
    painter.drawText(25, 313, "Gi8");
    painter.end();
    cv::Mat ink;
    cv::threshold(cv::Mat(338, 480, CV_8UC1, image.bits()), ink, 60, 255, cv::THRESH_BINARY);
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(ink, contours, cv::RETR_LIST, cv::CHAIN_APPROX_SIMPLE);
    QStringList expected, found;
    for (const auto& contour : contours) {
        ShapePath path;
        for (const cv::Point& pixel : contour) path.push_back({(pixel.x - 25) / 2.0, (338 - pixel.y - 25) / 2.0});
        path.push_back(path.front());
        expected += QString::fromUtf8(QJsonDocument(PathArray(path)).toJson(QJsonDocument::Compact));
    }
    for (const ShapePath& path : Trace("Gi8"))
        found += QString::fromUtf8(QJsonDocument(PathArray(path)).toJson(QJsonDocument::Compact));
    ASSERT_GT(expected.size(), 4);
    expected.sort();
    found.sort();
    EXPECT_EQ(found, expected);
}

TEST_F(TracedText, LinesStandAtThePitchOfTheSizeAndTheSpacing)
{
    for (const float fSpacing : {0.0f, 16.0f}) {
        m_Text.fLineSpacing = fSpacing;
        const stExtent one = ExtentOf(Trace("H")), two = ExtentOf(Trace("H\n")), both = ExtentOf(Trace("HHH\nH"));
        EXPECT_EQ((two.fLow - one.fLow) * m_Scale.fPixPerMM, 60 + fSpacing) << "an empty last line counts";
        EXPECT_EQ(both.fLow, one.fLow);
        EXPECT_EQ(both.fHigh, two.fHigh);
        EXPECT_GT(both.fRight, 2 * one.fRight) << "the first line is the upper one";
    }
}

TEST_F(TracedText, StandsAtTheLowerLeftCornerAndMovesWithItsPosition)
{
    const std::vector<ShapePath> lstAtZero = Trace("Hg");
    const stExtent letter = ExtentOf(Trace("H"));
    EXPECT_GT(letter.fLeft, 0);
    EXPECT_LT(letter.fLeft, 6) << "but for the letter's own bearing";
    EXPECT_NEAR(letter.fLow, 0.5, 0.5) << "the lowest pixel is above the base line";
    m_Text.stTextPos = {10, 20};
    const std::vector<ShapePath> lstMoved = Trace("Hg");
    ASSERT_EQ(lstMoved.size(), lstAtZero.size());
    for (size_t n = 0; n < lstMoved.size(); ++n)
        for (size_t p = 0; p < lstMoved[n].size(); ++p) {
            EXPECT_EQ(lstMoved[n][p].x, lstAtZero[n][p].x + 10);
            EXPECT_EQ(lstMoved[n][p].y, lstAtZero[n][p].y + 20);
        }
}

TEST_F(TracedText, ComesFromLeftToRight)
{
    double fBefore = 0;
    const std::vector<ShapePath> lstPaths = Trace("CSUZ");
    ASSERT_EQ(lstPaths.size(), 4u);
    for (const ShapePath& path : lstPaths) {
        EXPECT_GT(ExtentOf({path}).fLeft, fBefore);
        fBefore = ExtentOf({path}).fRight;
    }
}

TEST_F(TracedText, SizeBoldAndItalicChangeTheOutline)
{
    const auto Width = [&] {
        const stExtent extent = ExtentOf(Trace("l"));
        return extent.fRight - extent.fLeft;
    };
    const double fPlain = Width();
    m_Text.bBold = true;
    EXPECT_GT(Width(), fPlain);
    m_Text.bBold = false;
    m_Text.bItalic = true;
    EXPECT_GT(Width(), fPlain);
    m_Text.bItalic = false;
    m_Text.fTextSize = 120.9f;
    EXPECT_NEAR(Width(), 2 * fPlain, 1.0);
}

TEST_F(TracedText, WhatDrawsNothingGivesNothing)
{
    for (const char* sz : {"", " ", "\n\n", "\t"}) EXPECT_TRUE(Trace(sz).empty()) << sz;
    EXPECT_TRUE(Trace("O" + QString(10, '\n')).empty()) << "above the picture";
    EXPECT_TRUE(Trace(QString(60, ' ') + "O").empty()) << "beside the picture";
    EXPECT_TRUE(Trace("O" + QString(1'000'000, '\n')).empty());
    m_Text.fTextSize = 1.0f;
    EXPECT_TRUE(Trace(".").empty()) << "fainter than ink";
    m_Scale.size = {0, 0};
    EXPECT_TRUE(Trace("O").empty());
}

TEST_F(TracedText, LettersOfFourPointsAreAllKept)
{
    // Bars have no ellipse, so the centres are fewer than the contours, or there are none.
    EXPECT_EQ(Trace("lll").size(), 3u);
    EXPECT_EQ(Trace("lCl|S|").size(), 6u);
    m_Text.fTextSize = 20.0f;
    EXPECT_EQ(Trace("Hill: 1.5 x 3 = 4.5").size(), Trace("5.4 = 3 x 5.1 :lliH").size());
}

TEST_F(TracedText, APictureOfAnyWidthIsNotSkewed)
{
    const stExtent even = ExtentOf(Trace("H"));
    m_Scale.size = {479, 338};
    const stExtent odd = ExtentOf(Trace("H"));
    EXPECT_EQ(even.fLeft, odd.fLeft);
    EXPECT_EQ(even.fRight, odd.fRight);
}
}   // namespace
