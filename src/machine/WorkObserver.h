#pragma once
#include "common/MachineTypes.h"
#include "common/Shared.h"

#include <type_traits>
#include <utility>

struct stGCodeEllipseInfo;

enum eWork
{
    WORK_OPERATION,       // fValue: its code
    WORK_ZERO,            // all axes go to the work zero
    WORK_PLAN,            // the speeds of a straight move; from, to, eCmnd
    WORK_MOVE,            // straight and coordinated; to, eCmnd, bPlan, bWait
    WORK_ARC,             // *pArc; whole at its end
    WORK_AXIS_TO,         // a single axis to fValue; bWait
    WORK_AXIS_BY,         // by fValue; bWait
    WORK_AXIS_SPEED,      // of a single axis; fValue, fAcc
    WORK_RESET_SPEEDS,    // of all axes, to the working feeds
    WORK_PRGM_FEED,       // fValue: as programmed
    WORK_SPINDLE_SPEED,   // fValue: as programmed
    WORK_CARVING_PASS
};

// A command to the machine. mm, mm/s, mm/s^2.
struct stWorkCommand
{
    eWork eKind;
    eAxis axis = X_AXIS;
    eGMoveCmnd eCmnd = G01_MOVE;
    stFloatPoint from{}, to{};
    bool bPlan = false, bWait = false;
    double fValue = 0.0, fAcc = 0.0;
    const stGCodeEllipseInfo* pArc = nullptr;
    qint32 iLine = -1;   // of the program that runs, 0-based; below 0: none
};

// Told what the machine is commanded to do, on the thread that commands it: recordings, previews, tests. A command may
// hold others, such as the chords of an arc; they lie between its begin and its end.
class CWorkObserver
{
public:
    virtual ~CWorkObserver() = default;
    virtual void OnWork(const stWorkCommand& command) = 0;
    virtual void OnWorkEnd(const stWorkCommand&, bool /*bOk*/) {}
};

// The machine as one that is watched: its parts do their commands through here.
class CWatchedWork
{
public:
    CWorkObserver* m_pWorkObserver = nullptr;   // null on the machine; set while nothing runs
    CShared<qint32> m_iWorkLine = -1;           // of the program that runs; written by the worker

    // fnDo is the command, fnTell makes its record, and is called only where somebody watches.
    template <class Tell, class Do> auto Watched(Tell&& fnTell, Do&& fnDo) const
    {
        if (!m_pWorkObserver) return fnDo();
        stWorkCommand command = fnTell();
        command.iLine = m_iWorkLine;
        m_pWorkObserver->OnWork(command);
        if constexpr (std::is_void_v<decltype(fnDo())>) {
            fnDo();
            m_pWorkObserver->OnWorkEnd(command, true);
        } else {
            const bool bOk = fnDo();
            m_pWorkObserver->OnWorkEnd(command, bOk);
            return bOk;
        }
    }
};
