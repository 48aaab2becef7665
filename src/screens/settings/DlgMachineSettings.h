#pragma once
#include "common/MachineTypes.h"

#include <QDialog>

#include <memory>

class CMotorSettings;
class CScreenHost;
class QPushButton;
struct stMotorNumber;

namespace Ui {
class CDlgMachineSettings;
}

// What the builder of the machine sets: board and switches, motors with a picture of their ramp, limits and directions.
// Values come by the keypad, take effect at once, and reach the file with Save. A screen of the work area: its parent
// is the host.
class CDlgMachineSettings : public QDialog
{
    Q_OBJECT

public:
    explicit CDlgMachineSettings(QWidget* pParent = nullptr);
    ~CDlgMachineSettings() override;

    // Fills every widget from AppConfig.
    void ConfigSettings();
    // The motor buttons show the values of one axis.
    void UpdateMotorCtrlBtns(eAxis axis);
    // Limits and home directions count with home sensors only; A and B on a machine of five axes.
    void EnlMotionLimits();
    // Rebuilds the selected axis, while the machine is free, and draws its ramp at the highest feed.
    void CreateVelAccGraphics();
    // The motor values of the selected axis to the others of its group.
    void CopyMotorParamsToAllAxis();
    void reject() override {}   // Escape must not hide it

protected:
    void showEvent(QShowEvent* pEvent) override;

private slots:
    void on_Cmb_VantorCntrolSel_currentIndexChanged(int iBoard);
    void on_Btn_UseHomeIP_clicked();
    void on_Btn_UseKeyboardCtrl_clicked();
    void on_Btn_KeyboardHelp_clicked();
    void on_Btn_PwmSettings_clicked();
    void on_Btn_MachSettingsPasswd_clicked();
    void on_Btn_VelCurveType_clicked();
    void on_Btn_SameMotorSettings_clicked();
    void on_Btn_SameMotorSettings_AB_clicked();

private:
    // The buttons of one axis on the page of limits.
    struct stAxisButtons
    {
        QPushButton *pSelect, *pPosLimit, *pNegLimit, *pPosDir, *pHomeDir;
    };
    void ConnectAxis(eAxis axis);
    void SelectAxis(eAxis axis);
    void EditMotor(const stMotorNumber& number);
    void EditLimit(eAxis axis, bool bPositive);
    void FlipDirection(eAxis axis, eDirection eDir, void (CMotorSettings::*fnSet)(eAxis, eDirection));
    void ShowLimits(eAxis axis);
    void ShowBoard();
    void ShowSwitches();
    void CopyFrom(QPushButton* pButton);
    void Tell(const QString& strProblem);   // on the log; an empty text says nothing
    CMotorSettings Motors();

    std::unique_ptr<Ui::CDlgMachineSettings> m_pUi;
    stAxisButtons m_lstAxis[MAX_AXES];
    eAxis m_eSelAxis = X_AXIS;
    bool m_bConfiguring = false;   // a change of the board box is not the operator's
};
