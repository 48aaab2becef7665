#pragma once
// What the sources of the window share and nobody else needs.
#include "ui_MainWindow.h"
#include "window/MainWindow.h"

#include <QThread>

inline const QString SCREEN_BTN_UNSELECTED = QStringLiteral(
    "background-color: qradialgradient(spread:pad, cx:0.5, cy:0.5, radius:0.8, fx:0.5, fy:0.5, stop:0 rgba(255, 255, "
    "255, 255), stop:1 rgba(100, 100, 100, 255));border-radius: 20px; border-style: solid; border-width: "
    "2px;border-color: black;");
inline const QString SCREEN_BTN_SELECTED = QStringLiteral(
    "background-color: qradialgradient(spread:pad, cx:0.5, cy:0.5, radius:0.8, fx:0.5, fy:0.5, stop:0 rgba(255, 255, "
    "255, 255), stop:1 rgba(0, 0, 255, 255));border-radius: 20px; border-style: solid; border-width: "
    "2px;border-color: black;");
inline const QString LENGTH_LABEL = QStringLiteral("Length(X)"), WIDTH_LABEL = QStringLiteral("Width(Y)"),
                     HEIGHT_LABEL = QStringLiteral("Height(Z)");
inline const QString SPINDLE_CW = QStringLiteral("Spindle\nCW "), SPINDLE_CCW = QStringLiteral("Spindle\nCCW ");

template <class Fn> bool MainWindow::PostToInterface(Fn&& fnCall)
{
    if (QThread::currentThread() == thread()) return false;
    QMetaObject::invokeMethod(this, std::forward<Fn>(fnCall), Qt::QueuedConnection);
    return true;
}
