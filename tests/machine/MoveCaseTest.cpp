#include "machine/MoveSpy.h"
#include "support/Cases.h"

// Planning, arcs and surface moves against the reference cases.

namespace {
QJsonArray Texts(const QStringList& lst)
{
    return QJsonArray::fromStringList(lst);
}
QJsonArray Integers(const std::vector<qint64>& values)
{
    QJsonArray array;
    for (const qint64 lValue : values) array.append(lValue);
    return array;
}
std::string Joined(const QJsonArray& values, int iDecimals)
{
    QStringList lst;
    for (const QJsonValue& value : values)
        lst += iDecimals ? QString::number(value.toDouble(), 'f', iDecimals) : QString::number(value.toInteger());
    return lst.join(' ').toStdString();
}
void ExpectPoints(const QJsonValue& expected, const std::vector<stFloatPoint>& points, const char* szWhat)
{
    if (expected.isUndefined()) return;
    const auto Item = [&](size_t n) { return PointArray(points[n]); };
    ExpectList(
        expected.toObject(), points.size(), Item, [&](size_t n) { return Joined(Item(n), 3); }, 1e-7, szWhat);
}
void ExpectPoint(const QJsonValue& expected, const stFloatPoint& pos, const std::string& strWhat)
{
    const QJsonArray values = expected.toArray();
    for (int axis = 0; axis < values.size(); ++axis)
        EXPECT_NEAR(values[axis].toDouble(), AxisOf(pos, axis), 1e-7) << strWhat << " axis " << axis;
}
void ExpectUnits(const QJsonValue& expected, const CMoveSpy& app)
{
    if (!expected.isUndefined()) {
        EXPECT_EQ(expected.toArray(), Integers(app.Units()));
    }
}
}   // namespace

// ---- Planning -------------------------------------------------------------------------------------------------------

class PlanningCase : public CMoveTest, public testing::WithParamInterface<std::string>
{
protected:
    using Object = QJsonObject;
    void Do(const Object& step, const Object& expected)
    {
        const QString strDo = step["do"].toString();
        if (strDo == "G00" || strDo == "G01") return DoMove(step, expected);
        if (strDo == "plan")
            m_App.SetAccAndVel(PointFrom(step["from"].toArray()), PointFrom(step["to"].toArray()),
                               step["cmnd"].toString() == "G00" ? G00_MOVE : G01_MOVE);
        else if (strDo == "feed")
            m_App.SetAxisFeed(step["value"].toDouble());
        else if (strDo == "words")
            DoWords(step, expected);
        else if (strDo == "mch") {
            stFloatPoint pos = PointFrom(step["pos"].toArray());
            m_App.ToMchCoord(pos);
            ExpectPoint(expected["pos"], pos, "machine position");
        } else if (strDo == "reset")
            m_App.ResetAccVel();
        else if (strDo == "percent")
            for (int axis = 0; axis < MAX_AXES; ++axis)
                AppConfig::m_fAxisFeedPercent[axis] = step["value"].toArray()[axis].toDouble();
        else if (strDo == "estop")
            AppConfig::m_bEmergencyStopON = step["value"].toBool();
        else
            FAIL() << "unknown step " << strDo.toStdString();
    }
    void DoMove(const Object& step, const Object& expected)
    {
        const stFloatPoint to = PointFrom(step["to"].toArray());
        const bool bRapid = step["do"].toString() == "G00", bInside = step["inside"].toBool();
        if (!bInside && step["plan"].toBool(true)) m_App.SetAccAndVel(m_Last, to, bRapid ? G00_MOVE : G01_MOVE);
        CAllAxisCtrl::m_lstAxisToMov = {};
        const bool bOk = bRapid ? m_App.G00_Move(to, bInside, false) : m_App.G01_Move(to, bInside, false);
        m_App.Settle();
        if (bOk) m_Last = to;
        EXPECT_EQ(expected["ok"].toBool(), bOk);
        const QJsonArray counts = expected["counts"].toArray(), dirs = expected["dirs"].toArray();
        for (int axis = 0; axis < MAX_AXES; ++axis)
            EXPECT_EQ(expected["to_move"].toArray()[axis].toBool(), CAllAxisCtrl::m_lstAxisToMov[axis]) << axis;
        for (int axis = 0; axis < counts.size(); ++axis) {
            const AxisCtrl& ctrl = m_App.m_AxisCtrl[axis];
            EXPECT_EQ(dirs[axis].toInt(), ctrl.m_eDir) << axis;
            if (counts[axis].isNull()) continue;
            const QJsonArray is{qint64(ctrl.m_uAccPulses), qint64(ctrl.m_uConstPulses), qint64(ctrl.m_uDecPulses)};
            EXPECT_EQ(counts[axis].toArray(), is) << axis;
        }
    }
    void DoWords(const Object& step, const Object& expected)
    {
        GCodeTokens tokens;
        for (const QJsonValue& token : step["tokens"].toArray()) tokens.push_back(token.toString().toStdString());
        SetProgram({tokens});
        m_App.m_CurGCodePos = PointFrom(step["cur"].toArray());
        m_App.m_fUnitFactor = step["unit_factor"].toDouble(1.0);
        stFloatPoint target;
        EXPECT_EQ(expected["found"].toBool(), m_App.GetPosToMov(0, target));
        ExpectPoint(expected["target"], target, "target");
    }
    // The table that each axis's next move would use: also tells which axes were planned, and how.
    void ExpectTables(const QJsonArray& tables)
    {
        for (int axis = 0; axis < tables.size(); ++axis) {
            const AxisCtrl& ctrl = m_App.m_AxisCtrl[axis];
            const size_t uActive = ctrl.m_ucCurTable, t = ctrl.m_bNewTable ? 1 - uActive : uActive;
            const QJsonObject e = tables[axis].toObject();
            EXPECT_EQ(e["size"].toInteger(), qint64(ctrl.m_lstLowTime[t].size())) << axis;
            const auto Near = [&](const char* szName, double fIs) {
                const double fExpected = e[QLatin1String(szName)].toDouble();
                EXPECT_NEAR(fExpected, fIs, 1e-12 * fExpected) << szName << " of axis " << axis;
            };
            Near("vel", ctrl.m_fVel[t]);
            Near("const_high", ctrl.m_fConstHighTime[t]);
            Near("const_low", ctrl.m_fConstLowTime[t]);
            if (!ctrl.m_lstLowTime[t].empty()) Near("first_low", ctrl.m_lstLowTime[t].front());
        }
    }
    stFloatPoint m_Last;
};

TEST_P(PlanningCase, PlansAndMovesAsWorkedOut)
{
    const QString strName = QString::fromStdString(GetParam());
    const QJsonObject in = CCases::Json("planning", strName + ".in.json");
    const QJsonArray expected = CCases::Json("planning", strName + ".out.json")["steps"].toArray();
    ApplyConfig(in["cfg"].toObject());
    m_Last = PointFrom(in["start_mm"].toArray());
    Begin(m_Last);
    m_App.m_eOperation = in["operation"].toInt();

    const QJsonArray steps = in["steps"].toArray();
    ASSERT_EQ(steps.size(), expected.size());
    for (int n = 0; n < steps.size(); ++n) {
        SCOPED_TRACE("step " + std::to_string(n));
        const QJsonObject e = expected[n].toObject();
        Do(steps[n].toObject(), e);
        EXPECT_EQ(e["err"].toArray(), Texts(m_App.TakeErrors()));
        ExpectTables(e["next_tables"].toArray());
        ExpectUnits(e["positions"], m_App);
        if (e.contains("fFeed")) {
            EXPECT_NEAR(e["fFeed"].toDouble(), AppConfig::m_GCodeRunSettings.fFeed, 1e-12 * e["fFeed"].toDouble());
        }
    }
}
INSTANTIATE_TEST_SUITE_P(All, PlanningCase, testing::ValuesIn(CCases::Names("planning", ".in.json")), CaseName);

// ---- Arcs -----------------------------------------------------------------------------------------------------------

class ArcCase : public CMoveTest, public testing::WithParamInterface<std::string>
{
};

TEST_P(ArcCase, RunsTheChainWorkedOut)
{
    const QString strName = QString::fromStdString(GetParam());
    const QJsonObject in = CCases::Json("arcs", strName + ".in.json");
    const QJsonObject e = CCases::Json("arcs", strName + ".out.json");
    ApplyConfig(in["cfg"].toObject());
    Begin(PointFrom(in["start_mm"].toArray()));
    m_App.m_fUnitFactor = in["unit_factor"].toDouble();
    GCodeTokens tokens{in["g"].toInt() == 2 ? "G2" : "G3"};
    for (const QJsonValue& word : in["words"].toArray()) tokens.push_back(word.toString().toStdString());
    SetProgram({tokens});

    stGCodeEllipseInfo info;
    info.eDir = in["g"].toInt() == 2 ? DIR_CW : DIR_CCW;
    EXPECT_EQ(e["ok"].toBool(), m_App.CutArc(0, info));
    m_App.Settle();
    EXPECT_EQ(e["err"].toArray(), Texts(m_App.TakeErrors()));
    EXPECT_EQ(e["full_circle"].toBool(), info.bFullCircle);
    EXPECT_NEAR(e["radius"].toDouble(), info.fRadius, 1e-7);
    ExpectPoint(e["center"], info.stCenter, "centre");
    ExpectPoint(e["end"], info.stEnd, "end");
    ExpectPoints(e["points"], m_App.m_lstTargets, "points");
    if (e.contains("stops"))
        ExpectList(
            e["stops"].toObject(), m_App.m_lstStops.size(),
            [&](size_t n) {
                return Integers({m_App.m_lstStops[n].begin(), m_App.m_lstStops[n].begin() + 3});
            },
            [&](size_t n) {
                return Joined(Integers({m_App.m_lstStops[n].begin(), m_App.m_lstStops[n].begin() + 3}), 0);
            },
            0.0, "stops");
    ExpectUnits(e["positions"], m_App);
}
INSTANTIATE_TEST_SUITE_P(All, ArcCase, testing::ValuesIn(CCases::Names("arcs", ".in.json")), CaseName);

// ---- Moves along a measured surface ---------------------------------------------------------------------------------

class SurfaceCase : public CMoveTest, public testing::WithParamInterface<std::string>
{
};

TEST_P(SurfaceCase, FollowsTheGridAsWorkedOut)
{
    const QString strName = QString::fromStdString(GetParam());
    const QJsonObject in = CCases::Json("zmoves", strName + ".in.json");
    const QJsonArray expected = CCases::Json("zmoves", strName + ".out.json")["moves"].toArray();
    ApplyConfig(in["cfg"].toObject());
    AppConfig::m_ZProfileInfo.fXYStep = in["fXYStep"].toDouble();
    for (const QJsonValue& row : in["grid"].toArray()) {
        AppConfig::m_ZProfileInfo.lstPoints.emplace_back();
        for (const QJsonValue& node : row.toArray())
            AppConfig::m_ZProfileInfo.lstPoints.back().push_back(PointFrom(node.toArray()));
    }
    stFloatPoint from = PointFrom(in["start_mm"].toArray());
    Begin(from);

    const QJsonArray targets = in["targets"].toArray();
    for (int n = 0; n < targets.size(); ++n) {
        SCOPED_TRACE("move " + std::to_string(n));
        const QJsonObject e = expected[n].toObject();
        stFloatPoint end = PointFrom(targets[n].toArray());
        if (targets[n].toArray()[Z_AXIS].isNull()) end.z = from.z;
        m_App.m_lstTargets.clear();
        m_App.m_lstStops.clear();
        EXPECT_EQ(e["ok"].toBool(), m_App.ZProfileMove(from, end));
        m_App.Settle();
        const QJsonArray moves = e["targets"].toArray();
        ASSERT_EQ(moves.size(), qsizetype(m_App.m_lstTargets.size()));
        for (int m = 0; m < moves.size(); ++m)
            ExpectPoint(moves[m], m_App.m_lstTargets[size_t(m)], "piece " + std::to_string(m));
        ExpectPoint(e["end"], end, "end");
        EXPECT_EQ(e["positions"].toArray(), Integers(m_App.Units()));
        from = end;
    }
}
INSTANTIATE_TEST_SUITE_P(All, SurfaceCase, testing::ValuesIn(CCases::Names("zmoves", ".in.json")), CaseName);
