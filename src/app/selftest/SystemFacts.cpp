#include "app/selftest/SystemFacts.h"

#include "platform/PinRights.h"

#include <QDir>
#include <QFile>

#include <algorithm>

namespace {
// One line of a file of the kernel's; empty where it has none, or says that there is nothing.
QString Line(const QString& strFile)
{
    QFile file(strFile);
    if (!file.open(QIODevice::ReadOnly)) return {};
    const QString strLine = QString::fromLatin1(file.readLine()).trimmed();
    return strLine == QLatin1String("(null)") ? QString() : strLine;
}

std::optional<qint64> Number(const QString& strFile)
{
    bool bOk = false;
    const qint64 lValue = Line(strFile).toLongLong(&bOk);
    return bOk ? std::optional(lValue) : std::nullopt;
}

// The soft limit of this program.
std::optional<qint64> LockedMemory(const QString& strFile)
{
    QFile file(strFile);
    if (!file.open(QIODevice::ReadOnly)) return {};
    static const QByteArray NAME = "Max locked memory";
    for (const QByteArray& line : file.readAll().split('\n'))
        if (line.startsWith(NAME)) {
            const QByteArray value = line.mid(NAME.size()).simplified().split(' ').first();
            bool bOk = false;
            const qint64 lBytes = value.toLongLong(&bOk);
            if (value == "unlimited") return -1;
            return bOk ? std::optional(lBytes) : std::nullopt;
        }
    return {};
}
}   // namespace

bool ListHasCore(const QString& strList, int iCore)
{
    for (const QString& strPart : strList.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const QStringList ends = strPart.split(QLatin1Char('-'));
        bool bFirst = false, bLast = false;
        const int iFirst = ends.first().toInt(&bFirst), iLast = ends.last().toInt(&bLast);
        if (ends.size() <= 2 && bFirst && bLast && iFirst <= iCore && iCore <= iLast) return true;
    }
    return false;
}

stSystemFacts stSystemFacts::Read(const QString& strRoot, int iCore)
{
    const QString strCpu = strRoot + QStringLiteral("/sys/devices/system/cpu/");
    const QString strKernel = strRoot + QStringLiteral("/proc/sys/kernel/");
    stSystemFacts facts;
    facts.bMayUsePwmAndSpi = MayUsePwmAndSpi();
    facts.strIsolated = Line(strCpu + QStringLiteral("isolated"));
    facts.strNoTick = Line(strCpu + QStringLiteral("nohz_full"));
    facts.strGovernor = Line(strCpu + QStringLiteral("cpu%1/cpufreq/scaling_governor").arg(iCore));
    facts.lRealTimeUs = Number(strKernel + QStringLiteral("sched_rt_runtime_us"));
    facts.lPeriodUs = Number(strKernel + QStringLiteral("sched_rt_period_us"));
    facts.lLockedMemory = LockedMemory(strRoot + QStringLiteral("/proc/self/limits"));
    const QDir zones(strRoot + QStringLiteral("/sys/class/thermal"));
    for (const QString& strZone : zones.entryList({QStringLiteral("thermal_zone*")}, QDir::Dirs)) {
        const auto lMilli = Number(zones.filePath(strZone + QStringLiteral("/temp")));
        if (!lMilli) continue;
        const double fDegrees = static_cast<double>(*lMilli) / 1000.0;
        facts.fTemperature = std::max(facts.fTemperature.value_or(fDegrees), fDegrees);
    }
    return facts;
}
