#include "cases/Cases.h"
#include "common/Paths.h"
#include "config/AppConfig.h"
#include "gcode/ExecStatus.h"
#include "gcode/GCodeTokens.h"
#include "gcode/GCodeWords.h"
#include "machine/MoveSpy.h"
#include "platform/virtual/VirtualPins.h"

#include <QTextStream>

// Whole programs: everything that the worker does, in order.

namespace {
// Notes what the worker does as a case's trace tells it, and does the window's part.
class CTraceSpy : public CMoveSpy, public CPinObserver
{
public:
    explicit CTraceSpy(CVirtualTime& time) : m_Time(time)
    {
        CVirtualPins::SetObserver(this);
        connect(this, &AppControl::SelNxtGCodeLine, this, [this](unsigned uLine) {
            Flush();
            m_iLine = static_cast<int>(uLine);
            Note({{"ev", "next"}, {"n", m_iLine}}, false);
        });
        time.m_fnSupervise = [this] { Supervise(); };
        time.m_fnAdvance = [this](qint64 lTo) { NoteWait(lTo - m_Time.Now()); };
    }
    ~CTraceSpy() override { CVirtualPins::SetObserver(nullptr); }

    void OnWork(const stWorkCommand& command) override
    {
        CMoveSpy::OnWork(command);
        switch (command.eKind) {
        case WORK_ZERO: Note({{"ev", "work_zero"}}); [[fallthrough]];
        case WORK_ARC: ++m_iInside; break;
        case WORK_PLAN: m_Plan = command; break;
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
        CMoveSpy::OnWorkEnd(command, bOk);
        if (command.eKind == WORK_ZERO || command.eKind == WORK_ARC) --m_iInside;
        if (command.eKind == WORK_ARC && bOk) NoteArc(*command.pArc);
        if (command.eKind == WORK_PRGM_FEED) Note({{"ev", "feed"}, {"value", AppConfig::m_GCodeRunSettings.fFeed}});
        if (command.eKind == WORK_SPINDLE_SPEED) NoteFrequency();
    }
    void OnWrite(int iPin, int iLevel) override
    {
        for (int axis = 0; axis < AppConfig::m_iMchType; ++axis)
            if (iPin == AppConfig::m_iAxisPulseOutput[axis] || iPin == AppConfig::m_iAxisDirOutput[axis]) return;
        if (iPin != AppConfig::m_iPgmStatusOutput) Note({{"ev", "out"}, {"pin", iPin}, {"level", iLevel}});
    }
    void ExecLines()
    {
        CAllAxisCtrl::StartAutoMode(this);
        for (m_iLine = 0; size_t(m_iLine) < m_pMain->size(); ++m_iLine)
            Note({{"ev", "result"}, {"value", ExecGCodeLine(m_iLine)}});
        CAllAxisCtrl::WaitForMotion();
    }
    // What has been raised, said, called or saved since the last event belongs to the line before the next one.
    void Flush()
    {
        if (m_pGCodeProgram != m_pAtc && m_pGCodeProgram != m_pMain)
            Append({{"ev", "atc"}, {"file", QString::fromStdString(m_strSelTool) + ".txt"}});
        m_pAtc = m_pGCodeProgram == m_pMain ? nullptr : m_pGCodeProgram;
        const size_t uCalls = std::exchange(m_uCalls, m_lstSubPrgmStartLine.size());
        if (uCalls != m_uCalls) Append({{"ev", uCalls < m_uCalls ? "call" : "return"}});
        stExecStatus status;
        if (AppConfig::m_GCodeRunSettings.bSaveExecStatus && ReadExecStatus(GCODE_EXEC_STATUS_FILE, status) &&
            std::exchange(m_iSaved, status.iLine) != status.iLine)
            Append({{"ev", "status"}, {"n", status.iLine}});
        for (const QString& strText : std::exchange(m_lstErrMsg, {})) Append({{"ev", "error"}, {"text", strText}});
        // A tool change raises its flag and then asks.
        for (const QString& strText : std::exchange(m_lstInfoMsg, {})) {
            if (m_bToolChangePause && strText.startsWith("Change")) Append({{"ev", "tool_pause"}});
            Append({{"ev", "info"}, {"text", strText}});
        }
        if (m_bStartBtnPressRequest) Append({{"ev", "start_button"}});
        m_bStartBtnPressRequest = false;
    }

    const GCodeProgram *m_pMain = nullptr, *m_pAtc = nullptr;
    QJsonArray m_Trace;
    int m_iLine = -1;

private:
    void NoteMove(const stWorkCommand& move)
    {
        if (m_iInside > 0) return;
        Note({{"ev", "move"},
              {"cmd", move.eCmnd == G00_MOVE ? "G00" : "G01"},
              {"plan", (move.bPlan ? move : m_Plan).eCmnd == G00_MOVE ? "G00" : "G01"},
              {"from", PointArray(move.bPlan ? Position() : m_Plan.from, m_iAxes)},
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
    // Timed sleeps, and the waits of M66; not those for the end of a motion.
    void NoteWait(qint64 lNs)
    {
        if (std::exchange(m_bSleeping, false)) return Note({{"ev", "sleep"}, {"us", lNs / 1000}});
        if (CAllAxisCtrl::m_bStartMotion || m_iLine < 0 || m_pGCodeProgram != m_pMain) return;
        const GCodeTokens& line = m_pMain->at(size_t(m_iLine));
        const auto word = std::find_if(line.begin(), line.end(), [](const std::string& str) {
            return TokenLetter(str) == 'M' && TokenInt(str) == 66;
        });
        if (word != line.end()) Note({{"ev", line.end() - word == 2 ? "dwell" : "input"}, {"us", lNs / 1000}});
    }
    // A tool change presses pause, and whoever waits for the start button gets it.
    void Supervise()
    {
        Flush();
        m_bSleeping = !m_bToolChangePause && !m_bPause;
        m_bPause = m_bToolChangePause.Exchange(false);
    }
    void Note(QJsonObject event, bool bLine = true)
    {
        Flush();
        if (bLine) event["line"] = m_iLine < 0 ? QJsonValue() : m_iLine;
        if (m_pAtc) event.remove("line");   // that of the tool's file is not to be seen
        m_Trace.append(event);
    }
    void Append(QJsonObject event)
    {
        event["line"] = m_iLine;
        m_Trace.append(event);
    }

    CVirtualTime& m_Time;
    int m_iInside = 0, m_iSaved = -1;
    size_t m_uCalls = 0;
    qsizetype m_iSpindleEvent = 0;
    bool m_bSleeping = false;
    stWorkCommand m_Plan{WORK_PLAN};
};

// The trace as the case has it, but for what the spy cannot see: the code of an output, which its pin stands for, and
// the line within a tool's file.
QJsonArray VisibleTrace(const QJsonArray& expected, const QJsonArray& actual)
{
    QJsonArray visible;
    for (qsizetype n = 0; n < expected.size(); ++n) {
        QJsonObject event = expected[n].toObject();
        const QJsonValue code = event.take("code");
        const int iPin = AppConfig::m_lstMCodesPin.value(quint16(code.toInt()), -1);   // 0: it has none of its own
        EXPECT_TRUE(code.isUndefined() || event["pin"] == iPin) << "event " << n << " is on pin " << iPin;
        if (n < actual.size() && !actual[n].toObject().contains("line")) event.remove("line");
        visible.append(event);
    }
    return visible;
}

QJsonObject SeenAtEnd(const CTraceSpy& app)
{
    const stGCodeRunSettings& run = AppConfig::m_GCodeRunSettings;
    return {{"position", PointArray(app.Position(), app.m_iAxes)},
            {"program_position", PointArray(app.m_CurGCodePos, app.m_iAxes)},
            {"abs_rel", run.sAbsRel},
            {"state", run.iState},
            {"plane", int(AppConfig::m_PlaneSel)},
            {"units", int(AppConfig::m_eSelUnits)},
            {"unit_factor", app.m_fUnitFactor},
            {"feed", run.fFeed},
            {"tool", QString::fromStdString(app.m_strSelTool)},
            {"cur_line", app.m_iCurGCodeLine},
            {"spindle_on", bool(AppConfig::m_bSpindleOn)},
            {"nesting", qint64(app.m_lstSubPrgmStartLine.size())}};
}

}   // namespace

void RunProgram(const stCase& c)
{
    CFields in(c.Json(".json"), "case"), config(in["config"], "config"), mode(in["mode"], "mode");
    CVirtualTime time;
    CTraceSpy app(time);
    app.m_strSelTool = config["selected_tool"].toString().toStdString();
    app.m_CurGCodePos = PointFrom(config["cur_gcode_pos"]);
    const stFloatPoint start = PointFrom(config["start_pos"]);
    WriteToolFiles(config);
    Configure(config.Rest());
    GCodeProgram program;
    const QByteArray text = c.Bytes(".ngc");
    for (QTextStream stream(text); !stream.atEnd();) program.push_back(TokenizeProgramLine(stream.readLine()));

    app.m_pGCodeProgram = app.m_pMain = &program;
    app.m_iAxes = AppConfig::m_iMchType;
    app.InitMachine();
    for (int axis = 0; axis < app.m_iAxes; ++axis) app.m_AxisCtrl[axis].SetCurPos(AxisOf(start, axis));
    app.m_eOperation = OP_GCODE;
    if (mode["exec_lines"].toBool()) {
        app.ExecLines();
    } else {
        app.m_bExecSingleLine = mode.Has("single_line");
        app.m_iSingleLineNo = app.m_iLine = mode["single_line"].toInt(-1);
        app.run();
    }
    app.Flush();
    const double fTolerance = in["tol"].toDouble();
    ExpectSame(VisibleTrace(in["trace"].toArray(), app.m_Trace), app.m_Trace, fTolerance, "event ");
    ExpectSame(in["final"], SeenAtEnd(app), fTolerance, "final");
    // Once more what the trace holds, and what the checker says, which the executor is not told.
    in.PassOver({"moves", "arcs", "outs", "lines", "errors", "infos", "compiles"});
}
