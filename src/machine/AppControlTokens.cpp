#include "gcode/GCodeTokens.h"
#include "machine/AppControl.h"

GCodeTokens AppControl::Parse_GCode_Line(const QString& strLine)
{
    return TokenizeToolLine(strLine);
}
