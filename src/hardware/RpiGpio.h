#pragma once
#include "platform/WiringPi.h"

#include <QtGlobal>

// The Pi's own pins, by Broadcom number. On the hot path of the pulse loops: a pin write is the library's call and
// nothing else. Any thread; a pin has one writer at a time. Nothing reports failure.
class CRpiGpio
{
public:
    static void InitRpiGpio() { (void)wiringPiSetupPinType(1); }   // Broadcom numbers
    static void SetPinModeOutput(quint16 pin) { pinMode(pin, 1); }
    // Pulled down: every input idles low and is active high, so an unconnected sensor never stops a move.
    static void SetPinModeInput(quint16 pin)
    {
        pinMode(pin, 0);
        pullUpDnControl(pin, 1);
    }
    static void WriteOutput(quint16 pin, quint8 value) { digitalWrite(pin, value); }
    static quint8 ReadInput(quint16 pin) { return static_cast<quint8>(digitalRead(pin)); }

private:
    // Reserved for a direct mapping of the registers; nothing reads or writes them.
    static qint32 mem_fd;
    static void* gpio_map;
    static volatile quint32* gpio;
};
