#include "run/GCodeJob.h"

#include "common/OperatorScreen.h"
#include "config/AppConfig.h"
#include "gcode/GCodeStore.h"

bool CGCodeJob::Load(const stJobFile& file, QString& strWhy)
{
    CGCodeStore::m_bGCodeLoading = true;
    CGCodeStore::LoadGCode(file.strPath, nullptr);
    if (CGCodeStore::m_bGCodeLoading)
        strWhy = QStringLiteral("cannot be read");
    else if (CGCodeStore::m_lstOfGCodeLines.empty())
        strWhy = CGCodeStore::m_bLoadBroke ? QStringLiteral("cannot be read to its end") : QStringLiteral("is empty");
    if (!strWhy.isEmpty()) return false;
    if (const QString strOneLine = CGCodeStore::WhyOneLine(); !strOneLine.isEmpty()) TellNotice(strOneLine);
    CGCodeStore::m_bGCodeCompiling = true;
    CGCodeStore::m_CompilationErrors.clear();
    CGCodeStore::CompileGCode(nullptr);
    return true;
}

std::vector<stJobError> CGCodeJob::Errors() const
{
    std::vector<stJobError> lstErrors;
    for (const auto& [uLine, strText] : CGCodeStore::m_CompilationErrors)
        lstErrors.push_back({static_cast<qint64>(uLine) + 1, QString::fromLatin1(strText)});
    return lstErrors;
}

QString CGCodeJob::Size() const
{
    return QStringLiteral("%1 lines").arg(Lines());
}

qint64 CGCodeJob::Lines() const
{
    return static_cast<qint64>(CGCodeStore::m_lstOfGCodeLines.size());
}

void CGCodeJob::Start(AppControl& app, const stRunOptions& options)
{
    AppConfig::m_GCodeRunSettings.strFile = options.strJob;
    AppConfig::m_GCodeRunSettings.iCurLine = options.iStartLine - 1;
    app.StartGCode(&CGCodeStore::m_lstOfGCodeCmds);
}
