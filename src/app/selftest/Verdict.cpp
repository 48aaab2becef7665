#include "app/selftest/Verdict.h"

#include <algorithm>

// Where a Pi slows itself down at 80 to 85 degrees, there must be room for a summer's day and a long job.
static constexpr double HOT = 75.0;

double SafeStepRate(double fDuty, double fDrivePulse, double fWorst)
{
    const double fShare = std::min(fDuty, 1.0 - fDuty);
    const double fNeeded = fDrivePulse + fWorst;
    return fShare > 0.0 && fNeeded > 0.0 ? fShare / fNeeded : 0.0;
}

static QStringList Advice(const stSystemFacts& facts, bool bBound, int iCore)
{
    QStringList lst;
    if (!facts.strGovernor.isEmpty() && facts.strGovernor != QLatin1String("performance"))
        lst += QStringLiteral("The governor is \"%1\": the clock may fall between two moves; make it \"performance\".")
                   .arg(facts.strGovernor);
    if (bBound && !ListHasCore(facts.strNoTick, iCore))
        lst += QStringLiteral("The timer tick still runs on core %1: nohz_full=%1 in the boot line, where the kernel "
                              "knows it, takes it away.")
                   .arg(iCore);
    if (facts.lLockedMemory && *facts.lLockedMemory >= 0)
        lst +=
            QStringLiteral("The program may not lock all its memory: a page that the system has taken away comes back "
                           "in the middle of a move. Installing grants it, from the next login on.");
    if (!facts.bMayUsePwmAndSpi)
        lst +=
            QStringLiteral("A spindle by PWM and a board by SPI are refused: the program may not reach the computer's "
                           "memory. Installing grants it.");
    if (facts.fTemperature && *facts.fTemperature >= HOT)
        lst += QStringLiteral("It is hot: a Pi slows itself down from 80 degrees on. Cool it before a long job.");
    return lst;
}

stVerdict Judge(const stPulseResult& result, const stSystemFacts& facts, const stDemand& demand, double fTested,
                int iCore)
{
    stVerdict verdict;
    const double fSafe =
        SafeStepRate(demand.fDuty, demand.fDrivePulse, static_cast<double>(result.late.Worst()) * 1e-9);
    if (result.late.Edges() > 0) verdict.fSafeRate = std::min(fSafe, fTested);
    verdict.bAsTested = verdict.fSafeRate == fTested;
    if (result.late.Edges() != result.uExpected)
        verdict.lstWhyNot += QStringLiteral("The test did not run to its end.");
    if (!result.bBound)
        verdict.lstWhyNot += QStringLiteral("Core %1 was not granted to the pulses: the system has no such core, or "
                                            "keeps this program from it.")
                                 .arg(iCore);
    else if (!ListHasCore(facts.strIsolated, iCore))
        verdict.lstWhyNot += QStringLiteral("Core %1 is not kept free (isolcpus=%1 in the boot line): whatever else "
                                            "runs may take it, and these figures are luck.")
                                 .arg(iCore);
    if (!(verdict.fSafeRate >= demand.fRate))
        verdict.lstWhyNot += QStringLiteral("The settings ask for %1 pulses/s, more than these figures allow.")
                                 .arg(QString::number(demand.fRate, 'f', 0));
    verdict.bFit = verdict.lstWhyNot.isEmpty();
    verdict.lstAdvice = Advice(facts, result.bBound, iCore);
    return verdict;
}
