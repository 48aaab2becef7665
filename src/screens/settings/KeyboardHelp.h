#pragma once
#include <QString>

// What the keys of the numeric keypad do, as rich text.
QString KeyboardHelp();
