#pragma once
#include "shapes/ShapeModel.h"

#include <opencv2/core/mat.hpp>

// The outlines of a picture's dark areas, stretched to a size in mm and in cutting order. Interface thread.
struct stPictureToTrace
{
    cv::Mat img;                    // one channel of bytes
    stFloatPoint stImgOffset;       // of its lower left corner, mm
    quint16 uThreshold = 50;        // grey levels up to this are dark
    quint32 uMinVertices = 100;     // outlines of this many points or fewer are dropped
    quint32 uMaxVertices = 10000;   // of this many or more as well
    double fShapeLength = 100.0;    // mm along X
    double fShapeWidth = 100.0;     // mm along Y
};
std::vector<ShapePath> TracePicture(const stPictureToTrace& picture);
