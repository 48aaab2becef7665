#include "run/WorkAreaJob.h"

#include "shapes/CuttingWalk.h"
#include "shapes/ShapesToGCode.h"
#include "shapes/WorkAreaFile.h"

static void TellNotices(const QStringList& lstNotices)
{
    for (const QString& strNotice : lstNotices) TellNotice(strNotice);
}

std::vector<stJobField> CWorkAreaJob::Fields()
{
    return {StepField("fZStep", m_Info.fZStep)};
}

bool CWorkAreaJob::Load(const stJobFile& file, QString& strWhy)
{
    QStringList lstNotices;
    if (!LoadWorkArea(file.strPath, m_Info, lstNotices)) strWhy = QStringLiteral("cannot be read");
    TellNotices(lstNotices);
    return strWhy.isEmpty();
}

std::vector<stJobError> CWorkAreaJob::Errors() const
{
    if (m_Info.lstShapes.empty()) return {{0, QStringLiteral("holds no shapes")}};
    // A shape or two that can't be cut are told by the cut; a job of nothing else is none.
    std::vector<stJobError> lstErrors;
    CShapesToCut shapes(m_Info.fZStep);
    for (const stEngShape& shape : m_Info.lstShapes) {
        const QString strWhy = shapes.WhySkipped(shape);
        if (strWhy.isEmpty()) return {};
        lstErrors.push_back({0, strWhy});
    }
    return lstErrors;
}

QString CWorkAreaJob::Size() const
{
    size_t uPoints = 0;
    for (const stEngShape& shape : m_Info.lstShapes) uPoints += shape.Path().size();
    return QStringLiteral("%1 shapes, %2 points").arg(m_Info.lstShapes.size()).arg(uPoints);
}

bool CWorkAreaJob::WriteGCode(const QString& strFile)
{
    QStringList lstNotices;
    const bool bWritten = WriteShapesAsGCode(
        strFile, m_Info, AppControl::SafeHeight(), [] { return true; }, lstNotices);
    TellNotices(lstNotices);
    return bWritten;
}

void CWorkAreaJob::Start(AppControl& app, const stRunOptions&)
{
    app.StartShapeCutting(&m_Info);
}
