#pragma once
#include <QDialog>

#include <memory>

namespace Ui {
class CDlgSpindleSpeeds;
}

// The operator's table of sixteen spindle speeds, 0 to 32767 revolutions per minute. Modal; its parent is the host.
class CDlgSpindleSpeeds : public QDialog
{
    Q_OBJECT

public:
    explicit CDlgSpindleSpeeds(QWidget* pHost);
    ~CDlgSpindleSpeeds() override;

    void ConfigSettings();

private slots:
    void on_Btn_Close_clicked() { accept(); }

private:
    void Edit(int iStep);
    std::unique_ptr<Ui::CDlgSpindleSpeeds> m_pUi;
};
