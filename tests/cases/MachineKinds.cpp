#include "cases/MachineRig.h"
#include "machine/WorkerFixture.h"

// Planning, arcs, moves along a measured surface and its measuring.

namespace {
GCodeTokens Tokens(const QJsonValue& words)
{
    GCodeTokens tokens;
    for (const QJsonValue& word : words.toArray()) tokens.push_back(word.toString().toStdString());
    return tokens;
}
// Targets and stops with as many axes as the case has of them.
int AxesIn(const QJsonValue& summary)
{
    const QJsonValue all = summary["all"];
    return int((all.isUndefined() ? summary["first"] : all)[0].toArray().size());
}

// ---- Planning -------------------------------------------------------------------------------------------------------

class CPlanningRig : public CMachineRig
{
public:
    explicit CPlanningRig(CFields& in) : CMachineRig(in), m_Last(app.Position()) { CAllAxisCtrl::StartAutoMode(&app); }
    QJsonObject Do(CFields& step, const QJsonValue& expected)
    {
        QJsonObject seen = Command(step["do"].toString(), step);
        seen["err"] = QJsonArray::fromStringList(app.TakeErrors());
        seen["positions"] = Positions();
        seen["fFeed"] = AppConfig::m_GCodeRunSettings.fFeed;
        QJsonArray tables;
        for (int axis = 0; axis < AppConfig::m_iMchType; ++axis) {
            const size_t t = NextSlot(axis);
            const AxisCtrl& ctrl = app.m_AxisCtrl[axis];
            const auto& low = ctrl.m_lstLowTime[t];
            tables.append(QJsonObject{{"vel", double(ctrl.m_fVel[t])},
                                      {"size", qint64(low.size())},
                                      {"const_high", ctrl.m_fConstHighTime[t]},
                                      {"const_low", ctrl.m_fConstLowTime[t]},
                                      {"first_low", low.empty() ? QJsonValue() : QJsonValue(low.front())}});
        }
        seen["next_tables"] = tables;
        // A call is seen by what it has left; the acceleration by the first low time.
        seen["vel_calls"] = ArrayOf(expected["vel_calls"].toArray(), [this](const QJsonValue& call) {
            const AxisCtrl& ctrl = app.m_AxisCtrl[call[0].toInt()];
            const bool bAccepted = ctrl.GetBuildError().isEmpty();
            const double fVel = ctrl.m_fVel[NextSlot(call[0].toInt())];
            return QJsonArray{call[0], bAccepted ? QJsonValue(fVel) : call[1], call[2], bAccepted};
        });
        return seen;
    }

private:
    size_t NextSlot(int iAxis) const
    {
        const AxisCtrl& axis = app.m_AxisCtrl[iAxis];
        return axis.m_bNewTable ? 1u - axis.m_ucCurTable : size_t(axis.m_ucCurTable);
    }
    QJsonObject Command(const QString& strDo, CFields& step)
    {
        const QJsonValue value = step["value"];
        const auto Kind = [](const QJsonValue& word) { return word == "G00" ? G00_MOVE : G01_MOVE; };
        QJsonObject seen;
        const std::map<QString, std::function<void()>> COMMANDS = {
            {"G00", [&] { seen = Move(G00_MOVE, step); }},
            {"G01", [&] { seen = Move(G01_MOVE, step); }},
            {"words", [&] { seen = Words(step); }},
            {"plan", [&] { app.SetAccAndVel(PointFrom(step["from"]), PointFrom(step["to"]), Kind(step["cmnd"])); }},
            {"feed", [&] { app.SetAxisFeed(value.toDouble()); }},
            {"reset", [&] { app.ResetAccVel(); }},
            {"estop", [&] { AppConfig::m_bEmergencyStopON = value.toBool(); }},
            {"auto_mode", [&] { value.toBool() ? CAllAxisCtrl::StartAutoMode(&app) : CAllAxisCtrl::StopAutoMode(); }},
            {"percent",
             [&] {
                 for (int n = 0; n < MAX_AXES; ++n) AppConfig::m_fAxisFeedPercent[n] = value[n].toDouble();
             }},
            {"mch", [&] {
                 stFloatPoint pos = PointFrom(step["pos"]);
                 app.ToMchCoord(pos);
                 seen["pos"] = PointArray(pos, MAX_AXES);
             }}};
        const auto found = COMMANDS.find(strDo);
        EXPECT_NE(found, COMMANDS.end()) << strDo.toStdString();
        if (found != COMMANDS.end()) found->second();
        return seen;
    }
    QJsonObject Move(eGMoveCmnd eCmnd, CFields& step)
    {
        const stFloatPoint to = PointFrom(step["to"]);
        const bool bInside = step["inside"].toBool(), bPlan = step["plan"].toBool(true);
        if (!bInside && bPlan) app.SetAccAndVel(m_Last, to, eCmnd);
        CAllAxisCtrl::m_lstAxisToMov = {};
        const bool bOk = eCmnd == G00_MOVE ? app.G00_Move(to, bInside, false) : app.G01_Move(to, bInside, false);
        app.Settle();
        if (bOk) m_Last = to;
        return Joined(SeenMove(), {{"ok", bOk}});
    }
    QJsonObject Words(CFields& step)
    {
        const GCodeProgram program{Tokens(step["tokens"])};
        app.m_pGCodeProgram = &program;
        app.m_CurGCodePos = PointFrom(step["cur"]);
        app.m_fUnitFactor = step["unit_factor"].toDouble(1.0);
        stFloatPoint target;
        const bool bFound = app.GetPosToMov(0, target);
        return {{"found", bFound}, {"target", PointArray(target, MAX_AXES)}};
    }
    stFloatPoint m_Last;
};
}   // namespace

void RunPlanning(const stCase& c)
{
    CFields in(c.Json(".in.json"), "in");
    CPlanningRig rig(in);
    const QJsonValue expected = c.Json(".out.json")["steps"];
    qsizetype iStep = 0;
    ExpectSteps(in["steps"], expected, 1e-12, [&](CFields& step) { return rig.Do(step, expected[iStep++]); });
}

// ---- Arcs -----------------------------------------------------------------------------------------------------------

void RunArc(const stCase& c)
{
    CFields in(c.Json(".in.json"), "in");
    CMachineRig rig(in);
    CMoveSpy& app = rig.app;
    AppConfig::m_ZProfileInfo.lstPoints = GridFrom(in["grid"]);
    AppConfig::m_ZProfileInfo.fXYStep = in["fXYStep"].toDouble(AppConfig::m_ZProfileInfo.fXYStep);
    app.m_fUnitFactor = in["unit_factor"].toDouble();
    const GCodeProgram program{Tokens(in["words"])};
    app.m_pGCodeProgram = &program;
    stGCodeEllipseInfo info;
    info.eDir = in["g"].toInt() == 2 ? DIR_CW : DIR_CCW;
    CAllAxisCtrl::StartAutoMode(&app);
    const bool bOk = app.CutArc(0, info);
    app.Settle();

    const QJsonValue expected = c.Json(".out.json");
    const QJsonArray stops = ArrayOf(app.m_lstStops, [iAxes = AxesIn(expected["stops"])](std::vector<qint64> units) {
        units.resize(size_t(iAxes));
        return ArrayOf(units, [](qint64 lValue) { return lValue; });
    });
    ExpectSame(expected,
               QJsonObject{{"ok", bOk},
                           {"err", QJsonArray::fromStringList(app.TakeErrors())},
                           {"full_circle", info.bFullCircle},
                           {"radius", info.fRadius},
                           {"center", PointArray(info.stCenter)},
                           {"end", PointArray(info.stEnd)},
                           {"points", Floats(PointsArray(app.m_lstTargets, AxesIn(expected["points"])))},
                           {"targets", Floats(PointsArray(app.m_lstTargets, AxesIn(expected["targets"])))},
                           {"stops", stops},
                           {"positions", rig.Positions()}},
               1e-7);
}

// ---- A measured surface ---------------------------------------------------------------------------------------------

namespace {
void FollowSurface(CFields& in, const QJsonValue& expected)
{
    CMachineRig rig(in);
    AppConfig::m_ZProfileInfo.fXYStep = in["fXYStep"].toDouble();
    AppConfig::m_ZProfileInfo.lstPoints = GridFrom(in["grid"]);
    CAllAxisCtrl::StartAutoMode(&rig.app);
    stFloatPoint from = rig.app.Position();
    const QJsonArray moves = ArrayOf(in["targets"].toArray(), [&](const QJsonValue& target) {
        stFloatPoint end = PointFrom(target);
        if (target[Z_AXIS].isNull()) end.z = from.z;
        const size_t uBefore = rig.app.m_lstTargets.size();
        const bool bOk = rig.app.ZProfileMove(from, end);
        rig.app.Settle();
        from = end;
        const auto& all = rig.app.m_lstTargets;
        return QJsonObject{{"ok", bOk},
                           {"targets", PointsArray({all.begin() + qsizetype(uBefore), all.end()}, MAX_AXES)},
                           {"end", PointArray(end, MAX_AXES)},
                           {"positions", rig.Positions()}};
    });
    for (qsizetype n = 0; n < expected["moves"].toArray().size(); ++n) {
        CFields move(expected["moves"][n], "move");
        move.PassOver({"case"});
        ExpectSame(move.Rest(), moves.at(n), 1e-7, QStringLiteral("move %1").arg(n));
    }
}

void MeasureSurface(CFields& in, const QJsonValue& expected)
{
    stZProfileInfo& info = AppConfig::m_ZProfileInfo;
    CMachineRig rig(in);
    CRecord()("fZRange", info.fZRange)("fXYStep", info.fXYStep)("fLength", info.fLength)("fWidth", info.fWidth)(
        "fZStart", info.fZStart)
        .Take({in["info"], "info"});
    info.lstPoints = GridFrom(in["old_grid"]);
    CVirtualMachine machine(Wiring());
    if (const QJsonValue s = in["surface"]; s.isArray())
        machine.SetSurface([a = s[0].toDouble(), b = s[1].toDouble(), c = s[2].toDouble()](double x, double y) {
            return a * x + b * y + c;
        });
    CVirtualPins::SetObserver(&machine);
    rig.app.CreateZProfile();
    CVirtualPins::SetObserver(nullptr);
    const QStringList lstErrors = rig.app.TakeErrors();
    ExpectSame(expected,
               QJsonObject{{"finished", lstErrors.isEmpty()},
                           {"commands", rig.app.m_lstAxisCommands},
                           {"err", QJsonArray::fromStringList(lstErrors)},
                           {"grid", GridArray(info.lstPoints, MAX_AXES)},
                           {"positions", rig.Positions()}},
               1e-12);
}
}   // namespace

void RunSurface(const stCase& c)
{
    CFields in(c.Json(".in.json"), "in");
    in["kind"] == "probe" ? MeasureSurface(in, c.Json(".out.json")) : FollowSurface(in, c.Json(".out.json"));
}
