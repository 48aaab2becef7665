#include "widgets/MyView.h"

#include "widgets/Look.h"

#include <QMouseEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <QWheelEvent>

#include <algorithm>

static constexpr double ZOOM_STEP = 0.05, LEAST_ZOOM = 0.05, MOST_ZOOM = 7.0;
static constexpr int SCROLL_BAR_SIZE = 25;   // pixels, for a finger

CMyView::CMyView(QWidget* pParent) : QWidget(pParent)
{
    setMouseTracking(true);
    connect(&m_HScroll, &QScrollBar::valueChanged, this, &CMyView::OnHScroll);
    connect(&m_VScroll, &QScrollBar::valueChanged, this, &CMyView::OnVScroll);
    EnableZoom(false);
}

CMyView::~CMyView()
{
    DropCopy();
}

void CMyView::DropCopy()
{
    if (!m_bOwnImage) return;
    delete m_pImage;
    m_pImage = nullptr;
    m_bOwnImage = false;
}

void CMyView::FitIfOtherSize(const QImage& image)
{
    if (m_pImage && image.size() == m_ImgSize) return;
    m_bFitToView = true;
    m_SourceRect = image.rect();
}

void CMyView::DisplayImage(QImage* pImage)
{
    DisplayImage(pImage, false);
}

void CMyView::DisplayImage(QImage* pImage, bool bCopy)
{
    if (pImage) FitIfOtherSize(*pImage);
    DropCopy();
    // A caller's image that is still shown stands against a copy: wanted.
    if (!bCopy || !pImage) {
        m_pImage = pImage;
    } else if (!m_pImage) {
        m_pImage = new QImage(pImage->copy());
        m_bOwnImage = true;
    }
    m_ImgSize = m_pImage ? m_pImage->size() : QSize(0, 0);
    if (m_bFitToView)
        AdjustZoom();
    else
        update();
}

void CMyView::SetDisplayID(const QString& strID)
{
    m_strDisplayID = strID;
    update();
}

void CMyView::EnableZoom(bool bEnable)
{
    m_bZoomEnabled = bEnable;
    m_sScrollBarSize = bEnable ? SCROLL_BAR_SIZE : 0;
    m_HScroll.setGeometry(0, height() - m_sScrollBarSize, width(), m_sScrollBarSize);
    m_VScroll.setGeometry(width() - m_sScrollBarSize, 0, m_sScrollBarSize, height() - m_sScrollBarSize);
    m_HScroll.setVisible(bEnable);
    m_VScroll.setVisible(bEnable);
    AdjustZoom();
}

void CMyView::AdjustZoom()
{
    if (!m_pImage || m_ImgSize.isEmpty()) return update();
    const qreal fViewW = m_ViewRect.width(), fViewH = m_ViewRect.height();
    if (m_bFitToView) {
        m_HScroll.setEnabled(false);
        m_VScroll.setEnabled(false);
        m_fZoom =
            std::min((fViewW - m_sScrollBarSize) / m_ImgSize.width(), (fViewH - m_sScrollBarSize) / m_ImgSize.height());
    }
    stSpan targetX{}, targetY{};
    stSpan sourceX{m_SourceRect.left(), m_SourceRect.right()}, sourceY{m_SourceRect.top(), m_SourceRect.bottom()};
    AdjustAlong(m_HScroll, fViewW, m_ImgSize.width(), targetX, sourceX, m_iScrollX);
    AdjustAlong(m_VScroll, fViewH, m_ImgSize.height(), targetY, sourceY, m_iScrollY);
    m_TargetRect = QRectF(QPointF(targetX.fStart, targetY.fStart), QPointF(targetX.fEnd, targetY.fEnd));
    m_SourceRect = QRectF(QPointF(sourceX.fStart, sourceY.fStart), QPointF(sourceX.fEnd, sourceY.fEnd));
    update();
}

// One direction of the picture: scrolled about the middle of what was seen, or centred where all of it is seen.
void CMyView::AdjustAlong(QScrollBar& bar, qreal fView, qreal fImage, stSpan& target, stSpan& source, qint32& iScroll)
{
    const float fScaled = static_cast<float>(fImage * m_fZoom);
    const qreal fRoom = fView - m_sScrollBarSize;
    const bool bWider = static_cast<qreal>(fScaled) > fRoom;
    if (bWider) {
        // The source spans the whole view, the target leaves out the bar: wanted, the picture is that much narrower.
        const qreal fCentre = (source.fStart + source.fEnd) / 2.0, fHalf = fView / m_fZoom / 2.0;
        target = {0.0, fRoom};
        source = {fCentre - fHalf, fCentre + fHalf};
        const QSignalBlocker quiet(bar);   // a value that the range cuts must not move the source
        bar.setRange(0, std::max(0, static_cast<int>(static_cast<qreal>(fScaled) - fView)));
        iScroll = static_cast<qint32>(source.fStart * m_fZoom);
        bar.setValue(iScroll);
    } else {
        const qreal fLeft = (fRoom - static_cast<qreal>(fScaled)) / 2.0;
        target = {fLeft, fLeft + static_cast<qreal>(fScaled)};
        source = {0.0, fImage};
        iScroll = 0;
    }
    bar.setEnabled(bWider);
}

void CMyView::OnHScroll(int iValue)
{
    m_iScrollX = iValue;
    m_SourceRect.setLeft(iValue / m_fZoom);
    m_SourceRect.setRight(m_SourceRect.left() + m_TargetRect.width() / m_fZoom);
    update();
}

void CMyView::OnVScroll(int iValue)
{
    m_iScrollY = iValue;
    m_SourceRect.setTop(iValue / m_fZoom);
    m_SourceRect.setBottom(m_SourceRect.top() + m_TargetRect.height() / m_fZoom);
    update();
}

void CMyView::wheelEvent(QWheelEvent* pEvent)
{
    if (!m_bZoomEnabled) return;
    m_bFitToView = false;
    m_fZoom += pEvent->angleDelta().y() > 0 ? ZOOM_STEP : -ZOOM_STEP;
    m_fZoom = std::clamp(m_fZoom, LEAST_ZOOM, MOST_ZOOM);
    AdjustZoom();
}

void CMyView::mouseDoubleClickEvent(QMouseEvent* pEvent)
{
    if (pEvent->button() != Qt::LeftButton) return;
    m_bFitToView = true;
    AdjustZoom();
}

void CMyView::mouseMoveEvent(QMouseEvent* pEvent)
{
    if (!m_pImage) return;
    m_bLeftButtonDown = pEvent->buttons() == Qt::LeftButton;
    m_MousePos = pEvent->pos();
    if (m_TargetRect.contains(m_MousePos))
        ReadPixel(m_MousePos - m_TargetRect.topLeft());
    else
        m_strPixelInfo.clear();
    update();
    emit MouseMoved();
}

// The position is relative to the target.
void CMyView::ReadPixel(QPointF pos)
{
    if (m_bFitToView)
        m_ImgPos = QPoint(static_cast<int>(pos.x() / (m_TargetRect.width() / m_SourceRect.width())),
                          static_cast<int>(pos.y() / (m_TargetRect.height() / m_SourceRect.height())));
    else
        m_ImgPos = QPoint(static_cast<int>((m_iScrollX + pos.x()) / m_fZoom),
                          static_cast<int>((m_iScrollY + pos.y()) / m_fZoom));
    m_strPixelInfo.clear();
    if (!m_pImage->valid(m_ImgPos)) return;   // beside the picture, when it was zoomed out near its edge
    const QColor color = m_pImage->pixelColor(m_ImgPos);
    m_strPixelInfo = QStringLiteral("X:%1 Y:%2(RGB:%3,%4,%5)")
                         .arg(m_ImgPos.x())
                         .arg(m_ImgPos.y())
                         .arg(color.red())
                         .arg(color.green())
                         .arg(color.blue());
}

QPointF CMyView::ImageAt(QPointF view) const
{
    if (m_TargetRect.isEmpty()) return {};
    const QPointF inTarget = view - m_TargetRect.topLeft();
    return m_SourceRect.topLeft() + QPointF(inTarget.x() * m_SourceRect.width() / m_TargetRect.width(),
                                            inTarget.y() * m_SourceRect.height() / m_TargetRect.height());
}

bool CMyView::IsOverImage(QPointF view) const
{
    const QRectF room(0.0, 0.0, width() - m_sScrollBarSize, height() - m_sScrollBarSize);
    return m_pImage && room.contains(view) && m_TargetRect.contains(view);
}

void CMyView::resizeEvent(QResizeEvent*)
{
    m_ViewRect = rect();
    m_TargetRect = rect();
    EnableZoom(m_bZoomEnabled);
}

void CMyView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(QRectF(0, 0, m_ViewRect.width() - m_sScrollBarSize, m_ViewRect.height() - m_sScrollBarSize),
                     m_colBkGnd);
    // Fitted into the view, thin lines of the image would break up into dots.
    painter.setRenderHint(QPainter::SmoothPixmapTransform, m_bFitToView);
    if (m_pImage) painter.drawImage(m_TargetRect, *m_pImage, m_SourceRect);
    painter.setPen(QPen(QColor(0, 255, 150), 3));
    QFont font = CLook::Font(15);
    if (m_bShowPixelInfo) {
        font.setItalic(true);
        painter.setFont(font);
        painter.drawText(5, 32, m_strPixelInfo);
    }
    if (m_strDisplayID.isEmpty()) return;
    font.setItalic(false);
    painter.setFont(font);
    painter.drawText(5, 15, m_strDisplayID);
}
