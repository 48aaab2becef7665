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

// These move a tool through the work.
constexpr bool IsCutting(int iOperation)
{
    return iOperation == OP_SHAPES || iOperation == OP_IMG_CARVING || iOperation == OP_GCODE;
}

// These take the operator's buttons away until they end; the others leave them.
constexpr bool IsJob(int iOperation)
{
    return IsCutting(iOperation) || iOperation == OP_Z_PROFILE;
}
