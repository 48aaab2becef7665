#include "screens/settings/VelocityGraph.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

static constexpr double AXIS_PEN = 2.0, GRID_PEN = 1.0;
static constexpr int TEXT_SIZE = 14;
static const QColor BACKGROUND(30, 30, 30), AXES(230, 230, 230), GRID(80, 80, 80), CURVE(0, 250, 0),
    WARNING(255, 160, 60);
static constexpr double SLOW_PULSE = 0.1;   // s, of the first one: from here on it is seen as a wait

// A recorded speed lasts for one pulse or, where pulses are shorter than a sampling time, for as many as were put into
// the table for it.
static double PulsesOf(double fVel, double fSamplingTime)
{
    const double fPeriod = 1000000.0 / fVel;
    return fPeriod >= fSamplingTime ? 1.0 : std::max(1.0, std::ceil(fSamplingTime / fPeriod) - 1.0);
}

CVelocityGraph::CVelocityGraph(stCurve curve) : m_Curve(std::move(curve))
{
    double fTime = 0.0;
    m_lstPoints.reserve(m_Curve.lstVel.size() + 1);
    for (const double fVel : m_Curve.lstVel) {
        m_lstPoints.emplace_back(fTime, fVel * m_Curve.fMovPerPulse);
        const double fPulses = PulsesOf(fVel, m_Curve.fSamplingTime);
        fTime += fPulses / fVel;
        m_fDistance += fPulses * m_Curve.fMovPerPulse;
    }
    if (!m_lstPoints.empty()) m_lstPoints.emplace_back(fTime, m_lstPoints.back().y());
}

double CVelocityGraph::FirstPulse() const
{
    return m_Curve.lstVel.empty() ? 0.0 : 1.0 / m_Curve.lstVel.front();
}

double CVelocityGraph::GridStep(double fSpan, int iParts)
{
    const double fRough = fSpan / iParts;
    const double fPower = std::pow(10.0, std::floor(std::log10(fRough)));
    for (const double fFactor : {1.0, 2.0, 5.0})
        if (fFactor * fPower >= fRough * (1.0 - 1e-9)) return fFactor * fPower;
    return 10.0 * fPower;
}

// Where the curve lies in the image, and how much time and speed it holds.
class CVelocityGraph::CArea
{
public:
    CArea(QSize size, QPointF span)
        : m_Rect(QPoint(64, 40), QPoint(size.width() - 24, size.height() - 44)), m_Span(span)
    {
    }
    QPointF At(QPointF value) const
    {
        return {m_Rect.left() + value.x() / m_Span.x() * m_Rect.width(),
                m_Rect.bottom() - value.y() / m_Span.y() * m_Rect.height()};
    }
    const QRectF m_Rect;
    const QPointF m_Span;
};

static QString Rounded(double fValue)
{
    return QString::number(fValue, 'g', 4);
}

static void DrawGrid(QPainter& painter, const QRectF& rect, QPointF span, QPointF unit, const QString& strSpeed,
                     const QString& strTime)
{
    const auto Label = [&painter](QRectF where, int iAlign, const QString& strText) {
        painter.setPen(AXES);
        painter.drawText(where, iAlign, strText);
    };
    const double fTimeStep = CVelocityGraph::GridStep(span.x() / unit.x(), 5) * unit.x();
    for (int n = 0; n * fTimeStep <= span.x() * 1.0001; ++n) {
        const double x = rect.left() + n * fTimeStep / span.x() * rect.width();
        painter.setPen(QPen(GRID, GRID_PEN));
        painter.drawLine(QPointF(x, rect.top()), QPointF(x, rect.bottom()));
        Label({x - 40, rect.bottom() + 4, 80, 18}, Qt::AlignCenter, Rounded(n * fTimeStep / unit.x()));
    }
    const double fSpeedStep = CVelocityGraph::GridStep(span.y(), 6);
    for (int n = 0; n * fSpeedStep <= span.y() * 1.0001; ++n) {
        const double y = rect.bottom() - n * fSpeedStep / span.y() * rect.height();
        painter.setPen(QPen(GRID, GRID_PEN));
        painter.drawLine(QPointF(rect.left(), y), QPointF(rect.right(), y));
        Label({0, y - 9, rect.left() - 6, 18}, Qt::AlignRight | Qt::AlignVCenter, Rounded(n * fSpeedStep));
    }
    painter.setPen(QPen(AXES, AXIS_PEN));
    painter.drawLine(rect.bottomLeft(), rect.bottomRight());
    painter.drawLine(rect.bottomLeft(), rect.topLeft());
    Label({4, 20, 160, 18}, Qt::AlignLeft | Qt::AlignVCenter, strSpeed);
    Label({rect.right() - 200, rect.bottom() + 22, 200, 18}, Qt::AlignRight | Qt::AlignVCenter, strTime);
}

void CVelocityGraph::DrawCurve(QPainter& painter, const CArea& area) const
{
    // A table may have millions of entries: points less than half a pixel apart are one.
    QList<QPointF> line;
    for (const QPointF& point : m_lstPoints) {
        const QPointF at = area.At(point);
        if (line.isEmpty() || std::abs(at.x() - line.back().x()) + std::abs(at.y() - line.back().y()) >= 0.5)
            line.append(at);
    }
    line.append(area.At(m_lstPoints.back()));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(CURVE, AXIS_PEN));
    painter.drawPolyline(line);
    painter.setRenderHint(QPainter::Antialiasing, false);
}

QImage CVelocityGraph::Draw(QSize size, const QString& strNote) const
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(BACKGROUND);
    QPainter painter(&image);
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(TEXT_SIZE);
    painter.setFont(font);
    painter.setPen(AXES);
    if (m_lstPoints.empty()) {
        painter.drawText(image.rect().adjusted(10, 10, -10, -10), Qt::AlignCenter | Qt::TextWordWrap, strNote);
        return image;
    }
    const double fTop =
        std::max_element(m_lstPoints.begin(), m_lstPoints.end(), [](const QPointF& a, const QPointF& b) {
            return a.y() < b.y();
        })->y();
    const double fEnd = m_lstPoints.back().x();
    const bool bMilli = fEnd < 1.0;
    const QString strUnit = bMilli ? QStringLiteral("ms") : QStringLiteral("s");
    const CArea area(size, {fEnd * 1.05, fTop * 1.1});
    DrawGrid(painter, area.m_Rect, area.m_Span, {bMilli ? 0.001 : 1.0, 1.0},
             QStringLiteral("V (%1/s)").arg(m_Curve.strLength), QStringLiteral("T (%1)").arg(strUnit));
    DrawCurve(painter, area);
    painter.setPen(AXES);
    painter.drawText(QRect(100, 2, size.width() - 110, 18), Qt::AlignRight | Qt::AlignVCenter,
                     QStringLiteral("%1: %2 %3/s in %4 %5, %6 %3")
                         .arg(m_Curve.strName, Rounded(m_lstPoints.back().y()), m_Curve.strLength,
                              Rounded(bMilli ? fEnd * 1000.0 : fEnd), strUnit, Rounded(m_fDistance)));
    const double fFirst = FirstPulse();
    if (!(fFirst >= SLOW_PULSE)) return image;
    painter.setPen(WARNING);
    painter.drawText(
        QRect(100, 20, size.width() - 110, 18), Qt::AlignRight | Qt::AlignVCenter,
        QStringLiteral("Each move begins with a pulse of %1 s: see Sampling Time, Acc").arg(Rounded(fFirst)));
    return image;
}
