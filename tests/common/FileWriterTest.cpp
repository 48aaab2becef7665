#include "common/FileWriter.h"

#include "support/Files.h"
#include "support/FullDisk.h"

#include <QTemporaryDir>

// Below and above the size of a file's buffer, which fail at different places.
TEST(ReplaceFile, AFullDiskKeepsTheOldFile)
{
    QTemporaryDir folder;
    const QString strPath = folder.filePath("settings.dat");
    WriteAll(strPath, "old");
    for (const int iSize : {3000, 100000}) {
        const CFullDisk disk(100);
        EXPECT_FALSE(ReplaceFile(strPath, QByteArray(iSize, 'x'))) << iSize;
    }
    EXPECT_EQ(ReadAll(strPath), "old");
    EXPECT_TRUE(ReplaceFile(strPath, "new"));
    EXPECT_EQ(ReadAll(strPath), "new");
}
