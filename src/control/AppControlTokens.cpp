#include "control/AppControl.h"
#include "gcode/GCodeTokens.h"

GCodeTokens AppControl::Parse_GCode_Line(const QString& strLine)
{
    return TokenizeToolLine(strLine);
}
