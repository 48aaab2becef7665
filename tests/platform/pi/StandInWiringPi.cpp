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
    if (mode == 8) EndUnlessRights("pinMode PWM");
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
    EndUnlessRights("pwmSetMode");
    NoteCall("pwmSetMode %d", mode);
}
void pwmSetRange(unsigned int range)
{
    EndUnlessRights("pwmSetRange");
    NoteCall("pwmSetRange %u", range);
}
void pwmSetClock(int divisor)
{
    EndUnlessRights("pwmSetClock");
    NoteCall("pwmSetClock %d", divisor);
}
void pwmWrite(int pin, int value)
{
    EndUnlessRights("pwmWrite");
    NoteCall("pwmWrite %d %d", pin, value);
}
}
