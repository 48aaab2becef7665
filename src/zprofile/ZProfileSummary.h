#pragma once
#include <cstddef>

// What an operator wants to know of the grid in force (AppConfig::m_ZProfileInfo.lstPoints), mm in work coordinates.
// While no operation runs: the worker adds rows to it.
struct stZProfileSummary
{
    size_t uRows = 0;                                              // 0: there is none
    size_t uNodes = 0;                                             // of row 0
    double fLeft = 0.0, fRight = 0.0, fFront = 0.0, fBack = 0.0;   // along X and along Y
    double fLowest = 0.0, fHighest = 0.0;
};
stZProfileSummary SummarizeZProfile();
