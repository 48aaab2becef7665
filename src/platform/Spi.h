#pragma once

// The entry points of the Pi's SPI library that the system calls; linked like those of WiringPi.h.
extern "C" {
int spiOpen(unsigned channel, unsigned baud, unsigned flags);
int spiXfer(unsigned handle, char* txBuf, char* rxBuf, unsigned count);
int spiWrite(unsigned handle, char* txBuf, unsigned count);
}
