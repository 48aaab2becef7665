#pragma once
#include <QMap>
#include <QString>

// The pins of the Pi's header, by Broadcom number from 0, for the eye: nothing decides by them. Interface thread.

inline constexpr int HEADER_PINS = 28;

// What each pin is for, by the configuration in force; a pin with several uses names them all.
QMap<int, QString> PinRoles();
bool IsPinHigh(int iPin);
