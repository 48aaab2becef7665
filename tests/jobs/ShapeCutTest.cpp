#include "common/UnitConverter.h"
#include "gcode/GCodeStore.h"
#include "machine/MoveSpy.h"
#include "machine/WorkerFixture.h"
#include "shapes/EllipsePath.h"
#include "shapes/PolygonEdit.h"
#include "support/Files.h"
#include "support/FullDisk.h"
#include "support/LoggedScreen.h"

#include <cmath>
#include <random>

// What cutting and the G-code have in common, and what stops a cut.

namespace {
constexpr double PULSE = 0.001;   // mm

stEngShape Polygon(ShapePath path, double fDepth = -2.0)
{
    const stEngShape shape = stEngShape::NewPolygon();
    shape.pPolygon->lstVertices = std::move(path);
    shape.pPolygon->fDepth = fDepth;
    shape.pPolygon->strShapeName = QStringLiteral("Shape_1");
    return shape;
}
stEngShape Ellipse(double fMajor, double fMinor, double fTurn, double fStart, double fEnd)
{
    const stEngShape shape = stEngShape::NewEllipse();
    stEllipse& ellipse = *shape.pEllipse;
    ellipse.strShapeName = QStringLiteral("Ellipse_1");
    ellipse.fDepth = -1.5;
    ellipse.fMajorAxisDia = fMajor;
    ellipse.fMinorAxisDia = fMinor;
    ellipse.fOrientation = fTurn;
    ellipse.fXAxisStep = 1.0;
    ellipse.fArcStartAngle = fStart;
    ellipse.fArcEndAngle = fEnd;
    EXPECT_EQ(CreateEllipsePoints(ellipse), QString());
    return shape;
}

// A machine that cuts a job, or runs the program that is written of it.
class CArcSpy : public CMoveSpy
{
public:
    void OnWorkEnd(const stWorkCommand& command, bool bOk) override
    {
        CMoveSpy::OnWorkEnd(command, bOk);
        if (command.eKind == WORK_ARC) m_lstArcs.push_back(*command.pArc);
    }
    std::vector<stGCodeEllipseInfo> m_lstArcs;
};

class ShapeCut : public CMachineTest<CArcSpy>
{
protected:
    void Cut()
    {
        Begin(m_Start);
        m_App.m_eOperation = OP_SHAPES;
        m_App.m_pShapeCuttingInfo = &m_Info;
        m_App.CutShapes();
        m_App.Settle();
    }
    QString Write()
    {
        m_App.m_pShapeCuttingInfo = &m_Info;
        m_App.CreateGCodeFromShapes(m_Home.filePath("job.txt"));
        return QString::fromUtf8(ReadAll(m_Home.filePath("job.txt")));
    }
    // Of a machine of its own, which is what is given back.
    std::unique_ptr<CArcSpy> RunProgram()
    {
        Write();
        ClearProgram();
        CGCodeStore::LoadGCode(m_Home.filePath("job.txt"), nullptr);
        CGCodeStore::m_CompilationErrors.clear();
        CGCodeStore::CompileGCode(nullptr);
        for (const auto& [uLine, strText] : CGCodeStore::m_CompilationErrors)
            ADD_FAILURE() << "line " << uLine + 1 << ": " << strText;
        CAllAxisCtrl::StopAutoMode();
        CAllAxisCtrl::WaitForAutoModeEnd();
        auto pApp = std::make_unique<CArcSpy>();
        pApp->InitMachine();
        pApp->m_eOperation = OP_GCODE;
        pApp->m_pGCodeProgram = &CGCodeStore::m_lstOfGCodeCmds;
        CAllAxisCtrl::StartAutoMode(pApp.get());
        pApp->RunGCode();
        pApp->Settle();
        EXPECT_EQ(pApp->TakeErrors(), QStringList());
        return pApp;
    }
    // Where the axes stood, without standing still up there: the program lifts behind a shape and before the next one.
    static std::vector<stFloatPoint> Stops(const CArcSpy& app)
    {
        std::vector<stFloatPoint> stops;
        for (const auto& units : app.m_lstStops) {
            stFloatPoint at;
            for (int axis = 0; axis < 3; ++axis) AxisOf(at, axis) = double(units[size_t(axis)]) / DECIMAL_MULTIPLYER;
            const bool bAgain =
                !stops.empty() && stops.back().x == at.x && stops.back().y == at.y && stops.back().z == at.z;
            if (!bAgain || at.z <= 0.0) stops.push_back(at);
        }
        return stops;
    }
    QString Lines(const QString& strText, QChar cFirst) const
    {
        QStringList lines;
        for (const QString& strLine : strText.split('\n'))
            if (strLine.startsWith(cFirst)) lines += strLine;
        return lines.join(' ');
    }

    CLoggedScreen m_Screen;
    stFloatPoint m_Start;
    stShapeCuttingInfo m_Info;
};

const ShapePath SQUARE{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}};
const ShapePath CORNER{{1, 1}, {8, 4}, {3, 9}};
}   // namespace

// ---- The same points by both ways -----------------------------------------------------------------------------------

class RandomShapes : public ShapeCut, public testing::WithParamInterface<unsigned>
{
};
TEST_P(RandomShapes, AreCutAndRunOnTheSamePoints)
{
    std::mt19937 random(GetParam());
    const auto From = [&](double fLow, double fHigh) { return std::uniform_real_distribution(fLow, fHigh)(random); };
    m_Info.fZStep = From(0.3, 1.2);
    for (int n = 0; n < 5; ++n) {
        const double fMinor = From(5.0, 20.0);
        if (n % 2) {
            m_Info.lstShapes.push_back(
                Ellipse(fMinor + From(0.01, 9.0), fMinor, From(0, 360), From(0, 100), From(150, 360)));
            continue;
        }
        ShapePath path;
        for (int vertex = From(1, 9) > 5 ? 9 : 3; vertex > 0; --vertex) {
            path.push_back({From(-40, 40), From(-40, 40)});
            if (From(0, 1) > 0.7) path.push_back({path.back().x + From(0, 2 * PULSE), path.back().y});
        }
        if (From(0, 1) > 0.5) CloseShape(path);
        m_Info.lstShapes.push_back(Polygon(path, From(-2.5, 0.2)));
    }
    Cut();
    const auto cut = Stops(m_App);
    auto run = Stops(*RunProgram());
    ASSERT_EQ(run.size(), cut.size() + 1);   // the program lifts the tool itself
    EXPECT_EQ(run.back().z, 5.0);
    for (size_t n = 0; n < cut.size(); ++n)
        for (int axis = 0; axis < 3; ++axis)
            ASSERT_NEAR(AxisOf(cut[n], axis), AxisOf(run[n], axis), PULSE * 1.01) << "stop " << n << " axis " << axis;
    EXPECT_EQ(m_App.TakeErrors(), QStringList());
    EXPECT_EQ(m_Screen.m_lstLog, QStringList());
}
INSTANTIATE_TEST_SUITE_P(Seeds, RandomShapes, testing::Range(1u, 9u));

struct stCircle
{
    double fTurn, fStart, fEnd;
    const char* szWords;   // of the two passes
    const char* szNotice = "";
};
class Circles : public ShapeCut, public testing::WithParamInterface<stCircle>
{
};
TEST_P(Circles, RunAsArcsOfTheSameCentreEndsAndRadius)
{
    const stCircle& circle = GetParam();
    AppConfig::m_fEndMillDia = 2.0;
    m_Info.lstShapes = {Ellipse(20.0, 20.00001, circle.fTurn, circle.fStart, circle.fEnd)};
    const ShapePath& path = m_Info.lstShapes[0].Path();
    const auto pApp = RunProgram();
    ASSERT_EQ(pApp->m_lstArcs.size(), 2u);
    QString strWords;
    for (const stGCodeEllipseInfo& arc : pApp->m_lstArcs) {
        const bool bForward = arc.eDir == DIR_CCW;
        strWords += bForward ? "G03 " : "G02 ";
        EXPECT_NEAR(arc.stCenter.x, 50.0, 2 * PULSE);
        EXPECT_NEAR(arc.stCenter.y, 50.0, 2 * PULSE);
        EXPECT_NEAR(arc.fRadius, 11.0, 2 * PULSE);
        const stFloatPoint &start = bForward ? path.front() : path.back(), &end = bForward ? path.back() : path.front();
        EXPECT_NEAR(arc.stStart.x, start.x, PULSE);
        EXPECT_NEAR(arc.stStart.y, start.y, PULSE);
        EXPECT_NEAR(arc.stEnd.x, end.x, PULSE);
        EXPECT_NEAR(arc.stEnd.y, end.y, PULSE);
    }
    EXPECT_EQ(strWords.trimmed().toStdString(), circle.szWords);
    EXPECT_EQ(m_Screen.m_lstLog.join("|").toStdString(), circle.szNotice);
    double fHighest = 0.0, fLowest = 100.0;
    for (const stFloatPoint& stop : Stops(*pApp)) {
        if (stop.z < 0.0) fHighest = std::max(fHighest, stop.y);
        if (stop.z < 0.0) fLowest = std::min(fLowest, stop.y);
    }
    EXPECT_EQ(fHighest - fLowest > 1.0, !*circle.szNotice) << "the log must tell of a circle that stands";
}
INSTANTIATE_TEST_SUITE_P(All, Circles,
                         testing::Values(stCircle{0, 0, 360, "G03 G03"}, stCircle{0, 0, 180, "G03 G02"},
                                         stCircle{70, 20, 300, "G03 G02"},
                                         stCircle{180, 0, 360, "G03 G03",
                                                  "1 Ellipse_1, program line 20: the arc may not be cut when its "
                                                  "G-code is run"}));

TEST_F(ShapeCut, TurnedFullCircleIsWrittenAsItIsAndTheLogSaysThatItStands)
{
    m_Info.lstShapes = {Ellipse(20.0, 20.0, 40.0, 0, 360)};
    const auto pApp = RunProgram();
    ASSERT_EQ(m_Screen.m_lstLog.size(), 1);
    EXPECT_EQ(m_Screen.m_lstLog[0], "1 Ellipse_1, program line 20: the arc is not cut when its G-code is run");
    double fHighest = 0.0;
    for (const stFloatPoint& stop : Stops(*pApp)) fHighest = std::max(fHighest, stop.y);
    EXPECT_LT(fHighest, m_Info.lstShapes[0].Path().front().y + 2 * PULSE) << "it moves after all: the notice is wrong";

    // At X0 Y0 an end counts as not given, and the same words run a whole circle.
    m_Screen.m_lstLog.clear();
    const stFloatPoint first = m_Info.lstShapes[0].Path().front();
    m_Info.lstShapes[0].pEllipse->stCenter = {50.0 - first.x, 50.0 - first.y};
    CreateEllipsePoints(*m_Info.lstShapes[0].pEllipse);
    EXPECT_GT(RunProgram()->m_lstTargets.size(), 100u);
    EXPECT_EQ(m_Screen.m_lstLog, QStringList());

    // Closed by less than a pulse, and not by one.
    stEllipse& circle = *m_Info.lstShapes[0].pEllipse;
    circle.lstPoints = {{0, 0}, {PULSE, 0}};
    EXPECT_TRUE(Write().contains("G02"));
    circle.lstPoints.back().x = 0.9 * PULSE;
    EXPECT_FALSE(Write().contains("G02"));

    m_Screen.m_lstLog.clear();
    m_Info.lstShapes = {Ellipse(20.0, 20.0, 0, 0, 3)};   // one point: a word that ends where it starts
    m_Info.lstShapes[0].pEllipse->lstPoints.resize(1);
    (void)Write();
    EXPECT_TRUE(m_Screen.m_lstLog.join("|").contains("becomes a full circle"));

    m_Screen.m_lstLog.clear();
    m_Info.lstShapes = {Ellipse(20.0, 20.0, 0, 0, 180)};
    stEllipse& half = *m_Info.lstShapes[0].pEllipse;
    half.stCenter = {50.0 - half.lstPoints.front().x, 0.0};   // the way back ends at X0 Y0
    CreateEllipsePoints(half);
    EXPECT_TRUE(Write().split('\n').value(21).startsWith("G02 X0.0000 Y0.0000"));
    EXPECT_EQ(m_Screen.m_lstLog.join("|"),
              "1 Ellipse_1, program line 22: the arc becomes a full circle when its G-code is run");

    m_Screen.m_lstLog.clear();
    m_Info.lstShapes = {Ellipse(20.0, 20.0001, 40.0, 0, 360)};   // other position units: no circle
    EXPECT_FALSE(Write().contains("G03"));
    EXPECT_EQ(m_Screen.m_lstLog, QStringList());
}

// ---- Passes and points ----------------------------------------------------------------------------------------------

struct stDepth
{
    double fDepth, fStep;
    const char* szPasses;
};
class Depths : public ShapeCut, public testing::WithParamInterface<stDepth>
{
};
TEST_P(Depths, AreReachedInStepsAndTheLastOneExactly)
{
    m_Info.lstShapes = {Polygon(SQUARE, GetParam().fDepth)};
    m_Info.fZStep = GetParam().fStep;
    EXPECT_EQ(Lines(Write(), 'Z').toStdString(), GetParam().szPasses);
    Cut();
    EXPECT_EQ(m_App.Position().z, GetParam().fDepth);   // where the tool stays
}
INSTANTIATE_TEST_SUITE_P(All, Depths,
                         testing::Values(stDepth{-2.5, 1.0, "Z-1.0000 Z-2.0000 Z-2.5000"},
                                         stDepth{-2.0, 1.0, "Z-1.0000 Z-2.0000"}, stDepth{0.0, 1.0, "Z0.0000"},
                                         stDepth{1.5, 1.0, "Z1.5000"}, stDepth{-0.5, 1.0, "Z-0.5000"}));

TEST_F(ShapeCut, OpenPathsGoToAndFroAndPointsWithinAPulseOfTheirNeighbourAreLeftOut)
{
    const auto Places = [&](const ShapePath& path, double fDepth) {
        m_Info.lstShapes = {Polygon(path, fDepth)};
        return Lines(Write(), 'X').remove(".0000").toStdString();
    };
    EXPECT_EQ(Places(CORNER, -3), "X1 Y1 X8 Y4 X3 Y9 X8 Y4 X1 Y1 X8 Y4 X3 Y9");
    EXPECT_EQ(Places(SQUARE, -2), "X0 Y0 X10 Y0 X10 Y10 X0 Y10 X0 Y0 X10 Y0 X10 Y10 X0 Y10 X0 Y0");
    ShapePath almost = SQUARE;
    almost.back() = {PULSE, PULSE};   // one pulse off in both: closed
    EXPECT_EQ(Places(almost, -1), "X0 Y0 X10 Y0 X10 Y10 X0 Y10 X0.0010 Y0.0010");
    almost.back() = {0, 1.1 * PULSE};   // open in Y alone
    EXPECT_EQ(Places(almost, -2), "X0 Y0 X10 Y0 X10 Y10 X0 Y10 X0 Y0.0011 X0 Y10 X10 Y10 X10 Y0 X0 Y0");
    EXPECT_EQ(Places({{0, 0}, {5, 5}, {5, 5}, {5 + PULSE / 2, 5}, {9, 5}}, -1), "X0 Y0 X5 Y5 X9 Y5");
    // Y has pulses of its own.
    AppConfig::m_fAxisMovPerPulse[Y_AXIS] = 0.5;
    EXPECT_EQ(Places({{0, 0}, {0, 0.5}, {0, 1.01}}, -1), "X0 Y0 X0 Y1.0100");
    EXPECT_EQ(Places({{0, 0}, {0.5, 0}, {1, 0}}, -1), "X0 Y0 X0.5000 Y0 X1 Y0");
    EXPECT_EQ(Places({{4, 3}}, -2), "X4 Y3") << "one point: only plunges";
    EXPECT_EQ(m_Screen.m_lstLog, QStringList());
}

TEST_F(ShapeCut, WhatCannotBeCutIsSkippedAndTold)
{
    const double fNaN = std::nan("");
    m_Info.lstShapes = {Polygon({}),           Polygon({{0, 0}, {fNaN, 1}}), Polygon({{0, 0}, {1, INFINITY}}),
                        Polygon(SQUARE, fNaN), Polygon(SQUARE, -1e300),      Polygon(CORNER, -1.0)};
    for (const bool bCut : {true, false}) {
        m_Screen.m_lstLog.clear();
        bCut ? Cut() : void(Write());
        ASSERT_EQ(m_Screen.m_lstLog.size(), 5) << bCut;
        for (const char* szWhy : {"no points", "a point is", "its depth is", "too many points"})
            EXPECT_FALSE(m_Screen.m_lstLog.filter(szWhy).isEmpty()) << szWhy;
    }
    EXPECT_EQ(m_App.m_lstTargets.size(), 6u) << "the last shape alone: lift, travel, descend, plunge and two points";
    EXPECT_TRUE(Write().contains("(Number of Shapes:6.0000)"));

    for (const double fStep : {0.0, -1.0, fNaN, double(INFINITY)}) {
        m_Info.fZStep = fStep;
        m_Screen.m_lstLog.clear();
        EXPECT_FALSE(Write().contains("G00"));
        EXPECT_TRUE(m_Screen.m_lstLog.value(0).contains("Z Step")) << fStep;
    }
}

TEST_F(ShapeCut, AFileThatCannotBeOpenedIsNoNewsAndOneThatIsThereGoes)
{
    m_Info.lstShapes = {Polygon(SQUARE)};
    m_App.m_pShapeCuttingInfo = &m_Info;
    m_App.CreateGCodeFromShapes(m_Home.filePath("nowhere/job.txt"));
    EXPECT_EQ(m_Screen.m_lstLog, QStringList());
    WriteAll(m_Home.filePath("job.txt"), QByteArray(100'000, 'x'));
    {
        const CFullDisk disk(100);
        EXPECT_TRUE(Write().contains("xxx"));
        EXPECT_TRUE(m_Screen.m_lstLog.value(0).contains("job.txt was not written"));
    }
    EXPECT_FALSE(Write().contains("xxx"));
}

// ---- Heights and axes -----------------------------------------------------------------------------------------------

struct stHeight
{
    bool bHomeSensors;
    double fSafePos, fWorkZero, fHeight;
};
class Heights : public ShapeCut, public testing::WithParamInterface<stHeight>
{
};
TEST_P(Heights, OfTravelAreSafe)
{
    const stHeight& height = GetParam();
    AppConfig::m_bHomeSensorsUsed = height.bHomeSensors;
    AppConfig::m_fZSafePos = height.fSafePos;
    AppConfig::m_fAxisWorkZero[Z_AXIS] = height.fWorkZero;
    m_Info.lstShapes = {Polygon(CORNER), Polygon(SQUARE)};
    EXPECT_EQ(Write().count(QStringLiteral("G00 Z%1\n").arg(height.fHeight, 0, 'f', 4)), 4) << "lift and retract";
    Begin();
    m_App.SetMchHome();
    for (int axis = 0; axis < 3; ++axis) m_App.m_AxisCtrl[axis].m_lPosLimit = 9'000'000;
    for (int axis = 0; axis < 3; ++axis) m_App.m_AxisCtrl[axis].m_lNegLimit = -9'000'000;
    m_App.m_pShapeCuttingInfo = &m_Info;
    m_App.CutShapes();
    EXPECT_EQ(m_App.TakeErrors(), QStringList());
    ASSERT_GT(m_App.m_lstTargets.size(), 10u);
    EXPECT_NEAR(m_App.m_lstTargets[0].z, height.fHeight, 1e-12);
    EXPECT_NEAR(m_App.m_lstTargets[1].z, height.fHeight, PULSE) << "travels where the lift has ended";
    EXPECT_EQ(m_App.m_lstTargets[2].z, 0.0);
}
INSTANTIATE_TEST_SUITE_P(All, Heights,
                         testing::Values(stHeight{true, -3.0, -20.0, 17.0}, stHeight{true, 2.0, 0.5, 1.5},
                                         stHeight{false, 4.0, -20.0, 4.0}, stHeight{false, -5.0, 3.0, 5.0}));

TEST_F(ShapeCut, OtherAxesKeepTheirPlaces)
{
    AppConfig::m_iMchType = 5;
    m_App.m_iAxes = 5;
    m_Start = {1.0, 2.0, 3.0, 4.0, -5.0};
    m_Info.lstShapes = {Polygon(CORNER), Ellipse(12, 10, 0, 0, 360)};
    Cut();
    for (const QJsonValue& call : m_App.Calls())
        for (const char* szPoint : {"from", "to", "pos"}) {
            if (!call.toObject().contains(QLatin1String(szPoint))) continue;
            EXPECT_EQ(call[QLatin1String(szPoint)][A_AXIS].toDouble(), 4.0);
            EXPECT_EQ(call[QLatin1String(szPoint)][B_AXIS].toDouble(), -5.0);
        }
}

// ---- Pause and stop -------------------------------------------------------------------------------------------------

TEST_F(ShapeCut, PauseHoldsBetweenPointsAndTheCutGoesOnAtTheNextOne)
{
    m_Info.lstShapes = {Polygon(CORNER), Polygon(SQUARE)};
    Cut();
    const auto targets = m_App.m_lstTargets;
    const auto stops = m_App.m_lstStops;
    for (const size_t uAt : {size_t(0), size_t(5), targets.size() - 1}) {
        m_App.m_lstTargets.clear();
        m_App.m_lstStops.clear();
        CAllAxisCtrl::StopAutoMode();
        CAllAxisCtrl::WaitForAutoModeEnd();
        qint64 lPaused = 0;
        m_App.m_fnOnMove = [&](size_t uMoves) {
            if (uMoves != uAt) return;
            CAllAxisCtrl::WaitForMotion();
            m_App.m_bPause = true;
            lPaused = m_Time.Now();
            m_Time.AddEvent({lPaused + 3'500'000'000, [&] { m_App.m_bPause = false; }, {}});
        };
        qint64 lWentOn = 0;
        Cut();
        lWentOn = m_Time.Now();
        EXPECT_GE(lWentOn - lPaused, 4'000'000'000) << "asked once a second";
        ASSERT_EQ(m_App.m_lstTargets.size(), targets.size());
        EXPECT_EQ(m_App.m_lstStops, stops);
    }
}

// A feed that is changed meanwhile is that of the next point.
TEST_F(ShapeCut, NothingIsPlannedWhileAPauseHolds)
{
    m_Info.lstShapes = {Polygon(SQUARE, -1.0)};
    size_t uCalls = 0;
    m_App.m_fnBehindMove = [&](size_t uMoves) {
        if (uMoves != 6) return;
        m_App.m_bPause = true;
        uCalls = m_App.CallCount();
        m_Time.AddEvent({m_Time.Now() + 2'500'000'000,
                         [&] {
                             EXPECT_EQ(m_App.CallCount(), uCalls);
                             m_App.m_bPause = false;
                         },
                         {}});
    };
    Cut();
    EXPECT_GT(uCalls, 0u);
    EXPECT_EQ(m_App.m_lstTargets.size(), 8u);
}

TEST_F(ShapeCut, StopEndsTheJobAtOnceAlsoInAPause)
{
    m_Info.lstShapes = {Polygon(CORNER), Polygon(SQUARE)};
    for (const bool bPaused : {false, true})
        for (const size_t uAt : {0u, 1u, 2u, 3u, 5u, 8u}) {
            m_App.m_lstTargets.clear();
            CAllAxisCtrl::StopAutoMode();
            CAllAxisCtrl::WaitForAutoModeEnd();
            AppConfig::m_bEmergencyStopON = false;
            m_App.m_fnOnMove = [&](size_t uMoves) {
                if (uMoves != uAt) return;
                m_App.m_bPause = bPaused;
                if (bPaused)
                    m_Time.AddEvent({m_Time.Now() + 500'000'000, [] { AppConfig::m_bEmergencyStopON = true; }, {}});
                else
                    AppConfig::m_bEmergencyStopON = true;
            };
            Cut();
            EXPECT_EQ(m_App.m_lstTargets.size(), uAt + 1) << "no further move";
            m_App.m_bPause = false;
        }
    // Written while paused: as far as it got.
    AppConfig::m_bEmergencyStopON = true;
    m_App.m_bPause = true;
    EXPECT_TRUE(Write().endsWith("G01 Z0.0000\nZ-1.0000\n"));
}

class ShapeMachine : public CWorkerTest
{
};
TEST_F(ShapeMachine, CarriagesEndWhereEachShapeEndsAndTheToolIsLiftedOverTheLastOne)
{
    const std::vector<stEngShape> lstAll{Polygon(CORNER, -2.0), Polygon(SQUARE, -3.0), Ellipse(12, 10, 30, 20, 100),
                                         Polygon(CORNER, -2.5)};
    Build();
    stShapeCuttingInfo info;
    m_App.m_pShapeCuttingInfo = &info;
    for (const stEngShape& shape : lstAll) {
        info.lstShapes.push_back(shape);
        m_App.RunAs(OP_SHAPES);
        const bool bOdd = int(std::ceil(-shape.Common().fDepth)) % 2 == 1;   // passes: an open path goes to and fro
        const stFloatPoint& end = bOdd ? shape.Path().back() : shape.Path().front();
        EXPECT_NEAR(double(m_pMachine->Carriage(X_AXIS)) * PULSE, end.x, PULSE);
        EXPECT_NEAR(double(m_pMachine->Carriage(Y_AXIS)) * PULSE, end.y, PULSE);
        EXPECT_EQ(m_pMachine->Carriage(Z_AXIS), 5000);
        for (int axis = 0; axis < 3; ++axis)
            EXPECT_EQ(m_pMachine->Carriage(axis) * 10, m_App.m_AxisCtrl[axis].GetCurPosLong());
    }
    EXPECT_EQ(m_App.m_iWorkZeroMoves, 0) << "a cut begins where the tool is";
    EXPECT_EQ(m_App.TakeErrors(), QStringList());
}
