#include "window/SpindlePanel.h"

#include "config/AppConfig.h"
#include "machine/Machine.h"
#include "screens/host/ScreenHost.h"
#include "widgets/ButtonStyle.h"
#include "widgets/DlgMyHorizSlideBar.h"

#include <QPushButton>

#include <algorithm>

static constexpr short FULL_SPEED = 24;   // step of the bar at which the highest frequency is exact
static constexpr QPoint BAR(75, 15);
static constexpr double SPEED_AT_START = 8.0;
static constexpr int LOWEST_SPEED = 1, HIGHEST_SPEED = 15;   // by key; the bar itself goes to 24, wanted

static const QString SPINDLE_CW = QStringLiteral("Spindle\nCW "), SPINDLE_CCW = QStringLiteral("Spindle\nCCW ");
static const QString ON = QStringLiteral("ON"), OFF = QStringLiteral("OFF");

static void Show(QPushButton& button, bool bEnabled, const QString& strStyle, const QString& strText)
{
    button.setEnabled(bEnabled);
    button.setStyleSheet(strStyle);
    button.setText(strText);
}

// ---- The operator's -------------------------------------------------------------------------------------------------

void CSpindlePanel::SetUp(QWidget* pFrame)
{
    m_SpindleSpeedBar.setParent(pFrame);
    m_SpindleSpeedBar.setObjectName(QStringLiteral("m_SpindleSpeedBar"));
    m_SpindleSpeedBar.move(BAR);
    m_SpindleSpeedBar.show();
    stFloatPoint range;
    range.x = 1.0;
    range.y = FULL_SPEED;
    m_SpindleSpeedBar.SetSliderRange(range);
    m_SpindleSpeedBar.setValue(SPEED_AT_START);
    m_SpindleSpeedBar.setEnabled(AppConfig::m_bPWMCtrlUsed);
}

void CSpindlePanel::Toggle(eDirection eDir, QPushButton& button, QPushButton& other, const QString& strName)
{
    CSpindle& spindle = m_Host.MachineParts().m_Spindle;
    const bool bOtherTurned = spindle.IsClosed(Opposite(eDir));
    const bool bOn = spindle.Toggle(eDir);
    if (bOtherTurned) ShowOutputs();   // both are off now
    button.setStyleSheet(bOn ? BTN_BKGND_GREEN : BTN_BKGND_GRAY);
    button.setText(strName + (bOn ? ON : OFF));
    other.setEnabled(!bOn);
    if (bOn && AppConfig::m_bPWMCtrlUsed) SetSpeed(m_SpindleSpeedBar.GetValue());
}

void CSpindlePanel::ToggleCW()
{
    Toggle(DIR_CW, m_BtnCW, m_BtnCCW, SPINDLE_CW);
}

void CSpindlePanel::ToggleCCW()
{
    m_BtnCCW.setStyleSheet(BTN_BKGND_BLUE);
    Toggle(DIR_CCW, m_BtnCCW, m_BtnCW, SPINDLE_CCW);
}

void CSpindlePanel::ToggleByKey()
{
    ToggleCW();   // counter-clockwise too it goes off
}

QString CSpindlePanel::NoSpeedControl()
{
    return QStringLiteral("Spindle Speed Control not available");
}

void CSpindlePanel::SetSpeed(short iStep)
{
    if (!AppConfig::m_bPWMCtrlUsed || AppConfig::m_GCodeRunSettings.bUsePrgmSpindleSpeed)
        return m_Host.AddLogMsg(NoSpeedControl(), MSG_ERROR);
    stPwmSpindleSettings& pwm = AppConfig::m_stPwmSpndlSettings;
    if (iStep == FULL_SPEED)
        pwm.iCurFreq = pwm.iMaxFreq;
    else   // wraps at 16 bits
        pwm.iCurFreq = static_cast<quint16>(pwm.iMinFreq + static_cast<quint32>(iStep - 1) * pwm.iFreqStep);
}

void CSpindlePanel::ChangeSpeed(int iStep)
{
    const int iWanted = m_SpindleSpeedBar.GetValue() + iStep;
    // Up ends at 15, also from above; down goes by one from wherever the bar is.
    const auto iSpeed =
        static_cast<short>(iStep > 0 ? std::min(iWanted, HIGHEST_SPEED) : std::max(iWanted, LOWEST_SPEED));
    SetSpeed(iSpeed);
    m_SpindleSpeedBar.setValue(iSpeed);
}

void CSpindlePanel::EnableSpeed(bool bEnable)
{
    m_SpindleSpeedBar.setEnabled(bEnable);
    if (bEnable) SetSpeed(m_SpindleSpeedBar.GetValue());
}

// ---- What the worker does -------------------------------------------------------------------------------------------

void CSpindlePanel::ShowOn(QPushButton& button, QPushButton& other, const QString& strName)
{
    Show(button, true, BTN_BKGND_GREEN, strName + ON);
    Show(other, false, BTN_BKGND_GRAY, other.text());
}

void CSpindlePanel::ShowStart(qint32 iOperation)
{
    if (iOperation == OP_GCODE && AppConfig::m_GCodeRunSettings.bUsePrgmSpindleSpeed)
        m_SpindleSpeedBar.setEnabled(false);
    if (!IsCutting(iOperation)) return;
    if (AppConfig::m_bAutoSpindleOnCW)
        ShowOn(m_BtnCW, m_BtnCCW, SPINDLE_CW);
    else if (AppConfig::m_bAutoSpindleOnCCW)
        ShowOn(m_BtnCCW, m_BtnCW, SPINDLE_CCW);
}

void CSpindlePanel::ShowEnd(const stOperationEnd& end)
{
    if (end.iOperation == OP_GCODE) m_SpindleSpeedBar.setEnabled(AppConfig::m_bPWMCtrlUsed);
    if (IsJob(end.iOperation) && AppConfig::m_bSimulationMode) return ShowOutputs();
    if (!end.bSpindleOff) return;
    Show(m_BtnCW, true, BTN_BKGND_GRAY, SPINDLE_CW + OFF);
    Show(m_BtnCCW, true, BTN_BKGND_GRAY, SPINDLE_CCW + OFF);
}

void CSpindlePanel::ShowOutputs()
{
    CSpindle& spindle = m_Host.MachineParts().m_Spindle;
    spindle.FollowRelays();
    Show(m_BtnCW, true, BTN_BKGND_GRAY, SPINDLE_CW + OFF);
    Show(m_BtnCCW, true, BTN_BKGND_GRAY, SPINDLE_CCW + OFF);
    if (spindle.IsClosed(DIR_CW)) ShowOn(m_BtnCW, m_BtnCCW, SPINDLE_CW);
    if (spindle.IsClosed(DIR_CCW)) ShowOn(m_BtnCCW, m_BtnCW, SPINDLE_CCW);
}

// "Off" in lower case and only here: wanted, it tells a tool change from a spindle that was switched off.
void CSpindlePanel::ShowToolChange()
{
    Show(m_BtnCW, true, BTN_BKGND_GRAY, SPINDLE_CW + QStringLiteral("Off"));
    m_BtnCCW.setStyleSheet(BTN_BKGND_GRAY);
    m_BtnCCW.setText(SPINDLE_CCW + QStringLiteral("Off"));
}

void CSpindlePanel::FollowProgram()
{
    if (AppConfig::m_bAutoSpindleOnCW || AppConfig::m_bAutoSpindleOnCCW ||
        !AppConfig::m_bSpindleOnOffStatusChangeInGCode)
        return;
    if (!AppConfig::m_bSpindleOn) {
        // The same text on both: wanted, the other direction is the one that a program leaves.
        for (QPushButton* pButton : {&m_BtnCW, &m_BtnCCW}) Show(*pButton, true, BTN_BKGND_GRAY, SPINDLE_CCW + OFF);
    } else if (AppConfig::m_bSpindleDirInGcode) {
        ShowOn(m_BtnCCW, m_BtnCW, SPINDLE_CCW);
    } else {
        ShowOn(m_BtnCW, m_BtnCCW, SPINDLE_CW);
    }
    AppConfig::m_bSpindleOnOffStatusChangeInGCode = false;
}
