#pragma once
#include <QSize>

// How the work area lies on its picture: texts and pockets are traced on it, at its resolution.
struct stDisplayScale
{
    QSize size;               // of the picture, pixels
    int iMargin = 25;         // around the work area, pixels
    double fPixPerMM = 1.0;   // above 0
};
