#pragma once
#include "shapes/ShapeModel.h"

#include <span>

// What a person does to polygons: all on the vertices, in place. mm, radians. Interface thread.

// The system's own pi is 3.1416: the degrees on every shape button are converted with it.
inline constexpr double SHAPE_RADIANS_PER_DEGREE = 0.017453333333333335;
inline constexpr double SHAPE_DEGREES_PER_RADIAN = 57.29564553093965;

// Appends the first point if the last one differs from it exactly in x or y. False: closed already, or empty.
bool CloseShape(ShapePath& path);
void ShiftShape(ShapePath& path, double fX, double fY);
// Clockwise for a positive angle.
void TurnShape(ShapePath& path, double fAngle, const stFloatPoint& centre);
// About the first vertex, which stays.
void ScaleShape(ShapePath& path, double fFactor);
// The middle of the extent in x and y; of an empty path (0, 0).
stFloatPoint MiddleOf(const ShapePath& path);
// The middle of all shapes together, which the text screen turns about.
stFloatPoint MiddleOf(std::span<const stEngShape> shapes);
// The polygon offset along the axes by half the end mill, side "G41" or any other.
ShapePath ApplyToolOffset(ShapePath path, const QString& strSide, double fEndMillDia);
