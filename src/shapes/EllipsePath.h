#pragma once
#include "shapes/ShapeModel.h"

// The tool centre's path of an ellipse or an arc of one, and the pocket made of ellipses. Reads AppConfig's end mill
// and pulse of X. Interface thread.

// Rebuilds lstPoints from the other fields: outside the outline, or inside with bHole. Empty, or why there are no
// points, for the log.
QString CreateEllipsePoints(stEllipse& ellipse);
// About how many points that makes, before an arc is cut out of them; 0 where it makes none.
double CountEllipsePoints(const stEllipse& ellipse);

// The rings of the pocket inside the outline, from the outermost inwards, half a tool apart; without lstPoints. None
// where the tool does not fit twice, and none, with strWhy for the log, where the rings would have too many points.
std::vector<stEngShape> MakeEllipseRings(const stEllipse& outline, QString& strWhy);

// An X step, mm, as the machine can make it: down to whole pulses of X, at least one.
double SnapXStep(double fStep);
