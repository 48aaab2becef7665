#pragma once
#include <QDialog>

#include <memory>

namespace Ui {
class CDlgPwmSpndlSettings;
}

// The spindle's speed line: whether it is used, its frequencies and the wait after a change. Modal; its parent is the
// host.
class CDlgPwmSpndlSettings : public QDialog
{
    Q_OBJECT

public:
    explicit CDlgPwmSpndlSettings(QWidget* pHost);
    ~CDlgPwmSpndlSettings() override;

    void ConfigSettings();

private slots:
    void on_Btn_UsePwmCtrl_clicked();
    void on_Btn_PwmMinFreq_clicked();
    void on_Btn_PwmMaxFreq_clicked();
    void on_Btn_PwmTimeDelay_clicked();
    void on_Btn_Close_clicked() { accept(); }

private:
    void FrequencyChanged(const QString& strRefused);
    std::unique_ptr<Ui::CDlgPwmSpndlSettings> m_pUi;
};
