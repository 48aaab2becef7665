#include "dxf/DxfReader.h"
#include "dxf/DxfToGCode.h"
#include "support/Files.h"
#include "support/FullDisk.h"
#include "support/LoggedScreen.h"

#include <QDir>
#include <QTemporaryDir>

#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>

namespace {
// A folder of its own as the current one; the error stream is read instead of shown.
class Dxf : public testing::Test
{
protected:
    Dxf() { QDir::setCurrent(m_Folder.path()); }
    ~Dxf() override
    {
        QDir::setCurrent(m_strBefore);
        std::cerr.rdbuf(m_pCerr);
    }
    QString Told() const { return QString::fromStdString(m_Told.str()); }

    const QString m_strBefore = QDir::currentPath();
    QTemporaryDir m_Folder;
    std::ostringstream m_Told;
    std::streambuf* const m_pCerr = std::cerr.rdbuf(m_Told.rdbuf());
};

std::vector<RawSeg> Parse(const std::string& strText)
{
    std::istringstream stream(strText);
    DXFReader reader(stream);
    return parse_entities(reader);
}
// Pairs parted by blanks, within an ENTITIES section.
std::vector<RawSeg> ParsePairs(const QString& strPairs, const QString& strEnd = "\n")
{
    QStringList lst{"0", "SECTION", "2", "ENTITIES"};
    lst += strPairs.split(' ', Qt::SkipEmptyParts);
    return Parse((lst.join(strEnd) + strEnd).toStdString());
}
QString Shown(const std::vector<RawSeg>& lstSegs)
{
    QString strShown;
    for (const RawSeg& seg : lstSegs)
        strShown += QString("%1(%2,%3 %4,%5%6) ")
                        .arg(seg.eKind == SEG_LINE ? "L"
                             : seg.bCcw            ? "CCW"
                                                   : "CW")
                        .arg(seg.ptStart.x)
                        .arg(seg.ptStart.y)
                        .arg(seg.ptEnd.x)
                        .arg(seg.ptEnd.y)
                        .arg(seg.eKind == SEG_LINE
                                 ? QString()
                                 : QString(" c %1,%2 r %3").arg(seg.ptCentre.x).arg(seg.ptCentre.y).arg(seg.fRadius));
    return strShown.trimmed();
}

// ---- Reader ---------------------------------------------------------------------------------------------------------

TEST(DxfReader, LinesEndEitherWayAndOnlyCodesMayBeginWithBlanks)
{
    const char* const szLine = "0 LINE 10 1 20 2 11 3 21 4";
    EXPECT_EQ(Shown(ParsePairs(szLine)), "L(1,2 3,4)");
    EXPECT_EQ(Shown(ParsePairs(szLine, "\r\n")), "L(1,2 3,4)");
    EXPECT_EQ(Shown(ParsePairs(szLine, "\n  ")), "") << "a keyword with a blank before it is none";
    EXPECT_EQ(Shown(Parse("  0\nSECTION\n  2\nENTITIES\n  0\nLINE\n 10\n 1\n 20\n2 \n 11\n3\n 21\n4\n")), "L(1,2 3,4)");
    EXPECT_EQ(Shown(ParsePairs(szLine, "\r\r\n")), "") << "one carriage return is taken off, not two";
    for (const char* sz : {"0\nSECTION \n2\nENTITIES\n", "0\nSECTION\n2\nENTITIES \n", "0\nSECTION\n2\nentities\n"})
        EXPECT_EQ(Shown(Parse(sz + std::string("0\nLINE\n10\n1\n20\n2\n11\n3\n21\n4\n"))), "") << sz;
}

TEST(DxfReader, GarbageCodesAreZeroAndAnOddLastLineIsLost)
{
    EXPECT_EQ(Shown(ParsePairs("x LINE 10 1 20 2 11 3 21 4 0")), "L(1,2 3,4)");
    EXPECT_EQ(Shown(ParsePairs("0 LINE 10 1 20 2 11 3 21")), "");
    EXPECT_EQ(Shown(Parse("0\nSECTION\n2\nENTITIES\n0\nLINE\n10\n1\n20\n2\n11\n3\n21\n4")), "L(1,2 3,4)");
}

TEST(DxfReader, OnlyEntitiesOfTheirSectionCount)
{
    const std::string strLine = "0\nLINE\n10\n1\n20\n2\n11\n3\n21\n4\n", strEnd = "0\nENDSEC\n";
    const auto Section = [](const char* szName) { return std::string("0\nSECTION\n2\n").append(szName).append("\n"); };
    const std::string strEntities = Section("ENTITIES") + strLine + strEnd, strBlocks = Section("BLOCKS") + strLine;
    EXPECT_EQ(Shown(Parse(strLine)), "");
    EXPECT_EQ(Shown(Parse(strBlocks + strEnd + strEntities + strBlocks)), "L(1,2 3,4)");
    EXPECT_EQ(Shown(Parse(strEntities + strEntities)), "L(1,2 3,4) L(1,2 3,4)") << "several sections are all read";
    EXPECT_EQ(Shown(Parse(strEntities + strLine)), "L(1,2 3,4)") << "behind the end";
    EXPECT_EQ(Shown(Parse(Section("ENTITIES") + strLine + strBlocks)), "L(1,2 3,4)") << "without an end";
    EXPECT_EQ(Shown(Parse("0\nSECTION\n3\nENTITIES\n" + strLine)), "");
    EXPECT_EQ(Shown(Parse(strEntities + "0\nSECTION\n")), "L(1,2 3,4)") << "cut off";
    for (const char* sz : {"", "\n", "0", "0\nSECTION", "0\nSECTION\n2"}) EXPECT_EQ(Shown(Parse(sz)), "") << sz;
}

TEST(DxfReader, EntitiesStandOneBehindTheOtherAndUnknownOnesArePassedOver)
{
    EXPECT_EQ(Shown(ParsePairs("0 line 10 1 20 2 11 3 21 4 0 SPLINE 10 x 0 LINE 8 0 10 1 20 2 30 z 11 3 21 4 31 z "
                               "0 LINE 10 5 20 6 11 7 21 8")),
              "L(1,2 3,4) L(5,6 7,8)");
    EXPECT_EQ(Shown(ParsePairs("0 LINE 10 1 20 2 11 3 0 LINE 10 5 20 6 11 7 21 8")), "L(5,6 7,8)") << "21 is missing";
    EXPECT_EQ(Shown(ParsePairs("0 LINE 10 1 10 9 20 2 11 3 21 4")), "L(9,2 3,4)") << "the last of a code counts";
    EXPECT_EQ(Shown(ParsePairs("0 LINE 10 1e2 20 -.5 11 0x10 21 4mm")), "L(100,-0.5 16,4)");
    for (const char* sz : {"inf", "nan", "-INF"})
        EXPECT_EQ(Shown(ParsePairs(QString("0 LINE 10 1 20 2 11 3 21 ") + sz)), "");
}

TEST(DxfReader, AnArcTurnsLeftOnlyIfItsEndAngleIsTheLarger)
{
    const auto Arc = [](const char* szAngles) { return ParsePairs(QString("0 ARC 10 5 20 7 40 2 ") + szAngles).at(0); };
    const RawSeg quarter = Arc("50 0 51 90");
    EXPECT_TRUE(quarter.bCcw);
    EXPECT_EQ(quarter.ptStart.x, 7);
    EXPECT_EQ(quarter.ptStart.y, 7);
    EXPECT_NEAR(quarter.ptEnd.x, 5, 1e-15);
    EXPECT_EQ(quarter.ptEnd.y, 9);
    EXPECT_EQ(Shown({quarter}).section(" c ", 1), "5,7 r 2)");
    for (const char* sz : {"50 270 51 0", "50 270 51 45", "50 90 51 90"}) EXPECT_FALSE(Arc(sz).bCcw) << sz;
    for (const char* sz : {"50 350 51 370", "50 -90 51 0"}) EXPECT_TRUE(Arc(sz).bCcw) << sz;
    for (const char* sz : {"10 5 20 7 40 2 50 0", "10 5 20 7 40 2 51 0", "10 5 20 7 50 0 51 9", "10 5 40 2 50 0 51 9",
                           "20 7 40 2 50 0 51 9"})
        EXPECT_TRUE(ParsePairs(QString("0 ARC ") + sz).empty()) << sz;
}

TEST(DxfReader, PolylinesAreStraightAndClosedByTheirFlag)
{
    const auto Polyline = [](const char* sz) { return Shown(ParsePairs(QString("0 LWPOLYLINE ") + sz)); };
    EXPECT_EQ(Polyline("90 9 70 1 10 0 20 0 42 1 10 4 20 0 10 4 20 3"), "L(0,0 4,0) L(4,0 4,3) L(4,3 0,0)");
    EXPECT_EQ(Polyline("70 128 10 0 20 0 10 4 20 0 10 4 20 3"), "L(0,0 4,0) L(4,0 4,3)");
    EXPECT_EQ(Polyline("70 1 10 0 20 0 10 4 20 0 70 2"), "L(0,0 4,0)") << "the last flags count, wherever they stand";
    EXPECT_EQ(Polyline("20 1 10 2 20 3 10 4"), "L(2,1 4,3)") << "y before x";
    EXPECT_EQ(Polyline("10 9 10 2 20 1 20 8 20 3 10 4"), "L(2,1 4,3)") << "a repeated one replaces the first";
    EXPECT_EQ(Polyline("70 1 10 1 20 1"), "");
    EXPECT_EQ(Polyline("70 1 10 1 20 1 10 1 20 1 10 5"), "L(1,1 1,1) L(1,1 1,1)") << "no length is no reason to drop";
    EXPECT_EQ(Polyline("10 inf 20 1 10 nan 20 1"), "L(inf,1 nan,1)");
}

TEST(DxfReader, ANumberThatCannotBeReadIsThrownWithItsLine)
{
    const auto What = [](const char* szPairs) -> std::string {
        try {
            ParsePairs(szPairs);
        } catch (const std::invalid_argument& error) {
            return std::string("invalid ") + error.what();
        } catch (const std::out_of_range& error) {
            return std::string("range ") + error.what();
        }
        return "none";
    };
    EXPECT_EQ(What("0 LINE 10 1 20 x2"), "invalid line 10: \"x2\" is not a number");
    EXPECT_EQ(What("0 ARC 40 1e999"), "range line 8: \"1e999\" is out of range");
    EXPECT_EQ(What("0 LWPOLYLINE 10 1 70 closed"), "invalid line 10: \"closed\" is not a number");
    EXPECT_EQ(What("0 LWPOLYLINE 70 9999999999"), "range line 8: \"9999999999\" is out of range");
    EXPECT_EQ(What("0 LINE 30 x 0 CIRCLE 10 x 0 LWPOLYLINE 42 x 90 x"), "none") << "codes that are not used";
}

TEST(DxfReader, AnotherFormatOf50MiBEndsEmpty)
{
    EXPECT_TRUE(Parse(std::string(50u << 20, 'x')).empty());
    std::string strLines;
    while (strLines.size() < 50u << 20) strLines += "%PDF a picture of something\r\n0\n";
    EXPECT_TRUE(Parse(strLines).empty());
}

// ---- The program ----------------------------------------------------------------------------------------------------

std::string Drawing(const std::string& strEntities)
{
    return "0\nSECTION\n2\nENTITIES\n" + strEntities + "0\nENDSEC\n0\nEOF\n";
}
std::string LineText(double x1, double y1, double x2, double y2)
{
    return QString("0\nLINE\n10\n%1\n20\n%2\n11\n%3\n21\n%4\n").arg(x1).arg(y1).arg(x2).arg(y2).toStdString();
}
QString MovesOf(const stDXF2GCode& settings, const std::string& strEntities)
{
    std::ofstream(settings.strDxfFile) << Drawing(strEntities);
    EXPECT_EQ(CreateGcodeFromDxf(settings), 0);
    const QString strText = ReadAll(QString::fromStdString(DxfOutputName(settings.strDxfFile)));
    return strText.section("\n F600.0000\n", 1).replace('\n', '|');
}

// Full turns: the one that begins level with its centre is run, the other one stands.
TEST_F(Dxf, ArcsThatWillNotBeWhatIsDrawnAreTold)
{
    CLoggedScreen screen;
    const std::string strArc = "0\nARC\n40\n5\n20\n5\n10\n";
    (void)MovesOf({.strDxfFile = "a.dxf", .fTotalDepth = 2},
                  strArc + "5\n50\n0\n51\n360\n" + strArc + "25\n50\n45\n51\n405\n");
    EXPECT_EQ(screen.m_lstLog.join('|'),
              "1 ARC on line 18 of the drawing, program line 15: the arc is not cut when its G-code is run");
    EXPECT_TRUE(ReadAll("a..ncc").split('\n').value(14).startsWith("G3 X"));
}

TEST_F(Dxf, AnArcBeginsWhereTheChainStandsNotWhereItWasDrawn)
{
    // The line ends beside the arc, so that the centre is as much further away.
    std::ostringstream out;
    Segment line, arc;
    line.ptEnd = {9.99, 0};
    arc.eKind = SEG_ARC;
    arc.ptStart = {10, 0};
    arc.ptCentre = {20, 0};
    arc.ptEnd = {30, 0};
    emit_paths(out, {{{line, arc}, false}}, 1, 1, 600, 5, 1, 2);
    EXPECT_NE(out.str().find("G2 X29.0000 Y-2.0000 I10.0100 J0.0000\n"), std::string::npos) << out.str();
}

TEST_F(Dxf, TheOutputKeepsTheDotOfTheEnding)
{
    const std::pair<const char*, const char*> lst[] = {
        {"a.b.dxf", "a.b..ncc"}, {"plain", ".ncc"}, {"/x.y/z", "/x..ncc"}};
    for (const auto& [szDrawing, szOutput] : lst) EXPECT_EQ(DxfOutputName(szDrawing), szOutput);
}

TEST_F(Dxf, WhatIsRefusedSaysWhyAndLeavesNothing)
{
    const auto Converts = [&](stDXF2GCode settings) {
        m_Told.str("");
        return CreateGcodeFromDxf(std::move(settings));
    };
    WriteAll("a.dxf", QByteArray::fromStdString(Drawing(LineText(0, 0, 1, 1))));
    const double fNaN = std::nan(""), fInf = std::numeric_limits<double>::infinity();
    using Field = double stDXF2GCode::*;
    const std::pair<Field, double> lst[] = {
        {&stDXF2GCode::fToolDia, 0},       {&stDXF2GCode::fStepDown, 0},      {&stDXF2GCode::fStepDown, fNaN},
        {&stDXF2GCode::fTotalDepth, -1},   {&stDXF2GCode::fFeed, 0},          {&stDXF2GCode::fFeed, -600},
        {&stDXF2GCode::fStepDown, 1e-300}, {&stDXF2GCode::fTotalDepth, fInf}, {&stDXF2GCode::fTotalDepth, 1e10}};
    for (const auto& [pField, fValue] : lst) {
        stDXF2GCode settings{.strDxfFile = "a.dxf"};
        settings.*pField = fValue;
        EXPECT_EQ(Converts(settings), 1) << fValue;
        EXPECT_EQ(Told(), "Invalid numeric parameters.\n");
    }
    EXPECT_EQ(Converts({.strDxfFile = "missing.dxf"}), 1);
    EXPECT_EQ(Told(), "Cannot open input DXF: missing.dxf\n");
    EXPECT_EQ(Converts({.strDxfFile = m_Folder.path().toStdString()}), 1) << "a folder";
    QDir().mkdir("b..ncc");
    QFile::copy("a.dxf", "b.dxf");
    (void)Told();
    EXPECT_EQ(Converts({.strDxfFile = "b.dxf"}), 1);
    EXPECT_EQ(Told(), "Cannot open output file: b..ncc\n");
    EXPECT_EQ(Converts({.strDxfFile = "a.dxf", .fStepDown = 1e-8}), 1);
    EXPECT_EQ(Told(), "Too many passes for this drawing.\n");
    EXPECT_EQ(QDir().entryList(QDir::Files | QDir::Hidden), (QStringList{"a.dxf", "b.dxf"}));

    EXPECT_EQ(Converts({.strDxfFile = "a.dxf", .fZSafe = -2}), 0) << "the safe height is not looked at";
}

TEST_F(Dxf, AFullDiskLeavesTheOldProgramOrNone)
{
    std::string strEntities;
    for (int n = 0; n < 3000; ++n) strEntities += LineText(n, 0, n, 1);
    WriteAll("a.dxf", QByteArray::fromStdString(Drawing(strEntities)));
    WriteAll("a..ncc", "old");
    {
        const CFullDisk full(40'000);
        EXPECT_EQ(CreateGcodeFromDxf({.strDxfFile = "a.dxf"}), 1);
    }
    EXPECT_EQ(Told(), "Cannot write output file: a..ncc\n");
    EXPECT_EQ(ReadAll("a..ncc"), "old");
    EXPECT_EQ(QDir().entryList(QDir::Files | QDir::Hidden), (QStringList{"a..ncc", "a.dxf"}));
    EXPECT_EQ(CreateGcodeFromDxf({.strDxfFile = "a.dxf"}), 0);
    EXPECT_TRUE(ReadAll("a..ncc").endsWith("G0 Z5.0000\nM30\n"));
}
}   // namespace
