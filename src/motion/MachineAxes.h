#pragma once
#include "config/AppConfig.h"
#include "motion/AxisCtrl.h"

// The five axes, by eAxis. A base of the machine, so that the coordinated mode needs the axes and not the machine.
struct CMachineAxes
{
    // Of the board that is selected now.
    static int AxesInUse() { return AppConfig::m_iMchType < MAX_AXES ? AppConfig::m_iMchType : MAX_AXES; }

    AxisCtrl m_AxisCtrl[MAX_AXES];
    // Axes whose pins have been set up; another board, selected later, brings no pins for more of them.
    int m_iAxesSetUp = 0;
};
