#include "run/EdgeRecording.h"

#include "config/AppConfig.h"
#include "time/Wait.h"

#include <limits>

static constexpr size_t SOURCE_WORKER = 0, SOURCE_COORDINATED = 1, SOURCE_AXES = 2;

bool CEdgeRecording::Open(const QString& strPath, qint64 lBegin)
{
    m_lBegin = lBegin;
    return m_Csv.Open(strPath, "time_ns,axis,pin,level,position_units,carriage_pulses");
}

// The counter once the edge has been served: the coordinated loop counts right behind the write of a rising edge, the
// loop of one axis only behind the low time of the whole pulse.
qint32 CEdgeRecording::PositionBehind(size_t uSource, int iAxis, int iLevel) const
{
    const AxisCtrl& axis = m_Axes.m_AxisCtrl[iAxis];
    const auto uPos = static_cast<quint32>(axis.GetCurPosLong());
    if (uSource != SOURCE_COORDINATED || iLevel == 0) return static_cast<qint32>(uPos);
    const auto uStep = static_cast<quint32>(static_cast<qint32>(axis.m_lPosPerPulse));
    return static_cast<qint32>(axis.m_eDir == AppConfig::m_eAxisPosDir[iAxis] ? uPos + uStep : uPos - uStep);
}

void CEdgeRecording::OnEdge(int iAxis, ePinRole eRole, int iLevel, qint64 lCarriage)
{
    size_t uSource = SOURCE_WORKER;
    if (eRole == ROLE_PULSE)
        uSource =
            m_Axes.m_AxisCtrl[iAxis].m_bThreadIdle ? SOURCE_COORDINATED : SOURCE_AXES + static_cast<size_t>(iAxis);
    const qint32 lPos = PositionBehind(uSource, iAxis, iLevel);

    const CVirtualTime* pTime = CVirtualTime::Current();
    const std::lock_guard lock(m_Mutex);
    // Read under the lock: what comes later is not earlier.
    const qint64 lNow = pTime ? pTime->EdgeTime() : CWait::Now() - m_lBegin;
    m_Queues[uSource].Push(
        {lNow, lCarriage, lPos, static_cast<quint8>(iAxis), static_cast<quint8>(eRole), static_cast<quint8>(iLevel)});
}

void CEdgeRecording::WriteUntil(qint64 lTime)
{
    const std::lock_guard lock(m_Mutex);
    Merge(lTime);
}

void CEdgeRecording::WriteAllSoFar()
{
    const std::lock_guard lock(m_Mutex);
    Merge(CWait::Now() - m_lBegin);
}

void CEdgeRecording::Merge(qint64 lTime)
{
    for (;;) {
        CEdgeQueue* pFirst = nullptr;
        const stRecordedEdge* pEdge = nullptr;
        for (CEdgeQueue& queue : m_Queues) {
            const stRecordedEdge* pFront = queue.Front();
            if (!pFront || pFront->lTime >= (pEdge ? pEdge->lTime : lTime)) continue;
            pFirst = &queue;
            pEdge = pFront;
        }
        if (!pFirst) return;
        WriteRow(*pEdge);
        pFirst->Pop();
    }
}

void CEdgeRecording::WriteRow(const stRecordedEdge& edge)
{
    static constexpr const char* AXES[MAX_AXES] = {"X", "Y", "Z", "A", "B"};
    m_Csv.Number(edge.lTime);
    m_Csv.Text(AXES[edge.ucAxis]);
    m_Csv.Text(edge.ucRole == ROLE_PULSE ? "pulse" : "direction");
    m_Csv.Number(edge.ucLevel);
    m_Csv.Number(edge.lPos);
    m_Csv.Number(edge.lCarriage);
    m_Csv.EndRow();
}

bool CEdgeRecording::Close()
{
    if (!m_Csv.IsOpen()) return true;
    WriteUntil(std::numeric_limits<qint64>::max());
    bool bGood = m_Csv.Close();
    for (const CEdgeQueue& queue : m_Queues) bGood &= queue.IsGood();
    return bGood;
}
