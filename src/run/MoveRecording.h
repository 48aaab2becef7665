#pragma once
#include "common/Shared.h"
#include "machine/WorkObserver.h"
#include "motion/MachineAxes.h"
#include "motion/MotionObserver.h"
#include "preview/ToolPath.h"
#include "run/CsvWriter.h"

#include <array>
#include <deque>
#include <functional>
#include <mutex>

// Figures of all moves of the part of a run that is counted.
struct stMoveFigures
{
    qint64 lCoordinated = 0, lSingle = 0;
    quint64 uPulses = 0;                                      // made
    double fRapidPath = 0.0, fFeedPath = 0.0;                 // mm, in X, Y and Z
    std::array<qint32, MAX_AXES> lowest = {}, highest = {};   // position units
    bool bEnvelope = false;
};

// Watches the moves of a run: figures, the tool path, and a CSV row a move. Commands and moves are told by the worker
// and, on the real clock, the ends of moves by the threads that make the pulses.
class CMoveRecording : public CMotionObserver, public CWorkObserver
{
public:
    explicit CMoveRecording(CMachineAxes& axes) : m_Axes(axes) {}
    // lBegin: zero of the times, ns of CWait::Now. False: the file cannot be written.
    bool Open(const QString& strPath, qint64 lBegin);
    // Figures and path begin anew here; the rows go on.
    void BeginCounting();
    // Each straight move as made, mm, with the recording's lock held.
    std::function<void(const stFloatPoint& from, const stFloatPoint& to)> m_fnOnMove;
    void KeepPath(bool bKeep) { m_bKeepPath = bKeep; }

    void OnWork(const stWorkCommand& command) override;
    void OnAxisMove(int iAxis) override;
    void OnCoordinatedMove() override;
    void OnMoveEnd(int iAxis) override;

    // Ends what nobody has told the end of. False: not all rows could be written.
    bool Close();
    stMoveFigures Figures();
    const CToolPath& Path() const { return m_Path; }   // when nothing moves any more

private:
    struct stMove
    {
        qint64 lNumber, lLine;
        int iSlot;   // 0 coordinated, 1 to 5 the axes
        bool bRapid, bDone;
        qint64 lStart, lEnd;   // ns
        std::array<qint32, MAX_AXES> from, to, reached;
        std::array<std::array<quint32, 3>, MAX_AXES> counts;   // pulses: acceleration, constant speed, deceleration
    };
    qint64 Now() const;
    void Begin(int iSlot);
    void End(int iSlot);
    static bool IsOf(const stMove& move, size_t uAxis);
    void Count(const stMove& move);
    void WriteFinished();
    void WriteRow(const stMove& move);

    CMachineAxes& m_Axes;
    CShared<qint64> m_lLine = 0;   // of the program (1-based) that commands the coming moves; 0: none
    CShared<bool> m_bRapid = false;
    std::mutex m_Mutex;
    std::deque<stMove> m_lstOpen;   // in the order of their numbers; the first one has not ended
    qint64 m_lNumber = 0, m_lBegin = 0;
    stMoveFigures m_Figures;
    CToolPath m_Path;
    bool m_bKeepPath = false;
    CCsvWriter m_Csv;
};
