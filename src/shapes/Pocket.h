#pragma once
#include "shapes/DisplayScale.h"
#include "shapes/ShapeModel.h"

// The rings that clear the inside of a closed outline, from the outside in, made by eroding the shape as a bitmap of
// the work area's picture: precise to one pixel. None where the tool does not fit. Interface thread.
std::vector<ShapePath> MakePocketRings(const ShapePath& outline, const stDisplayScale& scale, double fEndMillDia);
