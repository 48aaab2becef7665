#include "run/Call.h"

#include <QImage>
#include <QJsonArray>

#include <cmath>
#include <csignal>
#include <sys/resource.h>

// What a run does: moves, edges, sensors, waits and stops, all of them seen from outside.

namespace {
double EndOf(const QJsonObject& summary, const char* szAxis)
{
    return summary["end_mm"].toObject()[QLatin1String(szAxis)].toDouble();
}
qint64 Carriage(const QJsonObject& summary, const char* szAxis)
{
    return summary["carriage_pulses"].toObject()[QLatin1String(szAxis)].toInteger();
}

TEST_F(RunnerTest, PlateRunsCleanAndLeavesAPictureAndASummary)
{
    const stResult result = Call({Example("plate.ngc"), "--picture", "plate.png", "--summary", "summary.json"});
    EXPECT_EQ(result.iExit, 0) << result.strErr;
    const QJsonObject summary = Summary();
    EXPECT_EQ(summary["result"].toString(), "done");
    EXPECT_EQ(summary["lines_run"].toInt(), summary["lines"].toInt());
    EXPECT_EQ(summary["tool_changes"].toInt(), 1);
    EXPECT_EQ(EndOf(summary, "X"), 0.0);
    EXPECT_EQ(EndOf(summary, "Z"), 20.0);
    for (const char* szAxis : {"X", "Y", "Z"})
        EXPECT_EQ(Carriage(summary, szAxis), std::llround(EndOf(summary, szAxis) * 1000.0)) << szAxis;
    EXPECT_EQ(summary["envelope_mm"].toObject()["X"].toArray(), (QJsonArray{-2.5, 122.5}));

    const QImage image(Path("plate.png"));
    ASSERT_FALSE(image.isNull());
    int iBlue = 0, iOrange = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, y);
            iBlue += color.blue() > color.red() + 60 ? 1 : 0;
            iOrange += color.red() > color.blue() + 60 ? 1 : 0;
        }
    EXPECT_GT(iBlue, 5'000);
    EXPECT_GT(iOrange, 2'000);
}

TEST_F(RunnerTest, ReliefEndsWhereItBegan)
{
    EXPECT_EQ(Call({Example("relief.ngc"), "--quiet", "--summary", "summary.json"}).iExit, 0);
    EXPECT_EQ(Carriage(Summary(), "Z"), 5000);
    EXPECT_EQ(Carriage(Summary(), "X"), 0);
}

// Two axes alone at the same time, arcs, direction changes and a homing: edges of all kinds of runs overlap.
TEST_F(RunnerTest, SameJobTwiceGivesTheSameEdges)
{
    Write("job.ngc", "G0 Z2\nG2 X4 Y0 I2 J0\nG1 X-1 Y3 Z1\nM30\n");
    const QStringList homing{"--homing",
                             "--set",
                             "m_fAxisPosDirLimit[0]=8",
                             "--set",
                             "m_fAxisNegDirLimit[1]=-9",
                             "--set",
                             "m_fAxisNegDirLimit[2]=-6",
                             "--set",
                             "m_fHomeRepeatOffset=1",
                             "--set",
                             "m_fAxisWorkZero[0]=3",
                             "--set",
                             "m_fAxisWorkZero[1]=-5",
                             "--set",
                             "m_fAxisWorkZero[2]=-5",
                             "--set",
                             "m_fZSafePos=-1",
                             "--quiet"};
    for (const char* szFile : {"one.csv", "two.csv"})
        EXPECT_EQ(Call(QStringList{"job.ngc", "--edges", szFile} + homing).iExit, 0);
    const QByteArray edges = Read("one.csv");
    EXPECT_GT(edges.count('\n'), 50'000);
    EXPECT_EQ(edges, Read("two.csv"));
    // By time; of one time the worker's direction pins come before the pulses of an axis that already runs.
    qint64 lBefore = 0;
    int iTies = 0;
    QString strPin;
    for (const Row& row : Csv("one.csv")) {
        const qint64 lTime = row.at("time_ns").toLongLong();
        ASSERT_LE(lBefore, lTime);
        if (lTime == lBefore)
            iTies += strPin == QLatin1String("direction") && row.at("axis") == QLatin1String("X") ? 1 : 0;
        lBefore = lTime;
        strPin = row.at("pin");
    }
    EXPECT_GE(iTies, 1);
}

TEST_F(RunnerTest, EdgesAndMovesAgreeWithTheCarriage)
{
    Write("job.ngc", "G0 Z1.5\nG1 X3 Y-2\nX2.5 Z1\nM30\n");
    EXPECT_EQ(Call({"job.ngc", "--edges", "e.csv", "--moves", "m.csv", "--set", "m_fZSafePos=0.5", "--quiet"}).iExit,
              0);
    const std::vector<Row> moves = Csv("m.csv");
    ASSERT_EQ(moves.size(), 5u);   // to the safe height and back, then the three lines
    std::map<QString, qint64> carriage, position;
    size_t uMove = 0;
    std::map<QString, qint64> pulses;
    const auto Compare = [&](const Row& move) {
        for (const char* szAxis : {"X", "Y", "Z"}) {
            const std::string strAxis = szAxis;
            const qint64 lCounts = move.at("acc_" + strAxis).toLongLong() + move.at("const_" + strAxis).toLongLong() +
                                   move.at("dec_" + strAxis).toLongLong();
            EXPECT_EQ(pulses[szAxis], lCounts) << "move " << move.at("number") << ' ' << szAxis;
            if (move.at("reached_" + strAxis).isEmpty()) continue;
            EXPECT_EQ(carriage[szAxis], std::llround(move.at("reached_" + strAxis).toDouble() * 1000.0));
        }
        pulses.clear();
    };
    for (const Row& edge : Csv("e.csv")) {
        const qint64 lTime = edge.at("time_ns").toLongLong();
        while (uMove < moves.size() && lTime >= moves[uMove].at("end_ns").toLongLong()) Compare(moves[uMove++]);
        if (edge.at("pin") != QLatin1String("pulse")) continue;
        ASSERT_LT(uMove, moves.size());
        const QString strAxis = edge.at("axis");
        const qint64 lCarriage = edge.at("carriage_pulses").toLongLong();
        const qint64 lStep = lCarriage - carriage[strAxis];
        if (edge.at("level") == QLatin1String("1")) {
            ++pulses[strAxis];
            ASSERT_EQ(std::abs(lStep), 1);
        } else {
            ASSERT_EQ(lStep, 0);
        }
        carriage[strAxis] = lCarriage;
        // Coordinated moves count at the rising edge, an axis by itself behind the whole pulse.
        const bool bBehind = moves[uMove].at("mode") == QLatin1String("single");
        const qint64 lDirection = moves[uMove].at("to_" + strAxis.toStdString()).toDouble() <
                                          moves[uMove].at("from_" + strAxis.toStdString()).toDouble()
                                      ? -1
                                      : 1;
        ASSERT_EQ(edge.at("position_units").toLongLong(), 10 * (lCarriage - (bBehind ? lDirection : 0)));
    }
    while (uMove < moves.size()) Compare(moves[uMove++]);
    EXPECT_EQ(moves[0].at("line"), QString());
    EXPECT_EQ(moves[2].at("line"), QStringLiteral("1"));
    EXPECT_EQ(moves[4].at("line"), QStringLiteral("3"));
    EXPECT_EQ(moves[4].at("to_X"), QStringLiteral("2.5000"));
    EXPECT_EQ(moves[4].at("from_Y"), QStringLiteral("-2.0000"));
}

TEST_F(RunnerTest, HomingFindsTheSensorsFastThenSlowly)
{
    const QStringList call{"--homing",
                           "--moves",
                           "m.csv",
                           "--summary",
                           "summary.json",
                           "--set",
                           "m_fAxisWorkZero[0]=12",
                           "--set",
                           "m_fAxisWorkZero[1]=-7.5",
                           "--set",
                           "m_fAxisJogFeed=20",
                           "--set",
                           "m_fAxisHomeFeed=2"};
    EXPECT_EQ(Call(call).iExit, 0);
    const std::vector<Row> moves = Csv("m.csv");
    ASSERT_EQ(moves.size(), 9u);   // Z alone, X and Y; all back off; all return
    const auto Seconds = [&](size_t n) {
        return (moves[n].at("end_ns").toDouble() - moves[n].at("start_ns").toDouble()) / 1e9;
    };
    EXPECT_LT(moves[0].at("end_ns").toLongLong(), moves[1].at("start_ns").toLongLong());
    EXPECT_LT(moves[2].at("start_ns").toLongLong(), moves[1].at("end_ns").toLongLong()) << "together";
    EXPECT_EQ(moves[5].at("reached_Z"), QStringLiteral("-5.0000"));
    EXPECT_NEAR(Seconds(0), 1.0, 0.05);   // 20 mm at 20 mm/s
    EXPECT_NEAR(Seconds(8), 2.5, 0.05);   // 5 mm at 2 mm/s
    EXPECT_EQ(EndOf(Summary(), "X"), -12.0);
    EXPECT_EQ(EndOf(Summary(), "Y"), 7.5);
    for (const char* szAxis : {"X", "Y", "Z"}) EXPECT_EQ(Carriage(Summary(), szAxis), 0) << szAxis;
    // A sensor that answers from the wrong place: each axis stops there.
    EXPECT_EQ(Call(QStringList{"--input", "gpio23=1@0", "--input", "gpio23=0@1.2"} + call).iExit, 0);
    EXPECT_EQ(Csv("m.csv")[1].at("mode"), QStringLiteral("single"));
}

TEST_F(RunnerTest, MeasuredProfileEqualsTheSurfaceAndTheJobFollowsIt)
{
    const QByteArray surface =
        "3\n3\n0,0,0\n10,0,0.5\n20,0,0.2\n20,10,-0.4\n10,10,0.1\n0,10,0.3\n0,20,-0.2\n10,20,0.6\n20,20,0.9\n";
    Write("surface.txt", surface);
    Write("job.ngc", "G0 Z5\nG1 X0 Y0 Z0\nG1 X20 Y0 Z0\nM30\n");
    const QStringList call{"--make-z-profile",
                           "profile.txt",
                           "--surface",
                           "surface.txt",
                           "--set",
                           "m_ZProfileInfo.fLength=20",
                           "--set",
                           "m_ZProfileInfo.fWidth=20",
                           "--moves",
                           "m.csv"};
    const auto Heights = [this] {
        QStringList heights;
        for (const Row& row : Csv("m.csv"))
            if (row.at("mode") == QLatin1String("auto")) heights += row.at("to_Z");
        return heights.join(QLatin1Char(' '));
    };
    // Steps of half a pitch, each to the height of the nearest node.
    const QString strFollowed = QStringLiteral("5.0000 0.0000 0.0000 0.5000 0.5000 0.2000");
    EXPECT_EQ(Call(QStringList{"job.ngc"} + call).iExit, 0);
    EXPECT_EQ(Read("profile.txt"), surface);
    EXPECT_EQ(Heights(), strFollowed);
    // On a machine with a work zero elsewhere too: the surface is told in work coordinates.
    EXPECT_EQ(Call(call + QStringList{"--homing", "--set", "m_fAxisWorkZero[0]=30", "--set", "m_fAxisWorkZero[1]=-120",
                                      "--set", "m_fAxisWorkZero[2]=-25", "--set", "m_fZSafePos=-2"})
                  .iExit,
              0);
    EXPECT_EQ(Read("profile.txt"), surface);
    EXPECT_EQ(Call({"job.ngc", "--z-profile", "profile.txt", "--moves", "m.csv", "--quiet"}).iExit, 0);
    EXPECT_EQ(Heights(), strFollowed);
    EXPECT_EQ(Call({"job.ngc", "--moves", "m.csv", "--quiet"}).iExit, 0);
    EXPECT_EQ(Heights(), QStringLiteral("5.0000 0.0000 0.0000"));
}

TEST_F(RunnerTest, ProbeSetsZeroOnTheSurface)
{
    Write("job.ngc", "G1 Z1\nM30\n");
    EXPECT_EQ(Call({"job.ngc", "--probe-z0", "--surface", "-3.5", "--summary", "summary.json", "--quiet"}).iExit, 0);
    EXPECT_EQ(Carriage(Summary(), "Z"), -2500);
    EXPECT_EQ(EndOf(Summary(), "Z"), 1.0);
    // The input itself, by hand, 0.5 s on the way down at 10 mm/s.
    EXPECT_EQ(Call({"--probe-z0", "--surface", "-90", "--input", "probe=1@0.5", "--summary", "summary.json"}).iExit, 0);
    EXPECT_NEAR(static_cast<double>(Carriage(Summary(), "Z")), -5000 + 3000, 110);
    const stResult missed =
        Call({"job.ngc", "--homing", "--set", "m_fAxisWorkZero[2]=-10", "--probe-z0", "--surface", "-90"});
    EXPECT_EQ(missed.iExit, 1);
    EXPECT_TRUE(missed.strErr.contains(QLatin1String("The probe has met nothing"))) << missed.strErr;
}

TEST_F(RunnerTest, ToolChangeIsAnsweredAfterItsTime)
{
    Write("job.ngc", "G1 X1\nM6\nG1 X2\nM30\n");
    const auto Time = [this](const QStringList& arguments) {
        const stResult result = Call(QStringList{"job.ngc", "--summary", "summary.json"} + arguments);
        EXPECT_EQ(result.iExit, 0) << result.strErr;
        EXPECT_TRUE(result.strErr.contains(QLatin1String("Change tool and click start")));
        EXPECT_EQ(EndOf(Summary(), "X"), 2.0);
        return Summary()["machine_time_s"].toDouble();
    };
    const double fAtOnce = Time({});
    EXPECT_NEAR(Time({"--tool-change-time", "7"}) - fAtOnce, 6.0, 1.0);   // the worker polls once a second
    Time({"--set", "m_bEnlManualToolChange=1"});
}

TEST_F(RunnerTest, InputsChangeAtTheirTime)
{
    Write("job.ngc", "M66 P1 L3 Q9000\nM30\n");
    const auto Wait = [this](const QStringList& arguments) {
        EXPECT_EQ(Call(QStringList{"job.ngc", "--summary", "summary.json", "--quiet"} + arguments).iExit, 1);
        return Summary()["machine_time_s"].toDouble();   // a parameter behind M66 ends the run: wanted
    };
    EXPECT_NEAR(Wait({"--input", "1=1@4"}), 4.0, 0.001);
    EXPECT_NEAR(Wait({"--input", "gpio19=1@5.25"}), 5.25, 0.001);
    EXPECT_GT(Wait({}), 9.0);
    Write("job.ngc", "M66 P1 L2\nM30\n");   // a falling edge
    EXPECT_NEAR(Wait({"--input", "1=1@2", "--input", "1=0@3.5"}), 3.5, 0.001);
    EXPECT_TRUE(Call({"job.ngc", "--input", "start=1@0.1", "--max-time", "1"})
                    .strErr.contains(QLatin1String("Machine in use")));
}

TEST_F(RunnerTest, AWaitThatNothingEndsIsToldAndEndsWithStatusThree)
{
    Write("job.ngc", "G1 X1\nM66 P1 L3\nM30\n");
    const stResult result = Call({"job.ngc", "--summary", "summary.json"});
    EXPECT_EQ(result.iExit, 3);
    EXPECT_TRUE(result.strErr.contains(QLatin1String("job.ngc:2: the program waits for what will never come")))
        << result.strErr;
    EXPECT_EQ(Summary()["result"].toString(), "time");
    EXPECT_EQ(Call({"job.ngc", "--max-time", "2000", "--quiet"}).iExit, 3);
}

TEST_F(RunnerTest, AFeedThatNoClockCanCountIsRefusedAndASlowOneEndsWithTheClock)
{
    Write("job.ngc", "G1 X1\nM30\n");
    const stResult refused = Call({"job.ngc", "--set", "m_fUserAxisFeed=1e-15"});
    EXPECT_EQ(refused.iExit, 1);
    EXPECT_TRUE(refused.strErr.contains(QLatin1String("a pulse would last longer"))) << refused.strErr;
    const stResult ended = Call({"job.ngc", "--set", "m_fUserAxisFeed=1e-12"});
    EXPECT_EQ(ended.iExit, 3);
    EXPECT_TRUE(ended.strErr.contains(QLatin1String("clock of the dry run has come to its end"))) << ended.strErr;
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)   // which take more than any limit
TEST_F(RunnerTest, TooLittleMemoryIsToldInASentence)
{
    Write("job.ngc", QByteArray("G1 X1 Y1\n").repeated(1'000'000));
    QProcess process;
    process.setChildProcessModifier([] {
        const rlimit limit{160u << 20, 160u << 20};
        setrlimit(RLIMIT_AS, &limit);
    });
    Start(process, {"job.ngc", "--check"});
    const stResult result = End(process);
    EXPECT_EQ(result.iExit, 2);
    EXPECT_TRUE(result.strErr.contains(QLatin1String("not enough memory"))) << result.strErr;
}
#endif

struct stStop
{
    QStringList arguments;
    int iExit;
};
// In the middle of a coordinated move, and in that of one axis by itself.
TEST_F(RunnerTest, StopEndsThePulsesAtItsTime)
{
    Write("job.ngc", "G1 X80 Y80\nM30\n");
    for (const char* szAt : {"1.5", "0.2"})
        for (const auto& [arguments, iExit] :
             {stStop{{"--input", QStringLiteral("estop=1@%1").arg(szAt)}, 1}, stStop{{"--max-time", szAt}, 3}}) {
            const stResult result =
                Call(QStringList{"job.ngc", "--edges", "e.csv", "--summary", "summary.json", "--quiet"} + arguments);
            EXPECT_EQ(result.iExit, iExit);
            EXPECT_FALSE(result.strErr.isEmpty());
            const double fLast = Csv("e.csv").back().at("time_ns").toDouble() / 1e9, fAt = QByteArray(szAt).toDouble();
            EXPECT_NEAR(fLast, fAt, 0.0003);
            std::map<QString, QString> levels;
            for (const Row& row : Csv("e.csv"))
                if (row.at("pin") == QLatin1String("pulse")) levels[row.at("axis")] = row.at("level");
            for (const auto& [strAxis, strLevel] : levels) EXPECT_EQ(strLevel, QStringLiteral("0")) << strAxis;
            for (const char* szAxis : {"X", "Y", "Z"})
                EXPECT_EQ(Carriage(Summary(), szAxis), std::llround(EndOf(Summary(), szAxis) * 1000.0)) << szAxis;
        }
}

TEST_F(RunnerTest, InterruptIsAnEmergencyStopFirst)
{
    Write("job.ngc", "M6\n" + QByteArray("G1 X200\nG1 X0\n").repeated(20'000));
    QProcess process;
    Start(process, {"job.ngc", "--summary", "summary.json"});
    const stResult result = Interrupt(process, "answered");
    EXPECT_EQ(result.iExit, 130);
    EXPECT_TRUE(result.strErr.contains(QLatin1String("interrupted"))) << result.strErr;
    EXPECT_EQ(Summary()["result"].toString(), "interrupted");
    EXPECT_EQ(Carriage(Summary(), "X"), std::llround(EndOf(Summary(), "X") * 1000.0));
}

TEST_F(RunnerTest, SimulationMovesNothingAndTakesAsLong)
{
    Write("job.ngc", "G1 X5\nM30\nG1 X0\n");   // M30 is skipped in simulation
    EXPECT_EQ(Call({"job.ngc", "--simulation", "--edges", "e.csv", "--summary", "summary.json", "--quiet"}).iExit, 0);
    EXPECT_TRUE(Csv("e.csv").empty());
    EXPECT_EQ(Summary()["lines_run"].toInt(), 3);
    EXPECT_EQ(Carriage(Summary(), "X"), 0);
    EXPECT_GT(Summary()["machine_time_s"].toDouble(), 1.0);
}

TEST_F(RunnerTest, StartsAtTheLineThatIsAskedFor)
{
    Write("job.ngc", "G1 X5\nG1 Y5\nG1 Z1\nM30\n");
    EXPECT_EQ(Call({"job.ngc", "--start-line", "2", "--summary", "summary.json", "--quiet"}).iExit, 0);
    EXPECT_EQ(Carriage(Summary(), "X"), 0);
    EXPECT_EQ(Carriage(Summary(), "Y"), 5000);
    EXPECT_EQ(Call({"job.ngc", "--start-line", "9", "--summary", "summary.json", "--quiet"}).iExit, 0);
    EXPECT_EQ(Summary()["lines_run"].toInt(), 0);
}

TEST_F(RunnerTest, FiveAxesAndSwappedDirectionsEndInTheRightPlace)
{
    Write("job.ngc", "G1 X1 Y-2 Z3 A4 B-5\nM30\n");
    EXPECT_EQ(Call({"job.ngc", "--set", "m_eVantorCtrl=1", "--set", "m_eAxisPosDir=1", "--moves", "m.csv", "--summary",
                    "summary.json", "--quiet"})
                  .iExit,
              0);
    EXPECT_EQ(Carriage(Summary(), "A"), 4000);
    EXPECT_EQ(Carriage(Summary(), "B"), -5000);
    EXPECT_EQ(Csv("m.csv").back().at("reached_B"), QStringLiteral("-5.0000"));
}

// The real threads, also under the thread sanitizer.
class ThreadsRealTime : public RunnerTest
{
};
TEST_F(ThreadsRealTime, SameMovesAndEdgesAsTheDryRun)
{
    Write("job.ngc", "G0 Z0.2\nG1 X0.6 Y0.3\nM6\nG1 X0 Y0\nM30\n");
    const auto Moves = [this](const QStringList& arguments) {
        const stResult result = Call(
            QStringList{"job.ngc", "--moves", "m.csv", "--edges", "e.csv", "--set", "m_fZSafePos=0.3"} + arguments);
        EXPECT_EQ(result.iExit, 0) << result.strErr;
        QStringList rows;
        for (Row row : Csv("m.csv")) {
            EXPECT_LT(row["start_ns"].toLongLong(), row["end_ns"].toLongLong());
            row.erase("start_ns");
            row.erase("end_ns");
            for (const auto& [strName, strValue] : row) rows += strValue;
        }
        std::map<QString, QStringList> edges;   // each axis in its own order
        for (const Row& row : Csv("e.csv"))
            edges[row.at("axis")] +=
                row.at("pin") + row.at("level") + row.at("position_units") + row.at("carriage_pulses");
        for (const auto& [strAxis, lstEdges] : edges) rows += lstEdges;
        return rows;
    };
    EXPECT_EQ(Moves({"--real-time"}), Moves({}));
}
TEST_F(ThreadsRealTime, StopsEndTheRun)
{
    Write("job.ngc", "G1 X90\nM30\n");
    EXPECT_EQ(Call({"job.ngc", "--real-time", "--max-time", "0.3", "--quiet"}).iExit, 3);
    EXPECT_EQ(Call({"job.ngc", "--real-time", "--input", "estop=1@0.3", "--quiet"}).iExit, 1);
    QProcess process;
    Write("job.ngc", "M6\nG1 X500\nM30\n");
    Start(process, {"job.ngc", "--real-time", "--set", "m_fZSafePos=0.1"});
    EXPECT_EQ(Interrupt(process, "answered").iExit, 130);
}
}   // namespace
