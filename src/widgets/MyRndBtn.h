#pragma once
#include <QColor>
#include <QPushButton>

// A round button that latches: every press of the mouse or finger flips it, and nothing happens on release. Its
// handlers bring it back with SetReleased where a momentary feel is wanted. Draws itself. Interface thread.
class CMyRndBtn : public QPushButton
{
    Q_OBJECT

public:
    explicit CMyRndBtn(QWidget* pParent = nullptr);

    // The latch as drawn; neither emits anything.
    void SetPressed();
    void SetReleased();
    bool IsPressed() const { return m_bPressed; }

    void SetBtnText(const QString& strText);
    void SetBtnColor(const QColor& released, const QColor& pressed);

    qint16 m_sFontSize = 25;   // of the caption, pixels
    qint16 m_sTextX = 20;      // left end of the caption, pixels

signals:
    void Clicked();   // for users of the class; the button itself emits pressed() and released()

protected:
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent*) override {}
    void mouseMoveEvent(QMouseEvent*) override {}
    void paintEvent(QPaintEvent* pEvent) override;

private:
    void Latch(bool bPressed);

    QColor m_colBkGnd{60, 60, 60};
    QColor m_colPressed{255, 0, 0}, m_colReleased{128, 0, 0};
    QColor m_colText{255, 255, 255};
    QString m_strText = QStringLiteral("Stop");
    bool m_bPressed = false;
    bool m_bPainting = false;
};
