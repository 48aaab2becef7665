#include "gcode/Model.h"
#include "machine/Nowhere.h"
#include "Beside.h"
#include "ui_Made.h"
