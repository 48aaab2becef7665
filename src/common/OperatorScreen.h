#pragma once
#include "common/MachineTypes.h"

// What the worker and the stores may say to whoever operates the machine: the window, the headless runner, a test.
// Every call may come from any thread and returns at once; the window posts it to the interface thread. Whoever is one
// answers each call: none is dropped unseen.
class COperatorScreen
{
public:
    virtual ~COperatorScreen();

    // An operation is about to start: other work is refused from now on.
    virtual void EnableDisableWindows() = 0;
    virtual void ClearToolGraphics() = 0;
    // The running operation has ended or was given up.
    virtual void OnOperationFinish() = 0;
    // The work zero has moved on a machine with home sensors.
    virtual void UpdateWorkArea() = 0;

    virtual void AddLogMsg(const QString& strMsg, eAppMsgType eType) = 0;
    // A box with the single button Ok, for what the operator must have seen.
    virtual void ShowCriticalBox(const QString& strTitle, const QString& strText) = 0;

    // The screen in force. Never null: without a window there is one that drops everything. Set before threads start.
    static COperatorScreen& Get();
    static void Set(COperatorScreen* pScreen);
};

// A line in white on the log of the screen in force.
void TellNotice(const QString& strText);
