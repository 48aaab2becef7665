#pragma once
#include "common/MachineTypes.h"

#include <functional>

class CScreenHost;
class CSpindlePanel;
class CSupervision;
class Ui_MainWindow;

// The plain buttons at the right of the window, which move the machine, set its zero, and keep its settings. Each
// paints itself while it acts. Interface thread.
class CMachineButtons
{
public:
    // fnKeyConfirms: a held key stands for the answer to the box before a move of all axes. fnWatchStop: acts on the
    // stop input, in a wait without ticks.
    CMachineButtons(const Ui_MainWindow& form, CScreenHost& host, CSupervision& supervision, CSpindlePanel& spindle,
                    std::function<bool()> fnKeyConfirms, std::function<void()> fnWatchStop)
        : m_Form(form), m_Host(host), m_Supervision(supervision), m_Spindle(spindle),
          m_fnKeyConfirms(std::move(fnKeyConfirms)), m_fnWatchStop(std::move(fnWatchStop))
    {
    }

    void SetWorkZero();
    void MoveWorkZero();
    void MoveZSafePos();
    void SetZ0WithZProbe();
    void ShowWorkZero();
    void MoveHome(eAxis axis);
    void SaveSettings();
    void ToggleSimulation();

    // The button that has waited for the end of this operation.
    void ShowEnd(qint32 iOperation);

private:
    bool Refused(const QString& strWhy);
    bool MayMoveMachine();
    bool SaveConfig();

    const Ui_MainWindow& m_Form;
    CScreenHost& m_Host;
    CSupervision& m_Supervision;
    CSpindlePanel& m_Spindle;
    std::function<bool()> m_fnKeyConfirms;
    std::function<void()> m_fnWatchStop;
};
