#pragma once
#include <QDialog>
#include <QTimer>

#include <memory>

namespace Ui {
class dlgRpiController;
}

// The pins of the Pi with their roles and, while it is seen, their levels. Nothing can be pressed: pins follow the
// board. A page of the machine settings.
class dlgRpiController : public QDialog
{
    Q_OBJECT

public:
    explicit dlgRpiController(QWidget* pParent = nullptr);
    ~dlgRpiController() override;

    // Roles of the pins in force.
    void ConfigSettings();
    void reject() override {}   // Escape must not hide it

protected:
    void showEvent(QShowEvent* pEvent) override;
    void hideEvent(QHideEvent* pEvent) override;

private:
    void ShowLevels();
    std::unique_ptr<Ui::dlgRpiController> m_pUi;
    QTimer m_Timer;
};
