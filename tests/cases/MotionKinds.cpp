#include "cases/MachineRig.h"
#include "motion/MotionObserver.h"
#include "platform/virtual/VirtualPins.h"
#include "time/Wait.h"

#include <map>

// Tables of ramps, and moves on an ideal clock with the time of every edge.

void RunCurve(const stCase& c)
{
    CFields in(c.Json(".in.json"), "in"), out(c.Json(".out.json"), "out");
    out.PassOver({"runs"});
    Configure({{"m_fAxisMovPerPulse", in["mm_per_pulse"]},
               {"m_fAxisDutyCycle", in["duty"]},
               {"m_fAxisRateOfAcc", in["rate_of_acc"]},
               {"m_eAxisFeedtype", in["feedtype"]},
               {"m_iVelAccSamplingTime", in["sampling_us"]}});
    AxisCtrl axis;
    axis.m_bStoreVelCurve = true;
    const double fVel = in["vel"].toDouble(), fAcc = in["acc"].toDouble();
    const bool bAccepted = axis.SetVelocityAcc(fVel, fAcc);
    const auto Table = [](const std::vector<double>& lst) {
        return Floats(ArrayOf(lst, [](double fValue) { return fValue; }));
    };
    ExpectSame(out.Rest(),
               QJsonObject{{"accepted", bAccepted},
                           {"count", qint64(axis.m_lstHighTime[1].size())},
                           {"high", Table(axis.m_lstHighTime[1])},
                           {"low", Table(axis.m_lstLowTime[1])},
                           {"const_high", axis.m_fConstHighTime[1]},
                           {"const_low", axis.m_fConstLowTime[1]},
                           {"curve", Table(axis.m_lstVelCurve)}},
               1e-12);
}

namespace {
// Every edge of a move with its time and the position behind it, and what the direction pins were given before.
class CEdgeLog : public CPinObserver, public CMotionObserver
{
public:
    explicit CEdgeLog(CMachineAxes& axes) : m_Axes(axes)
    {
        CVirtualPins::SetObserver(this);
        CMotionObserver::Set(this);
    }
    ~CEdgeLog() override
    {
        CVirtualPins::SetObserver(nullptr);
        CMotionObserver::Set(nullptr);
    }
    void OnWrite(int iPin, int iLevel) override
    {
        NotePosition();
        for (int axis = 0; axis < AppConfig::m_iMchType; ++axis) {
            if (iPin == AppConfig::m_iAxisDirOutput[axis]) m_lstDirs.append(iLevel);
            if (iPin != AppConfig::m_iAxisPulseOutput[axis] || !m_bMoves) continue;   // low at the end of the auto mode
            m_lstEdges.push_back({CVirtualTime::Current()->EdgeTime() - m_lBegin, axis, iLevel, 0});
            m_iPulses += iLevel;
            if (iLevel == 1 && m_fnPulse) m_fnPulse(m_iPulses);
        }
    }
    void OnAxisMove(int) override { OnCoordinatedMove(); }
    void OnCoordinatedMove() override
    {
        m_bMoves = m_bStarted = true;
        m_lBegin = CVirtualTime::Current()->Now();
    }
    void OnMoveEnd(int) override
    {
        NotePosition();
        m_lEnd = CVirtualTime::Current()->Now() - m_lBegin;
        m_bMoves = false;
    }
    // What was seen since the last time.
    QJsonObject Take(bool bOneAxis)
    {
        QJsonArray edges, perAxis;
        for (int axis = 0; axis < AppConfig::m_iMchType; ++axis)
            perAxis.append(QJsonObject{{"edges", 0}, {"last_edge_ns", QJsonValue()}});
        for (const stEdge& edge : std::exchange(m_lstEdges, {})) {
            edges.append(bOneAxis ? QJsonArray{edge.lTime, edge.iLevel}
                                  : QJsonArray{edge.lTime, edge.iAxis, edge.iLevel, edge.lPos});
            const int iCount = perAxis[edge.iAxis].toObject()["edges"].toInt() + 1;
            perAxis[edge.iAxis] = QJsonObject{{"edges", iCount}, {"last_edge_ns", edge.lTime}};
        }
        return {{"edges", edges},
                {"per_axis", perAxis},
                {"dir_writes", std::exchange(m_lstDirs, {})},
                {"pulses", std::exchange(m_iPulses, 0)},
                {"started", std::exchange(m_bStarted, false)},
                {"end_ns", std::exchange(m_lEnd, 0)}};
    }
    std::function<void(int iPulse)> m_fnPulse;

private:
    // The loop counts right behind its pin write: the position is read with the next one.
    void NotePosition()
    {
        if (!m_lstEdges.empty()) m_lstEdges.back().lPos = m_Axes.m_AxisCtrl[m_lstEdges.back().iAxis].GetCurPosLong();
    }
    struct stEdge
    {
        qint64 lTime;
        int iAxis, iLevel;
        qint32 lPos;
    };
    CMachineAxes& m_Axes;
    std::vector<stEdge> m_lstEdges;
    QJsonArray m_lstDirs;
    int m_iPulses = 0;
    bool m_bMoves = false, m_bStarted = false;
    qint64 m_lBegin = 0, m_lEnd = 0;
};

// ---- One axis by itself ---------------------------------------------------------------------------------------------

bool Command(AxisCtrl& axis, const QString& strDo, const QJsonValue& value)
{
    const double f = value.toDouble();
    bool bOk = true;
    const std::map<QString, std::function<void()>> COMMANDS = {
        {"abs", [&] { bOk = axis.MoveAbs(f); }},
        {"rel", [&] { bOk = axis.MoveRel(f); }},
        {"jog", [&] { bOk = axis.Jog(static_cast<eDirection>(value.toInt())); }},
        {"home", [&] { bOk = axis.MoveAxisHome(); }},
        {"work_zero", [&] { bOk = axis.MoveWorkZero(); }},
        {"params", [&] { bOk = axis.SetAxisMovParams(f); }},
        {"vel", [&] { bOk = axis.SetVelocityAcc(value[0].toDouble(), value[1].toDouble()); }},
        {"step_size",
         [&] {
             AppConfig::m_fAxisMovPerPulse[axis.m_sAxis] = f;
             bOk = axis.UpdateStepResolution();
         }},
        {"limits", [&] { axis.m_lNegLimit = value[0].toInt(), axis.m_lPosLimit = value[1].toInt(); }},
        {"cur_pos", [&] { axis.SetCurPos(f); }},
        {"homing", [&] { axis.m_bHoming = value.toBool(); }},
        {"watch_probe", [&] { axis.m_bWatchZProbe = value.toBool(); }},
        {"set_mch_home", [&] { axis.SetMchHome(); }},
        {"set_work_zero", [&] { axis.SetWorkZero(); }},
        {"clear_home", [&] { axis.ClearHome(); }},
        {"simulation", [&] { AppConfig::m_bSimulationMode = value.toBool(); }},
        {"estop", [&] { AppConfig::m_bEmergencyStopON = value.toBool(); }}};
    const auto found = COMMANDS.find(strDo);
    EXPECT_NE(found, COMMANDS.end()) << strDo.toStdString();
    if (found != COMMANDS.end()) found->second();
    return bOk;
}

// Inputs and calls come at their pulses; the result is what is to be seen of the step.
QJsonObject DoStep(CMachineRig& rig, AxisCtrl& axis, CEdgeLog& log, CFields& step)
{
    const int iHome = step["home_after"].toInt(-1), iProbe = step["probe_after"].toInt(-1);
    const int iRelease = step["decelerate_after"].toInt(-1), iStop = step["stop_after"].toInt(-1);
    const auto AtPulse = [=, &axis, &rig](int iPulse) {
        if (iPulse == 0 || iHome == iPulse)
            CVirtualPins::SetInput(AppConfig::m_iAxisMchHomeSensorInput[axis.m_sAxis], iHome == iPulse);
        if (iPulse == 0 || iProbe == iPulse) CVirtualPins::SetInput(AppConfig::m_iZProbeInput, iProbe == iPulse);
        if (iRelease == iPulse) axis.DeccelerateAxis();
        if (iStop == iPulse && iPulse > 0) rig.time->Interrupt();   // as the loop sees a stop from outside
    };
    log.m_fnPulse = AtPulse;
    AtPulse(0);
    axis.m_uAccPulses = axis.m_uConstPulses = axis.m_uDecPulses = 0;   // a move that is refused leaves them
    const bool bOk = Command(axis, step["do"].toString(), step["value"]);
    QJsonObject seen{{"ok", bOk}, {"err", axis.GetErrorMsg()}};
    if (iRelease == 0) axis.DeccelerateAxis();
    if (iStop == 0) axis.RequestStop();
    CWait::SpinUntil([&] { return axis.m_bThreadIdle && !axis.GetAxisState(); });
    if (iStop > 0) rig.time.emplace();   // an interrupt is for good

    seen.insert("counts", CountsOf(axis));
    const bool bPrepared = seen["counts"] != QJsonArray{0, 0, 0};
    seen["table_size"] = bPrepared ? qint64(axis.m_lstHighTime[axis.m_ucCurTable].size()) : 0;
    seen["pos"] = axis.GetCurPosLong();
    seen["home_done"] = axis.IsAxisHomeSet();
    seen["limits"] = QJsonArray{qint32(axis.m_lNegLimit), qint32(axis.m_lPosLimit)};
    seen["pos_per_pulse"] = qint32(axis.m_lPosPerPulse);
    return Joined(seen, log.Take(true));
}
}   // namespace

void RunAxis(const stCase& c)
{
    CFields in(c.Json(".in.json"), "in");
    const int iAxis = in["axis"].toInt();
    CMachineRig rig(in);
    CEdgeLog log(rig.app);
    AxisCtrl& axis = rig.app.m_AxisCtrl[iAxis];
    ExpectSteps(in["steps"], c.Json(".out.json")["steps"], 0.0,
                [&](CFields& step) { return DoStep(rig, axis, log, step); });
}

// ---- Coordinated moves ----------------------------------------------------------------------------------------------

void RunAutoMode(const stCase& c)
{
    CFields in(c.Json(".in.json"), "in");
    CMachineRig rig(in);
    CEdgeLog log(rig.app);
    ExpectSteps(in["moves"], c.Json(".out.json")["moves"], 0.0, [&](CFields& move) {
        const QJsonValue build = move["build"], to = move["to"], stop = move["stop_at"];
        CAllAxisCtrl::m_lstAxisToMov = {};
        for (int axis = 0; axis < AppConfig::m_iMchType; ++axis) {
            const QString strAxis("XYZAB"[axis]);
            AxisCtrl& ctrl = rig.app.m_AxisCtrl[axis];
            if (const QJsonValue curve = build[strAxis]; curve.isArray())
                ctrl.SetVelocityAcc(curve[0].toDouble(), curve[1].toDouble());
            CAllAxisCtrl::m_lstAxisToMov[axis] = to[strAxis].isDouble();
            EXPECT_TRUE(!to[strAxis].isDouble() || ctrl.SetAxisMovParams(to[strAxis].toDouble()));
        }
        CAllAxisCtrl::StartAutoMode(&rig.app);
        if (stop.isDouble())
            rig.time->AddEvent({rig.time->Now() + stop.toInteger(), CAllAxisCtrl::StopAutoMode,
                                [](int, CShared<bool>& bRun) { bRun = false; }});
        EXPECT_TRUE(CAllAxisCtrl::StartMotion());
        CAllAxisCtrl::WaitForMotion();
        if (stop.isDouble()) CAllAxisCtrl::WaitForAutoModeEnd();
        return Joined(rig.SeenMove(), log.Take(false));
    });
    CAllAxisCtrl::StopAutoMode();
    CAllAxisCtrl::WaitForAutoModeEnd();
}
