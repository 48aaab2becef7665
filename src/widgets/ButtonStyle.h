#pragma once
#include <QString>

// Style sheets of push buttons. Gray rests; green, blue and red mark what is selected or active.
#define VANTOR_BTN_GRADIENT                                                                                            \
    "qradialgradient(spread:pad, cx:0.5, cy:0.5, radius:0.8, fx:0.5, fy:0.5, stop:0 rgba(255, 255, 255, 255), stop:1 "
inline const QString BTN_BKGND_GRAY =
    QStringLiteral(":enabled {background-color: " VANTOR_BTN_GRADIENT
                   "rgba(100, 100, 100, 255));border-style: solid;border-width: 2px;border-color: black;}\n"
                   ":disabled{background-color:rgb(124,124, 124);color:rgb(0, 0, 0);}");
inline const QString BTN_BKGND_BLUE =
    QStringLiteral("background-color: " VANTOR_BTN_GRADIENT
                   "rgba(0, 0, 255, 255));border-style: solid;border-width: 2px;border-color: black;");
inline const QString BTN_BKGND_GREEN =
    QStringLiteral("background-color: " VANTOR_BTN_GRADIENT
                   "rgba(0, 100, 0, 255));border-style: solid;border-width: 2px;border-color: black;");
inline const QString BTN_BKGND_RED =
    QStringLiteral("background-color: " VANTOR_BTN_GRADIENT
                   "rgba(255, 0, 0, 255));border-style: solid;border-width: 2px;border-color: black;");
#undef VANTOR_BTN_GRADIENT
inline const QString BTN_BKGND_START = QStringLiteral("color: rgb(255, 255, 255);background-color: rgb(0, 100, 0);");
inline const QString BTN_BKGND_PAUSE = QStringLiteral("color: rgb(255, 255, 255);background-color: rgb(150, 100, 0);");
