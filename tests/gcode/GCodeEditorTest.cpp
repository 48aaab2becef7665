#include "gcode/GCodeEditor.h"

#include "gcode/GCodeStore.h"
#include "support/CleanMachine.h"

#include <QStringList>

using Store = CGCodeStore;

namespace {
class GCodeEditor : public CCleanMachine
{
protected:
    static void Hold(const QStringList& lstLines)
    {
        Store::ClearProgram();
        for (const QString& strLine : lstLines) {
            Store::m_lstOfGCodeLines.push_back(strLine);
            Store::m_lstOfGCodeCmds.push_back(Store::Parse_GCode_Line(strLine));
        }
        Store::CompileGCode(nullptr);
    }
    static QStringList Lines() { return {Store::m_lstOfGCodeLines.begin(), Store::m_lstOfGCodeLines.end()}; }
};
}   // namespace

TEST_F(GCodeEditor, ShowsTenRowsAndAtTheEndTheLastTen)
{
    const struct
    {
        int iLines;
        qint32 iPlace, iFirst, iEnd;
    } cases[] = {{0, 5, 0, 0},   {7, 0, 0, 7},   {7, 6, 0, 7},     {10, 3, 0, 10},   {11, 0, 0, 10},
                 {11, 1, 1, 11}, {25, 3, 3, 13}, {25, 15, 15, 25}, {25, 16, 15, 25}, {25, 24, 15, 25}};
    for (const auto& one : cases) {
        Store::m_lstOfGCodeLines.resize(size_t(one.iLines));
        const auto rows = CGCodeEditor::RowsAt(one.iPlace);
        EXPECT_EQ(rows.iFirst, one.iFirst) << one.iLines << " at " << one.iPlace;
        EXPECT_EQ(rows.iEnd, one.iEnd) << one.iLines << " at " << one.iPlace;
    }
    const CGCodeEditor::stRows rows{5, 15};
    for (const auto& [iLine, iPlace] : {std::pair{5, 5}, {14, 5}, {15, 14}, {4, 3}, {0, 0}})
        EXPECT_EQ(CGCodeEditor::PlaceWith(iLine, rows), iPlace) << iLine;
}

TEST_F(GCodeEditor, TextStandsBehindTheFirstBracketOfTheField)
{
    Hold({"G0 X1", "(a]b) G1"});
    EXPECT_EQ(CGCodeEditor::Field(1), "[1](a]b) G1");
    EXPECT_EQ(CGCodeEditor::TextOf("[1](a]b) G1"), "(a]b) G1");
    EXPECT_EQ(CGCodeEditor::TextOf("G0 X1"), "G0 X1");
}

TEST_F(GCodeEditor, InsertSplitsAtBlanksWhereUpdateReadsTokens)
{
    Hold({"G0 X1", "M30"});
    CGCodeEditor::InsertBehind(0, "G1  X2 Y3");
    CGCodeEditor::InsertBehind(1, "G1X2");
    EXPECT_EQ(Lines(), QStringList({"G0 X1", "G1  X2 Y3", "G1X2", "M30"}));
    EXPECT_EQ(Store::m_lstOfGCodeCmds[1], (GCodeTokens{"G1", "X2", "Y3"}));
    EXPECT_EQ(Store::m_lstOfGCodeCmds[2], (GCodeTokens{"G1X2"}));
    EXPECT_EQ(CGCodeEditor::ErrorText(2), "G1X2(Invalid G-Code)");   // checked at once
    CGCodeEditor::Update(2, "G1X2");
    EXPECT_EQ(Store::m_lstOfGCodeCmds[2], (GCodeTokens{"G1", "X2"}));
    EXPECT_EQ(CGCodeEditor::FirstError(), 2u);   // only the operator's check takes it away
    CGCodeEditor::InsertBehind(-1, "M5");
    EXPECT_EQ(Lines().front(), "M5");
    EXPECT_EQ(CGCodeEditor::FirstError(), std::nullopt);
}

TEST_F(GCodeEditor, DeletesToTheLastLineAndChecks)
{
    Hold({"G0 X1", "G5", "M30"});
    CGCodeEditor::Delete(0);
    EXPECT_EQ(CGCodeEditor::FirstError(), 0u);
    CGCodeEditor::Delete(0);
    EXPECT_EQ(CGCodeEditor::FirstError(), std::nullopt);
    EXPECT_EQ(Lines(), QStringList("M30"));
    CGCodeEditor::Delete(0);
    EXPECT_TRUE(Store::m_lstOfGCodeLines.empty() && Store::m_lstOfGCodeCmds.empty());
}

TEST_F(GCodeEditor, ErrorsGoAlongWithTheirLines)
{
    Hold({"G5", "M30", "G6"});
    CGCodeEditor::Swap(0, 1);
    EXPECT_EQ(Lines(), QStringList({"M30", "G5", "G6"}));
    EXPECT_EQ(Store::m_lstOfGCodeCmds[1], (GCodeTokens{"G5"}));
    EXPECT_EQ(CGCodeEditor::ErrorText(0), "");
    EXPECT_EQ(CGCodeEditor::ErrorText(1), "G5(Invalid)");
    CGCodeEditor::Swap(1, 2);
    EXPECT_EQ(CGCodeEditor::ErrorText(1), "G6(Invalid)");
    EXPECT_EQ(CGCodeEditor::ErrorText(2), "G5(Invalid)");
}

TEST_F(GCodeEditor, ErrorsAreWalkedWithoutWrapping)
{
    EXPECT_EQ(CGCodeEditor::ErrorBefore(3), std::nullopt);
    EXPECT_EQ(CGCodeEditor::ErrorBehind(3), std::nullopt);
    EXPECT_EQ(CGCodeEditor::LastError(), std::nullopt);
    Store::m_CompilationErrors = {{2, "a"}, {5, "b"}, {9, "c"}};
    EXPECT_EQ(CGCodeEditor::FirstError(), 2u);
    EXPECT_EQ(CGCodeEditor::LastError(), 9u);
    const struct
    {
        quint32 uAt, uBefore, uBehind;
    } cases[] = {{0, 2, 2}, {2, 2, 5}, {5, 2, 9}, {7, 5, 9}, {9, 5, 9}, {12, 9, 9}};   // also from no error's line
    for (const auto& one : cases) {
        EXPECT_EQ(CGCodeEditor::ErrorBefore(one.uAt), one.uBefore) << one.uAt;
        EXPECT_EQ(CGCodeEditor::ErrorBehind(one.uAt), one.uBehind) << one.uAt;
    }
}

TEST_F(GCodeEditor, ChangesAreRefusedWhileTheProgramIsInUse)
{
    EXPECT_EQ(CGCodeEditor::WhyBusy(false, false), "");
    EXPECT_EQ(CGCodeEditor::WhyBusy(false, true), "Machine in use");
    EXPECT_EQ(CGCodeEditor::WhyBusy(true, false), "G-Code Compiling. Please wait!");
    const std::pair<CShared<bool>*, const char*> flags[] = {
        {&Store::m_bGCodeLoading, "G-Code Loading. Please wait!"},
        {&Store::m_bGCodeCompiling, "G-Code Compiling. Please wait!"},
        {&Store::m_bProgramExchanged, "G-Code Compiling. Please wait!"}};
    for (const auto& [pFlag, szWhy] : flags) {
        *pFlag = true;
        EXPECT_EQ(CGCodeEditor::WhyBusy(false, false), szWhy);
        *pFlag = false;
    }
    // A load publishes its lines at any moment: until its end there are none to show.
    Hold({"M30"});
    Store::m_bGCodeLoading = true;
    EXPECT_EQ(CGCodeEditor::LineCount(), 0);
}

TEST_F(GCodeEditor, TheStoreIsEmptyAtOnce)
{
    Hold({"G5", "M30"});
    CGCodeEditor::Clear();
    EXPECT_TRUE(Store::m_lstOfGCodeLines.empty() && Store::m_lstOfGCodeCmds.empty());
    EXPECT_TRUE(Store::m_CompilationErrors.empty());
}
