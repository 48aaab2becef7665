#include "control/AppControl.h"
#include "control/GCodeLineExec.h"
#include "gcode/ExecStatus.h"
#include "gcode/GCodeWords.h"
#include "motion/AllAxisCtrl.h"
#include "time/Wait.h"

#include <algorithm>

// The walk over a program's lines, and the place reached.

CShared<bool> AppControl::m_bWritingGCodeExecStatusFile = false;

// A line in the status file is at least so many behind the last one: the card is slow.
static constexpr qint32 LINES_BETWEEN_SAVES = 10;

void AppControl::RunGCode()
{
    stGCodeRunSettings& settings = AppConfig::m_GCodeRunSettings;
    m_fLastPrgmFeed = 0.0;
    ResetAccVel();
    settings.fFeed = *std::min_element(AppConfig::m_fAxisFeed, AppConfig::m_fAxisFeed + AxesInUse());
    GetAllAxisCurPos(m_CurGCodePos);
    m_lstSubPrgmRetLine.clear();
    m_lstSubPrgmStartLine.clear();
    m_lstSubPrgmRepeats.clear();
    // Absolute or incremental, plane, units and their factor stay those of the run before: wanted, a run begins with
    // the modal state that the operator left.
    settings.iState = G01_MOVE;

    qint32 iLastSaved = std::max<qint32>(settings.iCurLine, 0);
    m_iCurGCodeLine = iLastSaved;
    while (static_cast<size_t>(m_iCurGCodeLine) < m_pGCodeProgram->size()) {
        if (!WaitWhilePaused() || m_bAbandoned) return;
        if (settings.bSaveExecStatus && !m_bWritingGCodeExecStatusFile &&
            m_iCurGCodeLine - iLastSaved > LINES_BETWEEN_SAVES) {
            m_bWritingGCodeExecStatusFile = true;
            RunPooled(
                [strFile = settings.strFile, iLine = m_iCurGCodeLine - 1] { AutoSaveGCodeExecStatus(strFile, iLine); });
            iLastSaved = m_iCurGCodeLine;
        }
        emit SelNxtGCodeLine(static_cast<unsigned>(m_iCurGCodeLine));
        if (!ExecGCodeLine(m_iCurGCodeLine)) {
            if (settings.bSaveExecStatus) CWait::SpinUntil([] { return !m_bWritingGCodeExecStatusFile; });
            return;
        }
        ++m_iCurGCodeLine;   // the target of a jump has been stored one line early for this
    }
    m_bPause = false;
}

bool AppControl::ExecGCodeLine(int iLine)
{
    try {
        return CGCodeLineExec(*this, iLine).Run();
    } catch (...) {
        PushErrMsg(QStringLiteral("Error:%1 - Command/Format No Supported").arg(iLine));
        return false;
    }
}

// The lines of a tool's file, from the first until one ends it. How it ends is not passed on: an M30 in it ends only
// the file. Whatever jumps it makes, the program stands where it stood afterwards.
void AppControl::RunAtcFile(const GCodeProgram& program)
{
    struct stRestore
    {
        AppControl& app;
        const GCodeProgram* pProgram = app.m_pGCodeProgram;
        qint32 iLine = app.m_iCurGCodeLine;
        std::vector<int> lstRet = app.m_lstSubPrgmRetLine, lstStart = app.m_lstSubPrgmStartLine;
        std::vector<unsigned> lstRepeats = app.m_lstSubPrgmRepeats;
        ~stRestore()
        {
            app.m_pGCodeProgram = pProgram;
            app.m_iCurGCodeLine = iLine;
            app.m_lstSubPrgmRetLine.swap(lstRet);
            app.m_lstSubPrgmStartLine.swap(lstStart);
            app.m_lstSubPrgmRepeats.swap(lstRepeats);
            app.m_bInAtcFile = false;
        }
    } restore{*this};
    m_pGCodeProgram = &program;
    m_bInAtcFile = true;
    for (size_t n = 0; n < program.size() && ExecGCodeLine(static_cast<int>(n)); ++n) {
    }
}

void AppControl::AutoSaveGCodeExecStatus(QString strFile, int iLine)
{
    WriteExecStatus(GCODE_EXEC_STATUS_FILE, strFile, iLine);
    m_bWritingGCodeExecStatusFile = false;
}

const std::string* CGCodeLineExec::TokenBehind(size_t uDistance) const
{
    return m_uToken + uDistance < m_Tokens.size() ? &m_Tokens[m_uToken + uDistance] : nullptr;
}

bool CGCodeLineExec::Run()
{
    if (m_Tokens.empty()) return true;
    if (TokenLetter(m_Tokens[0]) == 'N') m_uToken = 1;   // a label is only skipped
    if (m_uToken == m_Tokens.size()) return true;
    while (m_uToken < m_Tokens.size()) {
        if (m_App.m_bAbandoned) return false;   // a worker that wakes in a job that was given up runs no further word
        switch (Word()) {
        case eNext::WORD: ++m_uToken; break;
        // Words behind a move on its line are not executed: wanted, programs rely on what runs today.
        case eNext::LINE_DONE: m_uToken = m_Tokens.size(); break;
        case eNext::END_RUN: return false;
        case eNext::UNSUPPORTED:
            m_App.PushErrMsg(QStringLiteral("Error:%1 - Command/Format No Supported").arg(m_iLine));
            return false;
        }
    }
    if (m_App.m_bExecSingleLine) emit m_App.SelNxtGCodeLine(static_cast<unsigned>(m_iLine));
    return true;
}

CGCodeLineExec::eNext CGCodeLineExec::Word()
{
    static constexpr stLetters LETTERS[] = {{"%(;", &CGCodeLineExec::EndOfWords},  {"G", &CGCodeLineExec::GWord},
                                            {"XYZAB", &CGCodeLineExec::ModalMove}, {"IJ", &CGCodeLineExec::ModalArc},
                                            {"F", &CGCodeLineExec::FeedWord},      {"S", &CGCodeLineExec::SpeedWord},
                                            {"T", &CGCodeLineExec::ToolWord},      {"M", &CGCodeLineExec::MWord}};
    const char cLetter = TokenLetter(Token());
    for (const stLetters& entry : LETTERS)
        if (std::string_view(entry.szLetters).find(cLetter) != std::string_view::npos) return (this->*entry.fnDo)();
    return eNext::UNSUPPORTED;
}
