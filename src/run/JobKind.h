#pragma once
#include "control/AppControl.h"
#include "run/HeadlessScreen.h"
#include "run/Options.h"
#include "run/Relief.h"

#include <functional>
#include <memory>
#include <vector>

// A field of a job's record that the call may set. False: the value is none, and strWhy tells what it must be.
struct stJobField
{
    QString strName;
    std::function<bool(const QString& strValue, QString& strWhy)> fnSet;
};
// A finite number above 0, such as a step.
stJobField StepField(const char* szName, double& fStep);

// The file of a job.
struct stJobFile
{
    QString strPath;      // can be read, more than once
    QString strName;      // as the call tells it
    QString strScratch;   // a folder for files in between, which goes with the process
    const CHeadlessScreen& screen;
};

// One thing that is wrong with a job.
struct stJobError
{
    qint64 lLine;   // 1-based; 0: none
    QString strText;
};

// What vantor-run does with the jobs of one kind. A new kind is a class of its own in a file of its own, and a row in
// the table of JobKinds.cpp. Main thread.
class CJobKind
{
public:
    virtual ~CJobKind() = default;

    // Fields for --job; set before Load.
    virtual std::vector<stJobField> Fields() { return {}; }
    // False: it can't be read, and strWhy is read behind the job's name. What is odd goes to the operator's log.
    virtual bool Load(const stJobFile& file, QString& strWhy) = 0;
    // Why it can't be run.
    virtual std::vector<stJobError> Errors() const { return {}; }
    // How much it is, such as "12 shapes, 3400 points", for the summary and for --check.
    virtual QString Size() const = 0;
    virtual qint64 Lines() const { return 0; }   // of a program, for the progress
    // How a line of the program is told behind the job's name.
    virtual QString LineForm() const { return QStringLiteral(":%1:"); }

    // Whether --to-gcode makes sense, and the program written. False: strFile can't be written.
    virtual bool HasGCode() const { return true; }
    virtual bool WriteGCode(const QString& strFile) = 0;

    // Starts the operation.
    virtual void Start(AppControl& app, const stRunOptions& options) = 0;
    // A straight move of the job as the axes have made it, mm. On the real clock from the threads that make the pulses,
    // one at a time.
    virtual void OnMove(const stFloatPoint& /*from*/, const stFloatPoint& /*to*/) {}
    // What --relief shows.
    virtual stReliefBlock Block() const { return {}; }
    // Behind the run. False: a result can't be written, and strWhy says which.
    virtual bool Finish(QString& /*strWhy*/) { return true; }
};

// By the file's ending, of either case; any other is a G-code program.
std::unique_ptr<CJobKind> MakeJobKind(const stRunOptions& options);
// "NAME=VALUE" to the job's record. False: strWhy tells what is wrong, and the names that there are.
bool SetJobField(CJobKind& job, const QString& strAssignment, QString& strWhy);
// A line for each kind, for the help.
QString JobKindsHelp();
