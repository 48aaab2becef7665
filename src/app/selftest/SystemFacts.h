#pragma once
#include <QString>

#include <optional>

// What the system tells of itself that bears on the pulses; what it does not tell is empty.
struct stSystemFacts
{
    QString strIsolated;   // cores that the scheduler gives to nobody unasked, as the kernel lists them: "3", "2-3"
    QString strNoTick;     // cores that the timer tick leaves alone
    QString strGovernor;   // of the pulse core
    std::optional<qint64> lRealTimeUs, lPeriodUs;   // of each period, what real-time threads may take; -1: all of it
    std::optional<qint64> lLockedMemory;            // bytes that a program may lock; -1: any number
    std::optional<double> fTemperature;             // degrees, the hottest that is told
    bool bMayUsePwmAndSpi = true;                   // this program; of the libraries that it is linked with

    // Reads below strRoot, which is empty but in tests.
    static stSystemFacts Read(const QString& strRoot, int iCore);
};

// Whether a list of cores as the kernel writes it has this core.
bool ListHasCore(const QString& strList, int iCore);
