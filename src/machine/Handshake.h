#pragma once
#include "common/Operation.h"
#include "common/Shared.h"

#include <QtGlobal>

// What the interface thread and the worker tell each other: which operation runs, pause, stop, end, and what the
// worker asks of the operator. Each flag is raised and lowered here, by the one of the two that is named.
// It always holds: behind the end of an operation, by whatever road, no flag of it stands; every sleep here ends within
// 50 ms of a stop; a worker that wakes from a wait asks for the stop again before it goes on.
class CHandshake
{
public:
    // ---- Interface ----
    void RequestPause() { m_bPause = true; }   // takes effect between two moves
    void Resume() { m_bPause = false; }
    bool TogglePause();   // whether it is paused now
    // The running job is given up, whatever it waits for.
    void Abandon();
    // Nothing of the last operation is left for the next.
    void ForgetLast();
    void Begin(eOperation eCode);
    void ChooseSingleLine(bool bSingle) { m_bExecSingleLine = bSingle; }   // of a program, until the worker leaves
    // The interface has taken note of the end, by whatever road it came: nothing of the operation is left standing.
    void TakeNoteOfEnd();
    // True once for each request of the worker.
    bool TakeFinished() { return m_bOperationFinished.Exchange(false); }
    bool TakeStartRequest() { return m_bStartBtnPressRequest.Exchange(false); }
    // The operator is to change the tool: the pause is set for it. False: nobody asks.
    bool AnswerToolChange();
    void DropToolChange() { m_bToolChangePause = false; }   // nobody is to change it any more

    // ---- Worker ----
    // Holds while the pause is set, which is looked at once a second. False: there was a stop.
    bool WaitWhilePaused() const;
    // Holds until the operator's side has taken the request for another tool, whether or not it has been answered
    // since. False: stopped meanwhile.
    bool WaitForToolChange();
    void RaiseToolChange() { m_bToolChangePause = true; }
    // False: a stop has cut it short.
    bool SleepUnlessStopped(qint64 lUs) const;
    void RequestStart() { m_bStartBtnPressRequest = true; }
    // Its last stores. bFinished: the interface is to take note; after a stop it has done so.
    void Leave(bool bFinished);

    // ---- Any thread ----
    // An emergency stop, or a job that was given up: wherever the worker asks the one it asks the other.
    bool IsStopRequested() const;
    // The same behind a store that whoever stops reads behind his own.
    bool IsStopRequestedBehind() const;
    bool IsAbandoned() const { return m_bAbandoned; }
    bool IsWorkerBusy() const { return m_bWorkerBusy; }
    // What the worker has done is done: said by its last two stores, for a thread sanitizer that does not see the lock
    // inside wait().
    void ReadLeave() const;

    CShared<qint32> m_eOperation = OP_NONE;   // until the interface has taken note of the end
    CShared<bool> m_bPause = false;           // moves wait while it is set
    CShared<bool> m_bOperationFinished = false;
    CShared<bool> m_bStartBtnPressRequest = false;   // M00, M01: draw Start as pressed
    CShared<bool> m_bToolChangePause = false;        // a tool change asks for the pause
    CShared<bool> m_bExecSingleLine = false;

private:
    CShared<bool> m_bAbandoned = false;    // from StopAll to the next start; never asked by the axes, which still jog
    CShared<bool> m_bWorkerBusy = false;   // from a start to the worker's last word
};
