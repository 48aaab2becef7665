#include "run/MoveRecording.h"

#include "common/UnitConverter.h"
#include "config/AppConfig.h"
#include "motion/AllAxisCtrl.h"
#include "time/Wait.h"

#include <algorithm>
#include <cmath>

static constexpr const char* g_szAxes[MAX_AXES] = {"X", "Y", "Z", "A", "B"};

bool CMoveRecording::Open(const QString& strPath, qint64 lBegin)
{
    m_lBegin = lBegin;
    std::string strHeader = "number,line,mode";
    for (const char* szWhat : {"from", "to", "reached"})
        for (int axis = 0; axis < AppConfig::m_iMchType; ++axis)
            strHeader += std::string(",") + szWhat + "_" + g_szAxes[axis];
    for (int axis = 0; axis < AppConfig::m_iMchType; ++axis)
        for (const char* szWhat : {"acc", "const", "dec"})
            strHeader += std::string(",") + szWhat + "_" + g_szAxes[axis];
    return m_Csv.Open(strPath, strHeader + ",start_ns,end_ns");
}

void CMoveRecording::BeginCounting()
{
    const std::lock_guard lock(m_Mutex);
    m_Figures = {};
    m_Path = {};
}

void CMoveRecording::OnWork(const stWorkCommand& command)
{
    m_lLine = command.iLine + 1;
    if (command.eKind == WORK_MOVE) m_bRapid = command.eCmnd == G00_MOVE;
}
void CMoveRecording::OnAxisMove(int iAxis)
{
    Begin(1 + iAxis);
}
void CMoveRecording::OnCoordinatedMove()
{
    Begin(0);
}
void CMoveRecording::OnMoveEnd(int iAxis)
{
    End(1 + iAxis);
}

void CMoveRecording::Begin(int iSlot)
{
    End(iSlot);   // a move that was given up before it began has no end
    stMove move{};
    move.lNumber = ++m_lNumber;
    move.lLine = m_lLine;
    move.iSlot = iSlot;
    move.bRapid = iSlot != 0 || m_bRapid;
    move.lStart = CWait::Now();
    for (int axis = 0; axis < AppConfig::m_iMchType; ++axis) {
        const AxisCtrl& ctrl = m_Axes.m_AxisCtrl[axis];
        const auto n = static_cast<size_t>(axis);
        move.from[n] = move.to[n] = ctrl.GetCurPosLong();
        if (iSlot == 0 ? !CAllAxisCtrl::m_lstAxisToMov[axis] : iSlot != 1 + axis) continue;
        move.to[n] = ctrl.m_lTargetPos;
        move.counts[n] = {ctrl.m_uAccPulses, ctrl.m_uConstPulses, ctrl.m_uDecPulses};
    }
    const std::lock_guard lock(m_Mutex);
    m_lstOpen.push_back(move);
}

void CMoveRecording::End(int iSlot)
{
    const std::lock_guard lock(m_Mutex);
    const auto open = std::find_if(m_lstOpen.begin(), m_lstOpen.end(),
                                   [iSlot](const stMove& move) { return move.iSlot == iSlot && !move.bDone; });
    if (open == m_lstOpen.end()) return;
    open->bDone = true;
    open->lEnd = CWait::Now();
    for (int axis = 0; axis < AppConfig::m_iMchType; ++axis)
        open->reached[static_cast<size_t>(axis)] = m_Axes.m_AxisCtrl[axis].GetCurPosLong();
    Count(*open);
    WriteFinished();
}

static stFloatPoint Point(const std::array<qint32, MAX_AXES>& units)
{
    stFloatPoint point;
    for (int axis = 0; axis < MAX_AXES; ++axis)
        AxisOf(point, axis) = CUnitConverter::GetDouble(static_cast<int>(units[static_cast<size_t>(axis)]));
    return point;
}

// A move of one axis says nothing of the others, which may move at the same time.
bool CMoveRecording::IsOf(const stMove& move, size_t uAxis)
{
    return move.iSlot == 0 || static_cast<size_t>(move.iSlot) == uAxis + 1;
}

void CMoveRecording::Count(const stMove& move)
{
    stMoveFigures& figures = m_Figures;
    ++(move.iSlot == 0 ? figures.lCoordinated : figures.lSingle);
    for (size_t n = 0; n < MAX_AXES; ++n) {
        const qint64 lStep = std::max<qint64>(1, m_Axes.m_AxisCtrl[n].m_lPosPerPulse);
        if (IsOf(move, n))
            figures.uPulses += static_cast<quint64>(std::abs(qint64(move.reached[n]) - move.from[n]) / lStep);
        const auto [lLow, lHigh] = std::minmax(move.from[n], move.reached[n]);
        figures.lowest[n] = figures.bEnvelope ? std::min(figures.lowest[n], lLow) : lLow;
        figures.highest[n] = figures.bEnvelope ? std::max(figures.highest[n], lHigh) : lHigh;
    }
    figures.bEnvelope = true;

    const stFloatPoint from = Point(move.from);
    stFloatPoint to = Point(move.reached);
    for (int axis = 0; axis < MAX_AXES; ++axis)
        if (!IsOf(move, static_cast<size_t>(axis))) AxisOf(to, axis) = AxisOf(from, axis);
    (move.bRapid ? figures.fRapidPath : figures.fFeedPath) += std::hypot(to.x - from.x, to.y - from.y, to.z - from.z);
    if (m_fnOnMove) m_fnOnMove(from, to);
    if (m_bKeepPath) m_Path.AddMove(from, to, move.bRapid);
}

void CMoveRecording::WriteFinished()
{
    for (; !m_lstOpen.empty() && m_lstOpen.front().bDone; m_lstOpen.pop_front())
        if (m_Csv.IsOpen()) WriteRow(m_lstOpen.front());
}

void CMoveRecording::WriteRow(const stMove& move)
{
    m_Csv.Number(move.lNumber);
    if (move.lLine > 0)
        m_Csv.Number(move.lLine);
    else
        m_Csv.Empty();
    m_Csv.Text(move.iSlot == 0 ? "auto" : "single");
    const auto uAxes = static_cast<size_t>(AppConfig::m_iMchType);
    for (const auto* pPositions : {&move.from, &move.to, &move.reached})
        for (size_t n = 0; n < uAxes; ++n)
            if (IsOf(move, n))
                m_Csv.Mm((*pPositions)[n]);
            else
                m_Csv.Empty();
    for (size_t n = 0; n < uAxes; ++n)
        for (const quint32 uPulses : move.counts[n])
            if (IsOf(move, n))
                m_Csv.Number(uPulses);
            else
                m_Csv.Empty();
    m_Csv.Number(move.lStart - m_lBegin);
    m_Csv.Number(move.lEnd - m_lBegin);
    m_Csv.EndRow();
}

bool CMoveRecording::Close()
{
    for (int slot = 0; slot <= MAX_AXES; ++slot) End(slot);
    const std::lock_guard lock(m_Mutex);
    return m_Csv.Close();
}

stMoveFigures CMoveRecording::Figures()
{
    const std::lock_guard lock(m_Mutex);
    return m_Figures;
}
