#include "run/Call.h"
#include "run/Relief.h"

#include <QImage>

#include <algorithm>
#include <cmath>

// Pictures as jobs of vantor-run, and the relief that the machine is left with.

namespace {
// Blocks of several levels in a white frame.
QImage Blocks()
{
    QImage image(40, 30, QImage::Format_Grayscale8);
    image.fill(255);
    const struct
    {
        QRect at;
        int iLevel;
    } blocks[] = {{{5, 4, 14, 9}, 0},  {{8, 6, 7, 6}, 140},   {{22, 4, 13, 20}, 60}, {{26, 10, 1, 9}, 200},
                  {{29, 10, 2, 9}, 0}, {{5, 17, 12, 8}, 100}, {{9, 19, 5, 5}, 30}};
    for (const auto& block : blocks)
        for (int row = block.at.top(); row <= block.at.bottom(); ++row)
            std::fill_n(image.scanLine(row) + block.at.left(), block.at.width(), uchar(block.iLevel));
    return image;
}

class RunnerPicture : public RunnerTest
{
protected:
    static constexpr double DEPTH = 3.0;
    // Depths of a picture's pixels, mm: stretched to its levels.
    static std::vector<std::vector<double>> DepthsOf(const QImage& image)
    {
        int iMin = 255, iMax = 0;
        std::vector<std::vector<double>> depths;
        for (int row = 0; row < image.height(); ++row)
            for (int col = 0; col < image.width(); ++col) {
                iMin = std::min(iMin, qGray(image.pixel(col, row)));
                iMax = std::max(iMax, qGray(image.pixel(col, row)));
            }
        for (int row = 0; row < image.height(); ++row) {
            depths.emplace_back();
            for (int col = 0; col < image.width(); ++col)
                depths.back().push_back((iMax - qGray(image.pixel(col, row))) * DEPTH / (iMax - iMin));
        }
        return depths;
    }
    // Of a relief: white is the surface, black the depth.
    std::vector<std::vector<double>> Relief(const char* szName) const
    {
        const QImage image(Path(szName));
        EXPECT_EQ(image.format(), QImage::Format_Grayscale16);
        std::vector<std::vector<double>> depths;
        for (int row = 0; row < image.height(); ++row) {
            const auto* pLine = reinterpret_cast<const quint16*>(image.constScanLine(row));
            depths.emplace_back();
            for (int col = 0; col < image.width(); ++col) depths.back().push_back(DEPTH * (1.0 - pLine[col] / 65535.0));
        }
        return depths;
    }
};

// A tool of 4 mm goes down from (5, 5, 0) to (15, 5, -5): under its disc each place has the height of the moment when
// the rim leaves it behind.
TEST(Relief, IsWhatADiscLeavesThatGoesDownASlope)
{
    CRelief relief(4.0);
    for (const stFloatPoint& point : {stFloatPoint{5.0, 5.0, 3.0}, {5.0, 5.0, 0.0}, {15.0, 5.0, -5.0}})
        relief.MoveTo(point);
    const QImage image = relief.Draw({.fLength = 20.0, .fWidth = 10.0, .fPixel = 1.0, .fDepth = 5.0});
    ASSERT_EQ(image.size(), QSize(20, 10));
    const auto Z = [&image](int iCol, int iRow) {
        return 5.0 * (reinterpret_cast<const quint16*>(image.constScanLine(9 - iRow))[iCol] / 65535.0 - 1.0);
    };
    EXPECT_NEAR(Z(10, 6), -0.5 * (10.5 + std::sqrt(4.0 - 1.5 * 1.5) - 5.0), 1e-4);
    EXPECT_NEAR(Z(10, 5), -0.5 * (10.5 + std::sqrt(4.0 - 0.5 * 0.5) - 5.0), 1e-4);
    EXPECT_EQ(Z(10, 7), 0.0);    // 2.5 mm beside the way
    EXPECT_EQ(Z(15, 5), -5.0);   // it stays under the disc to the end
    EXPECT_NEAR(Z(4, 5), -0.5 * (4.5 + std::sqrt(4.0 - 0.5 * 0.5) - 5.0), 1e-4);
    EXPECT_EQ(Z(2, 5), 0.0);

    const QImage whole = relief.Draw({});   // as large as what was cut, black where it is deepest
    EXPECT_EQ(whole.size(), QSize(140, 40));
    EXPECT_EQ(reinterpret_cast<const quint16*>(whole.constScanLine(20))[119], 0);
}

// A tool of three pixels, steps of one. In square steps nothing of the picture is cut away; where a tool's breadth
// around a pixel is of one depth, the relief has that depth.
TEST_F(RunnerPicture, ReliefIsThePictureWithinTheToolsLimits)
{
    ASSERT_TRUE(Blocks().save(Path("blocks.png")));
    const auto picture = DepthsOf(Blocks());
    for (const bool bMulti : {false, true}) {
        const stResult run = Call(Words("blocks.png --quiet --job fLength=20 --job fDepth=3 --job iCarvingType=1 --job "
                                        "fZStep=1.25 --set m_fEndMillDia=1.5 --relief relief.png") +
                                  QStringList{"--set", QString("m_bMultipassImgCarving=%1").arg(int(bMulti))});
        EXPECT_EQ(run.iExit, 0) << run.strErr;
        const auto relief = Relief("relief.png");
        ASSERT_EQ(relief.size(), picture.size());
        ASSERT_EQ(relief[0].size(), picture[0].size());
        int iEqual = 0, iFilled = 0;
        for (size_t row = 0; row < relief.size(); ++row)
            for (size_t col = 0; col < relief[0].size(); ++col) {
                EXPECT_LT(relief[row][col], picture[row][col] + 0.0015) << "row " << row << " column " << col;
                iFilled += relief[row][col] < picture[row][col] - 0.1;
                bool bPlain = row >= 2 && col >= 2 && row + 2 < relief.size() && col + 2 < relief[0].size();
                for (size_t r = row - 2; bPlain && r <= row + 2; ++r)
                    for (size_t c = col - 2; c <= col + 2; ++c) bPlain &= picture[r][c] == picture[row][col];
                if (!bPlain) continue;
                ++iEqual;
                EXPECT_NEAR(relief[row][col], picture[row][col], 0.0015) << "row " << row << " column " << col;
            }
        EXPECT_GT(iEqual, 140);
        EXPECT_GT(iFilled, 10);   // narrower than the tool: the ditch of two pixels
    }
}

// Also the program that is written of it, on the same way.
TEST_F(RunnerPicture, ExampleIsCarvedAndRunAsGCodeOnTheSameWay)
{
    const QStringList set = Words("--set m_fEndMillDia=0.8 --set m_bMultipassImgCarving=0 --quiet");
    const QStringList job = QStringList{Example("rosette.png")} +
                            Words("--job fLength=48 --job fDepth=3 --job fXStep=0.4 --job fYStep=0.4 --job fZStep=5") +
                            set;
    const stResult carved = Call(job + Words("--summary carved.json --relief relief.png"));
    EXPECT_EQ(carved.iExit, 0) << carved.strErr;
    EXPECT_EQ(Call(job + Words("--to-gcode rosette.ngc")).iExit, 0);
    const stResult run = Call(QStringList{"rosette.ngc"} + set + Words("--summary run.json --relief again.png"));
    EXPECT_EQ(run.iExit, 0) << run.strErr;
    EXPECT_TRUE((carved.strErr + run.strErr).isEmpty()) << carved.strErr << run.strErr;

    const QJsonObject by = Summary("carved.json"), with = Summary("run.json");
    EXPECT_EQ(by["job"].toString(), "240 by 240 pixels");
    const auto Moves = [](const QJsonObject& summary) { return summary["moves"]["coordinated"].toInteger(); };
    const auto Feed = [](const QJsonObject& summary) { return summary["path_mm"]["feed"].toDouble(); };
    EXPECT_GT(Moves(by), 5000);
    // A step that the rounding of the text makes a pulse longer or shorter than one moves, or does not.
    EXPECT_NEAR(double(Moves(by)), double(Moves(with)), 0.002 * double(Moves(by)));
    EXPECT_NEAR(Feed(by), Feed(with), 1e-3 * Feed(by));
    EXPECT_FALSE(QImage(Path("again.png")).isNull());

    const auto picture = DepthsOf(QImage(Example("rosette.png"))), relief = Relief("relief.png");
    double fSum = 0.0;
    for (size_t row = 0; row < relief.size(); ++row)
        for (size_t col = 0; col < relief[0].size(); ++col) fSum += std::abs(relief[row][col] - picture[row][col]);
    EXPECT_LT(fSum / (240.0 * 240.0), 0.1 * DEPTH);
}

TEST_F(RunnerPicture, SizesAreFittedAndBadJobsRefused)
{
    ASSERT_TRUE(Blocks().save(Path("blocks.png")));
    Write("empty.png", {});
    EXPECT_EQ(Call({"blocks.png", "--check"}).strOut, "blocks.png: 40 by 30 pixels\n");
    const stResult fitted = Call(
        Words("blocks.png --to-gcode out.txt --job fWidth=20 --job fYStep=1.5 --job fXStep=0.1 --set m_fEndMillDia=3"));
    EXPECT_EQ(fitted.iExit, 0) << fitted.strErr;
    const QByteArray text = Read("out.txt");   // 20 / 30 to the next pulse of 0.001 is 0.667
    for (const char* szLine :
         {"(Carving Length:26.6800)", "(Carving Width:20.0100)", "(Carving X-Step:0.6670)", "(Carving Y-Step:1.3340)"})
        EXPECT_TRUE(text.contains(szLine)) << szLine;
    EXPECT_TRUE(fitted.strErr.contains("Length and Width adjusted")) << fitted.strErr;
    EXPECT_TRUE(fitted.strErr.contains("The step of 1.5 is adjusted to 1.334")) << fitted.strErr;

    // What is told before the machine's clock runs is told at its zero.
    EXPECT_EQ(Call(Words("blocks.png --job fWidth=20 --job fDepth=0.1 --summary told.json --quiet")).iExit, 0);
    const QJsonObject told = Summary("told.json")["messages"][0].toObject();
    EXPECT_TRUE(told["text"].toString().contains("Length and Width adjusted"));
    EXPECT_EQ(told["time_s"].toDouble(), 0.0);

    const struct
    {
        const char *szCall, *szWhy;
        int iExit;
    } calls[] = {{"empty.png", "could not be loaded", 2},
                 {"blocks.png --job fLength=20 --job fWidth=20", "exclude each other", 2},
                 {"blocks.png --job iCarvingType=2", "not a whole number from 0 to 1", 2},
                 {"blocks.png --job fDepth=-1", "not a number above 0", 2},
                 {"blocks.png --set m_fAxisMovPerPulse[0]=0.002", "Move/Pulse must be same", 2},
                 {"blocks.png --job fLength=20 --set m_fEndMillDia=20", "there is no row to carve", 1},
                 {"blocks.png --to-gcode /dev/full", "cannot be written", 2}};
    for (const auto& call : calls) {
        const stResult result = Call(Words(call.szCall));
        EXPECT_EQ(result.iExit, call.iExit) << call.szCall;
        EXPECT_TRUE((result.strOut + result.strErr).contains(QLatin1String(call.szWhy)))
            << call.szCall << ": " << result.strErr << result.strOut;
    }
}
}   // namespace
