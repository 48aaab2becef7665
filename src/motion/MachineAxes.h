#pragma once
#include "motion/AxisCtrl.h"

// The five axes, by eAxis. A base of the worker, so that the coordinated mode needs the axes and not the worker.
struct CMachineAxes
{
    AxisCtrl m_AxisCtrl[MAX_AXES];
};
