#pragma once
#include "gcode/GCodeTokens.h"

#include <QFile>

// How a program file becomes text and tokens fast: cut into chunks that all cores but the pulses' work on. A million
// lines are two million pieces of memory, and finding those is most of the time.

enum ePlainRead
{
    READ_WHOLE,
    READ_BROKE_OFF,   // the file could not be read to its end; what was read is rubbish
    READ_NOT_PLAIN    // nothing was read: a pipe, UTF-16, broken UTF-8, whose reading depends on more than a chunk
};
// The file as QTextStream::readLine would give it, and the tokens of each line. Both vectors are empty before. Any
// thread; the file is open, at its beginning, and stays there.
ePlainRead ReadPlainProgram(QFile& file, std::vector<QString>& lstLines, GCodeProgram& lstCmds);
