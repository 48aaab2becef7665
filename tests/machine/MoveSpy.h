#pragma once
#include "control/AppControl.h"
#include "motion/AllAxisCtrl.h"
#include "support/CleanMachine.h"
#include "time/VirtualTime.h"

#include <utility>

// The worker with the moves noted that it makes, and where the axes stood behind each.
class CMoveSpy : public AppControl, public CWorkObserver
{
public:
    using AppControl::run;

    CMoveSpy() { m_pWorkObserver = this; }
    void OnWork(const stWorkCommand& command) override
    {
        if (command.eKind == WORK_MOVE) Note(command.to);
    }
    stFloatPoint Position() const
    {
        stFloatPoint pos;
        GetAllAxisCurPos(pos);
        return pos;
    }
    std::vector<qint64> Units() const
    {
        std::vector<qint64> units;
        for (int axis = 0; axis < AppConfig::m_iMchType; ++axis) units.push_back(m_AxisCtrl[axis].GetCurPosLong());
        return units;
    }
    // Ends what runs and notes where the last move ended.
    void Settle()
    {
        CAllAxisCtrl::WaitForMotion();
        if (m_lstStops.size() < m_lstTargets.size()) m_lstStops.push_back(Units());
    }
    QStringList TakeErrors() { return std::exchange(m_lstErrMsg, {}); }

    std::vector<stFloatPoint> m_lstTargets;
    std::vector<std::vector<qint64>> m_lstStops;

private:
    void Note(const stFloatPoint& target)
    {
        Settle();
        m_lstTargets.push_back(target);
    }
};

// A three-axis machine on virtual time, its auto mode running, the operation that of a program.
template <class Spy> class CMachineTest : public CCleanMachine
{
protected:
    // Settings are made before.
    void Begin(const stFloatPoint& start = {})
    {
        m_App.InitMachine();
        for (int axis = 0; axis < MAX_AXES; ++axis) m_App.m_AxisCtrl[axis].SetCurPos(AxisOf(start, axis));
        m_App.m_eOperation = OP_GCODE;
        CAllAxisCtrl::StartAutoMode(&m_App);
    }
    bool Move(const stFloatPoint& from, const stFloatPoint& to)
    {
        m_App.SetAccAndVel(from, to, G01_MOVE);
        const bool bOk = m_App.G01_Move(to, false, false);
        m_App.Settle();
        return bOk;
    }
    void SetProgram(GCodeProgram program)
    {
        m_Program = std::move(program);
        m_App.m_pGCodeProgram = &m_Program;
    }

    CVirtualTime m_Time;
    GCodeProgram m_Program;
    Spy m_App;
};
using CMoveTest = CMachineTest<CMoveSpy>;
