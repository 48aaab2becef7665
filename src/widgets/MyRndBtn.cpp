#include "widgets/MyRndBtn.h"

#include "widgets/Look.h"

#include <QPainter>
#include <QScopedValueRollback>

CMyRndBtn::CMyRndBtn(QWidget* pParent) : QPushButton(pParent)
{
    setFocusPolicy(Qt::NoFocus);   // a space bar would emit pressed() past the latch
}

void CMyRndBtn::Latch(bool bPressed)
{
    m_bPressed = bPressed;
    update();
}
void CMyRndBtn::SetPressed()
{
    Latch(true);
}
void CMyRndBtn::SetReleased()
{
    Latch(false);
}

void CMyRndBtn::SetBtnText(const QString& strText)
{
    m_strText = strText;
    update();
}

void CMyRndBtn::SetBtnColor(const QColor& released, const QColor& pressed)
{
    m_colReleased = released;
    m_colPressed = pressed;
    update();
}

// Any mouse button counts: an emergency stop does not ask which.
void CMyRndBtn::mousePressEvent(QMouseEvent*)
{
    m_bPressed = !m_bPressed;
    if (m_bPressed)
        emit pressed();
    else
        emit released();
    repaint();
}

void CMyRndBtn::paintEvent(QPaintEvent*)
{
    if (m_bPainting) return;
    const QScopedValueRollback<bool> guard(m_bPainting, true);

    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), m_colBkGnd);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(50, 50, 50));
    painter.drawEllipse(0, 0, width() - 2, height() - 2);

    const int iOrigin = m_bPressed ? 7 : 5, iLess = m_bPressed ? 15 : 7;
    painter.setBrush(m_bPressed ? m_colPressed : m_colReleased);
    painter.drawEllipse(iOrigin, iOrigin, width() - iLess, height() - iLess);

    painter.setFont(CLook::Font(m_bPressed ? m_sFontSize - 3 : m_sFontSize));
    painter.setPen(QPen(m_colText, 10));
    painter.drawText(m_sTextX, height() / 2 + 12, m_strText);
}
