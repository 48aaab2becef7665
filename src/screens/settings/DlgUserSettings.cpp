#include "screens/settings/DlgUserSettings.h"

#include "common/Operation.h"
#include "machine/Machine.h"
#include "screens/settings/DlgSpindleSpeeds.h"
#include "screens/settings/UserNumbers.h"
#include "ui_DlgUserSettings.h"
#include "widgets/ButtonStyle.h"

#include <algorithm>

using A = AppConfig;

CDlgUserSettings::CDlgUserSettings(QWidget* pParent) : QDialog(pParent), m_pUi(std::make_unique<Ui::CDlgUserSettings>())
{
    m_pUi->setupUi(this);
    for (const stUserNumber& number : UserNumbers())
        connect(findChild<QPushButton*>(number.strButton), &QPushButton::clicked, this,
                [this, &number] { Edit(number); });
    QPushButton* const lstHome[MAX_AXES] = {m_pUi->Btn_MoveHome_X, m_pUi->Btn_MoveHome_Y, m_pUi->Btn_MoveHome_Z,
                                            m_pUi->Btn_MoveHome_A, m_pUi->Btn_MoveHome_B};
    for (int n = 0; n < MAX_AXES; ++n)
        connect(lstHome[n], &QPushButton::clicked, this, [this, pButton = lstHome[n], axis = static_cast<eAxis>(n)] {
            MoveHome(pButton, [this, axis] { return HostOf(*this).StartHoming(axis); });
        });
}

CDlgUserSettings::~CDlgUserSettings() = default;

// ---- Showing --------------------------------------------------------------------------------------------------------

void CDlgUserSettings::ConfigSettings()
{
    for (const stUserNumber& number : UserNumbers()) {
        auto* pButton = findChild<QPushButton*>(number.strButton);
        ShowNumber(pButton, number.fnField(), number.Value());
        pButton->setEnabled(!number.bOfAxis || number.axis < A::m_iMchType);
    }
    for (QLabel* pLabel : {m_pUi->Lbl_Feeds_A, m_pUi->Lbl_Feeds_B}) pLabel->setEnabled(A::m_iMchType == MAX_AXES);
    ShowSwitches();
    UpdateAutoHomingOptions(A::m_bHomeSensorsUsed);
}

void CDlgUserSettings::ShowSwitches()
{
    const auto On = QStringLiteral("CW ON"), Off = QStringLiteral("CW OFF");
    ShowSwitch(m_pUi->Btn_UseG01FeedForJog, A::m_bUseG01FeedForJog, QStringLiteral("Jog at G01 Feed"));
    ShowSwitch(m_pUi->Btn_EnlManualToolChange, A::m_bEnlManualToolChange, QStringLiteral("Manual Tool Change"));
    ShowSwitch(m_pUi->Btn_EnlAutoToolChange, A::m_bEnlAutoToolChange, QStringLiteral("Auto Tool Change"));
    ShowSwitch(m_pUi->Btn_AutoSpindleOnCW, A::m_bAutoSpindleOnCW, QStringLiteral("Auto Spindle"), On, Off);
    ShowSwitch(m_pUi->Btn_AutoSpindleOnCCW, A::m_bAutoSpindleOnCCW, QStringLiteral("Auto Spindle"), 'C' + On,
               'C' + Off);
    ShowSwitch(m_pUi->Btn_AutoSpindleOff, A::m_bAutoSpindleOff, QStringLiteral("Stop at Job End"));
    ShowSwitch(m_pUi->Btn_AutoHmOnStartup, A::m_bAutoHmOnStartup, QStringLiteral("Home at Start"));
    m_pUi->Btn_SelUnits->setText(A::m_eSelUnits == 1 ? QStringLiteral("Units\nInches")
                                                     : QStringLiteral("Units\nMillimetres"));
    m_pUi->Btn_SelUnits->setStyleSheet(BTN_BKGND_GRAY);
    // Every change of the override would write over what is typed here.
    for (const stUserNumber& number : UserNumbers())
        if (number.strButton.endsWith(QLatin1String("_JogFeed")))
            findChild<QPushButton*>(number.strButton)
                ->setEnabled(number.axis < A::m_iMchType && !A::m_bUseG01FeedForJog);
}

void CDlgUserSettings::UpdateAutoHomingOptions(bool bEnable)
{
    m_pUi->Grp_MoveHome->setEnabled(bEnable);
    for (QPushButton* pButton : {m_pUi->Btn_MoveHome_A, m_pUi->Btn_MoveHome_B})
        pButton->setEnabled(A::m_iMchType == MAX_AXES);
    // One that is on can always be switched off: without sensors it is an error at every start.
    m_pUi->Btn_AutoHmOnStartup->setEnabled(bEnable || A::m_bAutoHmOnStartup);
}

void CDlgUserSettings::ResetUI()
{
    m_pHomingBtn = nullptr;
    for (QPushButton* pButton : m_pUi->Grp_MoveHome->findChildren<QPushButton*>())
        pButton->setStyleSheet(BTN_BKGND_GRAY);
}

// ---- Editing --------------------------------------------------------------------------------------------------------

void CDlgUserSettings::Edit(const stUserNumber& number)
{
    CScreenHost& host = HostOf(*this);
    if (RefuseMachineInUse(host)) return;
    const auto fNew = AskNumber(host, findChild<QPushButton*>(number.strButton), number.fnField(), number.Value());
    if (!fNew) return;
    CMotorSettings motors(host.MachineParts());
    if (!number.fnStore)
        number.SetValue(*fNew);
    else if (const QString strWhy = number.fnStore(motors, *fNew); !strWhy.isEmpty())
        host.AddLogMsg(strWhy, MSG_ERROR);
    ConfigSettings();
}

void CDlgUserSettings::Flip(bool& bSwitch, bool* pOther)
{
    if (RefuseMachineInUse(HostOf(*this))) return;
    bSwitch = !bSwitch;
    if (bSwitch && pOther) *pOther = false;
    ConfigSettings();
}

void CDlgUserSettings::on_Btn_EnlManualToolChange_clicked()
{
    Flip(A::m_bEnlManualToolChange, &A::m_bEnlAutoToolChange);
}
void CDlgUserSettings::on_Btn_EnlAutoToolChange_clicked()
{
    Flip(A::m_bEnlAutoToolChange, &A::m_bEnlManualToolChange);
}
void CDlgUserSettings::on_Btn_AutoSpindleOnCW_clicked()
{
    Flip(A::m_bAutoSpindleOnCW, &A::m_bAutoSpindleOnCCW);
}
void CDlgUserSettings::on_Btn_AutoSpindleOnCCW_clicked()
{
    Flip(A::m_bAutoSpindleOnCCW, &A::m_bAutoSpindleOnCW);
}
void CDlgUserSettings::on_Btn_AutoSpindleOff_clicked()
{
    Flip(A::m_bAutoSpindleOff);
}
void CDlgUserSettings::on_Btn_AutoHmOnStartup_clicked()
{
    Flip(A::m_bAutoHmOnStartup);
}

void CDlgUserSettings::on_Btn_UseG01FeedForJog_clicked()
{
    CScreenHost& host = HostOf(*this);
    if (RefuseMachineInUse(host)) return;
    CMotorSettings(host.MachineParts()).UseG01FeedForJog(!A::m_bUseG01FeedForJog);
    ConfigSettings();
}

void CDlgUserSettings::on_Btn_SelUnits_clicked()
{
    if (RefuseMachineInUse(HostOf(*this))) return;
    A::m_eSelUnits = A::m_eSelUnits == 1 ? 0 : 1;
    ConfigSettings();
}

void CDlgUserSettings::on_Btn_SpindleSpeeds_clicked()
{
    CDlgSpindleSpeeds(parentWidget()).exec();
}

// ---- Move Home ------------------------------------------------------------------------------------------------------

void CDlgUserSettings::MoveHome(QPushButton* pButton, const std::function<bool()>& fnStart)
{
    CScreenHost& host = HostOf(*this);
    if (pButton == m_pHomingBtn && host.Operation() == OP_MCH_HOME) return;   // it is on its way
    pButton->setStyleSheet(BTN_BKGND_BLUE);
    if (!host.IsEmergencyStopOn() && !RefuseMachineInUse(host) && fnStart())
        m_pHomingBtn = pButton;   // blue until the end of the operation
    else
        host.ResetBtnBkGnd(pButton, BTN_BKGND_GRAY);
}

void CDlgUserSettings::on_Btn_AutoHomeSequence_clicked()
{
    MoveHome(m_pUi->Btn_AutoHomeSequence, [this] { return HostOf(*this).StartHoming(); });
}
