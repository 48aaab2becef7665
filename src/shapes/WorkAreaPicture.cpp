#include "shapes/WorkAreaPicture.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

static const QColor FRAME(120, 120, 120), TEXT(230, 230, 230), SHAPE(0, 220, 120), RING(0, 150, 220),
    SELECTED(255, 200, 0), LIVE(255, 255, 255), MARK(255, 120, 120), VERTEX(255, 60, 60);
static constexpr double FARTHEST = 30000.0;   // pixels; what lies beyond is drawn there
static constexpr int MARK_SIZE = 4, VERTEX_SIZE = 9, TEXT_SIZE = 12;

// ---- Millimetres and pixels -----------------------------------------------------------------------------------------

CWorkAreaMap::CWorkAreaMap(QSize image, const stFloatPoint& area) : m_Area(area)
{
    m_Scale.size = image;
    const int iMargins = 2 * m_Scale.iMargin;
    const bool bLong = area.x > area.y;
    const double fScale = bLong ? (image.width() - iMargins) / area.x : (image.height() - iMargins) / area.y;
    m_Scale.fPixPerMM = fScale > 0.0 && std::isfinite(fScale) ? fScale : 1.0;
    // A longer side along X that is hardly longer makes the area higher than the picture: wanted, its zero stays.
    const double fHeight = m_Scale.fPixPerMM * area.y;
    m_WorkRect =
        QRectF(m_Scale.iMargin, image.height() - m_Scale.iMargin - fHeight, m_Scale.fPixPerMM * area.x, fHeight);
}

QPointF CWorkAreaMap::ToPixels(const stFloatPoint& pos) const
{
    return {m_WorkRect.left() + pos.x * m_Scale.fPixPerMM, m_WorkRect.top() + (m_Area.y - pos.y) * m_Scale.fPixPerMM};
}

stFloatPoint CWorkAreaMap::ToMM(QPointF pixels) const
{
    stFloatPoint pos;
    pos.x = (pixels.x() - m_WorkRect.left()) / m_Scale.fPixPerMM;
    pos.y = m_Area.y - (pixels.y() - m_WorkRect.top()) / m_Scale.fPixPerMM;
    return pos;
}

// ---- Drawing --------------------------------------------------------------------------------------------------------

namespace {
class CShapePainter
{
public:
    CShapePainter(QPainter& painter, const stWorkAreaScene& scene) : m_Painter(painter), m_Scene(scene)
    {
        painter.setRenderHint(QPainter::Antialiasing, false);
        QFont font(QStringLiteral("DejaVu Sans"));
        font.setPixelSize(TEXT_SIZE);
        painter.setFont(font);
    }

    void Draw(const stEngShape& shape, const QColor& color)
    {
        Take(shape.Path());
        if (m_lstPoints.empty()) return;
        if (m_Scene.bMarks) DrawMarks(shape);
        m_Painter.setPen(color);   // above the marks, which lie side by side on traced outlines
        m_Painter.drawPolyline(m_lstPoints.data(), static_cast<int>(m_lstPoints.size()));
    }

    void DrawVertex(const stFloatPoint& pos)
    {
        const QPointF at = At(pos);
        m_Painter.setPen(QPen(VERTEX, VERTEX_SIZE, Qt::SolidLine, Qt::RoundCap));
        m_Painter.drawPoint(at);
        const QString strPlace = QStringLiteral("X:%1\nY:%2").arg(pos.x, 0, 'f', 4).arg(pos.y, 0, 'f', 4);
        QRectF text = m_Painter.boundingRect(QRectF(), Qt::AlignLeft, strPlace).adjusted(-4, -2, 4, 2);
        text.moveTopLeft(at + QPointF(8.0, 6.0));
        const QRectF room(QPointF(0.0, 0.0), QSizeF(m_Scene.map.Scale().size));   // beside the vertex, but in view
        text.moveLeft(std::clamp(text.left(), 0.0, std::max(0.0, room.right() - text.width())));
        text.moveTop(std::clamp(text.top(), 0.0, std::max(0.0, room.bottom() - text.height())));
        m_Painter.fillRect(text, QColor(0, 0, 0, 170));
        m_Painter.setPen(SELECTED);
        m_Painter.drawText(text, Qt::AlignCenter, strPlace);
    }

    void DrawFrame()
    {
        const QRectF& work = m_Scene.map.WorkRect();
        if (m_Scene.pBackground) {
            m_Painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
            m_Painter.drawImage(work, *m_Scene.pBackground);
        }
        m_Painter.setPen(FRAME);
        m_Painter.drawRect(QRectF(At({}), At(m_Scene.stWorkArea)).normalized());
        m_Painter.setPen(TEXT);
        const double fBottom = m_Scene.map.Scale().size.height() - 8.0;
        m_Painter.drawText(QPointF(4.0, fBottom), QStringLiteral("Work Zero(0,0)"));
        m_Painter.drawText(QPointF(140.0, fBottom),
                           QStringLiteral("X--->  %1 mm").arg(m_Scene.stWorkArea.x, 0, 'g', 10));
        m_Painter.save();
        m_Painter.translate(6.0, std::max(work.top(), 10.0));
        m_Painter.rotate(90.0);   // the arrow points up
        m_Painter.drawText(QPointF(0.0, 0.0), QStringLiteral("<---Y  %1 mm").arg(m_Scene.stWorkArea.y, 0, 'g', 10));
        m_Painter.restore();
    }

private:
    void DrawMarks(const stEngShape& shape)
    {
        m_Painter.setPen(QPen(MARK, MARK_SIZE, Qt::SolidLine, Qt::RoundCap));
        // The points of an ellipse are too many to be told apart: its centre stands for them.
        if (shape.eType == SHAPE_ELLIPSE)
            m_Painter.drawPoint(At(shape.pEllipse->stCenter));
        else
            m_Painter.drawPoints(m_lstPoints.data(), static_cast<int>(m_lstPoints.size()));
    }
    QPointF At(const stFloatPoint& pos) const
    {
        const QPointF at = m_Scene.map.ToPixels(pos);
        return {std::clamp(at.x(), -FARTHEST, FARTHEST), std::clamp(at.y(), -FARTHEST, FARTHEST)};
    }
    void Take(const ShapePath& path)
    {
        m_lstPoints.clear();
        for (const stFloatPoint& pos : path)
            if (std::isfinite(pos.x) && std::isfinite(pos.y)) m_lstPoints.push_back(At(pos));
    }

    QPainter& m_Painter;
    const stWorkAreaScene& m_Scene;
    std::vector<QPointF> m_lstPoints;
};

bool IsRing(const stEngShape& shape)
{
    return shape.eType == SHAPE_POLYGON ? shape.pPolygon->bHole : shape.pEllipse->bHole;
}
}   // namespace

void CWorkAreaPicture::DrawStill(QSize size, const stWorkAreaScene& scene)
{
    m_Still = QImage(size, QImage::Format_RGB888);
    m_Still.fill(BACKGROUND);
    QPainter painter(&m_Still);
    CShapePainter shapes(painter, scene);
    shapes.DrawFrame();
    for (size_t n = 0; n < scene.lstShapes.size(); ++n)
        if (n != scene.uEdited && n < scene.uNew)
            shapes.Draw(scene.lstShapes[n], IsRing(scene.lstShapes[n]) ? RING : SHAPE);
}

void CWorkAreaPicture::Draw(QImage& image, const stWorkAreaScene& scene)
{
    if (m_Still.size() != image.size()) DrawStill(image.size(), scene);
    const size_t uCount = scene.lstShapes.size();
    QPainter painter(&image);
    painter.drawImage(0, 0, m_Still);
    CShapePainter shapes(painter, scene);
    if (scene.uEdited < uCount) shapes.Draw(scene.lstShapes[scene.uEdited], LIVE);
    for (size_t n = scene.uNew; n < uCount; ++n) shapes.Draw(scene.lstShapes[n], LIVE);
    if (scene.iShape >= 0 && static_cast<size_t>(scene.iShape) < uCount) {
        const stEngShape& selected = scene.lstShapes[static_cast<size_t>(scene.iShape)];
        shapes.Draw(selected, SELECTED);
        const ShapePath& path = selected.Path();
        if (scene.iVertex >= 0 && static_cast<size_t>(scene.iVertex) < path.size())
            shapes.DrawVertex(path[static_cast<size_t>(scene.iVertex)]);
    }
    if (scene.bLastPoint && uCount > 0 && !scene.lstShapes.back().Path().empty())
        shapes.DrawVertex(scene.lstShapes.back().Path().back());
}
