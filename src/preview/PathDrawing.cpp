#include "preview/PathDrawing.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace {
constexpr int WIDTH = 1600, HEIGHT = 1200, MARGIN = 110, HEAD = 90, FOOT = 110;
constexpr double COS30 = 0.8660254037844386, SIN30 = 0.5;

const QColor g_Paper(252, 252, 249), g_Ink(40, 44, 52), g_Faint(176, 180, 186), g_Rapid(224, 122, 30);
const QColor g_FeedHigh(86, 164, 220), g_FeedDeep(12, 40, 104);   // by depth
const QColor g_Axes[] = {QColor(200, 30, 45), QColor(30, 140, 60), QColor(40, 70, 200)};

// Isometric, seen from the front corner above: X goes right, Y left, Z up.
class CIsoView
{
public:
    CIsoView(const stFloatPoint& min, const stFloatPoint& max) : m_Min(min), m_Max(max)
    {
        QRectF all(Flat(min), QSizeF(0, 0));
        for (int corner = 0; corner < 8; ++corner) all = Grow(all, Flat(Corner(corner)));
        const double fSize = std::max({all.width(), all.height(), 1e-3});
        m_fScale = std::min((WIDTH - 2 * MARGIN) / std::max(all.width(), fSize / 100),
                            (HEIGHT - HEAD - FOOT - 2 * MARGIN) / std::max(all.height(), fSize / 100));
        const QPointF middle((WIDTH) / 2.0, HEAD + (HEIGHT - HEAD - FOOT) / 2.0);
        m_Offset = middle - all.center() * m_fScale;
    }
    QPointF At(double x, double y, double z) const { return Flat({x, y, z}) * m_fScale + m_Offset; }
    QPointF At(const stFloatPoint& p) const { return At(p.x, p.y, p.z); }
    // Bits 0 to 2: the high end in X, Y, Z.
    stFloatPoint Corner(int iBits) const
    {
        return {iBits & 1 ? m_Max.x : m_Min.x, iBits & 2 ? m_Max.y : m_Min.y, iBits & 4 ? m_Max.z : m_Min.z};
    }
    double Scale() const { return m_fScale; }

private:
    static QPointF Flat(const stFloatPoint& p) { return {(p.x - p.y) * COS30, -(p.x + p.y) * SIN30 - p.z}; }
    static QRectF Grow(const QRectF& rect, QPointF p)
    {
        return QRectF(QPointF(std::min(rect.left(), p.x()), std::min(rect.top(), p.y())),
                      QPointF(std::max(rect.right(), p.x()), std::max(rect.bottom(), p.y())));
    }
    stFloatPoint m_Min, m_Max;
    double m_fScale = 1.0;   // pixels per mm
    QPointF m_Offset;
};

QFont Font(int iPixels, bool bBold = false)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(iPixels);
    font.setBold(bBold);
    return font;
}

void DrawEnvelope(QPainter& painter, const CIsoView& view)
{
    painter.setPen(QPen(g_Faint, 1.0, Qt::DashLine));
    for (int corner = 0; corner < 8; ++corner)
        for (int bit = 1; bit < 8; bit *= 2)
            if (!(corner & bit)) painter.drawLine(view.At(view.Corner(corner)), view.At(view.Corner(corner | bit)));
}

// The length of one edge of the envelope, beside its middle and along it.
void DrawLength(QPainter& painter, const CIsoView& view, int iCorner, int iBit, const QString& strAxis, double fLength)
{
    const QPointF from = view.At(view.Corner(iCorner)), to = view.At(view.Corner(iCorner | iBit));
    const QString strText = QStringLiteral("%1 %2 mm").arg(strAxis, QString::number(fLength, 'f', 2));
    painter.save();
    painter.translate((from + to) / 2.0);
    const bool bUpright = iBit == 4;
    if (!bUpright) painter.rotate(iBit == 1 ? -30.0 : 30.0);
    painter.setFont(Font(22));
    painter.setPen(g_Ink);
    const QRectF box(-200, bUpright ? -15 : 10, bUpright ? 188 : 400, 30);
    painter.drawText(box, (bUpright ? Qt::AlignRight : Qt::AlignHCenter) | Qt::AlignVCenter, strText);
    painter.restore();
}

void DrawAxes(QPainter& painter, const CIsoView& view)
{
    const double fLength = 110.0 / view.Scale();
    const stFloatPoint tips[] = {{fLength, 0, 0}, {0, fLength, 0}, {0, 0, fLength}};
    const QPointF zero = view.At(0, 0, 0);
    painter.setFont(Font(24, true));
    for (int axis = X_AXIS; axis <= Z_AXIS; ++axis) {
        const QPointF tip = view.At(tips[axis]);
        const QPointF along = (tip - zero) / std::sqrt(QPointF::dotProduct(tip - zero, tip - zero));
        const QPointF across(-along.y(), along.x());
        painter.setPen(QPen(g_Axes[axis], 3.0));
        painter.drawLine(zero, tip);
        painter.setPen(Qt::NoPen);
        painter.setBrush(g_Axes[axis]);
        painter.drawPolygon(QPolygonF({tip + along * 12.0, tip + across * 6.0, tip - across * 6.0}));
        painter.setPen(g_Axes[axis]);
        const QPointF at = tip + along * 30.0;
        painter.drawText(QRectF(at.x() - 20, at.y() - 20, 40, 40), Qt::AlignCenter, QString(QLatin1Char("XYZ"[axis])));
    }
    painter.setBrush(g_Ink);
    painter.setPen(Qt::NoPen);
    painter.drawEllipse(zero, 4.0, 4.0);
}

QColor FeedColor(double fShare)
{
    const auto Mix = [fShare](int iDeep, int iHigh) { return static_cast<int>(iDeep + fShare * (iHigh - iDeep)); };
    return QColor(Mix(g_FeedDeep.red(), g_FeedHigh.red()), Mix(g_FeedDeep.green(), g_FeedHigh.green()),
                  Mix(g_FeedDeep.blue(), g_FeedHigh.blue()));
}

void DrawPath(QPainter& painter, const CToolPath& path, const CIsoView& view)
{
    double fLow = 0.0, fHigh = 0.0;   // depths of the cut
    for (const CToolPath::stPoint& point : path.Points())
        if (!point.bRapid && !point.bJump) {
            fLow = std::min(fLow, static_cast<double>(point.fZ));
            fHigh = std::max(fHigh, static_cast<double>(point.fZ));
        }
    fHigh = std::min(fHigh, 0.0);   // what is cut lies below the work zero, mostly
    const auto& points = path.Points();
    for (const bool bRapid : {false, true})
        for (size_t n = 1; n < points.size(); ++n) {
            if (points[n].bJump || points[n].bRapid != bRapid) continue;
            const double z = (static_cast<double>(points[n].fZ) + points[n - 1].fZ) / 2.0;
            const double fShare = fHigh > fLow ? std::clamp((z - fLow) / (fHigh - fLow), 0.0, 1.0) : 0.5;
            painter.setPen(bRapid ? QPen(g_Rapid, 1.2, Qt::DashLine) : QPen(FeedColor(fShare), 1.6));
            painter.drawLine(view.At(points[n - 1].fX, points[n - 1].fY, points[n - 1].fZ),
                             view.At(points[n].fX, points[n].fY, points[n].fZ));
        }
}

void DrawWords(QPainter& painter, const QString& strTitle, const QString& strNote)
{
    painter.setPen(g_Ink);
    painter.setFont(Font(34, true));
    const QRectF head(MARGIN / 2.0, 24, WIDTH - MARGIN, 50);
    painter.drawText(head, Qt::AlignLeft | Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(strTitle, Qt::ElideMiddle, static_cast<int>(head.width())));
    painter.setFont(Font(22));
    const double fBase = HEIGHT - 58;
    painter.drawText(QRectF(MARGIN / 2.0, fBase - 20, WIDTH - MARGIN, 40), Qt::AlignLeft | Qt::AlignVCenter, strNote);
    painter.setPen(QPen(FeedColor(0.3), 4.0));
    painter.drawLine(QPointF(WIDTH - 400, fBase), QPointF(WIDTH - 340, fBase));
    painter.setPen(QPen(g_Rapid, 3.0, Qt::DashLine));
    painter.drawLine(QPointF(WIDTH - 220, fBase), QPointF(WIDTH - 160, fBase));
    painter.setPen(g_Ink);
    painter.drawText(QRectF(WIDTH - 330, fBase - 20, 100, 40), Qt::AlignLeft | Qt::AlignVCenter,
                     QStringLiteral("feed"));
    painter.drawText(QRectF(WIDTH - 150, fBase - 20, 100, 40), Qt::AlignLeft | Qt::AlignVCenter,
                     QStringLiteral("rapid"));
}
}   // namespace

QImage DrawToolPath(const CToolPath& path, const QString& strTitle, const QString& strNote)
{
    QImage image(WIDTH, HEIGHT, QImage::Format_RGB32);
    image.fill(g_Paper);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    DrawWords(painter, strTitle, strNote);
    if (path.IsEmpty()) {
        painter.drawText(image.rect(), Qt::AlignCenter, QStringLiteral("nothing has moved"));
        return image;
    }
    const stFloatPoint &min = path.Min(), &max = path.Max();
    const CIsoView view(min, max);
    DrawEnvelope(painter, view);
    DrawPath(painter, path, view);
    DrawLength(painter, view, 0, 1, QStringLiteral("X"), max.x - min.x);
    DrawLength(painter, view, 0, 2, QStringLiteral("Y"), max.y - min.y);
    DrawLength(painter, view, 2, 4, QStringLiteral("Z"), max.z - min.z);
    DrawAxes(painter, view);
    return image;
}
