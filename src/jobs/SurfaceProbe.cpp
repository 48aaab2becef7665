#include "jobs/SurfaceProbe.h"

#include "common/OperatorScreen.h"
#include "config/AppConfig.h"
#include "zprofile/ZProfileFile.h"

#include <algorithm>
#include <cmath>

static double XYFeedPercent()
{
    return AppConfig::m_fAxisFeedPercent[X_AXIS];
}

QString CSurfaceProbe::WhyNotMeasured()
{
    if (!(AppConfig::m_ZProfileInfo.fXYStep > 0.0))
        return QStringLiteral("Z-Profile: X-Y Step must be greater than zero");
    if (!(AppConfig::m_ZProfileInfo.fZRange > 0.0))
        return QStringLiteral("Z-Profile: Z Range must be greater than zero");
    return {};
}

namespace {
// Probes the grid row by row, back and forth, and keeps each finished row. Worker thread.
class CSurfaceWalk
{
public:
    explicit CSurfaceWalk(CMachine& machine) : m_Machine(machine), m_ZAxis(machine.m_AxisCtrl[Z_AXIS]) {}
    ~CSurfaceWalk() { m_ZAxis.EndWatch(); }

    bool Run()
    {
        if (!m_Machine.m_Homing.MoveWorkZeroAll()) return false;
        m_ZAxis.BeginWatch(m_ZAxis.m_bWatchZProbe);
        while (ProbeRow()) {
            m_Info.lstPoints.push_back(m_Row);
            if (!Lift()) return false;
            if (m_fY >= m_Info.fWidth) return true;
            m_fY = std::min(m_fY + m_Info.fXYStep, m_Info.fWidth);
            if (!m_Machine.m_AxisCommands.EngMoveAxisAbs(Y_AXIS, m_fY, true) || !Probe()) return false;
            m_Node.y = m_Machine.m_Position.GetCurPos(Y_AXIS);
            m_Node.z = m_Machine.m_Position.GetCurPos(Z_AXIS);
            m_fStep = -m_fStep;
            m_Row.clear();
        }
        return false;
    }

private:
    // From the node that the tool stands on to the far border.
    bool ProbeRow()
    {
        for (;;) {
            m_Row.push_back(m_Node);
            FollowOverride();
            if ((m_fStep < 0.0 && m_fX <= 0.0) || (m_fStep > 0.0 && m_fX >= m_Info.fLength)) return true;
            m_fX += m_fStep;
            if (m_fX > m_Info.fLength) m_fX = m_Info.fLength;   // the far border is always measured
            if (m_fX < 0.0) m_fX = 0.0;
            if (!Lift() || !m_Machine.m_AxisCommands.EngMoveAxisAbs(X_AXIS, m_fX, true) || !Probe()) return false;
            m_Node.x = m_Machine.m_Position.GetCurPos(X_AXIS);
            m_Node.z = m_Machine.m_Position.GetCurPos(Z_AXIS);
        }
    }

    bool Lift()
    {
        m_ZAxis.m_bWatchZProbe = false;
        return m_Machine.m_AxisCommands.EngMoveAxisAbs(Z_AXIS, m_fSafe, true);
    }
    bool Probe()
    {
        m_ZAxis.BeginWatch(m_ZAxis.m_bWatchZProbe);
        return m_Machine.m_AxisCommands.EngMoveAxisRel(Z_AXIS, -m_Info.fZRange, true);
    }

    // The operator may change the speed during the measurement.
    void FollowOverride()
    {
        const double fPercent = XYFeedPercent();
        if (!(std::abs(fPercent - m_fPercent) > SMALL_NUMBER_TO_AVOID_ROUND_ERRORS)) return;
        for (int axis = X_AXIS; axis <= Z_AXIS; ++axis)
            m_Machine.m_AxisCtrl[axis].SetVelocityAcc(AppConfig::m_fAxisFeed[axis], AppConfig::m_fAxisAcc[axis]);
        m_fPercent = fPercent;
    }

    CMachine& m_Machine;
    AxisCtrl& m_ZAxis;
    stZProfileInfo& m_Info = AppConfig::m_ZProfileInfo;
    const double m_fSafe = m_Info.fZRange / 2.0;   // height of travel between the nodes
    double m_fX = 0.0, m_fY = 0.0, m_fStep = m_Info.fXYStep;
    double m_fPercent = XYFeedPercent();
    stFloatPoint m_Node;   // the first one is the work zero itself, the reference of all heights, and is not probed
    std::vector<stFloatPoint> m_Row;
};
}   // namespace

void CSurfaceProbe::CreateZProfile()
{
    if (const QString strWhy = WhyNotMeasured(); !strWhy.isEmpty()) return m_Machine.PushErrMsg(strWhy);
    auto& grid = AppConfig::m_ZProfileInfo.lstPoints;
    if (!grid.empty())   // wanted: only loading a file replaces a grid
        TellNotice(QStringLiteral("New Z-Profile rows are added behind the old ones, which stay in force"));
    if (!CSurfaceWalk(m_Machine).Run()) return;

    if (grid.size() <= 1 || grid.front().size() <= 1) grid.clear();   // no cell to look up a height in
    if (EndUseOfNoZProfile()) TellNotice(Z_PROFILE_NOT_USED);
    const double fOffset = AppConfig::m_ZProfileInfo.fZStart;
    if (!(std::abs(fOffset) > SMALL_NUMBER_TO_AVOID_ROUND_ERRORS)) return;
    for (auto& row : grid)
        for (stFloatPoint& node : row) node.z += fOffset;
}
