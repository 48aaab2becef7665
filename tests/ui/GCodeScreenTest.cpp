#include "config/AppConfig.h"
#include "gcode/DlgGCode.h"
#include "support/CleanMachine.h"
#include "ui/ScreenSupport.h"
#include "ui/TestHost.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>

class GCodeScreen : public CCleanMachine
{
protected:
    GCodeScreen()
    {
        m_Host.Place(m_Screen);
        m_Screen.ConfigSettings();
    }
    CTestHost m_Host;
    CdlgGCode m_Screen;
};
TEST_F(GCodeScreen, Look)
{
    SaveScreen(m_Screen, "gcode-empty");
    EXPECT_TIDY(m_Screen, {{}, {"LE_GCodeFile"}, {}});
    for (int n = 0; n < 200; ++n) {
        QString s =
            n % 7 == 3
                ? QString("(pocket %1, a long comment that does not fit into the row of the list at all, or does it)")
                      .arg(n)
            : n % 11 == 5 ? QString("G5 X%1 J2 P%2").arg(n).arg(n)
                          : QString("G1 X%1 Y%2 Z-0.5 F600").arg(n * 1.25).arg(n * 0.5);
        CGCodeStore::m_lstOfGCodeLines.push_back(s);
        CGCodeStore::m_lstOfGCodeCmds.push_back(CGCodeStore::Parse_GCode_Line(s));
    }
    m_Screen.on_GCode_Load_Complete();
    SaveScreen(m_Screen, "gcode-loaded");
    EXPECT_TIDY(m_Screen, {{}, {"LE_GCodeFile"}, {}});
    Click(m_Screen, "Btn_CompileGCode");
    WaitFor([&] { return m_Host.m_lstLog.back().strText == "G-Code Compilation Completed"; });
    Click(m_Screen, "Btn_GCodeNextError");
    Click(m_Screen, "Btn_EditGCode");
    SaveScreen(m_Screen, "gcode-errors");
    EXPECT_TIDY(m_Screen, {{}, {"LE_GCodeFile"}, {}});
    m_Screen.SetCurGCodeLine(100);
    m_Screen.ResetUI(false);
    SaveScreen(m_Screen, "gcode-running");
    EXPECT_TIDY(m_Screen, {{}, {"LE_GCodeFile"}, {}});
    CGCodeStore::ClearProgram();
}
