#include "screens/settings/DlgMachineSettings.h"

#include "common/Refusals.h"
#include "machine/Machine.h"
#include "screens/settings/DlgPwmSpndlSettings.h"
#include "screens/settings/KeyboardHelp.h"
#include "screens/settings/MotorNumbers.h"
#include "screens/settings/VelocityGraph.h"
#include "ui_DlgMachineSettings.h"
#include "widgets/ButtonStyle.h"
#include "widgets/DlgKeyPad.h"

#include <algorithm>
#include <utility>

using A = AppConfig;

CDlgMachineSettings::CDlgMachineSettings(QWidget* pParent)
    : QDialog(pParent), m_pUi(std::make_unique<Ui::CDlgMachineSettings>())
{
    m_bConfiguring = true;
    m_pUi->setupUi(this);
    m_bConfiguring = false;
    m_pUi->Lbl_KeyboardHelp->setText(KeyboardHelp());
    for (int axis = 0; axis < MAX_AXES; ++axis) ConnectAxis(static_cast<eAxis>(axis));
    for (const stMotorNumber& number : MotorNumbers())
        connect(findChild<QPushButton*>(number.strButton), &QPushButton::clicked, this,
                [this, &number] { EditMotor(number); });
}

CDlgMachineSettings::~CDlgMachineSettings() = default;

void CDlgMachineSettings::ConnectAxis(eAxis axis)
{
    const QString strAxis = A::m_strAxisNames[axis].left(1);
    const auto Button = [&](const char* szName) {
        return findChild<QPushButton*>(QStringLiteral("Btn_") + QString::fromLatin1(szName).arg(strAxis));
    };
    stAxisButtons& buttons = m_lstAxis[axis];
    buttons = {Button("AxisSel_%1"), Button("%1_PosDirMovLimit"), Button("%1_NegDirMovLimit"),
               Button("%1_PosDirMotRot"), Button("%1_HomeDirMotRot")};
    connect(buttons.pSelect, &QPushButton::clicked, this, [this, axis] {
        SelectAxis(axis);
        CreateVelAccGraphics();
    });
    connect(buttons.pPosLimit, &QPushButton::clicked, this, [this, axis] { EditLimit(axis, true); });
    connect(buttons.pNegLimit, &QPushButton::clicked, this, [this, axis] { EditLimit(axis, false); });
    connect(buttons.pPosDir, &QPushButton::clicked, this,
            [this, axis] { FlipDirection(axis, A::m_eAxisPosDir[axis], &CMotorSettings::SetPosDir); });
    connect(buttons.pHomeDir, &QPushButton::clicked, this,
            [this, axis] { FlipDirection(axis, A::m_eAxisHomeDir[axis], &CMotorSettings::SetHomeDir); });
}

CMotorSettings CDlgMachineSettings::Motors()
{
    return CMotorSettings(HostOf(*this).MachineParts());
}

void CDlgMachineSettings::Tell(const QString& strProblem)
{
    if (!strProblem.isEmpty()) HostOf(*this).AddLogMsg(strProblem, MSG_ERROR);
}

// ---- Showing --------------------------------------------------------------------------------------------------------

void CDlgMachineSettings::ConfigSettings()
{
    m_bConfiguring = true;
    m_pUi->Cmb_VantorCntrolSel->setCurrentIndex(A::m_eVantorCtrl <= VTR5_CTRL ? A::m_eVantorCtrl : -1);
    m_bConfiguring = false;
    ShowBoard();
    ShowSwitches();
    for (int axis = 0; axis < MAX_AXES; ++axis) ShowLimits(static_cast<eAxis>(axis));
    EnlMotionLimits();
    SelectAxis(m_eSelAxis < A::m_iMchType ? m_eSelAxis : X_AXIS);
    if (isVisible()) CreateVelAccGraphics();
}

// The picture waits until it is seen: at start the machine may already be homing.
void CDlgMachineSettings::showEvent(QShowEvent* pEvent)
{
    CreateVelAccGraphics();
    QDialog::showEvent(pEvent);
}

void CDlgMachineSettings::ShowBoard()
{
    if (A::m_eVantorCtrl <= VTR5_CTRL) {
        m_pUi->Page_RpiController->ConfigSettings();
        m_pUi->Stack_IO->setCurrentWidget(m_pUi->Page_RpiController);
    } else {
        m_pUi->Page_VantorCtrl->ConfigSettings();
        m_pUi->Stack_IO->setCurrentWidget(m_pUi->Page_VantorCtrl);
    }
    m_pUi->Btn_KeyboardHelp->setStyleSheet(BTN_BKGND_GRAY);
}

void CDlgMachineSettings::ShowSwitches()
{
    ShowSwitch(m_pUi->Btn_UseHomeIP, A::m_bHomeSensorsUsed, QStringLiteral("Home Sensors"), QStringLiteral("Used"),
               QStringLiteral("Not used"));
    ShowSwitch(m_pUi->Btn_UseKeyboardCtrl, A::m_bKeyboardCtrlUsed, QStringLiteral("Keyboard Control"));
    ShowSwitch(m_pUi->Btn_MachSettingsPasswd, A::m_bAppPassword, QStringLiteral("Settings Lock"));
    m_pUi->Btn_PwmSettings->setStyleSheet(BTN_BKGND_GRAY);
    m_pUi->Btn_VelCurveType->setStyleSheet(BTN_BKGND_GRAY);
    m_pUi->Btn_VelCurveType->setText(A::m_eAxisFeedtype == 1 ? QStringLiteral("S-Curve")
                                                             : QStringLiteral("Trapezoidal"));
    m_pUi->Btn_RateOfAcc->setEnabled(A::m_eAxisFeedtype == 1);
}

void CDlgMachineSettings::ShowLimits(eAxis axis)
{
    const stAxisButtons& buttons = m_lstAxis[axis];
    ShowNumber(buttons.pPosLimit, {}, A::m_fAxisPosDirLimit[axis]);
    ShowNumber(buttons.pNegLimit, {}, A::m_fAxisNegDirLimit[axis]);
    const auto Rotation = [](eDirection eDir) {
        return eDir == DIR_CCW ? QStringLiteral("Counter\nClockwise") : QStringLiteral("Clockwise");
    };
    buttons.pPosDir->setText(Rotation(A::m_eAxisPosDir[axis]));
    buttons.pHomeDir->setText(Rotation(A::m_eAxisHomeDir[axis]));
}

void CDlgMachineSettings::EnlMotionLimits()
{
    QLabel* const lstNames[MAX_AXES] = {m_pUi->Lbl_Limits_X, m_pUi->Lbl_Limits_Y, m_pUi->Lbl_Limits_Z,
                                        m_pUi->Lbl_Limits_A, m_pUi->Lbl_Limits_B};
    for (int axis = 0; axis < MAX_AXES; ++axis) {
        const stAxisButtons& buttons = m_lstAxis[axis];
        const bool bThere = axis <= Z_AXIS || A::m_iMchType == MAX_AXES;
        for (QPushButton* pButton : {buttons.pPosLimit, buttons.pNegLimit, buttons.pHomeDir})
            pButton->setEnabled(bThere && A::m_bHomeSensorsUsed);
        buttons.pPosDir->setEnabled(bThere);
        buttons.pSelect->setEnabled(bThere);
        lstNames[axis]->setEnabled(bThere);
    }
    m_pUi->Btn_SameMotorSettings_AB->setEnabled(A::m_iMchType == MAX_AXES);
}

void CDlgMachineSettings::SelectAxis(eAxis axis)
{
    m_eSelAxis = axis;
    for (int n = 0; n < MAX_AXES; ++n) m_lstAxis[n].pSelect->setStyleSheet(n == axis ? BTN_BKGND_BLUE : BTN_BKGND_GRAY);
    UpdateMotorCtrlBtns(axis);
}

void CDlgMachineSettings::UpdateMotorCtrlBtns(eAxis axis)
{
    for (const stMotorNumber& number : MotorNumbers())
        ShowNumber(findChild<QPushButton*>(number.strButton), number.fnField(axis), number.fnValue(axis));
}

void CDlgMachineSettings::CreateVelAccGraphics()
{
    const QSize size = m_pUi->Lbl_VelAccGraph->size();
    CScreenHost& host = HostOf(*this);
    if (!host.IsMachineFree()) {   // a rebuild now would change the tables of moves to come
        m_pUi->Lbl_VelAccGraph->setPixmap(QPixmap::fromImage(CVelocityGraph({}).Draw(size, MACHINE_IN_USE)));
        return;
    }
    const QString strWhy = Motors().Rebuild(m_eSelAxis);
    const CVelocityGraph graph({.lstVel = host.MachineParts().m_AxisCtrl[m_eSelAxis].m_lstVelCurve,
                                .fMovPerPulse = A::m_fAxisMovPerPulse[m_eSelAxis],
                                .fSamplingTime = static_cast<double>(A::m_iVelAccSamplingTime),
                                .strName = A::m_strAxisNames[m_eSelAxis],
                                .strLength = m_eSelAxis < A_AXIS ? QStringLiteral("mm") : QStringLiteral("deg")});
    m_pUi->Lbl_VelAccGraph->setPixmap(QPixmap::fromImage(graph.Draw(size, strWhy)));
}

// ---- Motors ---------------------------------------------------------------------------------------------------------

void CDlgMachineSettings::EditMotor(const stMotorNumber& number)
{
    CScreenHost& host = HostOf(*this);
    if (number.bOfPlace ? RefuseChangeOfPlace(host) : RefuseMachineInUse(host)) return;
    auto* pButton = findChild<QPushButton*>(number.strButton);
    const auto fNew = AskNumber(host, pButton, number.fnField(m_eSelAxis), number.fnValue(m_eSelAxis));
    if (!fNew) return;
    CMotorSettings motors = Motors();
    Tell(number.fnStore(motors, m_eSelAxis, *fNew));
    host.UpdateUserSettings();
    UpdateMotorCtrlBtns(m_eSelAxis);
    if (motors.IsFeedCut())
        m_pUi->Btn_MaxFeed->setText(QString::number(double(A::m_fAxisFeed[m_eSelAxis]), 'f', PRECISION) + "\nFeed");
    if (number.bGraph) CreateVelAccGraphics();
}

void CDlgMachineSettings::on_Btn_VelCurveType_clicked()
{
    if (RefuseMachineInUse(HostOf(*this))) return;
    Tell(Motors().ToggleCurveType());
    ShowSwitches();
    CreateVelAccGraphics();
}

void CDlgMachineSettings::CopyMotorParamsToAllAxis()
{
    Tell(Motors().CopyToGroup(m_eSelAxis));
    HostOf(*this).UpdateUserSettings();
}

void CDlgMachineSettings::CopyFrom(QPushButton* pButton)
{
    pButton->setStyleSheet(BTN_BKGND_GREEN);
    CopyMotorParamsToAllAxis();
    CreateVelAccGraphics();
    HostOf(*this).ResetBtnBkGnd(pButton, BTN_BKGND_GRAY);
}

void CDlgMachineSettings::on_Btn_SameMotorSettings_clicked()
{
    if (!RefuseChangeOfPlace(HostOf(*this))) CopyFrom(m_pUi->Btn_SameMotorSettings);
}

void CDlgMachineSettings::on_Btn_SameMotorSettings_AB_clicked()
{
    if (RefuseChangeOfPlace(HostOf(*this))) return;
    SelectAxis(A_AXIS);
    CopyFrom(m_pUi->Btn_SameMotorSettings_AB);
}

// ---- Limits and directions ------------------------------------------------------------------------------------------

void CDlgMachineSettings::EditLimit(eAxis axis, bool bPositive)
{
    CScreenHost& host = HostOf(*this);
    if (RefuseChangeOfPlace(host)) return;
    const stNumberField field = {
        .strTitle = A::m_strAxisNames[axis].left(1) +
                    (bPositive ? QStringLiteral(" Axis +Dir Limit(mm)") : QStringLiteral(" Axis -Dir Limit(mm)")),
        .bSign = true};
    const double fOld = (bPositive ? A::m_fAxisPosDirLimit : A::m_fAxisNegDirLimit)[axis];
    if (const auto fNew =
            AskNumber(host, bPositive ? m_lstAxis[axis].pPosLimit : m_lstAxis[axis].pNegLimit, field, fOld))
        Tell(bPositive ? Motors().SetPosLimit(axis, *fNew) : Motors().SetNegLimit(axis, *fNew));
    ShowLimits(axis);
}

void CDlgMachineSettings::FlipDirection(eAxis axis, eDirection eDir, void (CMotorSettings::*fnSet)(eAxis, eDirection))
{
    if (RefuseChangeOfPlace(HostOf(*this))) return;
    CMotorSettings motors = Motors();
    (motors.*fnSet)(axis, Opposite(eDir));
    ShowLimits(axis);
}

// ---- Board and switches ---------------------------------------------------------------------------------------------

void CDlgMachineSettings::on_Cmb_VantorCntrolSel_currentIndexChanged(int iBoard)
{
    if (m_bConfiguring || iBoard < 0) return;
    CScreenHost& host = HostOf(*this);
    if (RefuseChangeOfPlace(host)) return ConfigSettings();   // the box shows the board in force again
    Motors().SelectBoard(iBoard);
    host.AddLogMsg(QStringLiteral("Please Save and Restart application for the changes to take affect"), MSG_ERROR);
    ConfigSettings();
    host.UpdateUserSettings();
}

void CDlgMachineSettings::on_Btn_UseHomeIP_clicked()
{
    CScreenHost& host = HostOf(*this);
    if (RefuseChangeOfPlace(host)) return;
    const QString strWhy = Motors().UseHomeSensors(!A::m_bHomeSensorsUsed);
    host.EnlMchHomingOptions(A::m_bHomeSensorsUsed);
    Tell(strWhy);
    EnlMotionLimits();
    ShowSwitches();
}

void CDlgMachineSettings::on_Btn_UseKeyboardCtrl_clicked()
{
    CScreenHost& host = HostOf(*this);
    if (RefuseMachineInUse(host)) return;
    A::m_bKeyboardCtrlUsed = !A::m_bKeyboardCtrlUsed;
    host.GrabKeyboard(A::m_bKeyboardCtrlUsed);
    ShowSwitches();
}

void CDlgMachineSettings::on_Btn_KeyboardHelp_clicked()
{
    if (m_pUi->Stack_IO->currentWidget() == m_pUi->Lbl_KeyboardHelp) return ShowBoard();
    m_pUi->Stack_IO->setCurrentWidget(m_pUi->Lbl_KeyboardHelp);
    m_pUi->Btn_KeyboardHelp->setStyleSheet(BTN_BKGND_GREEN);
}

void CDlgMachineSettings::on_Btn_PwmSettings_clicked()
{
    m_pUi->Btn_PwmSettings->setStyleSheet(BTN_BKGND_GREEN);
    CDlgPwmSpndlSettings(parentWidget()).exec();
    m_pUi->Btn_PwmSettings->setStyleSheet(BTN_BKGND_GRAY);
}

void CDlgMachineSettings::on_Btn_MachSettingsPasswd_clicked()
{
    if (RefuseMachineInUse(HostOf(*this))) return;
    A::m_bAppPassword = !A::m_bAppPassword;
    if (A::m_bAppPassword) {
        // The digits as typed: a number would lose the zeros in front.
        CDlgKeyPad keypad(parentWidget());
        keypad.setWindowTitle(QStringLiteral("M/C Settings lock"));
        keypad.DisableDecimal();
        keypad.SetCurValue(A::m_strAppPassword);
        keypad.exec();
        if (keypad.m_bCancelled)
            A::m_bAppPassword = false;
        else
            A::m_strAppPassword = keypad.m_strNewValue;
    }
    ShowSwitches();
}
