#include "window/StartStop.h"

#include "common/Refusals.h"
#include "control/AppControl.h"
#include "motion/AllAxisCtrl.h"
#include "screens/host/ScreenHost.h"
#include "widgets/ButtonStyle.h"
#include "widgets/MyRndBtn.h"
#include "window/ScreenStack.h"

#include <QTimer>

static constexpr int ROUND_BUTTON_MS = 100;   // a press stays visible so long

static const QString PAUSE_NOTICE =
    QStringLiteral("Execution Paused! All axis will be stopped after last command is completed");
static const QString WAIT_TO_RESET = QStringLiteral("Wait for Machine to Stop to Reset");

void CStartStop::SetUp()
{
    static constexpr QSize SIZE(90, 90);
    const struct
    {
        CMyRndBtn& button;
        QPoint at;
        QColor released, pressed;
        const char* szText;
        qint16 sTextX;
    } lstButtons[] = {
        {m_Widgets.start, {920, 580}, {0, 100, 0}, {50, 205, 50}, "Start", 20},
        {m_Widgets.pause, {1030, 580}, {200, 120, 0}, {255, 191, 0}, "Pause", 15},
        {m_Widgets.reset, {1140, 580}, {50, 125, 255}, {150, 150, 225}, "Reset", 15},
        {m_Widgets.stop, {1030, 700}, {128, 10, 10}, {255, 0, 0}, "Stop", 17},
    };
    for (const auto& entry : lstButtons) {
        entry.button.setGeometry(QRect(entry.at, SIZE));
        entry.button.SetBtnColor(entry.released, entry.pressed);
        entry.button.m_sTextX = entry.sTextX;
        entry.button.SetBtnText(QString::fromLatin1(entry.szText));
        entry.button.setObjectName(QStringLiteral("m_Btn") + QString::fromLatin1(entry.szText));
        entry.button.raise();   // they are older than the form, which would take their touches
    }
    m_Widgets.stop.m_sFontSize = 30;
    m_Widgets.startPause.setStyleSheet(BTN_BKGND_START);
}

void CStartStop::SpringBack(CMyRndBtn& button)
{
    QTimer::singleShot(ROUND_BUTTON_MS, &button, [&button] {
        if (button.isEnabled()) button.SetReleased();
    });
}

void CStartStop::ReleaseStartAndPause()
{
    for (CMyRndBtn* pButton : {&m_Widgets.start, &m_Widgets.pause}) {
        pButton->setEnabled(true);
        pButton->SetReleased();
    }
}

void CStartStop::ShowIdle()
{
    ReleaseStartAndPause();
    if (m_bJogPanelTaken) m_Host.EnableJogPanel(true);
    m_bJogPanelTaken = false;
}

// ---- Start ----------------------------------------------------------------------------------------------------------

void CStartStop::RefuseStart(const QString& strMsg)
{
    m_Host.AddLogMsg(strMsg, MSG_ERROR);
    SpringBack(m_Widgets.start);
}

void CStartStop::PressStart()
{
    AppControl& machine = m_Host.Machine();
    if (const QString strWhy = CSupervision::WhyNotReleased(); !strWhy.isEmpty()) return RefuseStart(strWhy);
    if (!machine.IsMachineIdle()) return RefuseStart(MACHINE_IN_USE);
    if (machine.m_bExecSingleLine) return RefuseStart(QString());
    if (machine.m_eOperation != OP_NONE) {   // from whatever screen: what is shown says what a start would begin
        machine.Resume();
        m_bJogPanelTaken = true;
        m_Host.EnableJogPanel(false);
    } else if (const QString strWhy = m_Screens.WhyNotStart(); !strWhy.isEmpty()) {
        return RefuseStart(strWhy);
    } else if (!m_Screens.StartShown()) {
        return RefuseStart(QString());
    }
    m_Widgets.start.setEnabled(false);   // stays drawn pressed
    m_Widgets.pause.setEnabled(true);
    m_Widgets.pause.SetReleased();
}

void CStartStop::LightStart()
{
    m_Widgets.start.SetPressed();
}

void CStartStop::TouchLitStart()
{
    LightStart();
    PressStart();
}

// ---- Pause and reset ------------------------------------------------------------------------------------------------

void CStartStop::PressPause()
{
    if (m_Host.Machine().m_eOperation == OP_NONE) return SpringBack(m_Widgets.pause);
    if (!m_Supervision.Pause()) m_Host.AddLogMsg(PAUSE_NOTICE, MSG_NOTICE);
    m_Widgets.start.setEnabled(true);
    m_Widgets.start.SetReleased();
    m_Widgets.pause.setEnabled(false);
    m_Widgets.pause.SetPressed();
}

void CStartStop::Abandon(const QString& strMsg)
{
    m_fnShowEnd(m_Supervision.Abandon());
    m_Host.AddLogMsg(strMsg, MSG_ERROR);
}

void CStartStop::PressReset()
{
    SpringBack(m_Widgets.reset);
    const AppControl& machine = m_Host.Machine();
    if (machine.m_eOperation == OP_NONE) return;
    if (!machine.m_bPause) return m_Host.AddLogMsg(QStringLiteral("Pause execution to Reset"), MSG_ERROR);
    if (!machine.IsMachineIdle() || CAllAxisCtrl::GetMotionState()) return m_Host.AddLogMsg(WAIT_TO_RESET, MSG_ERROR);
    Abandon(QStringLiteral("Execution reset"));
    m_Widgets.pause.setEnabled(true);
    m_Widgets.pause.SetReleased();
}

// ---- Emergency stop -------------------------------------------------------------------------------------------------

void CStartStop::PressStop()
{
    try {
        m_fnShowEnd(m_Supervision.EmergencyStop());
        m_Host.AddLogMsg(QStringLiteral("Emergency switch pressed"), MSG_ERROR);
        ReleaseStartAndPause();
    } catch (...) {
        m_Host.AddLogMsg(QStringLiteral("Stop Function throw the error"), MSG_ERROR);
    }
}

void CStartStop::ReleaseStop()
{
    const QString strWhy = m_Supervision.ReleaseEmergencyStop();
    if (strWhy.isEmpty()) return;
    m_Host.AddLogMsg(strWhy, MSG_ERROR);
    m_Widgets.stop.SetPressed();
}

// What throws again in the showing is no reason to go on: the flag stands and the axes have been told by then.
void CStartStop::StopForGood()
{
    m_Widgets.stop.SetPressed();
    try {
        m_fnShowEnd(m_Supervision.StopForGood());
    } catch (...) {
        m_Host.AddLogMsg(QStringLiteral("Stop Function throw the error"), MSG_ERROR);
    }
}

// The latch is drawn first: with the input still high the stop stays in force and the button down.
void CStartStop::ToggleStop()
{
    if (CSupervision::WhyNotReleased().isEmpty()) {
        PressStop();
        m_Widgets.stop.SetPressed();
    } else {
        m_Widgets.stop.SetReleased();
        ReleaseStop();
    }
}

void CStartStop::WatchStopInput()
{
    switch (m_Supervision.ReadStopInput()) {
    case STOP_INPUT_SAME: break;
    case STOP_INPUT_RISEN:
        m_fnShowEnd(m_Supervision.EmergencyStop());
        m_Widgets.stop.SetPressed();
        return m_Host.AddLogMsg(QStringLiteral("Emergency Stop Triggered"), MSG_ERROR);
    case STOP_INPUT_FALLEN: return m_Widgets.stop.SetReleased();
    }
}

// ---- The plain buttons under the jog panel --------------------------------------------------------------------------

void CStartStop::PressPlainStart()
{
    AppControl& machine = m_Host.Machine();
    QPushButton& button = m_Widgets.startPause;
    button.setStyleSheet(BTN_BKGND_GRAY);
    const bool bStart = machine.m_eOperation == OP_NONE;
    if (machine.m_bExecSingleLine || (bStart && m_Screens.AreSettingsShown()))
        return m_Host.ResetBtnBkGnd(&button, BTN_BKGND_START);
    if (bStart) {
        const QString strWhy = m_Screens.WhyNotStart();
        m_Host.AddLogMsg(strWhy, MSG_ERROR);
        if (!strWhy.isEmpty() || !m_Screens.StartShown()) return m_Host.ResetBtnBkGnd(&button, BTN_BKGND_START);
    } else {
        (void)machine.TogglePause();
    }
    const bool bPaused = machine.m_bPause;
    if (bPaused) m_Host.AddLogMsg(PAUSE_NOTICE, MSG_NOTICE);
    button.setText(bPaused ? QStringLiteral("Resume") : QStringLiteral("Pause"));
    button.setStyleSheet(bPaused ? BTN_BKGND_BLUE : BTN_BKGND_PAUSE);
    m_Widgets.plainReset.setEnabled(bPaused);
}

void CStartStop::PressPlainReset()
{
    if (CAllAxisCtrl::GetMotionState()) return m_Host.AddLogMsg(WAIT_TO_RESET, MSG_ERROR);
    Abandon(QStringLiteral("Machine is reset"));
    m_Widgets.startPause.setText(QStringLiteral("Start"));
    m_Widgets.startPause.setStyleSheet(BTN_BKGND_START);
    m_Widgets.plainReset.setEnabled(false);
}
