#pragma once
#include <QtGlobal>

// The outputs that M codes switch. Any thread.

// Relays, spindle and coolant take their time.
inline constexpr qint64 OUTPUT_PAUSE_US = 2000000;

// A code that the map does not have is added with pin 0.
void WriteMCodeOutput(int iCode, quint8 ucLevel);
