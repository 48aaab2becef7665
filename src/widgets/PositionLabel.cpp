#include "widgets/PositionLabel.h"

#include "widgets/Look.h"

#include <QPainter>

static constexpr int ROW_PITCH = 41;   // pixels, that of the axes' buttons
static constexpr int FIGURE_SIZE = 36;

CPositionLabel::CPositionLabel(QWidget* pParent) : QLabel(pParent)
{
    setFont(CLook::FixedFont(FIGURE_SIZE));
}

void CPositionLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    QRect row(0, 0, width(), ROW_PITCH);
    for (const QString& strRow : text().split(QLatin1Char('\n'))) {
        QFont face = font();
        const int iWidth = QFontMetrics(face).horizontalAdvance(strRow);
        if (iWidth > width()) face.setPixelSize(FIGURE_SIZE * width() / iWidth);
        painter.setFont(face);
        painter.drawText(row, Qt::AlignRight | Qt::AlignVCenter, strRow);
        row.translate(0, ROW_PITCH);
    }
}
