#pragma once
#include "run/AutoOperator.h"
#include "run/EdgeRecording.h"
#include "run/HeadlessScreen.h"
#include "run/JobKind.h"
#include "run/MoveRecording.h"
#include "run/Options.h"
#include "run/Summary.h"
#include "run/Surface.h"

#include <QElapsedTimer>
#include <QTemporaryDir>

#include <functional>
#include <memory>

// One call of vantor-run, from the files to the summary. Once a process: the machine's statics are not put back.
// Main thread.
class CRunner
{
public:
    explicit CRunner(const stRunOptions& options);
    ~CRunner();
    eExit Run();

    // From a signal handler: an emergency stop, soon.
    static void Interrupt(int iSignal);

private:
    bool Fail(const QString& strWhy);   // of the call or a file; always false

    bool PrepareFolders();
    bool PrepareSettings();
    bool PrepareJob();
    bool LoadFromStream(QFile& file, QString& strPath);
    bool LoadGrid(const QString& strPath);
    bool LoadSurface();
    bool LoadProfile();
    bool PrepareOutputs();
    bool CheckOutput(const QString& strPath);

    size_t PrintErrors() const;
    eExit WriteGCode();
    void PrintUnlessQuiet(const QString& strText) const;
    bool SetUpMachine();
    void PutSurfaceUnderTheProbe();
    bool OpenRecordings();
    void FollowCarriages();
    void HookWorker();
    void HookDryRun();
    void RunOperations();
    bool Operate(const std::function<void()>& fnStart);
    void WaitOnRealClock();
    void RunHoming();
    void RunProbe();
    void RunMakeProfile();
    void RunJob();
    eExit Finish();
    stSummary Summarize() const;
    void SavePicture(const QString& strPath, const QImage& image);
    void PrintSummary(const stSummary& summary);
    bool IsStopped() const { return m_pOperator->Result() != EXIT_DONE; }

    const stRunOptions m_Options;
    QTemporaryDir m_Scratch;
    eExit m_eFailed = EXIT_DONE;
    CSurface m_Surface{{}};   // what the probe meets; empty: flat
    double m_fFlat = 0.0;     // mm
    // Destroyed in the opposite order: the worker's axes still ask for virtual time.
    std::unique_ptr<CVirtualTime> m_pTime;
    std::unique_ptr<CHeadlessScreen> m_pScreen;
    std::unique_ptr<CJobKind> m_pJob;   // null: only operations without a job
    std::unique_ptr<CMoveRecording> m_pMoves;
    std::unique_ptr<AppControl> m_pApp;
    std::unique_ptr<CVirtualMachine> m_pMachine;
    std::unique_ptr<CEdgeRecording> m_pEdges;
    std::unique_ptr<CRelief> m_pRelief;
    stFloatPoint m_WorkZero;   // of the job, as the carriages count, mm
    std::unique_ptr<CAutoOperator> m_pOperator;
    QElapsedTimer m_Wall;
    qint64 m_lBegin = 0, m_lLinesRun = 0;
    CShared<bool> m_bJobRuns = false;
};
