#pragma once
#include <QDialog>

#include <memory>

class QPushButton;
namespace Ui {
class dlgZProfiler;
}

// Asks for the grid that a Z-profile is measured on, AppConfig::m_ZProfileInfo. Modal; what is typed stays there even
// after Cancel. Accepted: Ok was pressed. The window is its parent. Interface thread.
class dlgZProfiler : public QDialog
{
    Q_OBJECT

public:
    explicit dlgZProfiler(QWidget* pParent);
    ~dlgZProfiler() override;

    void ConfigSettings();

private slots:
    void on_Btn_XYStep_clicked();
    void on_Btn_Z_Max_Range_clicked();
    void on_Btn_Length_clicked();
    void on_Btn_Width_clicked();
    void on_Btn_Z_Offset_clicked();
    void on_Btn_Ok_clicked();
    void on_Btn_Cancel_clicked();

private:
    std::unique_ptr<Ui::dlgZProfiler> m_pUi;
};
