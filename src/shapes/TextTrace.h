#pragma once
#include "shapes/DisplayScale.h"
#include "shapes/ShapeModel.h"

#include <QFont>

// A text, drawn white on black at the size of the work area's picture and traced: each outline of a stroke is a closed
// path in work coordinates, in cutting order. Interface thread.
struct stTextToTrace
{
    QString strText;
    QFont font;                  // family only: size and style are below
    float fTextSize = 60.0f;     // points; also the line pitch in pixels
    float fLineSpacing = 0.0f;   // pixels more between lines
    bool bBold = false, bItalic = false;
    stFloatPoint stTextPos;   // x, y mm
};
std::vector<ShapePath> TraceText(const stTextToTrace& text, const stDisplayScale& scale);
