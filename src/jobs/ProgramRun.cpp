#include "jobs/ProgramRun.h"

#include "common/ArcReading.h"
#include "config/AppConfig.h"
#include "gcode/ExecStatus.h"
#include "gcode/GCodeWords.h"
#include "jobs/GCodeLineExec.h"
#include "time/Wait.h"

#include <algorithm>
#include <cmath>

CShared<bool> CProgramRun::m_bWritingGCodeExecStatusFile = false;

// A line in the status file is at least so many behind the last one: the card is slow.
static constexpr qint32 LINES_BETWEEN_SAVES = 10;

// ---- The walk over the lines ----------------------------------------------------------------------------------------

void CProgramRun::RunGCode()
{
    stGCodeRunSettings& settings = AppConfig::m_GCodeRunSettings;
    m_fLastPrgmFeed = 0.0;
    m_Machine.m_AxisCommands.ResetAccVel();
    settings.fFeed = *std::min_element(AppConfig::m_fAxisFeed, AppConfig::m_fAxisFeed + CMachineAxes::AxesInUse());
    m_Machine.m_Position.GetAllAxisCurPos(m_CurGCodePos);
    m_lstSubPrgmRetLine.clear();
    m_lstSubPrgmStartLine.clear();
    m_lstSubPrgmRepeats.clear();
    // Absolute or incremental, plane, units and their factor stay those of the run before: wanted, a run begins with
    // the modal state that the operator left.
    settings.iState = G01_MOVE;

    qint32 iLastSaved = std::max<qint32>(settings.iCurLine, 0);
    m_iCurGCodeLine = iLastSaved;
    while (static_cast<size_t>(m_iCurGCodeLine) < m_pGCodeProgram->size()) {
        if (!m_Machine.WaitWhilePaused() || m_Machine.IsAbandoned()) return;
        SaveStatus(iLastSaved);
        m_Machine.m_iWorkLine = m_iCurGCodeLine;
        TellLine(m_iCurGCodeLine);
        if (!ExecGCodeLine(m_iCurGCodeLine)) {
            if (settings.bSaveExecStatus) CWait::SpinUntil([] { return !m_bWritingGCodeExecStatusFile; });
            return;
        }
        ++m_iCurGCodeLine;   // the target of a jump has been stored one line early for this
    }
    m_Machine.Resume();
}

void CProgramRun::SaveStatus(qint32& iLastSaved) const
{
    const stGCodeRunSettings& settings = AppConfig::m_GCodeRunSettings;
    // A simulated run has cut nothing that another could go on from.
    if (!settings.bSaveExecStatus || AppConfig::m_bSimulationMode || m_bWritingGCodeExecStatusFile ||
        m_iCurGCodeLine - iLastSaved <= LINES_BETWEEN_SAVES)
        return;
    m_bWritingGCodeExecStatusFile = true;
    RunPooled([strFile = settings.strFile, iLine = m_iCurGCodeLine - 1] { AutoSaveGCodeExecStatus(strFile, iLine); });
    iLastSaved = m_iCurGCodeLine;
}

void CProgramRun::AutoSaveGCodeExecStatus(QString strFile, int iLine)
{
    WriteExecStatus(GCODE_EXEC_STATUS_FILE, strFile, iLine);
    m_bWritingGCodeExecStatusFile = false;
}

bool CProgramRun::ExecGCodeLine(int iLine)
{
    try {
        return CGCodeLineExec(*this, m_Machine, iLine).Run();
    } catch (...) {
        m_Machine.PushErrMsg(QStringLiteral("Error:%1 - Command/Format No Supported").arg(iLine));
        return false;
    }
}

bool CProgramRun::RunAtcFile(const GCodeProgram& program)
{
    struct stRestore
    {
        CProgramRun& run;
        const GCodeProgram* pProgram = run.m_pGCodeProgram;
        qint32 iLine = run.m_iCurGCodeLine;
        std::vector<int> lstRet = run.m_lstSubPrgmRetLine, lstStart = run.m_lstSubPrgmStartLine;
        std::vector<unsigned> lstRepeats = run.m_lstSubPrgmRepeats;
        ~stRestore()
        {
            run.m_pGCodeProgram = pProgram;
            run.m_iCurGCodeLine = iLine;
            run.m_lstSubPrgmRetLine.swap(lstRet);
            run.m_lstSubPrgmStartLine.swap(lstStart);
            run.m_lstSubPrgmRepeats.swap(lstRepeats);
            run.m_bInAtcFile = false;
        }
    } restore{*this};
    m_pGCodeProgram = &program;
    m_bInAtcFile = true;
    m_bEndedByWord = false;
    size_t uLine = 0;
    while (uLine < program.size() && ExecGCodeLine(static_cast<int>(uLine))) ++uLine;
    return uLine == program.size() || m_bEndedByWord;
}

// ---- The words of a line --------------------------------------------------------------------------------------------

// Every word up to a comment: feed and speed take effect, of the others fnWord says what they are.
template <class F> CProgramRun::eWords CProgramRun::ReadWords(unsigned int uLine, F&& fnWord)
{
    eWords eFound = eWords::NONE;
    for (const std::string& strToken : m_pGCodeProgram->at(uLine)) {
        if (IsComment(strToken)) break;
        const char cLetter = TokenLetter(strToken);
        const double fValue = TokenFloat(strToken);
        if (cLetter == 'F') {
            if (!TakePrgmFeed(fValue, uLine)) return eWords::REFUSED;
        } else if (cLetter == 'S') {
            m_Machine.m_Spindle.SetSpindleSpeed(CutTo<int>(fValue));
        } else if (const eWords eWord = fnWord(cLetter, fValue); eWord != eWords::NONE) {
            eFound = eWord;
            if (eFound == eWords::REFUSED) break;
        }
    }
    return eFound;
}

bool CProgramRun::TakePrgmFeed(double fFeed, unsigned int uLine)
{
    if (!AppConfig::m_GCodeRunSettings.bUsePrgmFeed) return true;
    if (fFeed > 0.0) {
        m_Machine.m_JobMoves.SetAxisFeed(fFeed);
        return true;
    }
    m_Machine.PushErrMsg(QStringLiteral("Error:%1 - Feed, F-Code, must be greater than zero").arg(uLine));
    return false;
}

CProgramRun::eWords CProgramRun::ReadMoveWords(unsigned int uLine, stFloatPoint& pos)
{
    pos = m_CurGCodePos;
    return ReadWords(uLine, [&](char cLetter, double fValue) {
        static constexpr std::string_view AXIS_LETTERS = "XYZAB";
        const size_t uAxis = AXIS_LETTERS.find(cLetter);
        if (uAxis == std::string_view::npos) return eWords::NONE;
        const int axis = static_cast<int>(uAxis);
        // Incremental inches scale the sum, the present position included: wanted, programs are written for it.
        AxisOf(pos, axis) =
            (AppConfig::m_GCodeRunSettings.sAbsRel * AxisOf(m_CurGCodePos, axis) + fValue) * m_fUnitFactor;
        return eWords::COORDINATES;
    });
}

bool CProgramRun::GetPosToMov(unsigned int uLine, stFloatPoint& pos)
{
    return ReadMoveWords(uLine, pos) == eWords::COORDINATES;
}

static bool IsBelowPulse(double fDist, int axis)
{
    return std::abs(fDist) < AppConfig::m_fAxisMovPerPulse[axis];
}

CProgramRun::eWords CProgramRun::TakeArcWord(char cLetter, double fValue, stGCodeEllipseInfo& info)
{
    if (cLetter >= 'X' && cLetter <= 'Z') {
        const int axis = cLetter - 'X';
        const double fHere = AppConfig::m_GCodeRunSettings.sAbsRel * m_Machine.m_AxisCtrl[axis].GetCurPos();
        AxisOf(info.stEnd, axis) = (fHere + fValue) * m_fUnitFactor;
    } else if (cLetter >= 'I' && cLetter <= 'K') {
        const int axis = cLetter - 'I';
        // From the start point, in G90 too.
        AxisOf(info.stCenter, axis) =
            ArcCentre(AxisOf(info.stStart, axis), fValue * m_fUnitFactor, AppConfig::m_fAxisMovPerPulse[axis]);
    } else if (cLetter == 'R') {
        info.fRadius = fValue * m_fUnitFactor;
        if (IsBelowPulse(info.fRadius, X_AXIS) || IsBelowPulse(info.fRadius, Y_AXIS)) {
            m_Machine.PushErrMsg(ARC_TOO_SMALL);
            return eWords::REFUSED;
        }
        CArcMoves::FindArcCenter(info);   // sees the end words read so far: the order of the words matters
        info.fRadius = std::abs(info.fRadius);
    } else {
        return eWords::NONE;
    }
    return eWords::COORDINATES;
}

// False: refused and told.
bool CProgramRun::ReadArcWords(unsigned int uLine, stGCodeEllipseInfo& info)
{
    const auto TakeWord = [&](char cLetter, double fValue) { return TakeArcWord(cLetter, fValue, info); };
    return ReadWords(uLine, TakeWord) != eWords::REFUSED;
}

bool CProgramRun::CutArc(unsigned int uLine, stGCodeEllipseInfo& info)
{
    return m_Machine.Watched([&] { return stWorkCommand{.eKind = WORK_ARC, .pArc = &info}; },
                             [&] {
                                 m_Machine.m_ArcMoves.Begin(info);
                                 return ReadArcWords(uLine, info) && m_Machine.m_ArcMoves.Cut(info);
                             });
}
