#pragma once
#include <QString>

#include <vector>

// Ramp tables: how long each pulse of a start or stop stays high and low. Built before a move and only read during it:
// an axis does not compute speed while it moves, at 1.5 MHz it can't. No shared state; any thread.

// What a table depends on besides speed and acceleration.
struct stRampSettings
{
    static stRampSettings OfAxis(int axis);   // as the configuration has them now

    double fStep = 0.001;      // mm a pulse
    double fDuty = 0.5;        // share of a pulse that is high
    double fRateOfAcc = 0.0;   // mm/s^3, of an S-curve
    quint32 uSampleUs = 0;     // us for which a speed is held
    bool bSCurve = false;

    bool operator==(const stRampSettings&) const = default;
};

struct stRampTable
{
    std::vector<double> lstHigh, lstLow;            // ns, one entry a pulse of the ramp
    double fConstHigh = 100.0, fConstLow = 100.0;   // ns, at full speed
    std::vector<double> lstAcc;                     // accelerations of an S-curve's first half, replayed in the second
};

// A time of a pulse that the loops' clocks can count, with room for where the move has come to before it: 146 years.
inline constexpr double MAX_PULSE_NS = 4.6e18;
inline constexpr qint64 MAX_RAMP_ENTRIES = 4'000'000;   // 1.5 MHz at 600 mm/s^2 and 0.001 mm needs 1.9 million

// Empty, or why there is no ramp, in words that go behind the axis's name: to fVel (mm/s) at fAcc (mm/s^2): one of
// them, or an S-curve's rate of acceleration, not above 0, a step below one position unit, a duty not inside 0 to 1, a
// sampling time of 0, more than MAX_RAMP_ENTRIES, a pulse of more than MAX_PULSE_NS.
QString WhyNoRamp(const stRampSettings& settings, double fVel, double fAcc);

// Entries of that ramp, never too few; 0 where there is none.
size_t MostRampEntries(const stRampSettings& settings, double fVel, double fAcc);

// Of its first pulse, the slowest, in pulses/s. An S-curve begins with a sampling time of its rate of acceleration: a
// short one makes a first pulse of many seconds.
double FirstSpeed(const stRampSettings& settings, double fVel, double fAcc);

// Of what WhyNoRamp has let through. The vectors are cleared, never given back: a build between two moves allocates
// nothing. pCurve: takes the speeds too, pulses/s.
void BuildRamp(const stRampSettings& settings, double fVel, double fAcc, stRampTable& table,
               std::vector<double>* pCurve = nullptr);
