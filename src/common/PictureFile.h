#pragma once
#include <QString>

// Picture files before they are read, and what their reader can hold. Any thread.

// Empty where nothing is missing; else in the operator's words. A reader takes the rest of a bitmap from whatever lay
// in the memory, and paints the rest of a JPEG grey, without a word. Other formats are their reader's business.
QString WhyNotWhole(const QString& strPath);

// Empty where the picture's size is not why it can't be read; else with the number of pixels that can.
QString WhyTooLarge(const QString& strPath);

// Of the usual kinds, which are read as four bytes a pixel; those of two bytes a colour may have half.
qint64 MostPixels();
