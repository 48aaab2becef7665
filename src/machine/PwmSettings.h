#pragma once
#include <QString>

// The settings of the spindle's PWM line. Interface thread, while the machine is free.
class CPwmSettings
{
public:
    // What the line's divider can make, Hz.
    static constexpr int LOWEST_FREQ = 5, HIGHEST_FREQ = 18750;
    static constexpr int LONGEST_DELAY = 10000;   // ms; the worker waits this long behind every change of speed

    // Refused with a text for the log: a lowest frequency not below the highest, and the other way round.
    static QString SetMinFreq(double fFreq);
    static QString SetMaxFreq(double fFreq);
    static void SetTimeDelay(double fDelay);
    // The line starts at its current frequency, or is switched off.
    static void UsePwmCtrl(bool bUse);
};
