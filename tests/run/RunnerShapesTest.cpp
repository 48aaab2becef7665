#include "run/Call.h"

#include <QJsonArray>

#include <cmath>

// Work areas as jobs of vantor-run.

namespace {
const QByteArray AREA =
    "<Project><WorkArea><Length>30</Length><Width>20</Width></WorkArea><Shape><ShapeName>S</ShapeName>"
    "<Hole>0</Hole><Depth>-2</Depth><Count>3</Count><Vertex_0>1,1</Vertex_0><Vertex_1>8,4</Vertex_1>"
    "<Vertex_2>3,9</Vertex_2></Shape></Project>";

class ExampleArea : public RunnerTest, public testing::WithParamInterface<const char*>
{
};
TEST_P(ExampleArea, IsCutAndRunAsGCodeOnTheSameWay)
{
    const QStringList set{"--set", "m_fEndMillDia=3", "--quiet"};
    const QStringList job = QStringList{Example(GetParam()), "--job", "fZStep=0.6"} + set;
    const stResult cut = Call(job + QStringList{"--summary", "cut.json"});
    EXPECT_EQ(cut.iExit, 0) << cut.strErr;
    EXPECT_EQ(Call(job + QStringList{"--to-gcode", "area.ngc"}).iExit, 0);
    const stResult run = Call(QStringList{"area.ngc", "--summary", "run.json"} + set);
    EXPECT_EQ(run.iExit, 0) << run.strErr;
    EXPECT_TRUE((cut.strErr + run.strErr).isEmpty()) << cut.strErr << run.strErr;

    const QJsonObject by = Summary("cut.json"), with = Summary("run.json");
    EXPECT_TRUE(by["job"].toString().contains(QLatin1String(" shapes, "))) << by["job"].toString();
    const auto FeedOf = [](const QJsonObject& summary) { return summary["path_mm"].toObject()["feed"].toDouble(); };
    EXPECT_GT(FeedOf(by), 1000.0);
    EXPECT_NEAR(FeedOf(by), FeedOf(with), 1e-3 * FeedOf(by));
    for (const char* szAxis : {"X", "Y", "Z"}) {
        const auto Near = [&](const QJsonValue& a, const QJsonValue& b) {
            EXPECT_NEAR(a.toDouble(), b.toDouble(), 0.01) << szAxis;
        };
        const QJsonArray low = by["envelope_mm"].toObject()[QLatin1String(szAxis)].toArray();
        const QJsonArray other = with["envelope_mm"].toObject()[QLatin1String(szAxis)].toArray();
        Near(low[0], other[0]);
        Near(low[1], other[1]);
        Near(by["end_mm"][QLatin1String(szAxis)], with["end_mm"][QLatin1String(szAxis)]);
        EXPECT_EQ(by["carriage_pulses"][QLatin1String(szAxis)].toInteger(),
                  std::llround(by["end_mm"][QLatin1String(szAxis)].toDouble() * 1000.0));
    }
}
INSTANTIATE_TEST_SUITE_P(All, ExampleArea, testing::Values("nameplate.xml", "ellipses.xml"));

TEST_F(RunnerTest, WorkAreasAreCheckedAndTheirFieldsSet)
{
    Write("area.XML", AREA);
    EXPECT_EQ(Call({"area.XML", "--check"}).strOut, QStringLiteral("area.XML: 1 shapes, 3 points\n"));
    EXPECT_EQ(Call({"area.XML", "--job", "fZStep=1.5", "--to-gcode", "out.ngc"}).iExit, 0);
    EXPECT_TRUE(Read("out.ngc").contains("Z-1.5000\nX8.0000 Y4.0000\nX3.0000 Y9.0000\nZ-2.0000\nX8.0000"));

    for (const auto& [szCall, szWhy] :
         std::vector<std::pair<const char*, const char*>>{{"area.XML --job fDepth=1", "NAME one of fZStep"},
                                                          {"area.XML --job fZStep", "NAME one of fZStep"},
                                                          {"area.XML --job fZStep=0", "not a number above 0"},
                                                          {"area.XML --job fZStep=nan", "not a number above 0"},
                                                          {"area.XML --to-gcode area.XML", "would be overwritten"},
                                                          {"area.XML --to-gcode nowhere/out.ngc", "nowhere/out.ngc"},
                                                          {"area.XML --to-gcode out.ngc --check", "exclude each other"},
                                                          {"area.XML --start-line 2", "has no lines"},
                                                          {"missing.xml", "missing.xml: No such file"}}) {
        const stResult result = Call(Words(szCall));
        EXPECT_EQ(result.iExit, 2) << szCall;
        EXPECT_TRUE(result.strErr.contains(QLatin1String(szWhy))) << szCall << ": " << result.strErr;
    }
    QByteArray empty = AREA;
    Write("empty.xml", empty.replace("<Count>3", "<Count>0"));
    const stResult skipped = Call({"empty.xml"});
    EXPECT_EQ(skipped.iExit, 1) << "nothing of it can be cut";
    EXPECT_EQ(skipped.strOut, QStringLiteral("empty.xml: S is skipped: it has no points\n"));
    Write("rubbish.xml", "G1 X10\n");
    const stResult rubbish = Call({"rubbish.xml"});
    EXPECT_EQ(rubbish.iExit, 1);
    EXPECT_EQ(rubbish.strOut, QStringLiteral("rubbish.xml: holds no shapes\n"));
    EXPECT_EQ(Call({"rubbish.xml", "--to-gcode", "none.ngc"}).iExit, 1);
    EXPECT_FALSE(QFile::exists(Path("none.ngc")));
}

TEST_F(RunnerTest, AWorkAreaIsCutBelowTheHomeSensorsHeight)
{
    Write("area.xml", AREA);
    const stResult result = Call(QStringList{"area.xml", "--homing", "--quiet", "--summary", "summary.json"} +
                                 Words("--set m_fAxisPosDirLimit[0]=40 --set m_fAxisPosDirLimit[1]=40 --set "
                                       "m_fAxisNegDirLimit[2]=-30 --set m_fAxisWorkZero[0]=5 --set "
                                       "m_fAxisWorkZero[1]=6 --set m_fAxisWorkZero[2]=-20 --set m_fZSafePos=-3"));
    EXPECT_EQ(result.iExit, 0) << result.strErr;
    const QJsonObject summary = Summary();
    EXPECT_EQ(summary["end_mm"]["Z"].toDouble(), 17.0);
    EXPECT_EQ(summary["envelope_mm"]["Z"][0].toDouble(), -2.0);
    EXPECT_EQ(summary["carriage_pulses"]["X"].toInteger(), 6000) << "from the machine's zero, back at the first point";
}
}   // namespace
