#pragma once
#include <QDialog>

#include <memory>

namespace Ui {
class dlgVantorCtrl;
}

// The outputs of an expansion board by their M codes, to be read. A page of the machine settings.
class dlgVantorCtrl : public QDialog
{
    Q_OBJECT

public:
    explicit dlgVantorCtrl(QWidget* pParent = nullptr);
    ~dlgVantorCtrl() override;

    void ConfigSettings();
    void reject() override {}   // Escape must not hide it

private:
    std::unique_ptr<Ui::dlgVantorCtrl> m_pUi;
};
