#include "app/selftest/Report.h"

#include <cmath>

namespace {
QString Row(const char* szName, const QString& strValue)
{
    return QString::fromLatin1(szName).leftJustified(24) + strValue + QLatin1Char('\n');
}
QString Us(qint64 lNs)
{
    return QString::number(static_cast<double>(lNs) / 1000.0, 'f', 2) + QStringLiteral(" us");
}
QString OrNotTold(const QString& strValue)
{
    return strValue.isEmpty() ? QStringLiteral("not told by this system") : strValue;
}

QString CoreText(int iCore, bool bBound, const stSystemFacts& facts)
{
    const QString strBound = bBound ? QStringLiteral("granted") : QStringLiteral("NOT GRANTED");
    const QString strFree =
        ListHasCore(facts.strIsolated, iCore) ? QStringLiteral("kept free") : QStringLiteral("NOT KEPT FREE");
    const auto List = [](const QString& str) { return str.isEmpty() ? QStringLiteral("none") : str; };
    return QStringLiteral("%1, %2 (isolated: %3, without tick: %4)")
        .arg(strBound, strFree, List(facts.strIsolated), List(facts.strNoTick));
}

// The pulse thread is not one of those; whoever makes it one should know what the kernel does then.
QString RealTimeText(const stSystemFacts& facts)
{
    if (!facts.lRealTimeUs) return OrNotTold({});
    if (*facts.lRealTimeUs < 0) return QStringLiteral("not throttled");
    if (!facts.lPeriodUs) return QStringLiteral("%1 us of each period").arg(*facts.lRealTimeUs);
    return QStringLiteral("%1 us of each %2 us").arg(*facts.lRealTimeUs).arg(*facts.lPeriodUs);
}

QString LockedMemoryText(const stSystemFacts& facts)
{
    if (!facts.lLockedMemory) return OrNotTold({});
    if (*facts.lLockedMemory < 0) return QStringLiteral("any number of pages");
    return QStringLiteral("%1 KiB").arg(*facts.lLockedMemory / 1024);
}

// Two digits, rounded down: more would promise what half a minute cannot know.
QString SafeRate(double fRate)
{
    if (fRate < 1.0) return QStringLiteral("0");
    const double fUnit = std::pow(10.0, std::max(0.0, std::floor(std::log10(fRate)) - 1.0));
    return QString::number(std::floor(fRate / fUnit * (1.0 + 1e-12)) * fUnit, 'f', 0);
}
}   // namespace

QString FiguresText(const stPulseTest& test, const stPulseResult& result, const stSystemFacts& facts)
{
    const CLateness& late = result.late;
    QString str = Row("Edges", QStringLiteral("%1 of %2").arg(late.Edges()).arg(result.uExpected));
    str += Row("Lateness p50", Us(late.Percentile(0.5)));
    str += Row("Lateness p99", Us(late.Percentile(0.99)));
    str += Row("Lateness p99.9", Us(late.Percentile(0.999)));
    str += Row("Lateness, worst", Us(late.Worst()));
    str += Row(qPrintable(QStringLiteral("Core %1").arg(test.iCore)), CoreText(test.iCore, result.bBound, facts));
    str += Row("Governor", OrNotTold(facts.strGovernor));
    str += Row("Real-time threads get", RealTimeText(facts));
    str += Row("May lock in memory", LockedMemoryText(facts));
    str += Row("PWM and SPI", facts.bMayUsePwmAndSpi ? QStringLiteral("allowed") : QStringLiteral("NOT ALLOWED"));
    str += Row("Temperature",
               facts.fTemperature ? QStringLiteral("%1 degrees").arg(*facts.fTemperature, 0, 'f', 1) : OrNotTold({}));
    return str;
}

QString VerdictText(const stVerdict& verdict, const stDemand& demand, bool bRealPins)
{
    const char* const szBound = verdict.bAsTested
                                    ? "No higher rate was tested (--rate)"
                                    : "Beyond it the worst edge leaves less than the drives' shortest pulse";
    QString str =
        QStringLiteral("%1\n"
                       "Highest safe step rate: %2 pulses/s on each axis; the settings ask for up to %3.\n"
                       "%4 (%5 us, duty %6).\n")
            .arg(verdict.bFit ? QStringLiteral("FIT for a machine.") : QStringLiteral("NOT FIT for a machine."),
                 SafeRate(verdict.fSafeRate), QString::number(std::ceil(demand.fRate), 'f', 0),
                 QString::fromLatin1(szBound), QString::number(demand.fDrivePulse * 1e6),
                 QString::number(demand.fDuty));
    for (const QString& strLine : verdict.lstWhyNot) str += QStringLiteral("- ") + strLine + QLatin1Char('\n');
    for (const QString& strLine : verdict.lstAdvice) str += QStringLiteral("Advice: ") + strLine + QLatin1Char('\n');
    if (!bRealPins)
        str += QStringLiteral("The pins are virtual: this tells of the processor, and nothing of a machine.\n");
    return str;
}
