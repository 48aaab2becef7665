#pragma once
#include "app/selftest/PulseTest.h"
#include "app/selftest/SystemFacts.h"

#include <QStringList>

// What the machine asks of its pulses.
struct stDemand
{
    double fRate = 0;         // pulses/s: the fastest axis at its highest feed
    double fDuty = 0.5;       // of that axis
    double fDrivePulse = 0;   // s, the shortest pulse that the drives are sure to see
};

struct stVerdict
{
    bool bFit = false;
    double fSafeRate = 0;     // pulses/s
    bool bAsTested = false;   // it is the rate of the test: a higher one may be safe too
    QStringList lstWhyNot;    // of what is not fit, most serious first
    QStringList lstAdvice;    // what could be better
};

// The highest step rate at which the worst lateness leaves every half of a pulse long enough for the drive. Due times
// are absolute: an edge that comes late is followed by one in time, so that the half between them is shorter by the
// lateness. At a rate f and a duty d the shorter half lasts min(d, 1-d)/f; it must last fDrivePulse and fWorst (s).
double SafeStepRate(double fDuty, double fDrivePulse, double fWorst);

// fTested: pulses/s at which the figures were taken. They say nothing of a higher rate, so no higher one is called
// safe.
stVerdict Judge(const stPulseResult& result, const stSystemFacts& facts, const stDemand& demand, double fTested,
                int iCore);
