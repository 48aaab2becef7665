#include "window/StopOver.h"

#include "widgets/MyRndBtn.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScopedValueRollback>

// A tool tip is the one kind of window that no modal one blocks, that takes no focus, and that stands where it is put
// under every window system.
CStopOver::CStopOver(CMyRndBtn& stop, QWidget& modal)
    : QWidget(&modal, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus), m_Stop(stop)
{
    setAttribute(Qt::WA_ShowWithoutActivating);
    setGeometry(QRect(stop.mapToGlobal(QPoint()), stop.size()));
    stop.installEventFilter(this);
}

void CStopOver::Follow(CMyRndBtn& stop, QObject* pObject, const QEvent& event)
{
    if (event.type() != QEvent::Show && event.type() != QEvent::Hide) return;
    auto* pModal = qobject_cast<QWidget*>(pObject);
    if (!pModal || !pModal->isWindow() || !pModal->isModal()) return;
    // Not at once: it may be its own touch that ends the modal window.
    for (CStopOver* pOld : pModal->findChildren<CStopOver*>(QString(), Qt::FindDirectChildrenOnly)) {
        pOld->hide();
        pOld->deleteLater();
    }
    if (event.type() == QEvent::Hide || !stop.isVisible()) return;
    // Behind the modal window, so that it stands above.
    QMetaObject::invokeMethod(new CStopOver(stop, *pModal), &QWidget::show, Qt::QueuedConnection);
}

void CStopOver::mousePressEvent(QMouseEvent* pEvent)
{
    QCoreApplication::sendEvent(&m_Stop, pEvent);
}

void CStopOver::paintEvent(QPaintEvent*)
{
    const QScopedValueRollback<bool> guard(m_bPainting, true);
    QPainter(this).drawPixmap(0, 0, m_Stop.grab());
}

// The button's look changes also by an input or a key.
bool CStopOver::eventFilter(QObject* pObject, QEvent* pEvent)
{
    if (pObject == &m_Stop && pEvent->type() == QEvent::Paint && !m_bPainting) update();
    return false;
}
