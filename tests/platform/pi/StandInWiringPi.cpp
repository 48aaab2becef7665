#include "platform/WiringPi.h"
#include "platform/pi/Record.h"

// Stands in for the pin library when vantor is linked as on a Pi. Inputs idle low, as pulled down.

extern "C" {
int wiringPiSetupPinType(int pinType)
{
    NoteCall("wiringPiSetupPinType %d", pinType);
    return 0;
}
void pinMode(int pin, int mode)
{
    NoteCall("pinMode %d %d", pin, mode);
}
void pullUpDnControl(int pin, int pud)
{
    NoteCall("pullUpDnControl %d %d", pin, pud);
}
void digitalWrite(int pin, int value)
{
    NoteCall("digitalWrite %d %d", pin, value);
}
int digitalRead(int)
{
    return 0;
}
void pwmSetMode(int mode)
{
    NoteCall("pwmSetMode %d", mode);
}
void pwmSetRange(unsigned int range)
{
    NoteCall("pwmSetRange %u", range);
}
void pwmSetClock(int divisor)
{
    NoteCall("pwmSetClock %d", divisor);
}
void pwmWrite(int pin, int value)
{
    NoteCall("pwmWrite %d %d", pin, value);
}
}
