#pragma once
#include "common/Shared.h"
#include "gcode/GCodeTokens.h"

#include <QString>

#include <map>
#include <string>
#include <vector>

class CGCodeCompiler;
class QObject;

// The one G-code program of the system, line by line as text and as tokens. Static, so that the worker, the pooled
// tasks and the screens reach the same data. There is no lock: the interface thread starts a load or a compilation
// only while no other one runs and no operation does, by the flags below.
class CGCodeStore
{
public:
    static std::vector<QString> m_lstOfGCodeLines;               // as read, without line ends
    static GCodeProgram m_lstOfGCodeCmds;                        // entry n belongs to line n
    static std::map<quint32, std::string> m_CompilationErrors;   // by line, of the last compilation
    static CShared<bool> m_bGCodeLoading, m_bGCodeCompiling;     // raised by the starter, cleared by the task
    static CShared<bool> m_bToolChgCompiling;                    // the compiler is inside a tool-change file
    // The tokens of a tool-change file stand in the place of the program's: whoever would start, compile or edit the
    // program must be refused meanwhile. m_bGCodeCompiling does not tell, since the walk of that file clears it.
    static CShared<bool> m_bProgramExchanged;
    static CShared<bool> m_bLoadBroke;   // the last load could not be read to its end; read when it is over

    static GCodeTokens Parse_GCode_Line(const QString& strLine) { return TokenizeProgramLine(strLine); }

    // Appends the lines of a file to the store, all of them at once. A pooled task; m_bGCodeLoading is up. Afterwards
    // the flag is down, and the signal GCodeLoadComplete of notify (may be null) is sent, to its own thread.
    // A file that cannot be opened ends it without a signal and with the flag up. One that cannot be read to its end
    // adds nothing, and the operator is told.
    static void LoadGCode(QString strFile, QObject* notify);

    // Checks the program and adds what is wrong to m_CompilationErrors, which the caller has emptied. Changes
    // AppConfig::m_PlaneSel. A pooled task or the interface thread. At the end m_bGCodeCompiling is down, and the
    // signal GCodeCompilationComplete of notify (may be null) is sent; not if the walk has failed.
    static void CompileGCode(QObject* notify);

    // The name under which a program typed by the operator is saved: with ".ncc" where it has no extension.
    static QString SaveFileName(const QString& strName);
    // Writes the text, "\n" behind every line: the file is the old one or the whole new one. False where the disk
    // refuses; pOpened, if given, tells whether it let the file be opened.
    static bool WriteProgram(const QString& strPath, bool* pOpened = nullptr);

    // The file that changes to a tool, by its T word: where it lies, as it is told; and its lines, cut by the tokenizer
    // of whoever asks, the compiler's or the worker's. It is empty where it was not read.
    static QString ToolFile(const std::string& strTool);
    enum class eToolFile
    {
        READ,
        MISSING,
        UNREADABLE   // also where it breaks off
    };
    static eToolFile ReadToolFile(const QString& strPath, GCodeTokens (*fnTokenize)(const QString&),
                                  GCodeProgram& program);
    // The operator's word of a program that came as one line, by which it was not meant to; empty: it has line ends.
    static QString WhyOneLine();

private:
    // A T word: the tool-change file of that name is compiled in the program's place.
    static void CompileToolFile(CGCodeCompiler& compiler);
};

// Puts the lines of a tool-change file in the program's place while it lives, and tells so by the flags.
class CProgramExchange
{
public:
    explicit CProgramExchange(GCodeProgram& other);
    ~CProgramExchange();
    CProgramExchange(const CProgramExchange&) = delete;
    CProgramExchange& operator=(const CProgramExchange&) = delete;

private:
    GCodeProgram& m_Other;
};
