#pragma once
#include "run/HeadlessScreen.h"
#include "run/MoveRecording.h"
#include "run/Options.h"

#include <QByteArray>

// What a run has come to.
struct stSummary
{
    QString strFile, strPicture;
    QString strSize;   // of a job that is no program
    eExit eResult = EXIT_DONE;
    bool bRealTime = false;
    qint64 lLines = 0, lLinesRun = 0;
    int iToolChanges = 0;
    double fMachineTime = 0.0, fWallTime = 0.0;   // s
    int iAxes = 3;
    stMoveFigures figures;
    std::array<qint32, MAX_AXES> ends = {};        // position units
    std::array<qint64, MAX_AXES> carriages = {};   // pulses of the virtual machine
    std::vector<stTold> lstTold;
    qint64 lTold = 0;   // also those that are not kept
};

QString SummaryText(const stSummary& summary);
QByteArray SummaryJson(const stSummary& summary);
// "1:02:03.4"
QString ClockTime(double fSeconds);
