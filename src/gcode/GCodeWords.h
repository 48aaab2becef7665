#pragma once
#include "gcode/GCodeTokens.h"

#include <limits>

// Reading the words of a line when they are executed.

// A comment runs to the end of its line.
inline bool IsComment(const std::string& strToken)
{
    const char cFirst = TokenLetter(strToken);
    return cFirst == '%' || cFirst == '(' || cFirst == ';';
}

// Truncated; the nearest end of the range beyond it.
template <class T> T CutTo(double fValue)
{
    if (!(fValue > static_cast<double>(std::numeric_limits<T>::min()))) return std::numeric_limits<T>::min();
    if (fValue >= static_cast<double>(std::numeric_limits<T>::max())) return std::numeric_limits<T>::max();
    return static_cast<T>(fValue);
}
