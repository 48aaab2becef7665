#pragma once
#include "motion/AxisCtrl.h"

// The five axes, by eAxis. A base of the worker, so that the coordinated mode needs the axes and not the worker.
struct CMachineAxes
{
    AxisCtrl m_AxisCtrl[MAX_AXES];
    // Axes whose pins have been set up; another board, selected later, brings no pins for more of them.
    int m_iAxesSetUp = 0;
};
