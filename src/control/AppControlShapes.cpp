#include "control/AppControl.h"
#include "motion/AllAxisCtrl.h"
#include "shapes/CuttingWalk.h"
#include "shapes/ShapesToGCode.h"

// Shapes: cut on the worker, or written as a program.

void AppControl::StartShapeCutting(stShapeCuttingInfo* pInfo)
{
    if (!ClaimForJob()) return;
    m_pShapeCuttingInfo = pInfo;
    LaunchJob(OP_SHAPES, !AppConfig::m_bSimulationMode);
}

// The other axes keep their present positions in every target.
class AppControl::CShapeCutter
{
public:
    explicit CShapeCutter(AppControl& app) : m_App(app) {}

    bool Begin(const stEngShape&)
    {
        m_App.ResetAccVel();
        return true;
    }
    bool Lift() { return m_App.G00_Move(m_App.HereBut(Z_AXIS, SafeHeight()), true, true); }
    bool Travel(const stFloatPoint& first)
    {
        stFloatPoint target = m_App.HereBut(X_AXIS, first.x);
        target.y = first.y;
        return m_App.G00_Move(target, true, true);
    }
    // At the speed of a move and not of a plunge: the tool is still in the air.
    bool Descend() { return m_App.G01_Move(m_App.HereBut(Z_AXIS, 0.0), true, true); }
    bool Plunge(double fDepth)
    {
        m_Target = m_App.HereBut(Z_AXIS, fDepth);
        m_App.SetVelocityAcc(Z_AXIS, AppConfig::m_fPlungeFeed, AppConfig::m_fAxisAcc[Z_AXIS]);
        if (!m_App.G01_Move(m_Target, false, true)) return false;
        m_App.GetAllAxisCurPos(m_Previous);
        return true;
    }
    bool MayGoOn() { return m_App.WaitWhilePaused(); }
    bool Cut(const stFloatPoint& point)
    {
        m_Target.x = point.x;
        m_Target.y = point.y;
        m_App.SetAccAndVel(m_Previous, m_Target, G01_MOVE);
        if (!m_App.G01_Move(m_Target, false, false)) return false;
        m_Previous = m_Target;
        return true;
    }
    void EndPass() { CAllAxisCtrl::WaitForMotion(); }
    // The tool stays in the work: the next shape lifts it, or the end of the operation.
    bool End() { return true; }
    void Skip(const QString& strWhy) { TellNotice(strWhy); }

private:
    AppControl& m_App;
    stFloatPoint m_Target, m_Previous;
};

void AppControl::CutShapes()
{
    if (!m_pShapeCuttingInfo) return;
    CShapeCutter cutter(*this);
    (void)WalkJob(*m_pShapeCuttingInfo, cutter);
}

void AppControl::CreateGCodeFromShapes(QString fileName)
{
    if (!m_pShapeCuttingInfo) return;
    ResetAccVel();   // as before a cut; the text does not depend on it
    QStringList lstNotices;
    // A file that can't be opened is no news here: wanted, whoever asks has its own message.
    (void)WriteShapesAsGCode(
        fileName, *m_pShapeCuttingInfo, SafeHeight(), [this] { return WaitWhilePaused(); }, lstNotices);
    for (const QString& strNotice : lstNotices) TellNotice(strNotice);
}
