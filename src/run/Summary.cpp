#include "run/Summary.h"

#include "common/UnitConverter.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

static constexpr const char* g_szAxes[MAX_AXES] = {"X", "Y", "Z", "A", "B"};

static double Mm(qint32 lUnits)
{
    return CUnitConverter::GetDouble(static_cast<int>(lUnits));
}

QString ClockTime(double fSeconds)
{
    const auto lTenths = static_cast<qint64>(fSeconds * 10.0 + 0.5);
    return QStringLiteral("%1:%2:%3.%4")
        .arg(lTenths / 36000)
        .arg(lTenths / 600 % 60, 2, 10, QLatin1Char('0'))
        .arg(lTenths / 10 % 60, 2, 10, QLatin1Char('0'))
        .arg(lTenths % 10);
}

static QString ResultText(eExit eResult)
{
    switch (eResult) {
    case EXIT_DONE: return QStringLiteral("done");
    case EXIT_WRONG: return QStringLiteral("ended by an error");
    case EXIT_TIME: return QStringLiteral("ended by a time limit or an endless wait");
    case EXIT_INTERRUPTED: return QStringLiteral("interrupted");
    default: return QStringLiteral("failed");
    }
}

static QString ResultName(eExit eResult)
{
    switch (eResult) {
    case EXIT_DONE: return QStringLiteral("done");
    case EXIT_WRONG: return QStringLiteral("error");
    case EXIT_TIME: return QStringLiteral("time");
    case EXIT_INTERRUPTED: return QStringLiteral("interrupted");
    default: return QStringLiteral("failed");
    }
}

QString SummaryText(const stSummary& summary)
{
    const stMoveFigures& figures = summary.figures;
    const auto Row = [](const char* szName, const QString& strValue) {
        return QStringLiteral("  %1 %2\n").arg(QLatin1String(szName), -13).arg(strValue);
    };
    QString strText = QStringLiteral("%1: %2\n").arg(summary.strFile, ResultText(summary.eResult));
    strText += summary.strSize.isEmpty()
                   ? Row("lines", QStringLiteral("%1, %2 run").arg(summary.lLines).arg(summary.lLinesRun))
                   : Row("job", summary.strSize);
    strText += Row("moves", QStringLiteral("%1 coordinated, %2 single-axis, %3 pulses")
                                .arg(figures.lCoordinated)
                                .arg(figures.lSingle)
                                .arg(figures.uPulses));
    strText += Row("path", QStringLiteral("%1 mm (feed %2, rapid %3)")
                               .arg(figures.fFeedPath + figures.fRapidPath, 0, 'f', 3)
                               .arg(figures.fFeedPath, 0, 'f', 3)
                               .arg(figures.fRapidPath, 0, 'f', 3));
    if (summary.iToolChanges > 0) strText += Row("tool changes", QString::number(summary.iToolChanges));
    QString strTime =
        QStringLiteral("%1 (%2 s)").arg(ClockTime(summary.fMachineTime)).arg(summary.fMachineTime, 0, 'f', 3);
    if (!summary.bRealTime && summary.fWallTime > 0.0)
        strTime += QStringLiteral(", %1 times real time").arg(summary.fMachineTime / summary.fWallTime, 0, 'f', 0);
    strText += Row("machine time", strTime);
    strText += QStringLiteral("  axis                from           to     ended at   (mm)\n");
    for (int axis = 0; axis < summary.iAxes; ++axis) {
        const auto n = static_cast<size_t>(axis);
        strText += QStringLiteral("    %1       %2 %3 %4\n")
                       .arg(QLatin1String(g_szAxes[axis]))
                       .arg(Mm(figures.lowest[n]), 12, 'f', PRECISION)
                       .arg(Mm(figures.highest[n]), 12, 'f', PRECISION)
                       .arg(Mm(summary.ends[n]), 12, 'f', PRECISION);
    }
    qint64 lErrors = 0;
    for (const stTold& told : summary.lstTold) lErrors += told.eType == MSG_ERROR ? 1 : 0;
    strText += Row("messages", QStringLiteral("%1, %2 of them errors").arg(summary.lTold).arg(lErrors));
    if (!summary.strPicture.isEmpty()) strText += Row("picture", summary.strPicture);
    return strText;
}

static QJsonObject ByAxis(const stSummary& summary, const std::function<QJsonValue(size_t)>& fnValue)
{
    QJsonObject object;
    for (int axis = 0; axis < summary.iAxes; ++axis)
        object[QLatin1String(g_szAxes[axis])] = fnValue(static_cast<size_t>(axis));
    return object;
}

QByteArray SummaryJson(const stSummary& summary)
{
    const stMoveFigures& figures = summary.figures;
    QJsonArray messages;
    for (const stTold& told : summary.lstTold) {
        QJsonObject message{{"time_s", static_cast<double>(told.lTime) / 1e9},
                            {"type", told.eType == MSG_ERROR  ? "error"
                                     : told.eType == MSG_INFO ? "info"
                                                              : "notice"},
                            {"text", told.strText}};
        if (told.lLine > 0) message["line"] = told.lLine;
        messages.append(message);
    }
    QJsonObject object{{"file", summary.strFile},
                       {"result", ResultName(summary.eResult)},
                       {"exit_status", static_cast<int>(summary.eResult)},
                       {"lines", summary.lLines},
                       {"lines_run", summary.lLinesRun},
                       {"moves", QJsonObject{{"coordinated", figures.lCoordinated}, {"single_axis", figures.lSingle}}},
                       {"pulses", static_cast<qint64>(figures.uPulses)},
                       {"path_mm", QJsonObject{{"feed", figures.fFeedPath},
                                               {"rapid", figures.fRapidPath},
                                               {"total", figures.fFeedPath + figures.fRapidPath}}},
                       {"tool_changes", summary.iToolChanges},
                       {"machine_time_s", summary.fMachineTime},
                       {"wall_time_s", summary.fWallTime},
                       {"envelope_mm", ByAxis(summary,
                                              [&](size_t n) {
                                                  return QJsonArray{Mm(figures.lowest[n]), Mm(figures.highest[n])};
                                              })},
                       {"end_mm", ByAxis(summary, [&](size_t n) { return Mm(summary.ends[n]); })},
                       {"carriage_pulses", ByAxis(summary, [&](size_t n) { return summary.carriages[n]; })},
                       {"messages", messages},
                       {"message_count", summary.lTold}};
    if (!summary.strSize.isEmpty()) object["job"] = summary.strSize;
    return QJsonDocument(object).toJson();
}
