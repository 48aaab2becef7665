#pragma once
#include "shapes/DisplayScale.h"
#include "shapes/ShapeModel.h"

#include <QImage>
#include <QPointF>
#include <QRectF>

#include <cstdint>

// Between the work area, mm with Y upwards, and its picture, pixels with Y downwards.
class CWorkAreaMap
{
public:
    // The longer side fills the picture between its margins. An area without a size is taken as one of 1 mm a pixel.
    CWorkAreaMap(QSize image, const stFloatPoint& area);

    const stDisplayScale& Scale() const { return m_Scale; }
    const QRectF& WorkRect() const { return m_WorkRect; }   // pixels; may reach beyond the picture
    QPointF ToPixels(const stFloatPoint& pos) const;
    stFloatPoint ToMM(QPointF pixels) const;

private:
    stFloatPoint m_Area;
    stDisplayScale m_Scale;
    QRectF m_WorkRect;
};

// What is on the picture.
struct stWorkAreaScene
{
    const std::vector<stEngShape>& lstShapes;
    const stFloatPoint& stWorkArea;
    const CWorkAreaMap& map;
    const QImage* pBackground = nullptr;          // under the shapes
    bool bMarks = true;                           // small circles on the points
    size_t uEdited = SIZE_MAX, uNew = SIZE_MAX;   // entries that are being changed now: one, and all from the other on
    int iShape = -1, iVertex = -1;   // selected ones; the entry is drawn in its colour, the vertex with its place
    bool bLastPoint = false;         // mark the end of the last shape, where drawing goes on
};

// Draws the work area. With thousands of shapes only what changes is drawn for each movement of the finger: the rest
// lies on a picture of its own, which stands until Forget. Interface thread.
class CWorkAreaPicture
{
public:
    static constexpr QRgb BACKGROUND = qRgb(50, 50, 50);

    void Forget() { m_Still = QImage(); }
    void Draw(QImage& image, const stWorkAreaScene& scene);

private:
    void DrawStill(QSize size, const stWorkAreaScene& scene);
    QImage m_Still;
};
