#include "common/FileWriter.h"

#include "support/Files.h"
#include "support/FullDisk.h"

#include <QTemporaryDir>

#include <cerrno>

// In the place of the system's: nothing else of the tests asks a disk whether all has arrived.
static bool g_bDiskGone = false;
int fsync(int)
{
    errno = EIO;
    return g_bDiskGone ? -1 : 0;
}

// Below and above the size of a file's buffer, which fail at different places.
TEST(ReplaceFile, AFullDiskKeepsTheOldFile)
{
    QTemporaryDir folder;
    const CSmallDisk small(folder.path());
    const QString strPath = folder.filePath("settings.dat");
    WriteAll(strPath, "old");
    const CFullDisk disk(small.IsThere() ? RLIM_INFINITY : 100);
    for (const int iSize : {6000, 100000}) {
        EXPECT_FALSE(ReplaceFile(strPath, QByteArray(iSize, 'x'))) << iSize;
        EXPECT_EQ(ReadAll(strPath), "old");
    }
}

TEST(ReplaceFile, ADiskThatIsGoneOnlyWhenItIsAskedKeepsTheOldFile)
{
    QTemporaryDir folder;
    const QString strPath = folder.filePath("settings.dat");
    WriteAll(strPath, "old");
    for (const bool bGone : {true, false}) {
        g_bDiskGone = bGone;
        EXPECT_EQ(ReplaceFile(strPath, "new"), !bGone);
        EXPECT_EQ(ReadAll(strPath), bGone ? "old" : "new");
    }
}
