#pragma once
#include "app/selftest/Verdict.h"

// The figures, a line each, with what they were taken of.
QString FiguresText(const stPulseTest& test, const stPulseResult& result, const stSystemFacts& facts);
// The verdict in plain words.
QString VerdictText(const stVerdict& verdict, const stDemand& demand, bool bRealPins);
