#include "run/PictureJob.h"

#include "carving/PixelFit.h"
#include "jobs/Carver.h"

#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace {
template <class T> stJobField IntegerField(const char* szName, T& field, int iMost)
{
    return {QString::fromLatin1(szName), [&field, iMost](const QString& strValue, QString& strWhy) {
                bool bOk = false;
                const int iValue = strValue.toInt(&bOk);
                if (bOk && iValue >= 0 && iValue <= iMost) {
                    field = static_cast<T>(iValue);
                    return true;
                }
                strWhy = QStringLiteral("is not a whole number from 0 to %1").arg(iMost);
                return false;
            }};
}
}   // namespace

std::vector<stJobField> CPictureJob::Fields()
{
    stImgCarvingInfo& info = *m_Data.pInfo;
    stJobField width = StepField("fWidth", info.fWidth);
    width.fnSet = [this, fnSet = width.fnSet](const QString& strValue, QString& strWhy) {
        return m_bByWidth = fnSet(strValue, strWhy);
    };
    return {StepField("fLength", m_fLength),
            width,
            StepField("fDepth", info.fDepth),
            StepField("fXStep", m_fXStep),
            StepField("fYStep", m_fYStep),
            StepField("fZStep", info.fZStep),
            IntegerField("iCarvingType", info.iCarvingType, CARVING_25D),
            IntegerField("iStartRow", info.iStartRow, MAX_IMAGE_SIDE)};
}

bool CPictureJob::Load(const stJobFile& file, QString& strWhy)
{
    if (m_bByWidth && m_fLength > 0.0) {
        strWhy = QStringLiteral("fLength and fWidth exclude each other: the one follows from the other");
        return false;
    }
    if (AppConfig::m_fAxisMovPerPulse[X_AXIS] != AppConfig::m_fAxisMovPerPulse[Y_AXIS]) {
        strWhy = QStringLiteral("X & Y axis Move/Pulse must be same");
        return false;
    }
    QString strNotice;
    m_Data.pImage = LoadCarvingImage(file.strPath, strWhy, strNotice);
    if (!strNotice.isEmpty()) TellNotice(strNotice);
    if (!m_Data.pImage) return false;
    const QString strFolder = QFileInfo(file.strName).absolutePath();
    AppConfig::m_strLastFolderPath = strFolder.endsWith(QLatin1Char('/')) ? strFolder : strFolder + QLatin1Char('/');
    m_iRows = m_Data.pImage->height();
    m_iCols = m_Data.pImage->width();
    Fit();
    return true;
}

// The picture's proportions hold: the side that was given rules, else the length of the record.
void CPictureJob::Fit()
{
    stImgCarvingInfo& info = *m_Data.pInfo;
    if (m_fLength > 0.0) info.fLength = m_fLength;
    if (m_bByWidth ? FitToWidth(info, *m_Data.pImage) : FitToLength(info, *m_Data.pImage))
        TellNotice(QStringLiteral("Length and Width adjusted to match\nX & Y Axis Mov/Pulse respectively"));
    const double fPixel = PixelOf(info, *m_Data.pImage);
    for (const auto& [fGiven, pStep] : {std::pair{m_fXStep, &info.fXStep}, std::pair{m_fYStep, &info.fYStep}}) {
        if (!(fGiven > 0.0)) continue;
        *pStep = std::clamp(fGiven, fPixel, std::max(fPixel, AppConfig::m_fEndMillDia));
        if (FitStep(*pStep, fPixel) || *pStep != fGiven)
            TellNotice(QStringLiteral("The step of %1 is adjusted to %2: whole pixels, not above the End-Mill")
                           .arg(fGiven)
                           .arg(*pStep));
    }
    if (FitStep(info.fZStep, AppConfig::m_fAxisMovPerPulse[Z_AXIS]))
        TellNotice(QStringLiteral("Z Axis step must be \na multiple of Z Axis Mov/Pulse"));
    if (const QString strSteps = NoticeOfSteps(m_Data, AppConfig::m_bMultipassImgCarving); !strSteps.isEmpty())
        TellNotice(strSteps);
}

std::vector<stJobError> CPictureJob::Errors() const
{
    const QString strWhy = WhyNotStarted(m_Data);
    if (strWhy.isEmpty()) return {};
    return {{0, strWhy}};
}

QString CPictureJob::Size() const
{
    return QStringLiteral("%1 by %2 pixels").arg(m_iCols).arg(m_iRows);
}

stReliefBlock CPictureJob::Block() const
{
    return m_Block;
}

bool CPictureJob::WriteGCode(const QString& strFile)
{
    CMachine machine;   // which is not set up: nothing moves
    CCarver carver(machine);
    carver.m_stImgCarvingData = std::move(m_Data);
    return carver.CreateGCodeFromImage(strFile);
}

void CPictureJob::Start(AppControl& app, const stRunOptions&)
{
    const stImgCarvingInfo& info = *m_Data.pInfo;
    m_Block = {info.fLength, info.fWidth, info.fLength / m_iCols, info.fDepth};
    app.m_stImgCarvingData = std::move(m_Data);
    app.StartImgCarving();
}
