#include "jobs/ShapeCutter.h"

#include "common/OperatorScreen.h"
#include "config/AppConfig.h"
#include "motion/AllAxisCtrl.h"
#include "shapes/CuttingWalk.h"
#include "shapes/ShapesToGCode.h"

namespace {
// Does on the machine what the walk over the shapes says. The other axes keep their present positions in every target.
class CCuttingTool
{
public:
    explicit CCuttingTool(CMachine& machine) : m_Machine(machine) {}

    bool Begin(const stEngShape&)
    {
        m_Machine.m_AxisCommands.ResetAccVel();
        return true;
    }
    bool Lift() { return m_Machine.m_JobMoves.MoveAxis(Z_AXIS, CPosition::SafeHeight(), G00_MOVE); }
    bool Travel(const stFloatPoint& first)
    {
        stFloatPoint target = m_Machine.m_Position.HereBut(X_AXIS, first.x);
        target.y = first.y;
        return m_Machine.m_JobMoves.G00_Move(target, true, true);
    }
    // At the speed of a move and not of a plunge: the tool is still in the air.
    bool Descend() { return m_Machine.m_JobMoves.MoveAxis(Z_AXIS, 0.0, G01_MOVE); }
    bool Plunge(double fDepth)
    {
        m_Target = m_Machine.m_Position.HereBut(Z_AXIS, fDepth);
        m_Machine.m_AxisCommands.SetVelocityAcc(Z_AXIS, AppConfig::m_fPlungeFeed, AppConfig::m_fAxisAcc[Z_AXIS]);
        if (!m_Machine.m_JobMoves.G01_Move(m_Target, false, true)) return false;
        m_Machine.m_Position.GetAllAxisCurPos(m_Previous);
        return true;
    }
    bool MayGoOn() { return m_Machine.WaitWhilePaused(); }
    bool Cut(const stFloatPoint& point)
    {
        m_Target.x = point.x;
        m_Target.y = point.y;
        if (!m_Machine.m_JobMoves.Cut(m_Previous, m_Target)) return false;
        m_Previous = m_Target;
        return true;
    }
    void EndPass() { CAllAxisCtrl::WaitForMotion(); }
    // The tool stays in the work: the next shape lifts it, or the end of the operation.
    bool End() { return true; }
    void Skip(const QString& strWhy) { TellNotice(strWhy); }

private:
    CMachine& m_Machine;
    stFloatPoint m_Target, m_Previous;
};
}   // namespace

void CShapeCutter::CutShapes()
{
    if (!m_pShapeCuttingInfo) return;
    CCuttingTool tool(m_Machine);
    (void)WalkJob(*m_pShapeCuttingInfo, tool);
}

void CShapeCutter::CreateGCodeFromShapes(QString fileName)
{
    if (!m_pShapeCuttingInfo) return;
    m_Machine.m_AxisCommands.ResetAccVel();   // as before a cut; the text does not depend on it
    QStringList lstNotices;
    // A file that can't be opened is no news here: wanted, whoever asks has its own message.
    (void)WriteShapesAsGCode(
        fileName, *m_pShapeCuttingInfo, CPosition::SafeHeight(), [this] { return m_Machine.WaitWhilePaused(); },
        lstNotices);
    for (const QString& strNotice : lstNotices) TellNotice(strNotice);
}
