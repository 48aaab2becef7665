#pragma once
#include "gcode/GCodeTokens.h"
#include "machine/Machine.h"

#include <QString>

#include <functional>
#include <string>
#include <vector>

// A program that runs: the walk over its lines, the place reached, and what one line leaves for the next. Worker.
class CProgramRun
{
public:
    explicit CProgramRun(CMachine& machine) : m_Machine(machine) {}

    // From the start line of the run's settings to the end.
    void RunGCode();
    // False: the run ends, and what is to be said has been said.
    bool ExecGCodeLine(int iLine);
    static void AutoSaveGCodeExecStatus(QString strFile, int iLine);

    // Each line as it is begun; a single line when it is done. Set while nothing runs.
    std::function<void(unsigned uLine)> m_fnOnLine;

    // ---- The words of a line, for its executor ----
    // REFUSED: told, and the run ends before the line moves.
    enum class eWords
    {
        NONE,
        COORDINATES,
        REFUSED
    };
    // The target by the coordinates of the line, an axis that is not named keeping its value; F and S take effect.
    eWords ReadMoveWords(unsigned int uLine, stFloatPoint& pos);
    bool GetPosToMov(unsigned int uLine, stFloatPoint& pos);   // whether there were coordinates
    // False: not above zero, and told. Where the program's feeds are not used any will do.
    bool TakePrgmFeed(double fFeed, unsigned int uLine);
    // The whole arc of the line.
    bool CutArc(unsigned int uLine, stGCodeEllipseInfo& info);
    // The lines of a tool's file, from the first until one ends it; an M30 in it ends only the file. Whatever jumps it
    // makes, the program stands where it stood afterwards. False: a line was refused, and the rest has not been run.
    bool RunAtcFile(const GCodeProgram& program);
    bool m_bEndedByWord = false;   // by one that is there to end it
    bool IsInAtcFile() const { return m_bInAtcFile; }
    void TellLine(int iLine) const
    {
        if (m_fnOnLine) m_fnOnLine(static_cast<unsigned>(iLine));
    }

    const GCodeProgram* m_pGCodeProgram = nullptr;   // owned by the caller
    qint32 m_iSingleLineNo = 0;
    qint32 m_iCurGCodeLine = 0;   // that is read
    stFloatPoint m_CurGCodePos;
    double m_fUnitFactor = 1.0;     // 25.4 after G20
    double m_fLastPrgmFeed = 0.0;   // as written
    std::string m_strSelTool;       // the last T word as written
    static constexpr qint32 m_iMaxSubPrgmNesting = 6;
    std::vector<int> m_lstSubPrgmRetLine, m_lstSubPrgmStartLine;
    std::vector<unsigned> m_lstSubPrgmRepeats;
    static CShared<bool> m_bWritingGCodeExecStatusFile;

private:
    template <class F> eWords ReadWords(unsigned int uLine, F&& fnWord);
    bool ReadArcWords(unsigned int uLine, stGCodeEllipseInfo& info);
    eWords TakeArcWord(char cLetter, double fValue, stGCodeEllipseInfo& info);
    void SaveStatus(qint32& iLastSaved) const;

    CMachine& m_Machine;
    bool m_bInAtcFile = false;
};
