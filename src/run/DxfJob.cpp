#include "run/DxfJob.h"

#include "common/FileWriter.h"

#include <QFile>

#include <cmath>
#include <stdexcept>

static stJobField AnyNumberField(const char* szName, double& fField)
{
    return {QString::fromLatin1(szName), [&fField](const QString& strValue, QString& strWhy) {
                bool bOk = false;
                const double fValue = strValue.toDouble(&bOk);
                bOk = bOk && std::isfinite(fValue);
                if (bOk) fField = fValue;
                if (!bOk) strWhy = QStringLiteral("is not a number");
                return bOk;
            }};
}

std::vector<stJobField> CDxfJob::Fields()
{
    return {StepField("fToolDia", m_Settings.fToolDia), StepField("fStepDown", m_Settings.fStepDown),
            StepField("fTotalDepth", m_Settings.fTotalDepth), StepField("fFeed", m_Settings.fFeed),
            AnyNumberField("fZSafe", m_Settings.fZSafe)};
}

bool CDxfJob::Load(const stJobFile& file, QString& strWhy)
{
    m_strProgram = file.strScratch + QStringLiteral("/drawing.ncc");
    m_Settings.strDxfFile = QFile::encodeName(file.strPath).toStdString();
    try {
        size_t uPaths = 0;
        strWhy =
            QFile::decodeName(ConvertDxf(m_Settings, QFile::encodeName(m_strProgram).toStdString(), uPaths).c_str());
    } catch (const std::logic_error& error) {   // a number that cannot be read, with its line
        strWhy = QString::fromUtf8(error.what());
    }
    return strWhy.isEmpty() && CGCodeJob::Load({m_strProgram, file.strName, file.strScratch, file.screen}, strWhy);
}

bool CDxfJob::WriteGCode(const QString& strFile)
{
    QFile program(m_strProgram);
    CFileWriter file(strFile);
    if (!program.open(QIODevice::ReadOnly) || !file.Open()) return false;
    while (!program.atEnd()) {
        const QByteArray part = program.read(1 << 20);
        if (part.isEmpty() || file.write(part) != part.size()) return false;
    }
    return file.Commit();
}
