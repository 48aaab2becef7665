#include "jobs/GCodeLineExec.h"

#include "common/OperatorScreen.h"
#include "config/AppConfig.h"
#include "gcode/GCodeStore.h"
#include "gcode/GCodeWords.h"
#include "hardware/VantorGpio.h"
#include "machine/MCodeOutputs.h"
#include "motion/AllAxisCtrl.h"
#include "time/Wait.h"

#include <algorithm>
#include <cmath>

using Exec = CGCodeLineExec;

static constexpr qint64 BUTTON_PAUSE_US = 100000;   // the supervision loop sees the request meanwhile
static constexpr qint64 DWELL_STEP_US = 100;

const std::string* Exec::TokenBehind(size_t uDistance) const
{
    return m_uToken + uDistance < m_Tokens.size() ? &m_Tokens[m_uToken + uDistance] : nullptr;
}

bool Exec::Run()
{
    if (m_Tokens.empty()) return true;
    if (TokenLetter(m_Tokens[0]) == 'N') m_uToken = 1;   // a label is only skipped
    if (m_uToken == m_Tokens.size()) return true;
    while (m_uToken < m_Tokens.size()) {
        if (m_Machine.IsAbandoned()) return false;   // who wakes in a job that was given up runs no further word
        switch (Word()) {
        case eNext::WORD: ++m_uToken; break;
        // Words behind a move on its line are not executed: wanted, programs rely on what runs today.
        case eNext::LINE_DONE: m_uToken = m_Tokens.size(); break;
        case eNext::END_RUN: return false;
        case eNext::UNSUPPORTED:
            m_Machine.PushErrMsg(QStringLiteral("Error:%1 - Command/Format No Supported").arg(m_iLine));
            return false;
        }
    }
    if (m_Machine.m_bExecSingleLine) m_Run.TellLine(m_iLine);
    return true;
}

Exec::eNext Exec::Word()
{
    static constexpr stLetters LETTERS[] = {
        {"%(;", &Exec::EndOfWords}, {"G", &Exec::GWord},     {"XYZAB", &Exec::ModalMove}, {"IJ", &Exec::ModalArc},
        {"F", &Exec::FeedWord},     {"S", &Exec::SpeedWord}, {"T", &Exec::ToolWord},      {"M", &Exec::MWord}};
    const char cLetter = TokenLetter(Token());
    for (const stLetters& entry : LETTERS)
        if (std::string_view(entry.szLetters).find(cLetter) != std::string_view::npos) return (this->*entry.fnDo)();
    return eNext::UNSUPPORTED;
}

// ---- Moves, speeds and G words --------------------------------------------------------------------------------------

Exec::eNext Exec::GWord()
{
    // G15, which selects a plane in the compiler, has no action here: wanted, the plane in force is the compiler's.
    static constexpr stNumbers NUMBERS[] = {{0, 0, &Exec::Rapid},      {1, 1, &Exec::Feed},
                                            {2, 3, &Exec::Arc},        {17, 19, &Exec::Plane},
                                            {20, 21, &Exec::Units},    {28, 28, &Exec::ReturnToZero},
                                            {30, 30, &Exec::WorkZero}, {90, 91, &Exec::AbsoluteOrRelative}};
    m_iNumber = TokenInt(Token());
    return Numbered(NUMBERS);
}

Exec::eNext Exec::MoveDone(bool bOk, const stFloatPoint& target)
{
    if (!bOk) return eNext::END_RUN;
    m_Run.m_CurGCodePos = target;
    return eNext::LINE_DONE;
}

// A single line takes the axes that it does not name to the place of the program, which may lie across the work.
void Exec::TellSingleMove(const stFloatPoint& target) const
{
    if (!m_Machine.m_bExecSingleLine) return;
    stFloatPoint here;
    m_Machine.m_Position.GetAllAxisCurPos(here);
    QString strTo;
    double fSquares = 0.0;
    for (int axis = 0; axis < CMachineAxes::AxesInUse(); ++axis) {
        const double fTo = AxisOf(target, axis), fWay = fTo - AxisOf(here, axis);
        strTo += QStringLiteral(" %1 %2").arg(AppConfig::m_strAxisNames[axis]).arg(fTo, 0, 'f', PRECISION);
        fSquares += fWay * fWay;
    }
    const QString strWay = QString::number(std::sqrt(fSquares), 'f', PRECISION);
    COperatorScreen::Get().AddLogMsg(QStringLiteral("Single line to%1, %2 mm").arg(strTo, strWay), MSG_INFO);
}

// A line of G words alone moves nothing, and is read again by the next of them.
template <class F> Exec::eNext Exec::StraightMove(eGMoveCmnd eCmnd, F&& fnMove)
{
    AppConfig::m_GCodeRunSettings.iState = eCmnd;
    stFloatPoint target;
    switch (m_Run.ReadMoveWords(static_cast<unsigned>(m_iLine), target)) {
    case CProgramRun::eWords::NONE: return eNext::WORD;
    case CProgramRun::eWords::REFUSED: return eNext::END_RUN;
    case CProgramRun::eWords::COORDINATES: break;
    }
    TellSingleMove(target);
    return MoveDone(fnMove(target), target);
}

Exec::eNext Exec::Rapid()
{
    return StraightMove(G00_MOVE, [this](const stFloatPoint& target) {
        m_Machine.m_JobMoves.SetAccAndVel(m_Run.m_CurGCodePos, target, G00_MOVE);
        return m_Machine.m_JobMoves.G00_Move(target, false, false);
    });
}

Exec::eNext Exec::Feed()
{
    return StraightMove(G01_MOVE, [this](stFloatPoint& target) {
        return m_Machine.m_SurfaceMoves.CutOrFollow(m_Run.m_CurGCodePos, target);
    });
}

// A line that starts with an axis word: planned as a feed move whatever the modal move is, and never along the surface.
Exec::eNext Exec::ModalMove()
{
    stFloatPoint target;
    if (m_Run.ReadMoveWords(static_cast<unsigned>(m_iLine), target) == CProgramRun::eWords::REFUSED)
        return eNext::END_RUN;
    TellSingleMove(target);
    CJobMoves& moves = m_Machine.m_JobMoves;
    moves.SetAccAndVel(m_Run.m_CurGCodePos, target, G01_MOVE);
    const bool bRapid = AppConfig::m_GCodeRunSettings.iState == G00_MOVE;
    return MoveDone(bRapid ? moves.G00_Move(target, false, false) : moves.G01_Move(target, false, false), target);
}

Exec::eNext Exec::RunArc(eDirection eDir)
{
    CAllAxisCtrl::WaitForMotion();
    stGCodeEllipseInfo info;
    info.eDir = eDir;
    if (!m_Run.CutArc(static_cast<unsigned>(m_iLine), info)) return eNext::END_RUN;
    m_Machine.m_Position.GetAllAxisCurPos(m_Run.m_CurGCodePos);
    return eNext::LINE_DONE;
}

// The modal move stays what it was: wanted, axis words on the lines behind an arc run straight.
Exec::eNext Exec::Arc()
{
    return RunArc(m_iNumber == 2 ? DIR_CW : DIR_CCW);
}

Exec::eNext Exec::ModalArc()
{
    return RunArc(AppConfig::m_GCodeRunSettings.iState == 3 ? DIR_CCW : DIR_CW);
}

Exec::eNext Exec::Plane()
{
    AppConfig::m_PlaneSel = static_cast<qint8>(m_iNumber);
    CAllAxisCtrl::WaitForMotion();
    return eNext::WORD;
}

Exec::eNext Exec::Units()
{
    CAllAxisCtrl::WaitForMotion();
    const bool bInches = m_iNumber == 20;
    m_Run.m_fUnitFactor = bInches ? INCH_TO_MM_MUL_FACTOR : 1.0;
    AppConfig::m_eSelUnits = bInches ? 1 : 0;
    return eNext::WORD;
}

Exec::eNext Exec::ReturnToZero()
{
    CAllAxisCtrl::WaitForMotion();
    const std::string* pMode = TokenBehind(1);
    if (pMode && !IsComment(*pMode)) {
        AppConfig::m_GCodeRunSettings.sAbsRel = *pMode == "G90" || *pMode == "g90" ? 0 : 1;
        stFloatPoint target;
        if (m_Run.ReadMoveWords(static_cast<unsigned>(m_iLine), target) == CProgramRun::eWords::REFUSED)
            return eNext::END_RUN;
        if (!m_Machine.m_JobMoves.G01_Move(target, true, true)) return eNext::END_RUN;
    }
    return WorkZero();
}

// A completed return ends the run without a message: a plain end, on purpose.
Exec::eNext Exec::WorkZero()
{
    CAllAxisCtrl::WaitForMotion();
    if (!m_Machine.m_Homing.MoveWorkZeroAll()) return eNext::WORD;
    m_Machine.m_Position.GetAllAxisCurPos(m_Run.m_CurGCodePos);
    return EndOfProgram();
}

Exec::eNext Exec::AbsoluteOrRelative()
{
    CAllAxisCtrl::WaitForMotion();
    AppConfig::m_GCodeRunSettings.sAbsRel = m_iNumber == 91 ? 1 : 0;
    return eNext::WORD;
}

Exec::eNext Exec::FeedWord()
{
    CAllAxisCtrl::WaitForMotion();
    if (AppConfig::m_bSimulationMode || !AppConfig::m_GCodeRunSettings.bUsePrgmFeed) return eNext::WORD;
    const double fFeed = TokenFloat(Token());
    if (!m_Run.TakePrgmFeed(fFeed, static_cast<unsigned>(m_iLine))) return eNext::END_RUN;
    m_Run.m_fLastPrgmFeed = fFeed;
    return eNext::WORD;
}

Exec::eNext Exec::SpeedWord()
{
    CAllAxisCtrl::WaitForMotion();
    if (!AppConfig::m_bSimulationMode) m_Machine.m_Spindle.SetSpindleSpeed(TokenInt(Token()));
    return eNext::WORD;
}

Exec::eNext Exec::ToolWord()
{
    CAllAxisCtrl::WaitForMotion();
    if (!AppConfig::m_bSimulationMode) m_Run.m_strSelTool = Token();
    return eNext::WORD;
}

// ---- M words: outputs, tool change, waits, sub-programs -------------------------------------------------------------

Exec::eNext Exec::MWord()
{
    static constexpr stNumbers NUMBERS[] = {{0, 1, &Exec::ProgramStop},
                                            {2, 2, &Exec::EndOfProgram},
                                            {3, 4, &Exec::SpindleOn},
                                            {5, 5, &Exec::SpindleOff},
                                            {6, 6, &Exec::ToolChange},
                                            {7, 8, &Exec::CoolantOn},
                                            {9, 9, &Exec::CoolantOff},
                                            {30, 30, &Exec::EndOfProgram},
                                            {66, 66, &Exec::WaitWord},
                                            {80, 80, &Exec::Output80Off},
                                            {81, 81, &Exec::Output80On},
                                            {97, 98, &Exec::CallSubProgram},
                                            {99, 99, &Exec::ReturnFromSubProgram},
                                            {200, 223, &Exec::UserOutput}};
    CAllAxisCtrl::WaitForMotion();
    if (m_Machine.IsStopRequested()) return eNext::END_RUN;
    // Skipped altogether in simulation, M2 and M30 too: the run goes on to the last line of the file.
    if (AppConfig::m_bSimulationMode) return eNext::WORD;
    m_iNumber = TokenInt(Token());
    return Numbered(NUMBERS);
}

// The run is not held: wanted, M0 and M1 only ask for the Start button to be drawn as pressed.
Exec::eNext Exec::ProgramStop()
{
    m_Machine.RequestStart();
    (void)m_Machine.SleepUnlessStopped(BUTTON_PAUSE_US);
    return eNext::WORD;
}

Exec::eNext Exec::EndOfProgram()
{
    m_Run.m_bEndedByWord = true;
    return eNext::END_RUN;
}

Exec::eNext Exec::SpindleOn()
{
    return m_Machine.m_Spindle.StartFromProgram(m_iNumber == 4 ? DIR_CCW : DIR_CW) ? eNext::WORD : eNext::END_RUN;
}

Exec::eNext Exec::SpindleOff()
{
    m_Machine.m_Spindle.StopFromProgram();
    return eNext::WORD;
}

Exec::eNext Exec::CoolantOn()
{
    WriteMCodeOutput(m_iNumber, 1);
    (void)m_Machine.SleepUnlessStopped(OUTPUT_PAUSE_US);
    return eNext::WORD;
}

Exec::eNext Exec::CoolantOff()
{
    WriteMCodeOutput(7, 0);
    WriteMCodeOutput(8, 0);
    return eNext::WORD;
}

Exec::eNext Exec::Output80Off()
{
    WriteMCodeOutput(80, 0);
    return eNext::WORD;
}

Exec::eNext Exec::Output80On()
{
    WriteMCodeOutput(80, 1);
    (void)m_Machine.SleepUnlessStopped(OUTPUT_PAUSE_US);
    return eNext::WORD;
}

Exec::eNext Exec::UserOutput()
{
    WriteMCodeOutput(m_iNumber, m_iNumber % 2 == 0 ? 1 : 0);
    return eNext::WORD;
}

Exec::eNext Exec::ToolChange()
{
    if (m_Machine.m_bExecSingleLine) return eNext::WORD;
    if (m_Run.IsInAtcFile()) {   // it would run itself for ever
        m_Machine.PushErrMsg(QStringLiteral("Error:%1 - Tool Change, M06, must not exist in ATC file").arg(m_iLine));
        return eNext::END_RUN;
    }
    if (AppConfig::m_bEnlManualToolChange) return ManualToolChange();
    if (AppConfig::m_bEnlAutoToolChange) return AutoToolChange();
    return AskForTool();
}

Exec::eNext Exec::ManualToolChange()
{
    const double* const pPos = AppConfig::m_fAxisManualToolChngPos;
    const auto Move = [&](eAxis axis, bool bWait) {
        m_Machine.m_AxisCtrl[axis].SetVelocityAcc(AppConfig::m_fAxisFeed[axis], AppConfig::m_fAxisAcc[axis]);
        return m_Machine.m_AxisCommands.EngMoveAxisAbs(axis, pPos[axis], bWait);   // tells its refusals itself
    };
    m_Machine.PushInfoMsg(QStringLiteral("Tool Change Sequence Started"));
    m_Machine.m_Spindle.TurnOnOffSpindle(false, DIR_CW);
    // The tool leaves the work before anything moves sideways.
    if (!Move(Z_AXIS, true) || !Move(X_AXIS, false) || !Move(Y_AXIS, false)) return eNext::END_RUN;
    const signed char selection[MAX_AXES] = {1, 1, 0, 0, 0};
    if (!m_Machine.m_AxisCommands.WaitForMotionFinish(selection)) return eNext::END_RUN;
    const eNext eAsked = AskForTool();
    if (eAsked == eNext::WORD)
        for (int axis = X_AXIS; axis <= Z_AXIS; ++axis) AxisOf(m_Run.m_CurGCodePos, axis) = pPos[axis];
    return eAsked;
}

// Until the supervision loop has set the pause, and while that stands: a word behind this one may close the spindle's
// relay, with the operator's hand at the tool.
Exec::eNext Exec::AskForTool()
{
    // As told it is not stopped here, where neither kind of tool change is chosen: the operator's hand is on its way.
    if (const QString strTurns = m_Machine.m_Spindle.WhyStillTurning(); !strTurns.isEmpty()) TellNotice(strTurns);
    m_Machine.RaiseToolChange();
    m_Machine.PushInfoMsg(QStringLiteral("Change tool and click start"));
    return m_Machine.WaitForToolChange() && m_Machine.WaitWhilePaused() ? eNext::WORD : eNext::END_RUN;
}

Exec::eNext Exec::AutoToolChange()
{
    if (m_Run.m_strSelTool.empty()) {
        m_Machine.PushInfoMsg(QStringLiteral("No Tool Selected. Please use 'T' command before M06"));
        return eNext::WORD;
    }
    const QString strPath = CGCodeStore::ToolFile(m_Run.m_strSelTool);
    GCodeProgram program;
    bool bChanged = false;
    switch (CGCodeStore::ReadToolFile(strPath, TokenizeToolLine, program)) {
    case CGCodeStore::eToolFile::READ: bChanged = m_Run.RunAtcFile(program); break;
    case CGCodeStore::eToolFile::MISSING:
        m_Machine.PushInfoMsg(QStringLiteral("No ATC commands found. Please check the file, ") + strPath +
                              QStringLiteral(", exists?"));
        break;
    case CGCodeStore::eToolFile::UNREADABLE: m_Machine.PushInfoMsg(QStringLiteral("Unable to open ATC File")); break;
    }
    // The run goes on: wanted. The operator must know with what.
    if (!bChanged && !m_Machine.IsStopRequested())
        TellNotice(QStringLiteral("Tool change not completed by ") + strPath +
                   QStringLiteral(": the old tool may still be in"));
    return eNext::WORD;
}

// M66 Q: a dwell of Q ms. M66 P L, M66 P L Q: until input P does what L says, at most Q ms. The parameters that follow
// end the run once the wait is over: wanted, the rule that the next word follows is common to all M words.
Exec::eNext Exec::WaitWord()
{
    const size_t uWords = m_Tokens.size() - m_uToken;
    const auto Nanoseconds = [](const std::string& strToken) {
        return std::max<qint64>(0, CutTo<qint64>(TokenFloat(strToken) * 1000000.0));
    };
    const auto Stopped = [this] { return m_Machine.IsStopRequested(); };
    if (uWords == 2) CWait::SleepUntil(Stopped, DWELL_STEP_US, Nanoseconds(*TokenBehind(1)));
    if (uWords < 3) return eNext::WORD;

    const quint16 pin = AppConfig::m_lstIPs[CutTo<quint8>(TokenFloat(*TokenBehind(1)))];
    const int iMode = TokenInt(*TokenBehind(2));
    bool bArmed = false;
    const auto Happened = [&] {
        if (m_Machine.IsStopRequested()) return true;
        const int iLevel = CVANTORGPIO::ReadInput(pin);
        switch (iMode) {
        case 1: return bArmed ? iLevel != 0 : (bArmed = iLevel == 0, false);
        case 2: return bArmed ? iLevel != 1 : (bArmed = iLevel == 1, false);
        case 3: return iLevel != 0;
        case 4: return iLevel == 0;
        default: return true;
        }
    };
    CWait::SpinUntil(Happened, uWords == 4 ? Nanoseconds(*TokenBehind(3)) : CWait::FOREVER);
    return eNext::WORD;
}

namespace {
// 0 for text that is no whole number.
unsigned WordUInt(const std::string& strToken)
{
    return QString::fromLatin1(strToken).mid(1).toUInt();
}
}   // namespace

// The number behind the call ends the run once the stacks are set: wanted as with M66, so that calls are seen line by
// line only.
Exec::eNext Exec::CallSubProgram()
{
    if (m_Machine.m_bExecSingleLine) return eNext::WORD;
    if (m_Run.m_lstSubPrgmStartLine.size() >= size_t(CProgramRun::m_iMaxSubPrgmNesting)) {
        m_Machine.PushErrMsg(
            QStringLiteral("Maximum %1 Subprogram nesting is allowed").arg(CProgramRun::m_iMaxSubPrgmNesting));
        return eNext::END_RUN;
    }
    const std::string* pTarget = TokenBehind(1);
    if (!pTarget) return eNext::UNSUPPORTED;
    const unsigned uTarget = WordUInt(*pTarget);
    // Not backwards, and among N words only, for M98 too.
    const GCodeProgram& program = *m_Run.m_pGCodeProgram;
    const auto found = std::find_if(program.begin() + m_iLine, program.end(), [&](const GCodeTokens& tokens) {
        return !tokens.empty() && TokenLetter(tokens[0]) == 'N' && WordUInt(tokens[0]) == uTarget;
    });
    if (found == program.end()) {
        m_Machine.PushErrMsg(QStringLiteral("No line starting with ") + QString::fromLatin1(*pTarget) +
                             QStringLiteral(" is found"));
        return eNext::END_RUN;
    }
    m_Run.m_iCurGCodeLine = std::max(static_cast<int>(found - program.begin()) - 1, 0);
    m_Run.m_lstSubPrgmStartLine.push_back(m_Run.m_iCurGCodeLine);
    m_Run.m_lstSubPrgmRetLine.push_back(m_iLine);
    const std::string* pRepeats = m_Tokens.size() > 2 ? TokenBehind(2) : nullptr;
    m_Run.m_lstSubPrgmRepeats.push_back(pRepeats ? WordUInt(*pRepeats) : 1);
    return eNext::WORD;
}

Exec::eNext Exec::ReturnFromSubProgram()
{
    if (m_Machine.m_bExecSingleLine) return eNext::WORD;
    if (m_Run.m_lstSubPrgmRetLine.empty()) {
        m_Machine.PushErrMsg(QStringLiteral("No line Number defined (M97) to return"));
        return eNext::END_RUN;
    }
    if (--m_Run.m_lstSubPrgmRepeats.back() != 0) {   // 0 repeats wrap round and go on practically for ever
        m_Run.m_iCurGCodeLine = m_Run.m_lstSubPrgmStartLine.back();
        return eNext::WORD;
    }
    m_Run.m_iCurGCodeLine = m_Run.m_lstSubPrgmRetLine.back();
    m_Run.m_lstSubPrgmRepeats.pop_back();
    m_Run.m_lstSubPrgmStartLine.pop_back();
    m_Run.m_lstSubPrgmRetLine.pop_back();
    return eNext::WORD;
}
