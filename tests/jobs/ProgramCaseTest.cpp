#include "common/FileWriter.h"
#include "common/Paths.h"
#include "config/SettingsTable.h"
#include "control/AppControl.h"
#include "gcode/GCodeTokens.h"
#include "motion/AllAxisCtrl.h"
#include "platform/virtual/VirtualPins.h"
#include "support/Cases.h"
#include "support/CleanMachine.h"

#include <QFile>
#include <QTextStream>

#include <map>

// Whole programs against the reference cases: everything that the worker does, in order.

namespace {
// Notes what the worker does as a case's trace tells it.
class CTraceSpy : public AppControl, public CPinObserver, public CWorkObserver
{
public:
    using AppControl::run;

    CTraceSpy()
    {
        CVirtualPins::SetObserver(this);
        m_pWorkObserver = this;
        connect(this, &AppControl::SelNxtGCodeLine, this, [this](unsigned uLine) {
            m_iLine = static_cast<int>(uLine);
            Note({{"ev", "next"}, {"n", m_iLine}}, false);
        });
        m_Time.m_fnSupervise = [this] { Supervise(); };
        m_Time.m_fnAdvance = [this](qint64 lTo) {
            if (m_bSleeping) Note({{"ev", "sleep"}, {"us", (lTo - m_Time.Now()) / 1000}});
            m_bSleeping = false;
        };
    }
    ~CTraceSpy() override { CVirtualPins::SetObserver(nullptr); }

    void OnWork(const stWorkCommand& command) override
    {
        switch (command.eKind) {
        case WORK_ZERO:
            Note({{"ev", "work_zero"}});
            ++m_iInside;
            break;
        case WORK_ARC: ++m_iInside; break;
        case WORK_PLAN:
            m_PlanFrom = command.from;
            m_ePlan = command.eCmnd;
            break;
        case WORK_MOVE: NoteMove(command); break;
        case WORK_AXIS_TO:
            if (m_iInside == 0) Note({{"ev", "axis"}, {"axis", command.axis}, {"to", command.fValue}});
            break;
        case WORK_SPINDLE_SPEED:
            if (AppConfig::m_GCodeRunSettings.bUsePrgmSpindleSpeed)
                Note({{"ev", "spindle"}, {"speed", int(command.fValue)}});
            m_iSpindleEvent = m_Trace.size() - 1;
            break;
        default: break;
        }
    }
    void OnWorkEnd(const stWorkCommand& command, bool bOk) override
    {
        switch (command.eKind) {
        case WORK_ZERO: --m_iInside; break;
        case WORK_ARC:
            --m_iInside;
            if (bOk) NoteArc(*command.pArc);
            break;
        case WORK_PRGM_FEED: Note({{"ev", "feed"}, {"value", AppConfig::m_GCodeRunSettings.fFeed}}); break;
        case WORK_SPINDLE_SPEED: NoteFrequency(); break;
        default: break;
        }
    }
    void OnWrite(int iPin, int iLevel) override
    {
        for (int axis = 0; axis < AppConfig::m_iMchType; ++axis)
            if (iPin == AppConfig::m_iAxisPulseOutput[axis] || iPin == AppConfig::m_iAxisDirOutput[axis]) return;
        if (iPin != AppConfig::m_iPgmStatusOutput) Note({{"ev", "out"}, {"pin", iPin}, {"level", iLevel}});
    }
    // What has been raised or said since the last event.
    void Flush()
    {
        if (m_pGCodeProgram != m_pAtc && m_pGCodeProgram != m_pMain)
            Append({{"ev", "atc"}, {"file", QString::fromStdString(m_strSelTool) + ".txt"}});
        m_pAtc = m_pGCodeProgram == m_pMain ? nullptr : m_pGCodeProgram;
        for (const QString& strText : std::exchange(m_lstErrMsg, {})) {
            Append({{"ev", "error"}, {"text", strText}});
            m_lstErrors.append(strText);
        }
        // A tool change raises its flag and then asks.
        for (const QString& strText : std::exchange(m_lstInfoMsg, {})) {
            if (m_bToolChangePause && strText.startsWith("Change")) Append({{"ev", "tool_pause"}});
            Append({{"ev", "info"}, {"text", strText}});
            m_lstInfos.append(strText);
        }
        if (m_bStartBtnPressRequest) Append({{"ev", "start_button"}});
        m_bStartBtnPressRequest = false;
    }

    CVirtualTime m_Time;
    const GCodeProgram *m_pMain = nullptr, *m_pAtc = nullptr;
    QJsonArray m_Trace, m_lstErrors, m_lstInfos;
    int m_iLine = -1;
    int m_iAxes = 3;

private:
    void NoteMove(const stWorkCommand& move)
    {
        if (m_iInside > 0) return;
        stFloatPoint from = m_PlanFrom;
        if (move.bPlan) GetAllAxisCurPos(from);
        Note({{"ev", "move"},
              {"cmd", move.eCmnd == G00_MOVE ? "G00" : "G01"},
              {"plan", (move.bPlan ? move.eCmnd : m_ePlan) == G00_MOVE ? "G00" : "G01"},
              {"from", PointArray(from, m_iAxes)},
              {"to", PointArray(move.to, m_iAxes)},
              {"feed", AppConfig::m_GCodeRunSettings.fFeed}});
    }
    void NoteArc(const stGCodeEllipseInfo& info)
    {
        Note({{"ev", "arc"},
              {"plane", int(AppConfig::m_PlaneSel)},
              {"dir", info.eDir},
              {"start", PointArray(info.stStart)},
              {"end", PointArray(info.stEnd)},
              {"centre", PointArray(info.stCenter)},
              {"radius", info.fRadius},
              {"full", info.bFullCircle},
              {"feed", AppConfig::m_GCodeRunSettings.fFeed}});
    }
    // A change of speed ends with its run-up.
    void NoteFrequency()
    {
        for (qsizetype n = m_iSpindleEvent; n < m_Trace.size(); ++n) {
            QJsonObject event = m_Trace[n].toObject();
            if (event["ev"] == QLatin1String("spindle")) event["freq"] = int(AppConfig::m_stPwmSpndlSettings.iCurFreq);
            m_Trace[n] = event;
        }
    }
    // The window's part: a tool change presses pause, and whoever waits for the start button gets it.
    void Supervise()
    {
        Flush();
        m_bSleeping = !m_bToolChangePause && !m_bPause;
        if (m_bToolChangePause) {
            m_bToolChangePause = false;
            m_bPause = true;
        } else {
            m_bPause = false;
        }
    }
    void Note(QJsonObject event, bool bLine = true)
    {
        Flush();
        if (bLine && !m_pAtc) event["line"] = m_iLine < 0 ? QJsonValue() : m_iLine;
        m_Trace.append(event);
    }
    void Append(QJsonObject event)
    {
        event["line"] = m_iLine;
        m_Trace.append(event);
    }

    int m_iInside = 0;
    qsizetype m_iSpindleEvent = 0;
    bool m_bSleeping = false;
    stFloatPoint m_PlanFrom;
    eGMoveCmnd m_ePlan = G01_MOVE;
};

// Every field of the event that was noted as the case has it.
bool Same(const QJsonValue& expected, const QJsonValue& is, double fTolerance)
{
    if (expected.isDouble()) return is.isDouble() && std::abs(expected.toDouble() - is.toDouble()) <= fTolerance;
    if (is.isObject()) {
        const QJsonObject fields = is.toObject();
        for (auto it = fields.begin(); it != fields.end(); ++it)
            if (!Same(expected[it.key()], it.value(), fTolerance)) return false;
        return expected.isObject();
    }
    if (!expected.isArray()) return expected == is;
    const QJsonArray e = expected.toArray(), i = is.toArray();
    bool bSame = e.size() == i.size();
    for (int n = 0; bSame && n < e.size(); ++n) bSame = Same(e[n], i[n], fTolerance);
    return bSame;
}
std::string Text(const QJsonValue& value)
{
    return QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact).toStdString();
}
}   // namespace

class ProgramCase : public CCleanMachine, public testing::WithParamInterface<std::string>
{
protected:
    void Configure(QJsonObject config)
    {
        static const std::map<QString, const char*> SETTINGS = {
            {"board", "m_eVantorCtrl"},
            {"plane", "m_PlaneSel"},
            {"abs_rel", "m_GCodeRunSettings.sAbsRel"},
            {"state", "m_GCodeRunSettings.iState"},
            {"start_line", "m_GCodeRunSettings.iCurLine"},
            {"use_prgm_feed", "m_GCodeRunSettings.bUsePrgmFeed"},
            {"use_prgm_spindle", "m_GCodeRunSettings.bUsePrgmSpindleSpeed"},
            {"manual_tool", "m_bEnlManualToolChange"},
            {"auto_tool", "m_bEnlAutoToolChange"}};
        m_App.m_strSelTool = config.take("selected_tool").toString().toStdString();
        m_App.m_CurGCodePos = PointFrom(config.take("cur_gcode_pos").toArray());
        m_Start = PointFrom(config.take("start_pos").toArray());
        const QJsonObject files = config.take("atc").toObject();
        for (auto it = files.begin(); it != files.end(); ++it)
            ReplaceFile(CPaths::Map(WORKING_FOLDER + '/' + it.key()), it->toString().toUtf8());
        const int iAxes = config.take("mch_type").toInt(3);
        for (auto it = config.begin(); it != config.end(); ++it) {
            ASSERT_TRUE(SETTINGS.count(it.key())) << it.key().toStdString();
            QString strWhy;
            const QString strValue = QString::number(it->isBool() ? it->toBool() : it->toInt());
            EXPECT_TRUE(CSettingsTable::Set(SETTINGS.at(it.key()) + ('=' + strValue), strWhy)) << strWhy.toStdString();
        }
        AppConfig::ApplyBoardPins();
        EXPECT_EQ(AppConfig::m_iMchType, iAxes);
    }
    void ExpectFinal(const QJsonObject& final, double fTolerance)
    {
        stFloatPoint pos;
        m_App.GetAllAxisCurPos(pos);
        const stGCodeRunSettings& run = AppConfig::m_GCodeRunSettings;
        const QJsonObject is{{"position", PointArray(pos, m_App.m_iAxes)},
                             {"program_position", PointArray(m_App.m_CurGCodePos, m_App.m_iAxes)},
                             {"abs_rel", run.sAbsRel},
                             {"state", run.iState},
                             {"plane", int(AppConfig::m_PlaneSel)},
                             {"units", int(AppConfig::m_eSelUnits)},
                             {"unit_factor", m_App.m_fUnitFactor},
                             {"feed", run.fFeed},
                             {"tool", QString::fromStdString(m_App.m_strSelTool)},
                             {"cur_line", m_App.m_iCurGCodeLine},
                             {"spindle_on", bool(AppConfig::m_bSpindleOn)},
                             {"nesting", qint64(m_App.m_lstSubPrgmStartLine.size())}};
        EXPECT_EQ(final.keys(), is.keys());
        EXPECT_TRUE(Same(final, is, fTolerance)) << Text(final) << "\n" << Text(is);
    }
    CTraceSpy m_App;
    stFloatPoint m_Start;
};

TEST_P(ProgramCase, DoesWhatWasWorkedOut)
{
    const QString strName = QString::fromStdString(GetParam());
    const QJsonObject expected = CCases::Json("gcode_run", strName + ".json");
    const double fTolerance = expected["tol"].toDouble();
    Configure(expected["config"].toObject());
    GCodeProgram program;
    const QByteArray text = CCases::Bytes("gcode_run", strName + ".ngc");
    for (QTextStream stream(text); !stream.atEnd();) program.push_back(TokenizeProgramLine(stream.readLine()));
    m_App.m_pGCodeProgram = m_App.m_pMain = &program;
    m_App.m_iAxes = AppConfig::m_iMchType;
    m_App.InitMachine();
    for (int axis = 0; axis < m_App.m_iAxes; ++axis) m_App.m_AxisCtrl[axis].SetCurPos(AxisOf(m_Start, axis));
    m_App.m_eOperation = OP_GCODE;
    if (expected.contains("mode")) {
        m_App.m_bExecSingleLine = true;
        m_App.m_iSingleLineNo = m_App.m_iLine = expected["mode"]["single_line"].toInt();
    }

    m_App.run();
    m_App.Flush();
    const QJsonArray trace = expected["trace"].toArray();
    for (int n = 0; n < std::max(trace.size(), m_App.m_Trace.size()); ++n)
        ASSERT_TRUE(Same(trace.at(n), m_App.m_Trace.at(n), fTolerance))
            << "event " << n << "\nexpected " << Text(trace.at(n)) << "\nis       " << Text(m_App.m_Trace.at(n));
    for (const QJsonValue& event : trace)   // an output without a pin of its own is on pin 0
        if (event["ev"] == QLatin1String("out")) {
            const auto uCode = static_cast<quint16>(event["code"].toInt());
            EXPECT_EQ(event["pin"].toInt(), AppConfig::m_lstMCodesPin.value(uCode, -1)) << uCode;
        }
    EXPECT_EQ(expected["errors"].toArray(), m_App.m_lstErrors);
    EXPECT_EQ(expected["infos"].toArray(), m_App.m_lstInfos);
    ExpectFinal(expected["final"].toObject(), fTolerance);
}
INSTANTIATE_TEST_SUITE_P(All, ProgramCase, testing::ValuesIn(CCases::Names("gcode_run", ".json")), CaseName);
