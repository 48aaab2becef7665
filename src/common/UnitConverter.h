#pragma once
#include "common/MachineTypes.h"

#include <cmath>
#include <limits>

// Between mm and position units (1/10000 mm, signed 32 bits). No state; any thread.
class CUnitConverter
{
public:
    // Truncates towards zero behind a nudge of 1e-05 mm away from zero: 0.001 gives 10, -0.001 gives -10.
    // A value that FitsLong refuses gives the nearest end of the range, not a number (NaN) gives 0: callers that
    // command a position ask FitsLong first.
    static qint32 GetLong(double v)
    {
        const double units = Units(v);
        if (!(units > double(std::numeric_limits<qint32>::min()) - 1.0))
            return std::isnan(units) ? 0 : std::numeric_limits<qint32>::min();
        if (units >= double(std::numeric_limits<qint32>::max()) + 1.0) return std::numeric_limits<qint32>::max();
        return static_cast<qint32>(units);
    }
    static qint32 GetInt(double v) { return GetLong(v); }

    // Whether the value's whole units fit in 32 bits.
    static bool FitsLong(double v)
    {
        const double units = Units(v);
        return units > double(std::numeric_limits<qint32>::min()) - 1.0 &&
               units < double(std::numeric_limits<qint32>::max()) + 1.0;
    }

    static double GetDouble(int v) { return double(v) / DECIMAL_MULTIPLYER; }
    static double GetDouble(long v) { return double(v) / DECIMAL_MULTIPLYER; }
    static double GetDouble(long long v) { return double(v) / DECIMAL_MULTIPLYER; }

    // Cleaned to four decimals, by way of the printed form.
    static double GetRndDouble(double v) { return QString::number(Nudged(v), 'f', PRECISION).toDouble(); }

    // Distance from one position to another on whole units, mm; the difference is taken in 64 bits.
    static double Distance(double from, double to)
    {
        return GetDouble(static_cast<long long>(GetInt(to)) - GetInt(from));
    }

private:
    static double Nudged(double v)
    {
        return v > 0.0 ? v + SMALL_NUMBER_TO_AVOID_ROUND_ERRORS : v - SMALL_NUMBER_TO_AVOID_ROUND_ERRORS;
    }
    static double Units(double v) { return Nudged(v) * DECIMAL_MULTIPLYER; }
};
