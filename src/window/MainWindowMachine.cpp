#include "common/Refusals.h"
#include "config/AppConfig.h"
#include "hardware/VantorGpio.h"
#include "widgets/ButtonStyle.h"
#include "window/MainWindowUi.h"

#include <QMessageBox>
#include <QMutexLocker>

#include <algorithm>
#include <cmath>

static constexpr short FULL_SPEED = 24;   // step of the spindle's bar at which the highest frequency is exact

static const QString BTN_SAVED = QStringLiteral(
    "background-color: qradialgradient(spread:pad, cx:0.5, cy:0.5, radius:0.8, fx:0.5, fy:0.5, stop:0 rgba(255, 255, "
    "255, 255), stop:1 rgba(50, 150, 50, 255));border-style: solid;border-width: 2px;border-color: black;");

static int AxesInUse()
{
    return std::min<int>(AppConfig::m_iMchType, MAX_AXES);
}

// ---- Refusals; each logs its own ------------------------------------------------------------------------------------

bool MainWindow::Refused(const QString& strWhy)
{
    AddLogMsg(strWhy, MSG_ERROR);
    return !strWhy.isEmpty();
}

bool MainWindow::RefuseUnhomed()
{
    return Refused(m_Supervision.WhyNotHomed());
}

bool MainWindow::RefuseBusy()
{
    return Refused(m_Supervision.WhyNotFree());
}

bool MainWindow::MayMoveMachine()
{
    return !IsEmergencyStopOn() && !RefuseBusy();
}

// ---- Work zero ------------------------------------------------------------------------------------------------------

void MainWindow::on_Btn_SetWorkZero_clicked()
{
    if (RefuseUnhomed()) return;
    QPushButton* pButton = m_pUi->Btn_SetWorkZero;
    pButton->setStyleSheet(BTN_BKGND_BLUE);
    if (RefuseBusy()) return ResetBtnBkGnd(pButton, BTN_BKGND_GRAY);
    const auto eAnswer = QMessageBox::warning(this, QStringLiteral("Warning"), QStringLiteral("Set Work Zero?"),
                                              QMessageBox::Yes | QMessageBox::No);
    if (eAnswer == QMessageBox::Yes) m_AppControl.SetWorkZero();
    ResetBtnBkGnd(pButton, BTN_BKGND_GRAY);
    ClearToolGraphics();
}

void MainWindow::on_Btn_MoveWorkZero_clicked()
{
    if (m_AppControl.m_eOperation == OP_WORK_HOME) return;
    QPushButton* pButton = m_pUi->Btn_MoveWorkZero;
    pButton->setStyleSheet(BTN_BKGND_BLUE);
    if (!MayMoveMachine() || RefuseUnhomed()) return ResetBtnBkGnd(pButton, BTN_BKGND_GRAY);
    const auto fnConfirmed = [this] {
        return QMessageBox::information(this, QStringLiteral("Information"),
                                        QStringLiteral("Move all axis to work home?"),
                                        QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes) == QMessageBox::Yes;
    };
    // A press of the key is its own confirmation. An emergency stop may have come while the box stood.
    if (m_iKeyHoldCode != Qt::Key_5 && (!fnConfirmed() || !MayMoveMachine()))
        return ResetBtnBkGnd(pButton, BTN_BKGND_GRAY);
    if (!m_AppControl.StartWorkHomingSequence()) ResetBtnBkGnd(pButton, BTN_BKGND_GRAY);
}

void MainWindow::on_Btn_MoveZSafePos_clicked()
{
    QPushButton* pButton = m_pUi->Btn_MoveZSafePos;
    pButton->setStyleSheet(BTN_BKGND_BLUE);
    if (MayMoveMachine()) m_AppControl.MoveZSafePos();
    ResetBtnBkGnd(pButton, BTN_BKGND_GRAY);
}

void MainWindow::on_Btn_SetZ0WithZProbe_clicked()
{
    QPushButton* pButton = m_pUi->Btn_SetZ0WithZProbe;
    pButton->setStyleSheet(BTN_BKGND_BLUE);
    if (!MayMoveMachine() || RefuseUnhomed()) return ResetBtnBkGnd(pButton, BTN_BKGND_GRAY);
    m_AppControl.StartZ0usingZProbeSeq();
    if (m_AppControl.m_eOperation == OP_NONE) ResetBtnBkGnd(pButton, BTN_BKGND_GRAY);   // refused
}

void MainWindow::on_Btn_CurrentWorkZeroReference_clicked()
{
    QPushButton* pButton = m_pUi->Btn_CurrentWorkZeroReference;
    pButton->setStyleSheet(BTN_BKGND_GREEN);
    QStringList lstZeros;
    for (int axis = 0; axis < AxesInUse(); ++axis)
        lstZeros += AppConfig::m_strAxisNames[axis] + QLatin1Char(' ') +
                    QString::number(AppConfig::m_fAxisWorkZero[axis], 'f', PRECISION);
    AddLogMsg(QStringLiteral("G54 Work Zero (mm): ") + lstZeros.join(QStringLiteral(", ")), MSG_INFO);
    ResetBtnBkGnd(pButton, BTN_BKGND_GRAY);
}

void MainWindow::MoveAxisWorkHome(eAxis axis, QPushButton* pButton)
{
    pButton->setStyleSheet(BTN_BKGND_GREEN);
    ResetBtnBkGnd(pButton, BTN_BKGND_GRAY);
    if (IsEmergencyStopOn()) return;
    AxisCtrl& ctrl = m_AppControl.m_AxisCtrl[axis];
    if (ctrl.GetAxisState() || m_AppControl.m_eOperation != OP_NONE) return AddLogMsg(AXIS_IN_USE, MSG_ERROR);
    ctrl.SetVelocityAcc(AppConfig::m_fAxisFeed[axis], AppConfig::m_fAxisAcc[axis]);
    (void)m_AppControl.MoveWorkZero(axis, false);
}

void MainWindow::on_Btn_MoveWorkHome_X_clicked()
{
    MoveAxisWorkHome(X_AXIS, m_pUi->Btn_MoveWorkHome_X);
}
void MainWindow::on_Btn_MoveWorkHome_Y_clicked()
{
    MoveAxisWorkHome(Y_AXIS, m_pUi->Btn_MoveWorkHome_Y);
}
void MainWindow::on_Btn_MoveWorkHome_Z_clicked()
{
    MoveAxisWorkHome(Z_AXIS, m_pUi->Btn_MoveWorkHome_Z);
}
void MainWindow::on_Btn_MoveWorkHome_A_clicked()
{
    MoveAxisWorkHome(A_AXIS, m_pUi->Btn_MoveWorkHome_A);
}
void MainWindow::on_Btn_MoveWorkHome_B_clicked()
{
    MoveAxisWorkHome(B_AXIS, m_pUi->Btn_MoveWorkHome_B);
}

// ---- Settings and simulation ----------------------------------------------------------------------------------------

void MainWindow::on_Btn_SaveSettings_clicked()
{
    m_pUi->Btn_SaveSettings->setStyleSheet(BTN_BKGND_GREEN);
    if (AppConfig::SaveConfig(CONFIG_FILE)) AddLogMsg(QStringLiteral("Settings saved"), MSG_INFO);
    ResetBtnBkGnd(m_pUi->Btn_SaveSettings, BTN_SAVED);
}

// A simulated run leaves the machine's true position untouched.
void MainWindow::on_Btn_SimulationMode_clicked()
{
    if (RefuseUnhomed()) return;
    // An axis that moves would go on with its outputs switched in the middle of the move.
    if (RefuseBusy()) return;
    AppConfig::m_bSimulationMode = !AppConfig::m_bSimulationMode;
    const bool bOn = AppConfig::m_bSimulationMode;
    m_pUi->Btn_SimulationMode->setStyleSheet(bOn ? BTN_BKGND_GREEN : BTN_BKGND_GRAY);
    for (const eAxis axis : {X_AXIS, Y_AXIS, Z_AXIS}) {
        double& fRemembered = AxisOf(m_PosBeforeSimulation, axis);
        if (bOn)
            fRemembered = m_AppControl.GetCurPos(axis);
        else
            m_AppControl.m_AxisCtrl[axis].SetCurPos(fRemembered);
    }
}

// ---- Spindle --------------------------------------------------------------------------------------------------------

void MainWindow::ToggleSpindle(quint16 uMCode, QPushButton* pButton, QPushButton* pOther, const QString& strName)
{
    const bool bOn = !AppConfig::m_bSpindleOn;
    AppConfig::m_bSpindleOn = bOn;
    CVANTORGPIO::WriteOutput(Pin(AppConfig::m_lstMCodesPin[uMCode]), bOn ? 1 : 0);
    pButton->setStyleSheet(bOn ? BTN_BKGND_GREEN : BTN_BKGND_GRAY);
    pButton->setText(strName + (bOn ? QStringLiteral("ON") : QStringLiteral("OFF")));
    pOther->setEnabled(!bOn);
    if (bOn && AppConfig::m_bPWMCtrlUsed) OnSpindleSpeedChange(m_SpindleSpeedBar.GetValue());
}

void MainWindow::on_Btn_SpindleCWOnOff_clicked()
{
    ToggleSpindle(3, m_pUi->Btn_SpindleCWOnOff, m_pUi->Btn_SpindleCCWOnOff, SPINDLE_CW);
}

void MainWindow::on_Btn_SpindleCCWOnOff_clicked()
{
    m_pUi->Btn_SpindleCCWOnOff->setStyleSheet(BTN_BKGND_BLUE);
    ToggleSpindle(4, m_pUi->Btn_SpindleCCWOnOff, m_pUi->Btn_SpindleCWOnOff, SPINDLE_CCW);
}

void MainWindow::EnableDisableSpindleSpeedCtrl(bool bEnable)
{
    m_SpindleSpeedBar.setEnabled(bEnable);
    if (bEnable) OnSpindleSpeedChange(m_SpindleSpeedBar.GetValue());
}

// ---- Overrides ------------------------------------------------------------------------------------------------------

void MainWindow::OnG01FeedChange(short iPercentage)
{
    const QMutexLocker lock(&m_mtxFeed);
    const double fFactor = iPercentage / 100.0;
    const bool bFree = IsMachineFree();   // while a job runs its planning reads the factor itself
    for (int axis = 0; axis < AxesInUse(); ++axis) {
        AppConfig::m_fAxisFeed[axis] = fFactor * AppConfig::m_fUserAxisFeed[axis];
        if (AppConfig::m_bUseG01FeedForJog) AppConfig::m_fAxisJogFeed[axis] = AppConfig::m_fAxisFeed[axis];
        if (bFree)
            m_AppControl.m_AxisCtrl[axis].SetVelocityAcc(AppConfig::m_fAxisFeed[axis], AppConfig::m_fAxisAcc[axis]);
    }
    // Behind the feeds of all axes: a measurement that sees the new factor takes these feeds.
    for (int axis = 0; axis < AxesInUse(); ++axis) AppConfig::m_fAxisFeedPercent[axis] = fFactor;
}

void MainWindow::OnG00FeedChange(short iPercentage)
{
    const QMutexLocker lock(&m_mtxFeed);
    const double fFactor = iPercentage / 100.0;
    for (const eAxis axis : {Z_AXIS, Y_AXIS, X_AXIS}) {
        AppConfig::m_fAxisFeedPercent[axis] = fFactor;
        AppConfig::m_fMaxAxisFeed[axis] = fFactor * AppConfig::m_fUserAxisFeed[axis];
    }
    if (!IsMachineFree()) return;
    // All five, whatever the machine: wanted.
    for (int axis = 0; axis < MAX_AXES; ++axis)
        m_AppControl.m_AxisCtrl[axis].SetVelocityAcc(AppConfig::m_fAxisFeed[axis], AppConfig::m_fAxisAcc[axis]);
}

void MainWindow::OnSpindleSpeedChange(short iValue)
{
    if (!AppConfig::m_bPWMCtrlUsed || AppConfig::m_GCodeRunSettings.bUsePrgmSpindleSpeed)
        return AddLogMsg(QStringLiteral("Spindle Speed Control not available"), MSG_ERROR);
    stPwmSpindleSettings& pwm = AppConfig::m_stPwmSpndlSettings;
    if (iValue == FULL_SPEED)
        pwm.iCurFreq = pwm.iMaxFreq;
    else   // wraps at 16 bits
        pwm.iCurFreq = static_cast<quint16>(pwm.iMinFreq + static_cast<quint32>(iValue - 1) * pwm.iFreqStep);
}
