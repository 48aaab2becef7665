#include "screens/gcode/DlgScreen.h"   // a screen is above its model
