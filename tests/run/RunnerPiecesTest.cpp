#include "preview/ToolPath.h"
#include "run/CsvWriter.h"
#include "run/EdgeQueue.h"
#include "support/Files.h"
#include "support/FullDisk.h"

#include <QTemporaryDir>

#include <cmath>

TEST(CsvWriter, KeepsTheOldFileUntilTheNewOneIsWhole)
{
    QTemporaryDir folder;
    const QString strPath = folder.filePath("moves.csv");
    WriteAll(strPath, "old");
    for (const rlim_t uLimit : {rlim_t(10), RLIM_INFINITY}) {
        const CFullDisk disk(uLimit);
        CCsvWriter csv;
        ASSERT_TRUE(csv.Open(strPath, "number,millimetres"));
        csv.Number(7);
        csv.Mm(-12345);
        csv.EndRow();
        EXPECT_EQ(ReadAll(strPath), "old");
        EXPECT_EQ(csv.Close(), uLimit == RLIM_INFINITY);
    }
    EXPECT_EQ(ReadAll(strPath), "number,millimetres\n7,-1.2345\n");
    CCsvWriter full;
    ASSERT_TRUE(full.Open("/dev/full", "a device is written to as it is"));
    EXPECT_FALSE(full.Close());
}

TEST(EdgeQueue, KeepsTheOrderThroughItsFile)
{
    CEdgeQueue queue;
    qint64 lPut = 0, lTaken = 0;
    const auto Take = [&](qint64 lCount) {
        for (qint64 n = 0; n < lCount && queue.Front(); ++n, queue.Pop()) ASSERT_EQ(queue.Front()->lTime, lTaken++);
    };
    for (const qint64 lCount : {10, 100'000, 1, 70'000, 33'000}) {
        for (qint64 n = 0; n < lCount; ++n) queue.Push({lPut++, 0, 0, 0, 0, 0});
        Take(lCount / 2);
    }
    Take(lPut);
    EXPECT_EQ(lTaken, lPut);
    EXPECT_EQ(queue.Front(), nullptr);
    EXPECT_TRUE(queue.IsGood());
}

TEST(ToolPath, ThinsALongPathAndKeepsItsShape)
{
    CToolPath path;
    stFloatPoint from{50, 0, 0};
    for (int n = 1; n <= 3'000'000; ++n) {
        const stFloatPoint to{50 * std::cos(n * 1e-3), 50 * std::sin(n * 1e-3), n * 1e-5};
        path.AddMove(from, to, false);
        from = to;
    }
    EXPECT_LT(path.Points().size(), 400'000u);
    EXPECT_GT(path.Points().size(), 10'000u);
    for (const CToolPath::stPoint& point : path.Points())
        ASSERT_NEAR(std::hypot(static_cast<double>(point.fX), static_cast<double>(point.fY)), 50.0, 1e-3);
    EXPECT_NEAR(path.Min().x, -50.0, 1e-3);
    EXPECT_EQ(path.Points().back().fZ, 30.0f);
    path.AddMove({0, 0, 0}, {1, 0, 0}, true);
    EXPECT_TRUE(path.Points()[path.Points().size() - 2].bJump) << "a path that begins elsewhere lifts the pen";
}
