#pragma once

// The entry points of the Pi's pin library that the system calls. On a Pi the machine's own programs link the real
// library; everywhere else, and in every test, platform_virtual has them (VirtualPins.h).
extern "C" {
int wiringPiSetupPinType(int pinType);
void pinMode(int pin, int mode);
void pullUpDnControl(int pin, int pud);
void digitalWrite(int pin, int value);
int digitalRead(int pin);
void pwmSetMode(int mode);
void pwmSetRange(unsigned int range);
void pwmSetClock(int divisor);
void pwmWrite(int pin, int value);
}
