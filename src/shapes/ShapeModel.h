#pragma once
#include "common/MachineTypes.h"

#include <QString>

#include <memory>
#include <vector>

// The records of a shape job: an ordered list of cut paths on a rectangular work area. mm in work coordinates, Z zero
// at the surface and depths negative; of a path's points only x and y mean something. Every source of shapes fills
// these records, and cutting, G-code, display and file read nothing else. Interface thread; the worker reads them while
// a job is cut, when the interface leaves them alone.

using ShapePath = std::vector<stFloatPoint>;

struct stShapesCommonInfo
{
    QString strShapeName;
    double fDepth = -10.0;   // final Z of the cut
};

struct stPolygon : stShapesCommonInfo
{
    ShapePath lstVertices;   // in cutting order; a closed path repeats its first point at its end
    bool bHole = false;      // a ring of a pocket
};

struct stEllipse : stShapesCommonInfo
{
    stFloatPoint stCenter{50.0, 50.0};
    double fMajorAxisDia = 25.0;         // along the local X
    double fMinorAxisDia = 25.0;         // along the local Y
    double fOrientation = 0.0;           // degrees, clockwise
    double fXAxisStep = 0.2;             // between points, along the local X
    double fArcStartAngle = 0.0;         // degrees, counter-clockwise
    double fArcEndAngle = 360.0;         // 0 to 360 is the whole ellipse
    bool bHole = false;                  // a pocket: the tool runs inside
    ShapePath lstPoints;                 // the path, made from the fields above
    bool bRing = false;                  // of a pocket; not in the file
    std::weak_ptr<stEllipse> pOutline;   // of a ring: the ellipse that it belongs to, while that is there
};

enum eEngShapeType
{
    SHAPE_ELLIPSE = 0,
    SHAPE_POLYGON = 1
};

// One entry of the list, a handle: copies share the record, which goes with the last of them.
struct stEngShape
{
    eEngShapeType eType = SHAPE_ELLIPSE;
    std::shared_ptr<stPolygon> pPolygon;   // set for a polygon only
    std::shared_ptr<stEllipse> pEllipse;   // set for an ellipse only

    static stEngShape NewPolygon();
    static stEngShape NewEllipse();
    stShapesCommonInfo& Common() const;
    const ShapePath& Path() const;   // what is cut
};

struct stShapeCuttingInfo
{
    std::vector<stEngShape> lstShapes;       // in cutting order
    stFloatPoint stOrigin;                   // used by nothing
    stFloatPoint stWorkArea{100.0, 100.0};   // x length, y width
    double fZStep = 1.0;                     // depth of one pass
};
