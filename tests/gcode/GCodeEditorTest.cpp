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
        ClearProgram();
        for (const QString& strLine : lstLines) {
            Store::m_lstOfGCodeLines.push_back(strLine);
            Store::m_lstOfGCodeCmds.push_back(Store::Parse_GCode_Line(strLine));
        }
        Store::CompileGCode(nullptr);
    }
    static QStringList Lines() { return {Store::m_lstOfGCodeLines.begin(), Store::m_lstOfGCodeLines.end()}; }
};
}   // namespace

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
