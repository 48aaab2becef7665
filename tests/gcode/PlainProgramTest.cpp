#include "gcode/PlainProgram.h"

#include "support/Files.h"

#include <QTemporaryDir>
#include <QTextStream>

#include <iterator>
#include <random>

namespace {
struct stProgram
{
    std::vector<QString> lstLines;
    GCodeProgram lstCmds;
};

// A line at a time, by the reader that needs no chunks.
stProgram LineByLine(const QString& strPath)
{
    QFile file(strPath);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QTextStream stream(&file);
    stProgram program;
    while (!stream.atEnd()) {
        program.lstLines.push_back(stream.readLine());
        program.lstCmds.push_back(TokenizeProgramLine(program.lstLines.back()));
    }
    return program;
}

ePlainRead ReadAndCompare(const QByteArray& content)
{
    static const QTemporaryDir folder;
    const QString strPath = folder.filePath("job.ngc");
    WriteAll(strPath, content);
    QFile file(strPath);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    stProgram have;
    const ePlainRead eRead = ReadPlainProgram(file, have.lstLines, have.lstCmds);
    const stProgram want = eRead == READ_WHOLE ? LineByLine(strPath) : stProgram();
    EXPECT_EQ(have.lstLines, want.lstLines);
    EXPECT_EQ(have.lstCmds, want.lstCmds);
    return eRead;
}
}   // namespace

// Lines of every length, so that edges of chunks meet their beginnings, middles and both characters of their ends.
TEST(ThreadsPlainProgram, ReadsLinesAndTokensAsAStreamDoes)
{
    std::mt19937 random(7);
    const QByteArray pieces[] = {
        "G1 X1.5 Y-2",  "g 1x 2 . 5",         "\t(\xc3\xbc \xe2\x82\xac \xf0\x9f\x98\x80)", "%", "N10", "\r",
        "\xef\xbb\xbf", QByteArray("\0G0", 3)};
    for (const qsizetype lSize : {10, 1000, (1 << 18) - 1, 1 << 18, 700'000}) {
        QByteArray content;
        while (content.size() < lSize) {
            content += pieces[random() % std::size(pieces)];
            if (random() % 3 == 0) content += random() % 2 ? "\n" : "\r\n";
            if (random() % 50'000 == 0) content += QByteArray(600'000, '1');   // a line over whole chunks
        }
        for (const char* szEnd : {"", "\n", "\r\n", "\r", "\nG1 X"}) {
            EXPECT_EQ(ReadAndCompare("G0\n" + content + szEnd), READ_WHOLE);
            EXPECT_EQ(ReadAndCompare("\xef\xbb\xbf" + content + szEnd), READ_WHOLE)
                << "a mark at the beginning is none";
        }
        EXPECT_EQ(ReadAndCompare("G0 " + content + "\xe2\x82"), READ_NOT_PLAIN) << "half a character";
        EXPECT_EQ(ReadAndCompare(content + "\xff\n"), READ_NOT_PLAIN);
        EXPECT_EQ(ReadAndCompare("\xff\xfe" + content), READ_NOT_PLAIN);
    }
    EXPECT_EQ(ReadAndCompare(""), READ_NOT_PLAIN);
    EXPECT_EQ(ReadAndCompare("\xef\xbb\xbf"), READ_NOT_PLAIN);
    EXPECT_EQ(ReadAndCompare("\n"), READ_WHOLE);
}
