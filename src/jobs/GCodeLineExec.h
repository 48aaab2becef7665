#pragma once
#include "jobs/ProgramRun.h"

// Runs one line of a program, word by word, for CProgramRun::ExecGCodeLine: tables of letters and of G and M numbers,
// each with a small handler. Lives on the worker's stack for the time of the line.
class CGCodeLineExec
{
public:
    CGCodeLineExec(CProgramRun& run, CMachine& machine, int iLine)
        : m_Run(run), m_Machine(machine), m_iLine(iLine), m_Tokens(run.m_pGCodeProgram->at(static_cast<size_t>(iLine)))
    {
    }
    // True: go on with the next line. False: the run ends, and what is to be said has been said.
    bool Run();

private:
    // What follows on a word.
    enum class eNext
    {
        WORD,        // the next token
        LINE_DONE,   // the rest of the line is not executed
        END_RUN,
        UNSUPPORTED   // ends the run with an error
    };
    using Handler = eNext (CGCodeLineExec::*)();
    struct stLetters
    {
        const char* szLetters;
        Handler fnDo;
    };
    struct stNumbers
    {
        int iFrom, iTo;
        Handler fnDo;
    };

    const std::string& Token() const { return m_Tokens[m_uToken]; }
    // The token behind the word; null where the line ends before it.
    const std::string* TokenBehind(size_t uDistance) const;
    eNext Word();
    template <size_t N> eNext Numbered(const stNumbers (&table)[N])
    {
        for (const stNumbers& entry : table)
            if (m_iNumber >= entry.iFrom && m_iNumber <= entry.iTo) return (this->*entry.fnDo)();
        return eNext::WORD;   // a number without an action
    }

    eNext EndOfWords() { return eNext::LINE_DONE; }
    eNext GWord();
    eNext MWord();
    eNext ModalMove();
    eNext ModalArc();
    eNext FeedWord();
    eNext SpeedWord();
    eNext ToolWord();

    // G words
    eNext Rapid();
    eNext Feed();
    template <class F> eNext StraightMove(eGMoveCmnd eCmnd, F&& fnMove);
    eNext Arc();
    eNext Plane();
    eNext Units();
    eNext ReturnToZero();
    eNext WorkZero();
    eNext AbsoluteOrRelative();
    eNext RunArc(eDirection eDir);
    void TellSingleMove(const stFloatPoint& target) const;
    eNext MoveDone(bool bOk, const stFloatPoint& target);

    // M words
    eNext ProgramStop();
    eNext EndOfProgram();
    eNext SpindleOn();
    eNext SpindleOff();
    eNext CoolantOn();
    eNext CoolantOff();
    eNext Output80Off();
    eNext Output80On();
    eNext UserOutput();
    eNext ToolChange();
    eNext ManualToolChange();
    eNext AutoToolChange();
    eNext AskForTool();
    eNext WaitWord();
    eNext CallSubProgram();
    eNext ReturnFromSubProgram();

    CProgramRun& m_Run;
    CMachine& m_Machine;
    const int m_iLine;
    const GCodeTokens& m_Tokens;
    size_t m_uToken = 0;
    int m_iNumber = 0;   // of the G or M word
};
