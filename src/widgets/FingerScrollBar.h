#pragma once
#include <QPainter>
#include <QScrollBar>

// An upright scroll bar whose ends and knob a finger hits. Interface thread.
class CFingerScrollBar : public QScrollBar
{
public:
    explicit CFingerScrollBar(QWidget* pParent = nullptr) : QScrollBar(pParent)
    {
        setStyleSheet(QStringLiteral(R"(
QScrollBar:vertical {width: 44px; margin: 44px 0; background-color: rgb(40, 40, 40);}
QScrollBar::handle:vertical, QScrollBar::sub-line:vertical, QScrollBar::add-line:vertical {
    background-color: rgb(150, 150, 150); border: 2px solid black;}
QScrollBar::handle:vertical {min-height: 40px;}
QScrollBar::sub-line:vertical {height: 40px; subcontrol-position: top; subcontrol-origin: margin;}
QScrollBar::add-line:vertical {height: 40px; subcontrol-position: bottom; subcontrol-origin: margin;}
QScrollBar::up-arrow:vertical, QScrollBar::down-arrow:vertical {width: 0; height: 0; border: 0;})"));
    }

protected:
    // A style sheet takes arrows from files only.
    void paintEvent(QPaintEvent* pEvent) override
    {
        QScrollBar::paintEvent(pEvent);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::black);
        const int x = width() / 2, yUp = END / 2, yDown = height() - END / 2;
        painter.drawPolygon(QPolygon({{x - 9, yUp + 5}, {x + 9, yUp + 5}, {x, yUp - 7}}));
        painter.drawPolygon(QPolygon({{x - 9, yDown - 5}, {x + 9, yDown - 5}, {x, yDown + 7}}));
    }

private:
    static constexpr int END = 44;   // pixels
};
