#pragma once
#include "shapes/ShapeModel.h"

#include <QByteArray>
#include <QStringList>

// The file of a shape job: XML without line breaks, made for machines. Interface thread.

// "job" gives "job.xml"; a name with a dot behind its first letter stays.
QString WorkAreaFileName(const QString& strFile);
// Replaces the file as a whole; what an older, longer file holds beyond the new end stays behind it: wanted. False: it
// can't be written.
bool SaveWorkArea(const QString& strFile, const stShapeCuttingInfo& info);
// Appends the file's shapes, ellipses with their points, and takes its work area. Reads as far as the file makes sense.
// False: it can't be opened. lstNotices: lines for the log.
bool LoadWorkArea(const QString& strFile, stShapeCuttingInfo& info, QStringList& lstNotices);
