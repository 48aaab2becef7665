#pragma once
#include <QColor>
#include <QImage>
#include <QPoint>
#include <QRectF>
#include <QScrollBar>
#include <QString>
#include <QWidget>

// Shows an image, fitted or zoomed with scroll bars. Turning the wheel zooms about the middle of what is seen, a
// double click fits again; another picture of the same size keeps zoom and place. Interface thread.
class CMyView : public QWidget
{
    Q_OBJECT

public:
    explicit CMyView(QWidget* pParent = nullptr);
    ~CMyView() override;

    // The image stays the caller's, who keeps it alive while it is shown. A null shows none.
    void DisplayImage(QImage* pImage);
    // With bCopy the view shows a copy of its own.
    void DisplayImage(QImage* pImage, bool bCopy);
    void EnableZoom(bool bEnable);
    void SetDisplayID(const QString& strID);
    double GetCurZoomFactor() const { return m_fZoom; }
    // Where the image lies under a place of the widget, as it is drawn now.
    QPointF ImageAt(QPointF view) const;
    bool IsOverImage(QPointF view) const;   // and not on the scroll bars
    virtual void DrawEngGraphics() {}       // a hook for users of the class

    QColor m_colBkGnd{0, 0, 0};
    bool m_bShowPixelInfo = false;
    QString m_strPixelInfo;           // of the pixel under the pointer
    bool m_bLeftButtonDown = false;   // during the last mouse move: the left button and no other
    QPoint m_MousePos, m_ImgPos;      // of the pointer, in the widget and in the image

signals:
    void MouseMoved();

protected:
    void wheelEvent(QWheelEvent* pEvent) override;
    void mouseDoubleClickEvent(QMouseEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;

    QImage* m_pImage = nullptr;
    bool m_bOwnImage = false;
    QSize m_ImgSize{0, 0};   // of the image last shown
    qint32 m_sScrollBarSize = 0;
    QScrollBar m_HScroll{Qt::Horizontal, this}, m_VScroll{Qt::Vertical, this};
    bool m_bFitToView = true;
    qint32 m_iScrollX = 0, m_iScrollY = 0;   // view pixels
    QRectF m_TargetRect, m_SourceRect;       // where in the widget, and which part of the image
    QRectF m_ViewRect;
    double m_fZoom = 1.0;   // screen pixels per image pixel
    bool m_bZoomEnabled = false;
    QString m_strDisplayID;

private:
    struct stSpan
    {
        qreal fStart, fEnd;
    };
    void FitIfOtherSize(const QImage& image);
    void DropCopy();
    void AdjustZoom();
    void AdjustAlong(QScrollBar& bar, qreal fView, qreal fImage, stSpan& target, stSpan& source, qint32& iScroll);
    void OnHScroll(int iValue);
    void OnVScroll(int iValue);
    void ReadPixel(QPointF pos);
};
