#pragma once
#include "cases/Cases.h"
#include "control/AppControl.h"
#include "motion/AllAxisCtrl.h"
#include "support/CleanMachine.h"
#include "time/VirtualTime.h"

#include <functional>
#include <utility>

// The worker with everything noted that it commands: the targets of straight moves and where the axes stood behind
// each, and all calls in order, as the reference cases tell them.
class CMoveSpy : public AppControl, public CWorkObserver
{
public:
    using AppControl::run;

    CMoveSpy() { m_pWorkObserver = this; }
    void OnWork(const stWorkCommand& command) override
    {
        const QString strAxis = QStringLiteral("XYZAB").mid(command.axis, 1);
        switch (command.eKind) {
        case WORK_MOVE: NoteMove(command); break;
        case WORK_PLAN:
            if (!m_bInMove)
                m_lstCalls.push_back({{"cmd", "PLAN"},
                                      {"from", PointArray(command.from, m_iAxes)},
                                      {"to", PointArray(command.to, m_iAxes)}});
            break;
        case WORK_RESET_SPEEDS: m_lstCalls.push_back({{"cmd", "RESET"}}); break;
        case WORK_AXIS_SPEED:
            m_lstCalls.push_back({{"cmd", strAxis + "VEL"}, {"vel", command.fValue}, {"acc", command.fAcc}});
            break;
        case WORK_CARVING_PASS: {
            const stImgCarvingInfo& info = *m_stImgCarvingData.pInfo;
            m_lstCalls.push_back({{"cmd", "PASS"}, {"depth", info.fDepth}, {"zstep", info.fZStep}});
            break;
        }
        case WORK_AXIS_TO: m_lstAxisCommands.append(QJsonArray{"ABS", strAxis, command.fValue}); break;
        case WORK_AXIS_BY: m_lstAxisCommands.append(QJsonArray{"PROBE", command.fValue}); break;
        default: break;
        }
    }
    void OnWorkEnd(const stWorkCommand& command, bool) override
    {
        if (command.eKind == WORK_ZERO) m_lstAxisCommands = {};   // a measurement is told from behind that move on
        if (command.eKind != WORK_MOVE) return;
        m_bInMove = false;
        if (m_fnBehindMove) m_fnBehindMove(m_lstTargets.size());
    }

    // All axes at their places, the auto mode running, the operation that of a program. Settings are made before.
    void BeginMotion(const stFloatPoint& start)
    {
        InitMachine();
        for (int axis = 0; axis < MAX_AXES; ++axis) m_AxisCtrl[axis].SetCurPos(AxisOf(start, axis));
        m_eOperation = OP_GCODE;
        CAllAxisCtrl::StartAutoMode(this);
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
    size_t CallCount() const { return m_lstCalls.size(); }
    // All calls; "pos" is where a move has ended.
    QJsonArray Calls()
    {
        Settle();
        size_t uMove = 0;
        return ArrayOf(m_lstCalls, [&](QJsonObject call) {
            if (!call.contains("wait")) return call;
            stFloatPoint pos;
            for (int axis = 0; axis < m_iAxes; ++axis)
                AxisOf(pos, axis) = double(m_lstStops[uMove][size_t(axis)]) / DECIMAL_MULTIPLYER;
            call["pos"] = PointArray(pos, m_iAxes);
            ++uMove;
            return call;
        });
    }

    std::vector<stFloatPoint> m_lstTargets;
    std::vector<std::vector<qint64>> m_lstStops;
    QJsonArray m_lstAxisCommands;
    int m_iAxes = 3;                                                 // that are noted of calls
    std::function<void(size_t uMoves)> m_fnOnMove, m_fnBehindMove;   // with how many there were

private:
    void NoteMove(const stWorkCommand& move)
    {
        if (m_fnOnMove) m_fnOnMove(m_lstTargets.size());
        m_lstCalls.push_back({{"cmd", move.eCmnd == G00_MOVE ? "G00" : "G01"},
                              {"to", PointArray(move.to, m_iAxes)},
                              {"set", move.bPlan},
                              {"wait", move.bWait}});
        m_bInMove = true;
        Settle();
        m_lstTargets.push_back(move.to);
    }
    std::vector<QJsonObject> m_lstCalls;
    bool m_bInMove = false;
};

// A three-axis machine on virtual time, its auto mode running, the operation that of a program.
template <class Spy> class CMachineTest : public CCleanMachine
{
protected:
    void Begin(const stFloatPoint& start = {}) { m_App.BeginMotion(start); }
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
