#include "config/AppConfig.h"
#include "motion/AllAxisCtrl.h"
#include "motion/MotionObserver.h"
#include "platform/virtual/VirtualPins.h"
#include "support/Cases.h"
#include "support/CleanMachine.h"
#include "time/VirtualTime.h"
#include "time/Wait.h"

// Moves on an ideal clock, held against the time of every edge.

namespace {
struct stEdge
{
    qint64 lTime;
    int iAxis, iLevel;
    qint32 lPos;   // behind the edge
};

std::string Joined(std::initializer_list<qint64> parts)
{
    QString strLine;
    for (const qint64 lPart : parts) strLine += (strLine.isEmpty() ? "" : " ") + QString::number(lPart);
    return strLine.toStdString();
}

// Notes every edge with its time and switches inputs and flags at a given pulse of the move.
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

    void Begin()
    {
        m_lstEdges.clear();
        m_lstDirs = {};
        m_iRising = 0;
        m_bStarted = false;
        m_lBegin = m_lEnd = 0;
    }

    void OnWrite(int iPin, int iLevel) override
    {
        NotePosition();
        for (int axis = 0; axis < MAX_AXES; ++axis) {
            if (iPin == AppConfig::m_iAxisDirOutput[axis] && iPin != 0) m_lstDirs.append(iLevel);
            if (iPin != AppConfig::m_iAxisPulseOutput[axis] || iPin == 0) continue;
            if (!m_bStarted) continue;   // pins brought low at the end of the auto mode
            m_lstEdges.push_back({CVirtualTime::Current()->EdgeTime() - m_lBegin, axis, iLevel, 0});
            if (iLevel == 1) ++m_iRising;
            if (m_fnPulse && iLevel == 1) m_fnPulse(m_iRising);
        }
    }
    void OnAxisMove(int) override { Start(); }
    void OnCoordinatedMove() override { Start(); }
    void OnMoveEnd(int) override
    {
        NotePosition();
        m_lEnd = CVirtualTime::Current()->Now() - m_lBegin;
        m_bStarted = false;
    }

    CMachineAxes& m_Axes;
    std::vector<stEdge> m_lstEdges;
    QJsonArray m_lstDirs;
    int m_iRising = 0;
    bool m_bStarted = false, m_bEverStarted = false;
    qint64 m_lBegin = 0, m_lEnd = 0;
    std::function<void(int)> m_fnPulse;

private:
    void Start()
    {
        m_bStarted = m_bEverStarted = true;
        m_lBegin = CVirtualTime::Current()->Now();
    }
    // The coordinated loop counts right behind its pin write: the position is read with the next one.
    void NotePosition()
    {
        if (!m_lstEdges.empty()) m_lstEdges.back().lPos = m_Axes.m_AxisCtrl[m_lstEdges.back().iAxis].GetCurPosLong();
    }
};
}   // namespace

// ---- One axis by itself ---------------------------------------------------------------------------------------------

class AxisCase : public CCleanMachine, public testing::WithParamInterface<std::string>
{
protected:
    void Expect(const QJsonObject& expected, bool bOk)
    {
        const std::string strStep = expected["do"].toString().toStdString();
        SCOPED_TRACE(strStep);
        if (expected.contains("ok")) {
            EXPECT_EQ(expected["ok"].toBool(), bOk);
            EXPECT_EQ(expected["err"].toString(), Axis().GetErrorMsg());
            EXPECT_EQ(expected["dir_writes"].toArray(), m_Log.m_lstDirs);
            const bool bStarted = m_Log.m_bEverStarted;
            EXPECT_EQ(expected["started"].toBool(), bStarted);
            EXPECT_EQ(expected["pulses"].toInt(), m_Log.m_iRising);
            EXPECT_EQ(expected["end_ns"].toInteger(), m_Log.m_lEnd);
            if (!m_Log.m_lstDirs.isEmpty()) ExpectCounts(expected);
            ExpectList(
                expected["edges"].toObject(), m_Log.m_lstEdges.size(),
                [&](size_t n) {
                    return QJsonArray{m_Log.m_lstEdges[n].lTime, m_Log.m_lstEdges[n].iLevel};
                },
                [&](size_t n) {
                    return Joined({m_Log.m_lstEdges[n].lTime, m_Log.m_lstEdges[n].iLevel});
                },
                0, "edges");
        }
        EXPECT_EQ(expected["pos"].toInt(), Axis().GetCurPosLong());
        EXPECT_EQ(expected["home_done"].toBool(), Axis().IsAxisHomeSet());
        if (expected.contains("limits")) {
            EXPECT_EQ(expected["limits"].toArray(),
                      (QJsonArray{qint32(Axis().m_lNegLimit), qint32(Axis().m_lPosLimit)}));
        }
        if (expected.contains("pos_per_pulse")) {
            EXPECT_EQ(expected["pos_per_pulse"].toInt(), qint32(Axis().m_lPosPerPulse));
        }
    }

    void ExpectCounts(const QJsonObject& expected)
    {
        const QJsonArray counts{static_cast<int>(Axis().m_uAccPulses), static_cast<int>(Axis().m_uConstPulses),
                                static_cast<int>(Axis().m_uDecPulses)};
        EXPECT_EQ(expected["counts"].toArray(), counts);
        EXPECT_EQ(expected["table_size"].toInteger(),
                  static_cast<qint64>(Axis().m_lstHighTime[Axis().m_ucCurTable].size()));
    }

    // Inputs and calls at their pulses; then the step, and the wait for its end.
    bool Do(const QJsonObject& step)
    {
        const QString strDo = step["do"].toString();
        const int iHome = step["home_after"].toInt(-1), iProbe = step["probe_after"].toInt(-1);
        const int iRelease = step["decelerate_after"].toInt(-1), iStop = step["stop_after"].toInt(-1);
        const auto AtPulse = [=, this](int iPulse) {
            if (iHome == iPulse) CVirtualPins::SetInput(AppConfig::m_iAxisMchHomeSensorInput[Axis().m_sAxis], 1);
            if (iProbe == iPulse) CVirtualPins::SetInput(AppConfig::m_iZProbeInput, 1);
            if (iRelease == iPulse) Axis().DeccelerateAxis();
        };
        CVirtualPins::SetInput(AppConfig::m_iAxisMchHomeSensorInput[Axis().m_sAxis], 0);
        CVirtualPins::SetInput(AppConfig::m_iZProbeInput, 0);
        // A stop in the middle: the loop sees it as it sees one from outside.
        m_Time.m_fnInterrupted = [this] { Axis().Stop(); };
        m_Log.m_fnPulse = [=, this](int iPulse) {
            AtPulse(iPulse);
            if (iPulse == iStop) m_Time.Interrupt();
        };
        if (iHome == 0 || iProbe == 0) AtPulse(0);
        const bool bOk = Command(strDo, step["value"]);
        if (iRelease == 0) Axis().DeccelerateAxis();
        if (iStop == 0) Axis().Stop();
        CWait::SpinUntil([this] { return !Axis().GetAxisState(); });
        return bOk;
    }

    bool Command(const QString& strDo, const QJsonValue& value)
    {
        if (strDo == "abs") return Axis().MoveAbs(value.toDouble());
        if (strDo == "rel") return Axis().MoveRel(value.toDouble());
        if (strDo == "jog") return Axis().Jog(static_cast<eDirection>(value.toInt()));
        if (strDo == "home") return Axis().MoveAxisHome();
        if (strDo == "work_zero") return Axis().MoveWorkZero();
        if (strDo == "homing")
            Axis().m_bHoming = value.toBool();
        else if (strDo == "watch_probe")
            Axis().m_bWatchZProbe = value.toBool();
        else if (strDo == "estop")
            AppConfig::m_bEmergencyStopON = value.toBool();
        else if (strDo == "set_mch_home")
            Axis().SetMchHome();
        else if (strDo == "set_work_zero")
            Axis().SetWorkZero();
        else
            ADD_FAILURE() << "unknown step " << strDo.toStdString();
        return true;
    }

    AxisCtrl& Axis() { return m_Axes.m_AxisCtrl[m_iAxis]; }

    CVirtualTime m_Time;
    CMachineAxes m_Axes;
    CEdgeLog m_Log{m_Axes};
    int m_iAxis = 0;
};

TEST_P(AxisCase, EveryEdgeComesAtItsTime)
{
    const QString strName = QString::fromStdString(GetParam());
    const QJsonObject in = CCases::Json("axis", strName + ".in.json");
    const QJsonArray expected = CCases::Json("axis", strName + ".out.json")["steps"].toArray();
    ApplyConfig(in["cfg"].toObject());
    AppConfig::ApplyBoardPins();
    AppConfig::DeriveFeeds();
    m_iAxis = in["axis"].toInt();
    Axis().m_sAxis = static_cast<qint16>(m_iAxis);
    Axis().ConfigAxis();
    Axis().SetWorkZero();
    Axis().SetCurPos(in["start_mm"].toDouble());
    Axis().m_bHomeDone = in["home_done"].toBool();

    const QJsonArray steps = in["steps"].toArray();
    ASSERT_EQ(expected.size(), steps.size());
    for (int n = 0; n < steps.size(); ++n) {
        m_Log.Begin();
        m_Log.m_bEverStarted = false;
        const bool bOk = Do(steps[n].toObject());
        Expect(expected[n].toObject(), bOk);
    }
}
INSTANTIATE_TEST_SUITE_P(Reference, AxisCase, testing::ValuesIn(CCases::Names("axis", ".in.json")), CaseName);

// ---- Coordinated moves
// ------------------------------------------------------------------------------------------------

class AutoModeCase : public CCleanMachine, public testing::WithParamInterface<std::string>
{
protected:
    void SetUpAxes(const QJsonArray& start)
    {
        for (int axis = 0; axis < AppConfig::m_iMchType; ++axis) {
            m_Axes.m_AxisCtrl[axis].m_sAxis = static_cast<qint16>(axis);
            m_Axes.m_AxisCtrl[axis].ConfigAxis();
            m_Axes.m_AxisCtrl[axis].SetWorkZero();
            m_Axes.m_AxisCtrl[axis].SetCurPos(start[axis].toDouble());
        }
    }

    void Prepare(const QJsonObject& move)
    {
        const QJsonObject build = move["build"].toObject();
        CAllAxisCtrl::m_lstAxisToMov = {};
        const QJsonObject to = move["to"].toObject();
        for (const int axis : {0, 1, 2, 3, 4}) {
            const QString strAxis("XYZAB"[axis]);
            if (const QJsonArray curve = build[strAxis].toArray(); !curve.isEmpty())
                m_Axes.m_AxisCtrl[axis].SetVelocityAcc(curve[0].toDouble(), curve[1].toDouble());
            const QJsonValue target = to[strAxis];
            if (target.isUndefined()) continue;
            CAllAxisCtrl::m_lstAxisToMov[axis] = true;
            EXPECT_TRUE(m_Axes.m_AxisCtrl[axis].SetAxisMovParams(target.toDouble()));
        }
    }
    void Run(const QJsonObject& move)
    {
        m_Log.Begin();
        Prepare(move);
        CAllAxisCtrl::StartAutoMode(&m_Axes);
        if (move.contains("stop_at"))
            m_Time.AddEvent({m_Time.Now() + move["stop_at"].toInteger(), CAllAxisCtrl::StopAutoMode,
                             [](int, CShared<bool>& bRun) { bRun = false; }});
        EXPECT_TRUE(CAllAxisCtrl::StartMotion());
        CAllAxisCtrl::WaitForMotion();
        if (move.contains("stop_at")) CAllAxisCtrl::WaitForAutoModeEnd();
    }

    void Expect(const QJsonObject& expected)
    {
        const QJsonArray selected = expected["to_move"].toArray(), counts = expected["counts"].toArray();
        const QJsonArray dirs = expected["dirs"].toArray(), slots_ = expected["slots"].toArray();
        const QJsonArray positions = expected["positions"].toArray();
        for (int axis = 0; axis < counts.size(); ++axis) {
            const AxisCtrl& a = m_Axes.m_AxisCtrl[axis];
            EXPECT_EQ(selected[axis].toBool(), CAllAxisCtrl::m_lstAxisToMov[axis]) << axis;
            EXPECT_EQ(dirs[axis].toInt(), static_cast<int>(a.m_eDir)) << axis;
            EXPECT_EQ(slots_[axis].toInt(), static_cast<int>(a.m_ucCurTable)) << axis;
            EXPECT_EQ(positions[axis].toInt(), a.GetCurPosLong()) << axis;
            if (!counts[axis].isNull()) {
                const QJsonArray actual{static_cast<int>(a.m_uAccPulses), static_cast<int>(a.m_uConstPulses),
                                        static_cast<int>(a.m_uDecPulses)};
                EXPECT_EQ(counts[axis].toArray(), actual) << axis;
            }
        }
        const auto& edges = m_Log.m_lstEdges;
        ExpectList(
            expected["edges"].toObject(), edges.size(),
            [&](size_t n) {
                return QJsonArray{edges[n].lTime, edges[n].iAxis, edges[n].iLevel, edges[n].lPos};
            },
            [&](size_t n) {
                return Joined({edges[n].lTime, edges[n].iAxis, edges[n].iLevel, edges[n].lPos});
            },
            0, "edges");
        if (!expected["end_ns"].isNull() && !expected["end_ns"].isUndefined()) {
            EXPECT_EQ(expected["end_ns"].toInteger(), m_Log.m_lEnd);
        }
    }

    CVirtualTime m_Time;
    CMachineAxes m_Axes;
    CEdgeLog m_Log{m_Axes};
};

TEST_P(AutoModeCase, EveryEdgeOfEveryAxisComesAtItsTime)
{
    const QString strName = QString::fromStdString(GetParam());
    const QJsonObject in = CCases::Json("automode", strName + ".in.json");
    const QJsonArray expected = CCases::Json("automode", strName + ".out.json")["moves"].toArray();
    const QJsonObject cfg = in["cfg"].toObject();
    if (cfg["m_iMchType"].toInt() == 5) AppConfig::m_eVantorCtrl = VTR5_CTRL;
    ApplyConfig(cfg);
    AppConfig::ApplyBoardPins();
    AppConfig::DeriveFeeds();
    SetUpAxes(in["start_mm"].toArray());

    const QJsonArray moves = in["moves"].toArray();
    ASSERT_EQ(expected.size(), moves.size());
    for (int n = 0; n < moves.size(); ++n) {
        SCOPED_TRACE(n);
        Run(moves[n].toObject());
        Expect(expected[n].toObject());
    }
    CAllAxisCtrl::StopAutoMode();
    CAllAxisCtrl::WaitForAutoModeEnd();
}
INSTANTIATE_TEST_SUITE_P(Reference, AutoModeCase, testing::ValuesIn(CCases::Names("automode", ".in.json")), CaseName);
