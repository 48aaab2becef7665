#pragma once

// What the worker does. The numbers are told and compared by value.
enum eOperation
{
    OP_NONE = 0,
    OP_WORK_HOME = 1,
    OP_MCH_HOME = 2,
    OP_SHAPES = 3,
    OP_IMG_CARVING = 4,
    OP_GCODE = 5,
    OP_Z_PROBE = 6,
    OP_Z_PROFILE = 7
};
