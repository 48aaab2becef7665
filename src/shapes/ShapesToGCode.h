#pragma once
#include "shapes/ShapeModel.h"

#include <QStringList>

#include <functional>

// Writes the job as a program: the tool's path of the cutter, but circles as arcs. Replaces the file. fnMayGoOn is
// asked between points; false ends the text where it stands. False: the file can't be opened, or not written whole,
// which a notice tells. lstNotices: lines for the log. Any thread.
bool WriteShapesAsGCode(const QString& strFile, const stShapeCuttingInfo& info, double fSafeHeight,
                        const std::function<bool()>& fnMayGoOn, QStringList& lstNotices);
