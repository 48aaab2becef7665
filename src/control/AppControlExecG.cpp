#include "control/GCodeLineExec.h"
#include "gcode/GCodeWords.h"
#include "motion/AllAxisCtrl.h"

#include <algorithm>

// The words of a line that move or set a speed, and the G words.

using Exec = CGCodeLineExec;

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

AppControl::eWords Exec::ReadTarget(stFloatPoint& target)
{
    if (m_bNothingToMove) return AppControl::eWords::NONE;   // a line of G words alone is walked over once
    const AppControl::eWords eFound = m_App.ReadMoveWords(static_cast<unsigned>(m_iLine), target);
    if (eFound == AppControl::eWords::NONE)
        m_bNothingToMove = std::none_of(m_Tokens.begin(), m_Tokens.end(), [](const std::string& strToken) {
            return TokenLetter(strToken) == 'F' || TokenLetter(strToken) == 'S';
        });
    return eFound;
}

Exec::eNext Exec::MoveDone(bool bOk, const stFloatPoint& target)
{
    if (!bOk) return eNext::END_RUN;
    m_App.m_CurGCodePos = target;
    return eNext::LINE_DONE;
}

Exec::eNext Exec::Rapid()
{
    AppConfig::m_GCodeRunSettings.iState = G00_MOVE;
    stFloatPoint target;
    switch (ReadTarget(target)) {
    case AppControl::eWords::NONE: return eNext::WORD;
    case AppControl::eWords::REFUSED: return eNext::END_RUN;
    case AppControl::eWords::COORDINATES: break;
    }
    m_App.SetAccAndVel(m_App.m_CurGCodePos, target, G00_MOVE);
    return MoveDone(m_App.G00_Move(target, false, false), target);
}

Exec::eNext Exec::Feed()
{
    AppConfig::m_GCodeRunSettings.iState = G01_MOVE;
    stFloatPoint target;
    switch (ReadTarget(target)) {
    case AppControl::eWords::NONE: return eNext::WORD;
    case AppControl::eWords::REFUSED: return eNext::END_RUN;
    case AppControl::eWords::COORDINATES: break;
    }
    return MoveDone(m_App.CutOrFollowSurface(m_App.m_CurGCodePos, target), target);
}

// A line that starts with an axis word: planned as a feed move whatever the modal move is, and never along the surface.
Exec::eNext Exec::ModalMove()
{
    stFloatPoint target;
    if (ReadTarget(target) == AppControl::eWords::REFUSED) return eNext::END_RUN;
    m_App.SetAccAndVel(m_App.m_CurGCodePos, target, G01_MOVE);
    const bool bRapid = AppConfig::m_GCodeRunSettings.iState == G00_MOVE;
    return MoveDone(bRapid ? m_App.G00_Move(target, false, false) : m_App.G01_Move(target, false, false), target);
}

Exec::eNext Exec::RunArc(eDirection eDir)
{
    CAllAxisCtrl::WaitForMotion();
    stGCodeEllipseInfo info;
    info.eDir = eDir;
    if (!m_App.CutArc(static_cast<unsigned>(m_iLine), info)) return eNext::END_RUN;
    m_App.GetAllAxisCurPos(m_App.m_CurGCodePos);
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
    m_App.m_fUnitFactor = bInches ? INCH_TO_MM_MUL_FACTOR : 1.0;
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
        if (m_App.ReadMoveWords(static_cast<unsigned>(m_iLine), target) == AppControl::eWords::REFUSED)
            return eNext::END_RUN;
        if (!m_App.G01_Move(target, true, true)) return eNext::END_RUN;
    }
    return WorkZero();
}

// A completed return ends the run without a message: a plain end, on purpose.
Exec::eNext Exec::WorkZero()
{
    CAllAxisCtrl::WaitForMotion();
    if (!m_App.MoveWorkZeroAll()) return eNext::WORD;
    m_App.GetAllAxisCurPos(m_App.m_CurGCodePos);
    return eNext::END_RUN;
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
    if (!m_App.TakePrgmFeed(fFeed, static_cast<unsigned>(m_iLine))) return eNext::END_RUN;
    m_App.m_fLastPrgmFeed = fFeed;
    return eNext::WORD;
}

Exec::eNext Exec::SpeedWord()
{
    CAllAxisCtrl::WaitForMotion();
    if (!AppConfig::m_bSimulationMode) m_App.SetSpindleSpeed(TokenInt(Token()));
    return eNext::WORD;
}

Exec::eNext Exec::ToolWord()
{
    CAllAxisCtrl::WaitForMotion();
    if (!AppConfig::m_bSimulationMode) m_App.m_strSelTool = Token();
    return eNext::WORD;
}
