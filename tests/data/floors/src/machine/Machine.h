#include "gcode/DlgScreen.h"   // a screen is above the machine
