#include "carving/PixelFit.h"

#include "common/UnitConverter.h"
#include "config/AppConfig.h"

double FitPixel(double fSide, int iPixels, double fPulse, bool& bRaised)
{
    const double fPixel = QString::number(fSide / iPixels, 'f', PRECISION).toDouble();
    const long long lPixel = CUnitConverter::GetInt(fPixel), lPulse = CUnitConverter::GetInt(fPulse);
    bRaised = lPulse > 0 && lPixel % lPulse != 0;
    return bRaised ? CUnitConverter::GetDouble(lPixel - lPixel % lPulse + lPulse) : fPixel;
}

double PixelOf(const stImgCarvingInfo& info, const QImage& image)
{
    bool bRaised = false;
    return FitPixel(info.fLength, image.width(), AppConfig::m_fAxisMovPerPulse[X_AXIS], bRaised);
}

// Both sides of the picture from one of them.
static bool FitSides(double& fSide, int iPixels, double& fOther, int iOtherPixels, eAxis axis, stImgCarvingInfo& info)
{
    bool bRaised = false;
    const double fPixel = FitPixel(fSide, iPixels, AppConfig::m_fAxisMovPerPulse[axis], bRaised);
    if (bRaised) fSide = iPixels * fPixel;   // otherwise it stays as it was entered
    fOther = iOtherPixels * fPixel;
    info.fXStep = info.fYStep = fPixel;
    return bRaised;
}

bool FitToLength(stImgCarvingInfo& info, const QImage& image)
{
    return FitSides(info.fLength, image.width(), info.fWidth, image.height(), X_AXIS, info);
}

bool FitToWidth(stImgCarvingInfo& info, const QImage& image)
{
    return FitSides(info.fWidth, image.height(), info.fLength, image.width(), Y_AXIS, info);
}

bool FitStep(double& fStep, double fUnit)
{
    const qint32 lStep = CUnitConverter::GetInt(fStep), lUnit = CUnitConverter::GetInt(fUnit);
    if (lUnit <= 0 || lStep % lUnit == 0) return false;
    fStep = CUnitConverter::GetDouble(lStep - lStep % lUnit);
    return true;
}
