#pragma once
#include "common/Shared.h"

#include <QString>

// What is being done with the program; of several things the first that holds.
enum eProgramState
{
    PROGRAM_LOADING,
    PROGRAM_COMPILING,
    PROGRAM_EXCHANGED,   // compiling: a tool-change file stands in its place
    PROGRAM_RUNNING,
    PROGRAM_NONE,
    PROGRAM_FAULTY,   // by its last compilation
    PROGRAM_READY
};

// What somebody is about to do with the program: the words by which each state refuses it. Empty: that one does not.
struct stProgramUse
{
    QString strLoading = {}, strCompiling = {}, strRunning = {}, strNone = {}, strFaulty = {};
};

// Whoever would load, check, change or run the program asks here. Interface thread, which alone starts any of it.
class CProgramState
{
public:
    // bRunning: the machine executes the program, which only the machine knows.
    static eProgramState Now(bool bRunning);
    // Why it may not be done now; empty: it may.
    static QString WhyNot(const stProgramUse& use, bool bRunning);
    // Lines and errors belong to a task.
    static bool IsInTask() { return Now(false) <= PROGRAM_EXCHANGED; }

    static const stProgramUse CHANGE, REPLACE, CHECK, START, RUN, RUN_LINE, CHOOSE_START, SAVE_AS;

    // A task of the pool compiles: raised by whoever starts it, lowered by the last thing that it does. The flag of the
    // store does not tell, since the check of a tool-change file lowers it.
    static CShared<bool> m_bCompileTask;
};
