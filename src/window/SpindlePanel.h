#pragma once
#include "common/MachineTypes.h"
#include "control/Supervision.h"

#include <QString>

class CdlgMyHorizSlideBar;
class CScreenHost;
class QPushButton;
class QWidget;

// The spindle's two buttons and its speed. A button that is off locks its direction: with the other one running both
// relays would close. Interface thread.
class CSpindlePanel
{
public:
    CSpindlePanel(QPushButton& CW, QPushButton& CCW, CdlgMyHorizSlideBar& speed, CScreenHost& host)
        : m_BtnCW(CW), m_BtnCCW(CCW), m_SpindleSpeedBar(speed), m_Host(host)
    {
    }
    void SetUp(QWidget* pFrame);   // the bar

    // ---- The operator's ----
    void ToggleCW();
    void ToggleCCW();
    void ToggleByKey();            // clockwise, or off
    void SetSpeed(short iStep);    // 1 to 24, or refused
    void ChangeSpeed(int iStep);   // by a key; the bar follows
    void EnableSpeed(bool bEnable);
    static QString NoSpeedControl();   // a refusal

    // ---- What the worker does ----
    void ShowStart(qint32 iOperation);   // of an operation
    void ShowEnd(const stOperationEnd& end);
    void ShowToolChange();
    void ShowOutputs();     // what the relays are: behind a simulation nothing is shown that was simulated
    void FollowProgram();   // where it has switched the spindle

private:
    void Toggle(eDirection eDir, QPushButton& button, QPushButton& other, const QString& strName);
    void ShowOn(QPushButton& button, QPushButton& other, const QString& strName);

    QPushButton &m_BtnCW, &m_BtnCCW;
    CdlgMyHorizSlideBar& m_SpindleSpeedBar;
    CScreenHost& m_Host;
};
