#include "gcode/ProgramState.h"

#include "common/Refusals.h"
#include "gcode/GCodeStore.h"

using Store = CGCodeStore;

CShared<bool> CProgramState::m_bCompileTask = false;

static const QString LOADING = QStringLiteral("G-Code Loading. Please wait!"),
                     COMPILING = QStringLiteral("G-Code Compiling. Please wait!"),
                     STILL_LOADING = QStringLiteral("Preveious G-Code Still Loading"),
                     STILL_COMPILING = QStringLiteral("Preveious G-Code Still Compiling"),
                     FIX_ERRORS = QStringLiteral("Fix Compilation errors");

const stProgramUse CProgramState::CHANGE = {LOADING, COMPILING, MACHINE_IN_USE};
const stProgramUse CProgramState::REPLACE = {STILL_LOADING, STILL_COMPILING, MACHINE_IN_USE};
const stProgramUse CProgramState::CHECK = {STILL_LOADING, STILL_COMPILING, MACHINE_IN_USE,
                                           QStringLiteral("No G-Code loaded")};
// Of whatever job.
const stProgramUse CProgramState::START = {LOADING, COMPILING};
const stProgramUse CProgramState::RUN = {LOADING, COMPILING, MACHINE_IN_USE, QStringLiteral("No G-Code added"),
                                         FIX_ERRORS};
const stProgramUse CProgramState::RUN_LINE = {LOADING, COMPILING, MACHINE_IN_USE, QStringLiteral("No G-Code Loaded"),
                                              FIX_ERRORS};
// A program that loads has no lines yet.
const stProgramUse CProgramState::CHOOSE_START = {.strLoading = RUN_LINE.strNone, .strNone = RUN_LINE.strNone};
const stProgramUse CProgramState::SAVE_AS = {.strLoading = STILL_LOADING};

eProgramState CProgramState::Now(bool bRunning)
{
    if (Store::m_bGCodeLoading) return PROGRAM_LOADING;
    if (Store::m_bProgramExchanged) return PROGRAM_EXCHANGED;
    if (Store::m_bGCodeCompiling || m_bCompileTask) return PROGRAM_COMPILING;
    if (bRunning) return PROGRAM_RUNNING;
    if (Store::m_lstOfGCodeLines.empty()) return PROGRAM_NONE;
    return Store::m_CompilationErrors.empty() ? PROGRAM_READY : PROGRAM_FAULTY;
}

QString CProgramState::WhyNot(const stProgramUse& use, bool bRunning)
{
    switch (Now(bRunning)) {
    case PROGRAM_LOADING: return use.strLoading;
    case PROGRAM_COMPILING:
    case PROGRAM_EXCHANGED: return use.strCompiling;
    case PROGRAM_RUNNING: return use.strRunning;
    case PROGRAM_NONE: return use.strNone;
    case PROGRAM_FAULTY: return use.strFaulty;
    case PROGRAM_READY: break;
    }
    return {};
}
