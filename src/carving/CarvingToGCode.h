#pragma once
#include "carving/ImgCarving.h"

#include <functional>

// The way over the grid as G-code: no feed, no spindle, no end of program, which come from whoever runs it. False: the
// file can't be written, and strWhy says why; empty where it could not even be opened. Any thread.

// The beginning of a file, of the record as the operator has set it. Replaces the file.
bool WriteCarvingHeader(const QString& strFile, const stImgCarvingInfo& info, QString& strWhy);
// Adds the moves of one pass. fnOnRow is told each row of the picture in turn.
bool AppendCarvingPass(const QString& strFile, const stImgCarvingInfo& info, double fSafeHeight,
                       const std::function<void(quint16)>& fnOnRow, QString& strWhy);
// Gives a file that is whole the name of another, whose old content was there until now. False: the first is gone.
bool PutInPlace(const QString& strWhole, const QString& strFile, QString& strWhy);
