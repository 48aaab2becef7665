#include "common/Fine.h"
#include "gcode/Model.h"
