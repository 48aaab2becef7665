#pragma once
#include "common/MachineTypes.h"

#include <QDialog>

#include <functional>
#include <memory>

class QPushButton;
struct stUserNumber;

namespace Ui {
class CDlgUserSettings;
}

// What the operator of the machine sets: feeds, tools, the automatic spindle, and homing with the group "Move Home".
// Values come by the keypad, take effect at once, and reach the file with Save. A screen of the work area: its parent
// is the host.
class CDlgUserSettings : public QDialog
{
    Q_OBJECT

public:
    explicit CDlgUserSettings(QWidget* pParent = nullptr);
    ~CDlgUserSettings() override;

    // Fills the screen from AppConfig.
    void ConfigSettings();
    // An operation has ended: no home button is active.
    void ResetUI();
    // Homing needs sensors; A and B a machine of five axes.
    void UpdateAutoHomingOptions(bool bEnable);
    void reject() override {}   // Escape must not hide it

public slots:
    // Homes all axes. Opens no box: the supervision loop calls it for a held key.
    void on_Btn_AutoHomeSequence_clicked();

private slots:
    void on_Btn_SelUnits_clicked();
    void on_Btn_UseG01FeedForJog_clicked();
    void on_Btn_EnlManualToolChange_clicked();
    void on_Btn_EnlAutoToolChange_clicked();
    void on_Btn_AutoSpindleOnCW_clicked();
    void on_Btn_AutoSpindleOnCCW_clicked();
    void on_Btn_AutoSpindleOff_clicked();
    void on_Btn_SpindleSpeeds_clicked();
    void on_Btn_AutoHmOnStartup_clicked();

private:
    void Edit(const stUserNumber& number);
    // Flips one switch; of two that exclude each other the other goes off.
    void Flip(bool& bSwitch, bool* pOther = nullptr);
    void MoveHome(QPushButton* pButton, const std::function<bool()>& fnStart);
    void ShowSwitches();

    std::unique_ptr<Ui::CDlgUserSettings> m_pUi;
    QPushButton* m_pHomingBtn = nullptr;   // of the homing that runs
};
