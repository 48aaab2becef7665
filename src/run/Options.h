#pragma once
#include <QString>
#include <QStringList>

#include <vector>

// What the process ends with.
enum eExit
{
    EXIT_DONE = 0,
    EXIT_WRONG = 1,          // the program is wrong, the run told an error, or it was stopped
    EXIT_USAGE = 2,          // the call, or a file that cannot be read or written
    EXIT_TIME = 3,           // the time limit, or a wait that nothing will ever end
    EXIT_INTERRUPTED = 130   // Ctrl-C
};

// An input that changes by itself at a time of the machine.
struct stTimedInput
{
    enum eKind
    {
        INPUT,   // 1 to 4, as the program's M66 counts them
        ESTOP,
        START,
        PROBE,
        GPIO   // by Broadcom number
    };
    eKind eWhat = INPUT;
    int iNumber = 0, iLevel = 0;
    double fSeconds = 0.0;
};

// One call of vantor-run. Empty paths and zero limits stand for "not given".
struct stRunOptions
{
    QString strJob;   // a path, or "-" for standard input
    bool bCheck = false, bRealTime = false, bHoming = false, bSimulation = false, bProbeZ0 = false, bQuiet = false;
    bool bListSettings = false, bHelp = false, bVersion = false;
    int iStartLine = 1;   // 1-based
    QString strDataDir, strConfig, strZProfile, strMakeZProfile, strMoves, strEdges, strPicture, strRelief, strSummary;
    QString strToGCode;                      // the job's program instead of a run
    QString strSurface;                      // a file, or a height in mm
    QStringList lstSettings, lstJobFields;   // NAME=VALUE
    std::vector<stTimedInput> lstInputs;
    double fToolChangeTime = 0.0, fMaxTime = 0.0;   // s of the machine
};

class COptions
{
public:
    // Arguments without the program's own name. False, and strWhy holds one line: the call is not understood.
    static bool Parse(const QStringList& arguments, stRunOptions& options, QString& strWhy);
    static QString Help();
    static QString Version();
};
