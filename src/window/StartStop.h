#pragma once
#include "control/Supervision.h"

#include <QString>

#include <functional>

class CMyRndBtn;
class CScreenHost;
class CScreenStack;
class QPushButton;

// The round buttons Start, Pause, Reset and Stop: their looks, what they refuse, and what they do; and the two plain
// buttons under the jog panel, which do the same. A round button latches: here it is brought back. Interface thread.
class CStartStop
{
public:
    struct stWidgets
    {
        CMyRndBtn &start, &pause, &reset, &stop;
        QPushButton &startPause, &plainReset;
    };
    // fnShowEnd shows what the end of an operation has come to, and calls ShowIdle.
    CStartStop(const stWidgets& widgets, CScreenHost& host, CSupervision& supervision, CScreenStack& screens,
               std::function<void(const stOperationEnd&)> fnShowEnd)
        : m_Widgets(widgets), m_Host(host), m_Supervision(supervision), m_Screens(screens),
          m_fnShowEnd(std::move(fnShowEnd))
    {
    }
    void SetUp();   // places, colours and captions

    void PressStart();
    // A key, the start input or the program has drawn Start as pressed; the touch that follows is the press.
    void TouchLitStart();
    void LightStart();   // drawn as pressed, and starts nothing
    void PressPause();
    void PressReset();
    void PressPlainStart();
    void PressPlainReset();

    // ---- Emergency stop ----
    void PressStop();
    void ReleaseStop();
    void ToggleStop();   // by a key
    void WatchStopInput();
    void StopForGood();   // behind an unknown error; nothing releases it

    void ShowIdle();   // no operation runs
    // Springs back 100 ms from now, unless its press has succeeded meanwhile.
    static void SpringBack(CMyRndBtn& button);

private:
    void RefuseStart(const QString& strMsg);
    void Abandon(const QString& strMsg);
    void ReleaseStartAndPause();

    stWidgets m_Widgets;
    CScreenHost& m_Host;
    CSupervision& m_Supervision;
    CScreenStack& m_Screens;
    std::function<void(const stOperationEnd&)> m_fnShowEnd;
    bool m_bJogPanelTaken = false;   // by a resume; given back at the end of the operation
};
