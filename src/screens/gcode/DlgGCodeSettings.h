#pragma once
#include <QDialog>

#include <memory>

class QPushButton;
namespace Ui {
class dlgGCodeSettings;
}

// Choices of a G-code run, AppConfig::m_GCodeRunSettings. Modal; each press takes effect at once, so there is nothing
// to confirm. The window is its parent. Interface thread.
class dlgGCodeSettings : public QDialog
{
    Q_OBJECT

public:
    explicit dlgGCodeSettings(QWidget* pParent);
    ~dlgGCodeSettings() override;

    void ConfigSettings();

private slots:
    void on_Btn_UsePrgmFeed_clicked();
    void on_Btn_GCode_SaveExecStatus_clicked();
    void on_Btn_GCode_UsePrgmSpindleSpeed_clicked();
    void on_Btn_GCode_AxisStep_clicked();
    void on_Btn_GCodeHmPosTLU_clicked();
    void on_Btn_GCodeHmPosTRU_clicked();
    void on_Btn_GCodeHmPosBRU_clicked();
    void on_Btn_GCodeHmPosBLU_clicked();
    void on_Btn_GCodeHmPosCenter_clicked();
    void on_Btn_Close_clicked();

private:
    // The button of a corner; null: iHomeRef is none.
    QPushButton* CornerButton(qint32 iHomeRef) const;
    void SelectCorner(qint32 iHomeRef);
    void UpdateHomeRefBtnGr(QPushButton* pButton);   // null: none is selected

    std::unique_ptr<Ui::dlgGCodeSettings> m_pUi;
    QPushButton* m_pHomeRefBtn = nullptr;   // the selected corner
};
