#pragma once
#include "window/KeyControl.h"

#include <QElapsedTimer>

#include <functional>

class CFeedPanel;
class CScreenHost;
class CSpindlePanel;
class CStartStop;
class CSupervision;
class QEvent;
class QKeyEvent;
class QWidget;

// Does with the machine what KeyControl decides of the keys. They are its while the window holds the keyboard.
// Interface thread.
class CKeyPilot
{
public:
    struct stFaces
    {
        QWidget& window;   // that holds the keyboard
        CScreenHost& host;
        CSupervision& supervision;
        CStartStop& startStop;
        CFeedPanel& feeds;
        CSpindlePanel& spindle;
        std::function<void()> fnShowProgram, fnLoadStick, fnMoveWorkZero, fnHomeAll;
    };
    explicit CKeyPilot(stFaces faces) : m_Faces(std::move(faces)) {}

    // ---- Who gets the keys ----
    void Grab(bool bGrab);   // false while text is typed on a screen
    // While a box, a keypad or a file dialog is open every key is its own: the grab would send its figures here and
    // jog.
    void UpdateGrab();
    // The release of a key that is down will come to another window.
    void Drop();
    // Of an event of the application. The emergency stop by key acts also while something modal has the keyboard.
    // True: it was that key.
    bool TakeStopKey(QEvent& event);

    void Press(const QKeyEvent& event);
    void Release(const QKeyEvent& event);
    void ActOnHeldKey();   // once a tick
    bool IsMeasured(int iKey) const { return m_iKeyHoldCode == iKey; }

private:
    bool AreKeysOurs(const QKeyEvent& event) const;
    void Do(const stKeyDecision& decision, int iKey);
    void Jog(eAxis axis, int iSign);
    void EndJog();
    void MoveZero(eKeyAction eAction);
    void SetZero(eKeyAction eAction);
    void LogError(const QString& strMsg);

    stFaces m_Faces;
    qint32 m_iKeyHoldCode = 0;   // -1: used
    QElapsedTimer m_KeyHoldTimer;
    bool m_bContinuous = true;   // the key mode
    double m_fJogStep = 0.05;    // mm
    bool m_bJogging = false;
    bool m_bGrabWanted = true;
};
