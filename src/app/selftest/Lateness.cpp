#include "app/selftest/Lateness.h"

#include <algorithm>
#include <bit>
#include <cmath>

size_t CLateness::Index(quint64 u)
{
    if (u < 2 * STEPS) return static_cast<size_t>(u);
    const size_t uShift = static_cast<size_t>(std::bit_width(u)) - std::bit_width(2 * STEPS - 1);
    return uShift * STEPS + static_cast<size_t>(u >> uShift);
}

qint64 CLateness::Highest(size_t uIndex)
{
    if (uIndex < 2 * STEPS) return static_cast<qint64>(uIndex);
    const size_t uShift = uIndex / STEPS - 1;
    const quint64 uNext = static_cast<quint64>(uIndex - uShift * STEPS + 1) << uShift;
    return static_cast<qint64>(uNext - 1);
}

qint64 CLateness::Percentile(double fShare) const
{
    const double fWanted = std::max(1.0, std::ceil(fShare * static_cast<double>(m_uEdges)));
    quint64 uSeen = 0;
    for (size_t n = 0; n < SIZE; ++n) {
        uSeen += m_Counts[n];
        if (static_cast<double>(uSeen) >= fWanted) return std::min(Highest(n), m_lWorst);
    }
    return m_lWorst;
}
