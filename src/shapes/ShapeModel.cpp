#include "shapes/ShapeModel.h"

stEngShape stEngShape::NewPolygon()
{
    return {SHAPE_POLYGON, std::make_shared<stPolygon>(), nullptr};
}

stEngShape stEngShape::NewEllipse()
{
    return {SHAPE_ELLIPSE, nullptr, std::make_shared<stEllipse>()};
}

stShapesCommonInfo& stEngShape::Common() const
{
    if (eType == SHAPE_POLYGON) return *pPolygon;
    return *pEllipse;
}

const ShapePath& stEngShape::Path() const
{
    return eType == SHAPE_POLYGON ? pPolygon->lstVertices : pEllipse->lstPoints;
}
