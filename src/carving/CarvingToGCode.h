#pragma once
#include "carving/ImgCarving.h"

#include <functional>

class QFileDevice;

// The way over the grid as G-code: no feed, no spindle, no end of program, which come from whoever runs it. fnOnRow is
// told each row of the picture in turn. Any thread.

// Adds the moves of one pass over the grid as it is. False: the disk refuses.
bool WriteCarvingPass(QFileDevice& file, const stImgCarvingInfo& info, double fSafeHeight,
                      const std::function<void(quint16)>& fnOnRow);
// Replaces the file by the whole job, in the passes that AppConfig asks for, each on a grid of its own. False: the old
// file stands, and strWhy says why in the operator's words; empty where a new one could not even be made.
bool ExportCarving(const QString& strFile, stImgCarvingData& data, double fSafeHeight,
                   const std::function<void(quint16)>& fnOnRow, QString& strWhy);
