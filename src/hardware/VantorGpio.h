#pragma once
#include <QtGlobal>

// Outputs and inputs that are not time-critical, on whatever board is selected: the Pi's own pins, or bits of an SPI
// board. Step pulses, direction pins and sensors never come here (CRpiGpio). No lock; interface thread and worker.
class CVANTORGPIO
{
public:
    // Sets up all pins, once at start, when the configuration is loaded. Always the Pi's own pins.
    static void InitGpio();

    static void SetPinModeOutput(quint16 pin);
    static void SetPinModeInput(quint16 pin);
    static void WriteOutput(quint16 pin, quint16 value);
    static quint8 ReadInput(quint16 pin);

    // The spindle's PWM line at AppConfig's current frequency (Hz, up to 18750), at a duty of one half. A frequency
    // that the hardware's divider cannot make, or a program without the right to PWM (MayUsePwmAndSpi), starts nothing
    // and is a line in the operator's log.
    static void PwmStart();
    static void PwmStop();
};
