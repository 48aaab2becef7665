#include "window/MachineButtons.h"

#include "common/Paths.h"
#include "common/Refusals.h"
#include "config/AppConfig.h"
#include "control/AppControl.h"
#include "control/Supervision.h"
#include "screens/host/PressedBtn.h"
#include "time/Wait.h"
#include "ui_MainWindow.h"
#include "window/SpindlePanel.h"

#include <QMessageBox>
#include <QScopeGuard>

#include <algorithm>

static const QString BTN_SAVED = QStringLiteral(
    "background-color: qradialgradient(spread:pad, cx:0.5, cy:0.5, radius:0.8, fx:0.5, fy:0.5, stop:0 rgba(255, 255, "
    "255, 255), stop:1 rgba(50, 150, 50, 255));border-style: solid;border-width: 2px;border-color: black;");

// Logged, if it is one.
bool CMachineButtons::Refused(const QString& strWhy)
{
    m_Host.AddLogMsg(strWhy, MSG_ERROR);
    return !strWhy.isEmpty();
}

bool CMachineButtons::MayMoveMachine()
{
    return !m_Host.IsEmergencyStopOn() && !Refused(m_Supervision.WhyNotFree());
}

void CMachineButtons::ShowEnd(qint32 iOperation)
{
    if (iOperation == OP_WORK_HOME) m_Form.Btn_MoveWorkZero->setStyleSheet(BTN_BKGND_GRAY);
    if (iOperation == OP_Z_PROBE) m_Form.Btn_SetZ0WithZProbe->setStyleSheet(BTN_BKGND_GRAY);
}

// ---- Work zero ------------------------------------------------------------------------------------------------------

void CMachineButtons::SetWorkZero()
{
    if (m_Host.IsEmergencyStopOn() || Refused(CSupervision::WhyNotInSimulation())) return;
    if (Refused(m_Supervision.WhyNotHomed())) return;
    QPushButton* pButton = m_Form.Btn_SetWorkZero;
    const CPressedBtn press(m_Host, pButton, BTN_BKGND_GRAY, BTN_BKGND_BLUE);
    if (Refused(m_Supervision.WhyNotFree())) return;
    if (Refused(m_Supervision.WhyNotAllHomed())) return;   // all are zeroed at once, and X alone was asked
    const auto eAnswer = QMessageBox::warning(pButton->window(), QStringLiteral("Warning"),
                                              QStringLiteral("Set Work Zero?"), QMessageBox::Yes | QMessageBox::No);
    // A stop may have come while the box stood.
    if (eAnswer == QMessageBox::Yes && MayMoveMachine()) m_Host.Machine().SetWorkZero();
    m_Host.ClearToolGraphics();
}

void CMachineButtons::MoveWorkZero()
{
    if (m_Host.Machine().m_eOperation == OP_WORK_HOME) return;
    QPushButton* pButton = m_Form.Btn_MoveWorkZero;
    CPressedBtn press(m_Host, pButton, BTN_BKGND_GRAY, BTN_BKGND_BLUE);
    if (!MayMoveMachine() || Refused(m_Supervision.WhyNotHomed())) return;
    const auto fnConfirmed = [pButton] {
        return QMessageBox::information(pButton->window(), QStringLiteral("Information"),
                                        QStringLiteral("Move all axis to work home?"),
                                        QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes) == QMessageBox::Yes;
    };
    // An emergency stop may have come while the box stood.
    if (!m_fnKeyConfirms() && (!fnConfirmed() || !MayMoveMachine())) return;
    if (m_Host.Machine().StartWorkHomingSequence()) press.StayOn();
}

void CMachineButtons::MoveZSafePos()
{
    const CPressedBtn press(m_Host, m_Form.Btn_MoveZSafePos, BTN_BKGND_GRAY, BTN_BKGND_BLUE);
    if (MayMoveMachine()) m_Host.Machine().MoveZSafePos();
}

void CMachineButtons::SetZ0WithZProbe()
{
    CPressedBtn press(m_Host, m_Form.Btn_SetZ0WithZProbe, BTN_BKGND_GRAY, BTN_BKGND_BLUE);
    if (!MayMoveMachine() || Refused(m_Supervision.WhyNotHomed())) return;
    if (m_Host.Machine().StartZ0usingZProbeSeq()) press.StayOn();
}

void CMachineButtons::ShowWorkZero()
{
    const CPressedBtn press(m_Host, m_Form.Btn_CurrentWorkZeroReference);
    QStringList lstZeros;
    for (int axis = 0; axis < std::min<int>(AppConfig::m_iMchType, MAX_AXES); ++axis)
        lstZeros += AppConfig::m_strAxisNames[axis] + QLatin1Char(' ') +
                    QString::number(AppConfig::m_fAxisWorkZero[axis], 'f', PRECISION);
    m_Host.AddLogMsg(QStringLiteral("G54 Work Zero (mm): ") + lstZeros.join(QStringLiteral(", ")), MSG_INFO);
}

void CMachineButtons::MoveHome(eAxis axis)
{
    QPushButton* const lstButtons[MAX_AXES] = {m_Form.Btn_MoveWorkHome_X, m_Form.Btn_MoveWorkHome_Y,
                                               m_Form.Btn_MoveWorkHome_Z, m_Form.Btn_MoveWorkHome_A,
                                               m_Form.Btn_MoveWorkHome_B};
    const CPressedBtn press(m_Host, lstButtons[axis]);
    if (m_Host.IsEmergencyStopOn()) return;
    AxisCtrl& ctrl = m_Host.Machine().m_AxisCtrl[axis];
    if (ctrl.GetAxisState() || m_Host.Machine().m_eOperation != OP_NONE || m_Host.Machine().IsWorkerBusy())
        return m_Host.AddLogMsg(AXIS_IN_USE, MSG_ERROR);
    ctrl.SetVelocityAcc(AppConfig::m_fAxisFeed[axis], AppConfig::m_fAxisAcc[axis]);
    (void)m_Host.Machine().MoveWorkZero(axis, false);
}

// ---- Settings and simulation ----------------------------------------------------------------------------------------

// The disk may take seconds; over a machine that may move the stop input is looked at meanwhile.
bool CMachineButtons::SaveConfig()
{
    if (m_Supervision.WhyNotFree().isEmpty()) return AppConfig::SaveConfig(CONFIG_FILE);
    CShared<bool> bDone = false, bSaved = false;
    RunPooled([&] {
        const auto fnDone = qScopeGuard([&] { bDone = true; });
        bSaved = AppConfig::SaveConfig(CONFIG_FILE);
    });
    CWait::SleepUntil(
        [&] {
            m_fnWatchStop();
            return static_cast<bool>(bDone);
        },
        CWait::LOOK_US);
    return bSaved;
}

void CMachineButtons::SaveSettings()
{
    const CPressedBtn press(m_Host, m_Form.Btn_SaveSettings, BTN_SAVED);
    if (SaveConfig()) m_Host.AddLogMsg(QStringLiteral("Settings saved"), MSG_INFO);
}

// A simulated run leaves the machine's true position untouched. It is left whatever has become of the home.
void CMachineButtons::ToggleSimulation()
{
    const bool bOn = !AppConfig::m_bSimulationMode;
    if (m_Host.IsEmergencyStopOn()) return;   // a stop is released without a look at its input in simulation
    if (bOn && Refused(m_Supervision.WhyNotHomed())) return;
    // An axis that moves would go on with its outputs switched in the middle of the move.
    if (Refused(m_Supervision.WhyNotFree())) return;
    m_Host.Machine().SetSimulation(bOn);
    m_Form.Btn_SimulationMode->setStyleSheet(bOn ? BTN_BKGND_GREEN : BTN_BKGND_GRAY);
    if (!bOn) m_Spindle.ShowOutputs();
}
