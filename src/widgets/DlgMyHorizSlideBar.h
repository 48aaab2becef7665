#pragma once
#include "widgets/SlideBar.h"

#include <QDialog>
#include <QElapsedTimer>

#include <memory>

class QPushButton;
namespace Ui {
class CdlgMyHorizSlideBar;
}

// A slide bar for feed and spindle speed, a child of the screen that shows it. It is moved by its two step buttons;
// ValueChanged tells the new value a tenth of a second after the press. Interface thread.
class CdlgMyHorizSlideBar : public QDialog, public stSlideBar
{
    Q_OBJECT

public:
    explicit CdlgMyHorizSlideBar(QWidget* pParent = nullptr);
    ~CdlgMyHorizSlideBar() override;

    void SetSliderRange(stFloatPoint fRange) { SetRange(fRange); }
    void setValue(double fValue);   // cut to a whole number, clamped into the range; emits nothing
    qint16 GetValue() const { return m_sValue; }
    void reject() override {}

signals:
    void ValueChanged(short sValue);

protected:
    // Time since the last accepted press of a step button, ms; negative where there was none.
    virtual qint64 MsSinceClick() const { return m_ClickTimer.isValid() ? m_ClickTimer.elapsed() : -1; }

private slots:
    void on_Btn_Decrease_pressed();
    void on_Btn_Increase_pressed();

private:
    void on_Slider_ValueChanged(short sValue);
    void ShowStep(QPushButton* pButton);
    bool AcceptClick();
    void ResetBtnBkGnd();
    void UpdateControl();

    static constexpr qint64 CLICK_GUARD = 400;   // ms: a shaking finger must not walk the feed
    static constexpr int TELL_DELAY = 100;       // ms
    QElapsedTimer m_ClickTimer;
    QPushButton* m_pPressed = nullptr;   // blue until the new value has been told
    std::unique_ptr<Ui::CdlgMyHorizSlideBar> m_pUi;
};
