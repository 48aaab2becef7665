#pragma once
#include "machine/MoveSpy.h"
#include "shapes/ShapeModel.h"
#include "support/Cases.h"

// The worker with every call noted that a cut makes, in order: moves with their flags and where the axes stood behind
// them, plans, speeds.
class CShapeSpy : public CMoveSpy
{
public:
    void OnWork(const stWorkCommand& command) override
    {
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
            EXPECT_EQ(command.axis, Z_AXIS);
            m_lstCalls.push_back({{"cmd", "ZVEL"}, {"vel", command.fValue}, {"acc", command.fAcc}});
            break;
        default: break;
        }
    }
    void OnWorkEnd(const stWorkCommand& command, bool) override
    {
        if (command.eKind != WORK_MOVE) return;
        m_bInMove = false;
        if (m_fnBehindMove) m_fnBehindMove(m_lstTargets.size());
    }

    size_t CallCount() const { return m_lstCalls.size(); }
    // All calls; "pos" is where a move has ended.
    QJsonArray Calls()
    {
        Settle();
        QJsonArray calls;
        size_t uMove = 0;
        for (QJsonObject call : m_lstCalls) {
            if (call.contains("wait")) {
                stFloatPoint pos;
                for (int axis = 0; axis < m_iAxes; ++axis)
                    AxisOf(pos, axis) = double(m_lstStops[uMove][size_t(axis)]) / DECIMAL_MULTIPLYER;
                call["pos"] = PointArray(pos, m_iAxes);
                ++uMove;
            }
            calls.append(call);
        }
        return calls;
    }

    int m_iAxes = 3;                                                 // that are noted
    std::function<void(size_t uMoves)> m_fnOnMove, m_fnBehindMove;   // with how many there were

protected:
    std::vector<QJsonObject> m_lstCalls;

private:
    void NoteMove(const stWorkCommand& move)
    {
        if (m_fnOnMove) m_fnOnMove(m_lstTargets.size());
        m_lstCalls.push_back({{"cmd", move.eCmnd == G00_MOVE ? "G00" : "G01"},
                              {"to", PointArray(move.to, m_iAxes)},
                              {"set", move.bPlan},
                              {"wait", move.bWait}});
        m_bInMove = true;
        CMoveSpy::OnWork(move);
    }
    bool m_bInMove = false;
};

class CShapeTest : public CMachineTest<CShapeSpy>
{
};
