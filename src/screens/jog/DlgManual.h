#pragma once
#include "common/MachineTypes.h"

#include <QDialog>
#include <QPointer>

#include <memory>
#include <optional>
#include <vector>

class QPushButton;
namespace Ui {
class CDlgManual;
}

// The jog panel: the axes of a button run while it is held, up to their soft limit, and ramp down when it is let go.
// A jog also ends when the finger leaves the button, a box blocks the window, the window is deactivated, or the panel
// is hidden or disabled: what started by holding must never go on unheld. Interface thread.
class CDlgManual : public QDialog
{
    Q_OBJECT

public:
    explicit CDlgManual(QWidget* pParent = nullptr);
    ~CDlgManual() override;

    // Enables A and B on a machine of five axes. Once, at start.
    void ConfigSettings();
    void reject() override {}

protected:
    void changeEvent(QEvent* pEvent) override;
    void showEvent(QShowEvent* pEvent) override;
    void hideEvent(QHideEvent* pEvent) override;
    bool eventFilter(QObject* pObject, QEvent* pEvent) override;

private:
    struct stMove
    {
        eAxis axis;
        bool bPositive;
    };
    struct stJog
    {
        QPushButton* pButton;
        std::vector<stMove> moves;   // Y before X on a diagonal
    };
    void AddJog(QPushButton* pButton, std::vector<stMove> moves);
    void OnPressed(size_t uJog);
    void OnReleased(size_t uJog);
    bool MayJog(const stJog& jog);
    void EndHeldJog();
    bool FilterButton(QPushButton* pButton, const QEvent& event);

    bool m_bJogging = false;   // a jog that this panel started runs; one flag for all buttons
    std::vector<stJog> m_lstJogs;
    std::optional<size_t> m_uHeld;   // the jog whose button is down
    QObject* m_pSpent = nullptr;     // its press has ended, though the finger may still be on it
    qint32 m_iStartAxes = 3;         // the axes that the controller has set up
    QPointer<QWidget> m_pWatched;    // the window whose blocking ends a jog
    std::unique_ptr<Ui::CDlgManual> m_pUi;
};
