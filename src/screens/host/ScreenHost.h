#pragma once
#include "common/MachineTypes.h"

#include <QObject>
#include <QString>

class AppControl;
class CMachine;
class QPushButton;

// What a screen asks of the window that shows it. The window implements it and is the screen's parent; tests give
// their own. Interface thread.
class CScreenHost
{
public:
    virtual ~CScreenHost() = default;

    virtual AppControl& Machine() = 0;
    virtual void AddLogMsg(const QString& strMsg, eAppMsgType eType) = 0;
    // True while the emergency stop is in force, which is then also logged.
    virtual bool IsEmergencyStopOn() = 0;
    // Paints the button with the style 150 ms from now, so that a press stays visible. Returns at once; a button that
    // is gone by then is no fault.
    virtual void ResetBtnBkGnd(QPushButton* pButton, const QString& strStyle) = 0;
    // The keypad, with the validation contract of the whole system: the value is clamped into fRange.x to fRange.y and
    // a clamp is logged; a range of zeros checks nothing; a cancelled keypad returns strValue. The button, if any, is
    // green meanwhile and shows the result with iPrecision decimals, with "\n" and strCtrlTxt behind it if not empty.
    virtual double OpenKeypad(QPushButton* pButton, const QString& strTitle, const QString& strCtrlTxt,
                              const QString& strValue, stFloatPoint fRange, bool bShowSign, quint16 iPrecision) = 0;

    virtual void ClearToolGraphics() = 0;
    // What follows from a change of home sensors, the PWM, or the feed settings on other screens.
    virtual void EnlMchHomingOptions(bool bEnable) = 0;
    virtual void EnableDisableSpindleSpeedCtrl(bool bEnable) = 0;
    virtual void UpdateUserSettings() = 0;       // CDlgUserSettings::ConfigSettings
    virtual void GrabKeyboard(bool bGrab) = 0;   // the numeric keypad works the machine while the window holds it
    virtual void EnableJogPanel(bool bEnable) = 0;
    virtual void EnableScreenSelectors(bool bEnable) = 0;   // off while shapes are edited; a job's own rule stays

    // ---- What screens ask of the machine ----
    CMachine& MachineParts();   // for one that starts no job
    qint32 Operation();
    bool IsMachineFree();     // no operation runs, its worker has ended, and no axis moves
    bool IsWorkerRunning();   // for a moment also after a stop
    // Why not, in the operator's words; empty: nothing is in the way.
    QString WhyNotFree();
    QString WhyNotHomed();
    bool Refused(const QString& strWhy);   // logs it, and answers whether there was one
    // False: not started, and the worker has said why.
    bool StartHoming();
    bool StartHoming(eAxis axis);   // this one alone
    bool StartZProfile();
};

// The host of a screen. The screen has been given its parent.
CScreenHost& HostOf(const QObject& screen);
