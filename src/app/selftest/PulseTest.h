#pragma once
#include "app/selftest/Lateness.h"
#include "common/Shared.h"

#include <vector>

struct stPulseTest
{
    std::vector<quint16> pins;   // step outputs, each once
    double fRate = 0;            // pulses/s on each
    double fDuty = 0;            // high share of a period
    double fSeconds = 0;
    int iCore = 0;
};

struct stPulseResult
{
    CLateness late;
    quint64 uExpected = 0;   // edges of a test that ran to its end
    bool bBound = false;     // the thread may run on the pulse core and nowhere else
};

// Makes the pulses of a coordinated move at constant speed, with the loop, the clock and the pins of production, on a
// pooled thread that is bound like the auto mode's. The lateness of an edge is the time from when it was due until its
// pin had been written; reading the clock once more for that makes a round longer than the machine's own, so the
// figures are on the safe side. The pins are set up as outputs, and low again at the end. Clearing bRun ends it early.
// Interface thread; returns when all is over.
stPulseResult RunPulseTest(const stPulseTest& test, CShared<bool>& bRun);
