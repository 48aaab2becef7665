#include "run/DxfJob.h"
#include "run/GCodeJob.h"
#include "run/PictureJob.h"
#include "run/WorkAreaJob.h"

#include <QFileInfo>

#include <cmath>

namespace {
struct stKind
{
    QStringList endings;   // small letters; none: every other job
    const char* szHelp;
    std::unique_ptr<CJobKind> (*fnMake)(const stRunOptions& options);
};

template <class Job> std::unique_ptr<CJobKind> Make(const stRunOptions&)
{
    return std::make_unique<Job>();
}

const std::vector<stKind>& Kinds()
{
    static const std::vector<stKind> kinds = {
        {{}, "a G-code program; \"-\" is one on standard input", Make<CGCodeJob>},
        {{QStringLiteral("xml")},
         "a work area of shapes, cut as it stands; --job fZStep=MM is the depth of a pass",
         Make<CWorkAreaJob>},
        {{QStringLiteral("dxf")},
         "a drawing: its lines, arcs and polylines, followed in passes; --job fTotalDepth=MM, fStepDown=MM",
         Make<CDxfJob>},
        {{QStringLiteral("png"), QStringLiteral("jpg"), QStringLiteral("jpeg"), QStringLiteral("bmp"),
          QStringLiteral("pgm")},
         "a picture, carved as a relief; --job fLength, fDepth, fZStep ...",
         Make<CPictureJob>},
    };
    return kinds;
}
}   // namespace

std::unique_ptr<CJobKind> MakeJobKind(const stRunOptions& options)
{
    const QString strEnding = QFileInfo(options.strJob).suffix().toLower();
    const stKind* pFound = nullptr;
    for (const stKind& kind : Kinds())
        if (kind.endings.isEmpty() ? !pFound : kind.endings.contains(strEnding)) pFound = &kind;
    return pFound->fnMake(options);
}

bool SetJobField(CJobKind& job, const QString& strAssignment, QString& strWhy)
{
    const qsizetype iEqual = strAssignment.indexOf(QLatin1Char('='));
    const QString strName = strAssignment.left(iEqual < 0 ? strAssignment.size() : iEqual).trimmed();
    QStringList names;
    for (const stJobField& field : job.Fields()) {
        names += field.strName;
        if (field.strName != strName || iEqual < 0) continue;
        if (field.fnSet(strAssignment.mid(iEqual + 1), strWhy)) return true;
        strWhy = QStringLiteral("%1: %2").arg(strAssignment, strWhy);
        return false;
    }
    strWhy = names.isEmpty() ? QStringLiteral("%1: a job of this kind has no fields to set").arg(strAssignment)
                             : QStringLiteral("%1: expected NAME=VALUE with NAME one of %2")
                                   .arg(strAssignment, names.join(QStringLiteral(", ")));
    return false;
}

stJobField StepField(const char* szName, double& fStep)
{
    return {QString::fromLatin1(szName), [&fStep](const QString& strValue, QString& strWhy) {
                bool bOk = false;
                const double fValue = strValue.toDouble(&bOk);
                if (!bOk || !std::isfinite(fValue) || !(fValue > 0.0)) {
                    strWhy = QStringLiteral("is not a number above 0");
                    return false;
                }
                fStep = fValue;
                return true;
            }};
}

QString JobKindsHelp()
{
    QString strHelp;
    for (const stKind& kind : Kinds())
        strHelp += QStringLiteral("  %1  %2\n")
                       .arg(kind.endings.isEmpty() ? QStringLiteral("any other")
                                                   : QLatin1Char('.') + kind.endings.join(QStringLiteral(" .")),
                            -24)
                       .arg(QLatin1String(kind.szHelp));
    return strHelp;
}
