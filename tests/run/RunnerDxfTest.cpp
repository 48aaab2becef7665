#include "run/Call.h"

#include <QDir>
#include <QJsonArray>

// Drawings: converted, run, and written as programs.

namespace {
QJsonArray Envelope(const QJsonObject& summary, const char* szAxis)
{
    return summary["envelope_mm"].toObject()[QLatin1String(szAxis)].toArray();
}

TEST_F(RunnerTest, BracketIsCutRoundAllItsCornersAndItsProgramIsCutTheSame)
{
    const QStringList call{Example("bracket.dxf"), "--job", "fTotalDepth=2.5"};
    EXPECT_EQ(Call(call + Words("--quiet --summary drawing.json --moves drawing.csv")).iExit, 0);
    const QJsonObject summary = Summary("drawing.json");
    EXPECT_EQ(Envelope(summary, "X"), (QJsonArray{0, 80})) << "an arc the wrong way round would leave the sheet";
    EXPECT_EQ(Envelope(summary, "Y"), (QJsonArray{0, 50}));
    EXPECT_EQ(Envelope(summary, "Z"), (QJsonArray{-2.5, 5}));
    EXPECT_EQ(summary["messages"].toArray().size(), 0);

    EXPECT_EQ(Call(call + Words("--to-gcode bracket.ngc")).iExit, 0);
    EXPECT_EQ(Read("bracket.ngc").count("\nG1 Z-2.5000\n"), 4) << "outline, two holes, slot";
    EXPECT_EQ(Call(Words("bracket.ngc --quiet --summary program.json --moves program.csv")).iExit, 0);
    EXPECT_EQ(Read("program.csv"), Read("drawing.csv"));
}

TEST_F(RunnerTest, BadgeOfPolylinesRunsCleanAtOtherValues)
{
    const QStringList call{
        Example("badge.dxf"), "--quiet", "--summary", "summary.json", "--job",     "fStepDown=0.5", "--job",
        "fZSafe=2",           "--job",   "fFeed=900", "--job",        "fToolDia=3"};
    EXPECT_EQ(Call(call).iExit, 0);
    EXPECT_EQ(Envelope(Summary(), "Y"), (QJsonArray{0, 78}));
    EXPECT_EQ(Envelope(Summary(), "Z"), (QJsonArray{-1, 5})) << "the run itself begins at Z 5";
    EXPECT_EQ(Call(call + Words("--to-gcode badge.ngc")).iExit, 0);
    EXPECT_EQ(Read("badge.ngc").count("\nG0 Z2.0000\n"), 1 + 2 * 3 * 2);
    EXPECT_TRUE(Read("badge.ngc").contains("tool_dia=3.0000, stepdown=0.5000, totalDepth=1.0000, feed=900.0000"));
}

TEST_F(RunnerTest, WhatIsWrongWithADrawingIsTold)
{
    const QByteArray head = "0\nSECTION\n2\nENTITIES\n0\nLINE\n10\n";
    Write("bad.DXF", head + "5,x\n20\nfive\n");
    Write("empty.dxf", "0\nEOF\n");
    Write("line.dxf", head + "0\n20\n0\n11\n1\n21\n1\n");
    const std::pair<const char*, const char*> calls[] = {
        {"bad.DXF", "bad.DXF: line 10: \"five\" is not a number"},
        {"empty.dxf", "empty.dxf: No supported entities (LINE/LWPOLYLINE/ARC) found."},
        {"line.dxf --job fStepDown=0", "fStepDown=0: is not a number above 0"},
        {"line.dxf --job fZSafe=high", "fZSafe=high: is not a number"},
        {"line.dxf --job fTotalDepth=1e12", "line.dxf: Invalid numeric parameters."},
        {"line.dxf --to-gcode no/folder.ncc", "no/folder.ncc"}};
    for (const auto& [szCall, szTold] : calls) {
        const stResult result = Call(Words(szCall));
        EXPECT_EQ(result.iExit, 2) << szCall;
        EXPECT_TRUE(result.strErr.contains(QLatin1String(szTold))) << result.strErr;
    }
    EXPECT_EQ(QDir(m_Folder.path()).entryList(QDir::Files), (QStringList{"bad.DXF", "empty.dxf", "line.dxf"}));
    Write("far.dxf", head + "0\n20\n0\n11\n300000\n21\n1\n");
    const stResult far = Call(Words("far.dxf --quiet"));
    EXPECT_EQ(far.iExit, 1);
    EXPECT_TRUE(far.strErr.startsWith("far.dxf: program line 10: ")) << far.strErr;
}
}   // namespace
