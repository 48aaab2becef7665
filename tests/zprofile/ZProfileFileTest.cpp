#include "zprofile/ZProfileFile.h"

#include "cases/Cases.h"
#include "config/AppConfig.h"
#include "support/CleanMachine.h"

#include <QFile>
#include <QJsonDocument>

namespace {
class ZProfileFile : public CCleanMachine
{
protected:
    QString WriteFile(const QByteArray& content) const
    {
        const QString strPath = m_Home.filePath("profile.txt");
        QFile file(strPath);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        return strPath;
    }
    std::vector<std::vector<stFloatPoint>>& m_Grid = AppConfig::m_ZProfileInfo.lstPoints;
};

TEST_F(ZProfileFile, RoundsToSixDigitsAndKeepsTheOrderOfRows)
{
    m_Grid = {{{0, 0, 0}, {100.00049, 0.5, -0.0000123456}}, {{100.0005, 10, 1.0 / 3.0}, {0, 1234567.0, -2}}};
    const QString strPath = m_Home.filePath("grid.txt");
    ASSERT_TRUE(SaveZProfile(strPath));
    QFile file(strPath);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "2\n2\n0,0,0\n100,0.5,-1.23456e-05\n100.001,10,0.333333\n0,1.23457e+06,-2\n");
    ASSERT_TRUE(LoadZProfile(strPath));
    EXPECT_EQ(m_Grid[1][0].z, 0.333333);
    EXPECT_EQ(m_Grid[1][1].y, 1234570.0);
}

TEST_F(ZProfileFile, AFileThatCannotBeReadTakesTheOldGridWithIt)
{
    m_Grid = {{{1, 2, 3}}};
    EXPECT_FALSE(LoadZProfile(m_Home.filePath("missing.txt")));
    EXPECT_TRUE(m_Grid.empty());
    EXPECT_FALSE(SaveZProfile(m_Home.filePath("no/folder/grid.txt")));
}

TEST_F(ZProfileFile, AGridNeedsTwoNodesInItsFirstRow)
{
    EXPECT_FALSE(HasZProfile());
    m_Grid = {{{1, 2, 3}}, {{1, 2, 3}, {4, 5, 6}}};
    EXPECT_FALSE(HasZProfile());
    std::swap(m_Grid[0], m_Grid[1]);
    EXPECT_TRUE(HasZProfile());
}

TEST(ZProfileFileNames, EndInLowerCaseTxt)
{
    const std::pair<const char*, const char*> lst[] = {
        {"a", "a.txt"}, {"a.txt", "a.txt"}, {"a.TXT", "a.TXT.txt"}, {"a.txt.old", "a.txt.old.txt"}, {"a.", "a..txt"}};
    for (const auto& [szTyped, szSaved] : lst) EXPECT_EQ(ZProfileFileName(szTyped), szSaved);
}

TEST_F(ZProfileFile, MalformedWordsGiveZeros)
{
    const std::pair<const char*, const char*> lst[] = {
        {"1\n1\nabc\n", "[[[0,0,0]]]"}, {"1\n1\n1,x,3\n", "[[[1,0,3]]]"}, {"1\n1\n1,2,3,4\n", "[[[1,2,0]]]"},
        {"1\n1\n,,3\n", "[[[0,0,3]]]"}, {"1\n1\n7\n", "[[[0,0,0]]]"},     {"2\n1\n1,2,3\n", "[[[1,2,3]],[[0,0,0]]]"},
        {"-1\n5\n1,2,3\n", "[]"},       {"1\n-5\n1,2,3\n", "[[]]"}};
    for (const auto& [szContent, szGrid] : lst) {
        LoadZProfile(WriteFile(szContent));
        EXPECT_EQ(GridArray(m_Grid, 3), QJsonDocument::fromJson(szGrid).array()) << szContent;
    }
}

TEST_F(ZProfileFile, AbsurdCountsDoNotEatTheMemory)
{
    for (const char* sz : {"2000000000\n0\n", "2000000000\n2000000000\n1,2,3\n", "1\n2000000000\n"}) {
        EXPECT_TRUE(LoadZProfile(WriteFile(sz)));
        size_t uNodes = m_Grid.size();
        for (const auto& row : m_Grid) uNodes += row.size();
        EXPECT_LT(uNodes, 100'000u) << sz;
    }
}
}   // namespace
