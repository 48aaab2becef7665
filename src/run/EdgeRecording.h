#pragma once
#include "motion/MachineAxes.h"
#include "platform/virtual/VirtualMachine.h"
#include "run/CsvWriter.h"
#include "run/EdgeQueue.h"

#include <array>
#include <mutex>

// Writes every edge on a pulse or direction pin to a CSV file, in the order of time; edges of one time in the order
// worker, coordinated moves, X to B. On the real clock the edges come from several threads.
class CEdgeRecording : public CEdgeRecorder
{
public:
    explicit CEdgeRecording(CMachineAxes& axes) : m_Axes(axes) {}
    // lBegin: zero of the times, ns of CWait::Now. False: the file cannot be written.
    bool Open(const QString& strPath, qint64 lBegin);
    void OnEdge(int iAxis, ePinRole eRole, int iLevel, qint64 lCarriage) override;
    // Writes all edges before lTime (ns): in a dry run none before it can still come.
    void WriteUntil(qint64 lTime);
    // The same on the real clock, up to now.
    void WriteAllSoFar();
    // Writes the rest. False: not all could be written.
    bool Close();

private:
    static constexpr size_t SOURCES = 2 + MAX_AXES;   // the worker, the coordinated moves, each axis
    qint32 PositionBehind(size_t uSource, int iAxis, int iLevel) const;
    void Merge(qint64 lTime);
    void WriteRow(const stRecordedEdge& edge);

    CMachineAxes& m_Axes;
    CCsvWriter m_Csv;
    std::mutex m_Mutex;   // around queues and file: several threads write pins on the real clock
    std::array<CEdgeQueue, SOURCES> m_Queues;
    qint64 m_lBegin = 0;   // ns, zero of the times
};
