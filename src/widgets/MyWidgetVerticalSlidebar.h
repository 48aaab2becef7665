#pragma once
#include "widgets/SlideBar.h"

#include <QPoint>
#include <QWidget>

#include <memory>

class QPushButton;
namespace Ui {
class CMyWidgetVerticalSlidebar;
}

// The upright twin of CdlgMyHorizSlideBar: low end below, no guard against fast presses, ValueChanged at once, and a
// knob that can be dragged in whole steps of five pixels. No screen has one; it is kept ready. Interface thread.
class CMyWidgetVerticalSlidebar : public QWidget, public stSlideBar
{
    Q_OBJECT

public:
    explicit CMyWidgetVerticalSlidebar(QWidget* pParent = nullptr);
    ~CMyWidgetVerticalSlidebar() override;

    void SetSliderRange(stFloatPoint fRange) { SetRange(fRange); }
    void setValue(double fValue);
    qint16 GetValue() const { return m_sValue; }

signals:
    void ValueChanged(short sValue);

protected:
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent* pEvent) override;

private slots:
    void on_Btn_Decrease_pressed();
    void on_Btn_Increase_pressed();

private:
    void UpdateControl();
    void Tell(QPushButton* pButton);

    bool m_bDragging = false;
    int m_iDragY = 0;   // where the pointer was when the knob last moved
    std::unique_ptr<Ui::CMyWidgetVerticalSlidebar> m_pUi;
};
