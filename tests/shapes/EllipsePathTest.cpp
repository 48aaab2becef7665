#include "shapes/EllipsePath.h"

#include "config/AppConfig.h"
#include "support/CleanMachine.h"

#include <cmath>

// Paths of ellipses beyond the reference cases: corners of the arithmetic, arcs, rings, steps.

namespace {
class EllipsePath : public CCleanMachine
{
protected:
    EllipsePath()
    {
        AppConfig::m_fEndMillDia = 2.0;
        m_Ellipse.stCenter = {};
        m_Ellipse.fMajorAxisDia = 20.0;
        m_Ellipse.fMinorAxisDia = 10.0;
        m_Ellipse.fXAxisStep = 1.0;
    }
    QString m_strWhy;
    const ShapePath& Path()
    {
        EXPECT_EQ(CreateEllipsePoints(m_Ellipse), QString());
        return m_Ellipse.lstPoints;
    }
    void ExpectPoint(const stFloatPoint& point, double x, double y) const
    {
        EXPECT_NEAR(point.x, x, 1e-9);
        EXPECT_NEAR(point.y, y, 1e-9);
    }
    stEllipse m_Ellipse;
};

TEST_F(EllipsePath, RunsAToolRadiusOutsideOrInsideAndCloses)
{
    for (const bool bHole : {false, true}) {
        m_Ellipse.bHole = bHole;
        const double a = bHole ? 9.0 : 11.0, b = bHole ? 4.0 : 6.0;
        const ShapePath& path = Path();
        ASSERT_EQ(path.size(), size_t(4 * a + 1));
        ExpectPoint(path.front(), a, 0.0);
        ExpectPoint(path.back(), a, 0.0);
        ExpectPoint(path[size_t(a)], 0.0, b);
        ExpectPoint(path[size_t(2 * a)], -a, 0.0);
        ExpectPoint(path[size_t(3 * a)], 0.0, -b);
    }
}

TEST_F(EllipsePath, HalvesAreCutToWholePositionUnits)
{
    AppConfig::m_fEndMillDia = 0.0003;   // half of it is one unit
    m_Ellipse.fMajorAxisDia = 20.0001;
    m_Ellipse.fMinorAxisDia = 10.0003;
    EXPECT_EQ(Path().front().x, 10.0001);
    EXPECT_EQ(Path()[11].y, 5.0002);
}

TEST_F(EllipsePath, ArcsAreCutOutBetweenTheirAngles)
{
    const ShapePath whole = Path();
    const auto Arc = [&](double fStart, double fEnd) {
        m_Ellipse.fArcStartAngle = fStart;
        m_Ellipse.fArcEndAngle = fEnd;
        return Path();
    };
    EXPECT_EQ(Arc(0, 360).size(), whole.size());
    // The system's pi lies above the real one: the point on the minor axis is still below its 90 degrees.
    ASSERT_EQ(Arc(0, 90).size(), 12u);
    ExpectPoint(Arc(0, 90).back(), 0.0, 6.0);
    ExpectPoint(Arc(90, 180).front(), -1.0, whole[12].y);
    ExpectPoint(Arc(180, 270).front(), -10.0, whole[23].y);
    // No point reaches the end: the last two go. The angle of the very last one is 0.
    ASSERT_EQ(Arc(200, 359.9).back().y, whole[42].y);
    EXPECT_EQ(Arc(0, 0).size(), whole.size() - 2) << "an end at the first point counts as none";

    m_Ellipse.fArcStartAngle = m_Ellipse.fArcEndAngle = 45.0;
    EXPECT_EQ(CreateEllipsePoints(m_Ellipse), QString(" has no points: no point of it lies in its arc"));
    m_Ellipse.fArcStartAngle = 400.0;   // from a file: no point is that far round
    m_Ellipse.fArcEndAngle = 500.0;
    EXPECT_EQ(Path().size(), whole.size() - 2);
    m_Ellipse.fArcStartAngle = 359.0;   // none is: from the first one on
    m_Ellipse.fArcEndAngle = 10.0;
    EXPECT_EQ(Path().size(), 1u);
}

TEST_F(EllipsePath, CornersOfTheArithmeticEndInPointsOrInAReason)
{
    m_Ellipse.fXAxisStep = 50.0;   // beyond a: a rhombus
    ASSERT_EQ(Path().size(), 5u);
    ExpectPoint(Path()[0], 11.0, 0.0);
    ExpectPoint(Path()[1], 0.0, 6.0);

    m_Ellipse.fXAxisStep = 1.0;
    m_Ellipse.bHole = true;
    m_Ellipse.fMinorAxisDia = 2.0;   // as wide as the tool: a line to and fro
    EXPECT_EQ(Path()[4].y, 0.0);
    m_Ellipse.fMajorAxisDia = 2.0;
    EXPECT_TRUE(CreateEllipsePoints(m_Ellipse).contains("as wide as the end-mill"));
    EXPECT_TRUE(m_Ellipse.lstPoints.empty());

    m_Ellipse.bHole = false;
    for (const double fStep : {0.0, -1.0, double(NAN), double(INFINITY)}) {
        m_Ellipse.fXAxisStep = fStep;
        EXPECT_TRUE(CreateEllipsePoints(m_Ellipse).contains("X step is not above zero")) << fStep;
    }
    for (const double fStep : {1e-300, 7e-7}) {
        m_Ellipse.fXAxisStep = fStep;
        EXPECT_TRUE(CreateEllipsePoints(m_Ellipse).contains("X step is too small")) << fStep;
    }
    m_Ellipse.fXAxisStep = 8.1e-6;
    EXPECT_LT(Path().size(), 1'000'001u);
}

TEST_F(EllipsePath, RingsOfAPocketStandHalfAToolApart)
{
    m_Ellipse.stCenter = {7.0, 8.0};
    m_Ellipse.fOrientation = 20.0;
    m_Ellipse.fXAxisStep = 0.3;
    m_Ellipse.fArcStartAngle = 10.0;
    m_Ellipse.fArcEndAngle = 200.0;
    const auto lstRings = MakeEllipseRings(m_Ellipse, m_strWhy);
    ASSERT_EQ(lstRings.size(), 4u);
    for (size_t n = 0; n < lstRings.size(); ++n) {
        const stEllipse& ring = *lstRings[n].pEllipse;
        EXPECT_DOUBLE_EQ(ring.fMajorAxisDia, 20.0 - 2.0 * double(n + 1));
        EXPECT_DOUBLE_EQ(ring.fMinorAxisDia, 10.0 - 2.0 * double(n + 1));
        EXPECT_TRUE(ring.bHole);
        const std::vector<double> fields{ring.stCenter.x, ring.stCenter.y,     ring.fOrientation,
                                         ring.fXAxisStep, ring.fArcStartAngle, ring.fArcEndAngle};
        EXPECT_EQ(fields, (std::vector{7.0, 8.0, 20.0, 0.3, 10.0, 200.0}));
    }
    m_Ellipse.fMinorAxisDia = 2.0;
    EXPECT_TRUE(MakeEllipseRings(m_Ellipse, m_strWhy).empty());
    m_Ellipse.fMinorAxisDia = 4.0;
    EXPECT_EQ(MakeEllipseRings(m_Ellipse, m_strWhy).size(), 1u) << "exactly a radius is left";
    AppConfig::m_fEndMillDia = 0.0;
    EXPECT_TRUE(MakeEllipseRings(m_Ellipse, m_strWhy).empty());
    EXPECT_EQ(m_strWhy, QString());

    AppConfig::m_fEndMillDia = 0.1;   // 2,000 rings of up to 20,000 points; rings that never grow smaller
    for (const double fDia : {200.0, 1e300}) {
        m_Ellipse.fMajorAxisDia = m_Ellipse.fMinorAxisDia = fDia;
        m_Ellipse.fXAxisStep = fDia / 10000.0;
        EXPECT_TRUE(MakeEllipseRings(m_Ellipse, m_strWhy).empty());
        EXPECT_TRUE(std::exchange(m_strWhy, QString()).contains("too many points"));
    }
}

TEST_F(EllipsePath, StepsSnapDownToWholePulses)
{
    for (const auto& [fPulse, fStep, fSnapped] : std::vector<std::array<double, 3>>{
             {0.1, 0.25, 0.2}, {0.1, 0.3, 0.3}, {0.1, 0.05, 0.1}, {0.1, 0.1, 0.1}, {0.001, 1.2345, 1.234}}) {
        AppConfig::m_fAxisMovPerPulse[X_AXIS] = fPulse;
        EXPECT_DOUBLE_EQ(SnapXStep(fStep), fSnapped);
    }
}
}   // namespace
