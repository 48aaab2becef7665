#pragma once
#include "machine/MoveSpy.h"
#include "shapes/ShapeModel.h"
#include "support/Cases.h"

// The worker with every call noted that a cut makes, in order: moves with their flags and where the axes stood behind
// them, plans, speeds.
class CShapeSpy : public CMoveSpy
{
public:
    bool G00_Move(stFloatPoint target, bool bSetAccVel, bool bWait) override
    {
        return NoteMove("G00", target, bSetAccVel, bWait,
                        [&] { return CMoveSpy::G00_Move(target, bSetAccVel, bWait); });
    }
    bool G01_Move(stFloatPoint target, bool bSetAccVel, bool bWait) override
    {
        return NoteMove("G01", target, bSetAccVel, bWait,
                        [&] { return CMoveSpy::G01_Move(target, bSetAccVel, bWait); });
    }
    bool SetAccAndVel(stFloatPoint from, stFloatPoint to, eGMoveCmnd eCmnd) override
    {
        if (!m_bInMove)
            m_lstCalls.push_back(
                {{"cmd", "PLAN"}, {"from", PointArray(from, m_iAxes)}, {"to", PointArray(to, m_iAxes)}});
        return CMoveSpy::SetAccAndVel(from, to, eCmnd);
    }
    void ResetAccVel() override
    {
        m_lstCalls.push_back({{"cmd", "RESET"}});
        CMoveSpy::ResetAccVel();
    }
    void SetVelocityAcc(eAxis axis, double fVel, double fAcc) override
    {
        EXPECT_EQ(axis, Z_AXIS);
        m_lstCalls.push_back({{"cmd", "ZVEL"}, {"vel", fVel}, {"acc", fAcc}});
        CMoveSpy::SetVelocityAcc(axis, fVel, fAcc);
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
    template <class F> bool NoteMove(const char* szCmd, const stFloatPoint& to, bool bSetAccVel, bool bWait, F&& fnMove)
    {
        if (m_fnOnMove) m_fnOnMove(m_lstTargets.size());
        m_lstCalls.push_back({{"cmd", szCmd}, {"to", PointArray(to, m_iAxes)}, {"set", bSetAccVel}, {"wait", bWait}});
        m_bInMove = true;
        const bool bOk = fnMove();
        m_bInMove = false;
        if (m_fnBehindMove) m_fnBehindMove(m_lstTargets.size());
        return bOk;
    }
    bool m_bInMove = false;
};

class CShapeTest : public CMachineTest<CShapeSpy>
{
};
