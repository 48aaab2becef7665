#include "platform/Spi.h"
#include "platform/pi/Record.h"

// Stands in for the SPI library. Handles differ from channels, so that one taken for the other shows.

static const char* Bytes(const char* buffer, unsigned count)
{
    static char szText[64];
    size_t uUsed = 0;
    szText[0] = 0;
    for (unsigned n = 0; n < count && uUsed + 4 < sizeof szText; ++n)
        uUsed += static_cast<size_t>(std::snprintf(szText + uUsed, sizeof szText - uUsed, n ? " %02X" : "%02X",
                                                   static_cast<unsigned>(static_cast<unsigned char>(buffer[n]))));
    return szText;
}

extern "C" {
int spiOpen(unsigned channel, unsigned baud, unsigned flags)
{
    NoteCall("spiOpen %u %u %u", channel, baud, flags);
    if (!HasRights()) return -31;
    return static_cast<int>(channel + 5);
}
int spiXfer(unsigned handle, char* txBuf, char* rxBuf, unsigned count)
{
    static unsigned char ucNext = 0x41;   // answers count up, so that their order shows
    NoteCall("spiXfer %u %s", handle, Bytes(txBuf, count));
    for (unsigned n = 0; n < count; ++n) rxBuf[n] = static_cast<char>(ucNext++);
    return static_cast<int>(count);
}
int spiWrite(unsigned handle, char* txBuf, unsigned count)
{
    NoteCall("spiWrite %u %s", handle, Bytes(txBuf, count));
    return static_cast<int>(count);
}
}
