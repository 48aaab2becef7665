#pragma once
#include "control/AppControl.h"
#include "control/Supervision.h"
#include "platform/virtual/VirtualMachine.h"
#include "run/HeadlessScreen.h"
#include "run/Options.h"

// Stands in for the operator of a run that nobody watches: tells the worker's messages, answers tool changes, works
// the inputs when it is their time, and stops the machine. In a dry run it is called on the worker's thread whenever
// the worker sleeps; on the real clock by the main thread every 34 ms.
class CAutoOperator
{
public:
    CAutoOperator(AppControl& app, CHeadlessScreen& screen, const stRunOptions& options);
    ~CAutoOperator();

    // Puts inputs and the time limit on the script of a dry run.
    void PlanEvents(CVirtualTime& time);
    // On the real clock: what has become due. lNow: ns since the run began.
    void DoWhatIsDue(qint64 lNow);
    qint64 NextDue() const;   // ns since the run began, or FOREVER

    void Tick();
    void TakeMessages();
    // Of one that is over, and of one that was given up.
    void EndOperation();
    // Pulses cease, without a ramp; the job is given up. strWhy is told as an error; eWhy is what the process ends
    // with.
    void EmergencyStop(const QString& strWhy, eExit eWhy);

    // What the run has come to so far.
    eExit Result() const { return m_bErrors && m_eResult == EXIT_DONE ? EXIT_WRONG : m_eResult; }
    int ToolChanges() const { return m_iToolChanges; }

private:
    enum eToolChange
    {
        TOOL_NONE,
        TOOL_HELD,      // the pause is set; the worker has not been seen to wait in it
        TOOL_ANSWERED   // the pause ends at a set time
    };
    void AnswerToolChange();
    void LiftPause();
    bool IsWorkerWaiting() const;
    void WatchInputs();
    void ChangeInput(const stTimedInput& input);
    int PinOf(const stTimedInput& input) const;
    static void OnSleep(qint64 lUs);

    AppControl& m_App;
    CSupervision m_Supervision;
    CHeadlessScreen& m_Screen;
    const stRunOptions& m_Options;
    std::vector<stTimedInput> m_lstInputs;   // in the order of time
    size_t m_uNextInput = 0;
    eToolChange m_eToolChange = TOOL_NONE;
    qint64 m_lLiftAt = 0;   // ns
    int m_iToolChanges = 0;
    bool m_bStopping = false, m_bErrors = false;
    eExit m_eResult = EXIT_DONE;
};
