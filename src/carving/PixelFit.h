#pragma once
#include "carving/ImgCarving.h"

// Sizes and steps that the axes can really go: a pixel is a whole number of pulses, a step a whole number of pixels.
// No state; mm.

// The size of a pixel when so many of them make fSide: of four decimals, raised to the next multiple of fPulse.
double FitPixel(double fSide, int iPixels, double fPulse, bool& bRaised);
// Of the job as it is.
double PixelOf(const stImgCarvingInfo& info, const QImage& image);

// From the length that the operator has set to the length that can be cut, the width of the same picture, and steps of
// one pixel. True: the length was no multiple of pulses and has been raised.
bool FitToLength(stImgCarvingInfo& info, const QImage& image);
// The same from the width.
bool FitToWidth(stImgCarvingInfo& info, const QImage& image);
// Down to whole multiples of fUnit. True: it was none.
bool FitStep(double& fStep, double fUnit);
