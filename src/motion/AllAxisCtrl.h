#pragma once
#include "common/MachineTypes.h"
#include "common/Shared.h"
#include "motion/MachineAxes.h"

#include <QElapsedTimer>

// Makes the pulses of all axes of a coordinated move from one thread, on one clock. There is no interpolator here: the
// caller gives each axis its own tables and pulse counts, chosen so that all end together, and this loop fires every
// axis's edges at their times. It has no pause, no limit and no ramp of its own: a move runs to its end, or stops dead
// with StopAutoMode.
//
// For each move the worker waits until GetMotionState is false, builds tables, sets m_lstAxisToMov and calls
// SetAxisMovParams for each axis that goes further than one step, then StartMotion.
class CAllAxisCtrl
{
public:
    // Starts the thread. Waits first until a loop that was told to stop has gone; if one still runs it starts none.
    static void StartAutoMode(CMachineAxes* pAxes);
    static void StopAutoMode() { m_bAutoMode.Exchange(false); }
    // Hands the prepared move over. False: the auto mode does not run.
    static bool StartMotion();
    // A move is requested or running.
    static bool GetMotionState() { return m_bStartMotion; }
    // Spins until no move is requested or running, or the auto mode has ended.
    static void WaitForMotion();
    // Sleeps until the loop has really gone.
    static void WaitForAutoModeEnd();
    // Makes the thread, which has its stack touched from then on, and touches those of the threads of the axes and of
    // the worker: no page of theirs is fetched in the first job. At the start of the program.
    static void TouchThreads();
    // The thread function, on a thread of its own that no other task ever gets: it stays bound to the pulse core.
    static void RunAutoMode();

    static CMachineAxes* m_pAppCtrl;
    static CShared<bool> m_bAutoMode;          // the loop shall keep running
    static CShared<bool> m_bStartMotion;       // publishes a move, both ways
    static CShared<bool> m_bAutoModeRunning;   // from the hand-over on
    static stAxisToMove m_lstAxisToMov;

private:
    friend class CAutoModeRun;
    // The tracks of one move; X, Y, Z, and A and B on a machine of five axes.
    struct stMove
    {
        stAxisTrack tracks[MAX_AXES];
        size_t uAxes = 0;
    };
    // The steps of the mode, called alike by its thread and by the dry run's form of it: a move until it ends or
    // bAutoMode falls; its end, also of one that was asked for and never begun; the end of the mode, PINS_LOW_DELAY_US
    // behind the last edge.
    static void PrepareMove(stMove& move);
    template <class Clock> static void MakeMove(stMove& move, const CShared<bool>& bAutoMode, Clock& clock);
    static void EndMove();
    static void EndMode();
};
