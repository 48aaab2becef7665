#pragma once
#include "machine/Messages.h"
#include "motion/MachineAxes.h"

inline constexpr signed char ALL_AXES[MAX_AXES] = {1, 1, 1, 1, 1};   // marked

// Where the machine is, and whether that is true: homed or not, the work zero, heights and places that follow from it.
// mm, work coordinates where nothing else is said.
class CPosition
{
public:
    CPosition(CMachineAxes& axes, CMessages& messages) : m_Axes(axes), m_Messages(messages) {}

    // ---- Any thread ----
    // Of all axes in use; without home sensors there is nothing to home.
    bool GetHomeDone() const;
    double GetCurPos(eAxis axis) const { return m_Axes.m_AxisCtrl[axis].GetCurPos(); }
    void GetAllAxisCurPos(stFloatPoint& pos) const;   // of the axes in use
    stFloatPoint HereBut(eAxis axis, double fPos) const;
    // Of Z. With sensors the setting is a machine position, without them a height above the work whose sign does not
    // count.
    static double SafeHeight();
    void ToMchCoord(stFloatPoint& pos) const;

    // ---- The thread that commands ----
    void SetMchHome();
    void ClearHome();
    void SetMchHome(const signed char* pAxes);   // of the axes that are marked
    void ClearHome(const signed char* pAxes);
    // Simulated moves leave no trace: at the end all five axes are where they were, and the direction pins as m_eDir
    // says.
    void BeginSimulation();
    void EndSimulation();

    // Refused, with a message: in simulation, where the axes are not where they count to be; outside the machine.
    bool SetWorkZero(eAxis axis);
    // Refused in simulation alone. An axis outside the machine is told and set all the same, unlike in the form for one
    // axis: wanted, the operator who sets all axes at once has chosen this corner of the work.
    void SetWorkZero();

private:
    bool CheckNewWorkZero(eAxis axis, qint64& lMachinePos);

    bool RefuseInSimulation();

    CMachineAxes& m_Axes;
    CMessages& m_Messages;
    qint32 m_lBeforeSimulation[MAX_AXES] = {};   // position units
};
