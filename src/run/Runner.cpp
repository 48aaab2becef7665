#include "run/Runner.h"

#include "common/FileWriter.h"
#include "config/AppConfig.h"
#include "config/SettingsTable.h"
#include "hardware/VantorGpio.h"
#include "platform/Computer.h"
#include "preview/PathDrawing.h"
#include "run/MachineWiring.h"
#include "time/Wait.h"
#include "zprofile/ZProfileFile.h"

#include <QDir>

#include <cstdio>

static constexpr qint64 TICK_US = 34'000;   // of the supervision loop on the real clock

static CShared<int> g_iSignal = 0;
static CShared<CVirtualTime*> g_pTime = nullptr;

CRunner::CRunner(const stRunOptions& options) : m_Options(options) {}

CRunner::~CRunner()
{
    g_pTime = nullptr;
    CVirtualPins::SetObserver(nullptr);
    CMotionObserver::Set(nullptr);
}

void CRunner::Interrupt(int iSignal)
{
    g_iSignal = iSignal;
    if (CVirtualTime* pTime = g_pTime) pTime->Interrupt();
}

eExit CRunner::Run()
{
    m_pScreen = std::make_unique<CHeadlessScreen>(m_Options.strJob, m_Options.bQuiet);
    COperatorScreen::Set(m_pScreen.get());
    SetStartDetached([](const QString& strProgram) {
        COperatorScreen::Get().AddLogMsg(QStringLiteral("not started here: ") + strProgram, MSG_NOTICE);
        return false;
    });
    if (!PrepareFolders() || !PrepareSettings()) return m_eFailed;
    if (m_Options.bListSettings) {
        std::fputs((CSettingsTable::List().join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8().constData(), stdout);
        return EXIT_DONE;
    }
    if (!PrepareJob() || !PrepareOutputs() || !LoadSurface() || !LoadProfile()) return m_eFailed;
    if (g_iSignal != 0) {
        m_pScreen->Say(QStringLiteral("interrupted"));
        return EXIT_INTERRUPTED;
    }
    const size_t uWrong = PrintErrors();
    if (m_Options.bCheck) {
        if (uWrong == 0 && m_pJob->HasGCode())
            PrintUnlessQuiet(QStringLiteral("%1: %2\n").arg(m_Options.strJob, m_pJob->Size()));
        return uWrong == 0 ? EXIT_DONE : EXIT_WRONG;
    }
    if (uWrong > 0) {
        m_pScreen->Say(QStringLiteral("%1: %2, not run")
                           .arg(m_Options.strJob,
                                uWrong == 1 ? QStringLiteral("1 error") : QStringLiteral("%1 errors").arg(uWrong)));
        return EXIT_WRONG;
    }
    if (!m_Options.strToGCode.isEmpty()) return WriteGCode();
    if (!SetUpMachine()) return m_eFailed;
    RunOperations();
    return Finish();
}

bool CRunner::Fail(const QString& strWhy)
{
    m_pScreen->Say(QStringLiteral("vantor-run: ") + strWhy);
    m_eFailed = EXIT_USAGE;
    return false;
}

size_t CRunner::PrintErrors() const
{
    if (!m_pJob) return 0;
    const std::vector<stJobError> lstErrors = m_pJob->Errors();
    for (const stJobError& error : lstErrors) {
        const QString strLine = error.lLine > 0 ? m_pJob->LineForm().arg(error.lLine) : QStringLiteral(":");
        std::fputs((m_Options.strJob + strLine + QLatin1Char(' ') + CHeadlessScreen::OneLine(error.strText) +
                    QLatin1Char('\n'))
                       .toUtf8()
                       .constData(),
                   stdout);
    }
    return lstErrors.size();
}

eExit CRunner::WriteGCode()
{
    if (!m_pJob->WriteGCode(m_Options.strToGCode)) {
        Fail(m_Options.strToGCode + QStringLiteral(": cannot be written"));
        return m_eFailed;
    }
    PrintUnlessQuiet(
        QStringLiteral("%1: %2, written to %3\n").arg(m_Options.strJob, m_pJob->Size(), m_Options.strToGCode));
    return EXIT_DONE;
}

void CRunner::PrintUnlessQuiet(const QString& strText) const
{
    if (!m_Options.bQuiet) std::fputs(strText.toUtf8().constData(), stdout);
}

// ---- The machine ------------------------------------------------------------------------------------------------

bool CRunner::SetUpMachine()
{
    if (!m_Options.bRealTime) m_pTime = std::make_unique<CVirtualTime>();
    m_pApp = std::make_unique<AppControl>();
    m_pMoves = std::make_unique<CMoveRecording>(*m_pApp);
    CVANTORGPIO::InitGpio();
    if (AppConfig::m_bPWMCtrlUsed) CVANTORGPIO::PwmStart();
    m_pMachine = std::make_unique<CVirtualMachine>(MachineOfSettings(AppConfig::m_bHomeSensorsUsed));
    CVirtualPins::SetObserver(m_pMachine.get());
    PutSurfaceUnderTheProbe();
    m_pOperator = std::make_unique<CAutoOperator>(*m_pApp, *m_pScreen, m_Options);

    m_lBegin = CWait::Now();
    m_Wall.start();
    m_pScreen->SetBegin(m_lBegin);
    if (!OpenRecordings()) return false;
    HookWorker();
    if (m_pTime) HookDryRun();
    return true;
}

bool CRunner::OpenRecordings()
{
    CMotionObserver::Set(m_pMoves.get());
    m_pApp->m_pWorkObserver = m_pMoves.get();
    m_pMoves->KeepPath(!m_Options.strPicture.isEmpty());
    if (!m_Options.strRelief.isEmpty()) m_pRelief = std::make_unique<CRelief>(AppConfig::m_fEndMillDia);
    if (!m_Options.strMoves.isEmpty() && !m_pMoves->Open(m_Options.strMoves, m_lBegin))
        return Fail(m_Options.strMoves + QStringLiteral(": cannot be written"));
    if (m_Options.strEdges.isEmpty()) return true;
    m_pEdges = std::make_unique<CEdgeRecording>(*m_pApp);
    if (!m_pEdges->Open(m_Options.strEdges, m_lBegin))
        return Fail(m_Options.strEdges + QStringLiteral(": cannot be written"));
    m_pMachine->SetRecorder(m_pEdges.get());
    return true;
}

void CRunner::HookWorker()
{
    if (m_pJob) {
        m_pScreen->SetLines(m_pJob->Lines(), m_pJob->LineForm());
        m_pMoves->m_fnOnMove = [this](const stFloatPoint& from, const stFloatPoint& to) {
            if (!m_bJobRuns) return;
            m_pJob->OnMove(from, to);
            if (m_pRelief) FollowCarriages();
        };
    }
    QObject::connect(
        m_pApp.get(), &AppControl::SelNxtGCodeLine, m_pApp.get(),
        [this](unsigned uLine) {
            ++m_lLinesRun;
            m_pScreen->SetLine(static_cast<qint64>(uLine) + 1);
            if (m_pTime) m_pScreen->ShowProgress();
        },
        Qt::DirectConnection);
    QObject::connect(
        m_pApp.get(), &AppControl::AddMsg, m_pApp.get(),
        [this](const QString& strMsg, eAppMsgType eType) { m_pScreen->AddLogMsg(strMsg, eType); },
        Qt::DirectConnection);
}

// Where the tool really is, not where the system takes it to be.
void CRunner::FollowCarriages()
{
    stFloatPoint tool;
    for (const int axis : {X_AXIS, Y_AXIS, Z_AXIS})
        AxisOf(tool, axis) = m_pMachine->CarriageMm(axis) - AxisOf(m_WorkZero, axis);
    m_pRelief->MoveTo(tool);
}

void CRunner::HookDryRun()
{
    m_pTime->m_fnSupervise = [this] { m_pOperator->Tick(); };
    if (m_pEdges) m_pTime->m_fnAdvance = [this](qint64 lTo) { m_pEdges->WriteUntil(lTo); };
    m_pTime->m_fnStuck = [this] {
        m_pOperator->EmergencyStop(QStringLiteral("the program waits for what will never come"), EXIT_TIME);
    };
    m_pTime->m_fnRunOut = [this] {
        m_pOperator->EmergencyStop(QStringLiteral("the clock of the dry run has come to its end"), EXIT_TIME);
    };
    m_pTime->m_fnInterrupted = [this] { m_pOperator->EmergencyStop(QStringLiteral("interrupted"), EXIT_INTERRUPTED); };
    m_pOperator->PlanEvents(*m_pTime);
    g_pTime = m_pTime.get();
    if (g_iSignal != 0) m_pTime->Interrupt();
}

// ---- Operations -------------------------------------------------------------------------------------------------

void CRunner::RunOperations()
{
    (void)Operate([this] { (void)m_pApp->InitMachine(); });   // which may home by itself
    RunHoming();
    RunProbe();
    RunMakeProfile();
    RunJob();
}

// Starts an operation and waits for its end. False: it told an error, or was stopped.
bool CRunner::Operate(const std::function<void()>& fnStart)
{
    if (IsStopped()) return false;
    fnStart();
    if (m_pTime)
        (void)m_pApp->wait();
    else
        WaitOnRealClock();
    m_pOperator->TakeMessages();
    m_pOperator->EndOperation();
    return !IsStopped();
}

void CRunner::WaitOnRealClock()
{
    while (!m_pApp->wait(QDeadlineTimer(0))) {
        const qint64 lNow = CWait::Now() - m_lBegin;
        if (g_iSignal != 0 && m_pOperator->Result() != EXIT_INTERRUPTED)
            m_pOperator->EmergencyStop(QStringLiteral("interrupted"), EXIT_INTERRUPTED);
        m_pOperator->DoWhatIsDue(lNow);
        m_pOperator->Tick();
        if (m_pEdges) m_pEdges->WriteAllSoFar();
        const qint64 lUntilDue = std::max<qint64>(0, m_pOperator->NextDue() - lNow) / 1000;
        (void)m_pApp->wait(QDeadlineTimer(std::chrono::microseconds(std::min(TICK_US, lUntilDue + 1))));
    }
}

void CRunner::RunHoming()
{
    if (!AppConfig::m_bHomeSensorsUsed || m_pApp->GetHomeDone()) return;
    if (!Operate([this] { (void)m_pApp->StartMchHomingSequence(); })) return;
    if (m_pApp->GetHomeDone())
        m_pScreen->AddLogMsg(QStringLiteral("Machine Homing finished"), MSG_INFO);
    else
        m_pOperator->EmergencyStop(QStringLiteral("The machine has not found its home"), EXIT_WRONG);
}

void CRunner::RunProbe()
{
    if (!m_Options.bProbeZ0) return;
    const auto bTouched = [this] {
        for (const stTold& told : m_pScreen->Told())
            if (told.eType == MSG_INFO && told.strText.endsWith(QLatin1String("Work Zero is set"))) return true;
        return false;
    };
    if (Operate([this] { m_pApp->StartZ0usingZProbeSeq(); }) && !bTouched())
        m_pOperator->EmergencyStop(QStringLiteral("The probe has met nothing"), EXIT_WRONG);
}

void CRunner::RunMakeProfile()
{
    if (m_Options.strMakeZProfile.isEmpty() || !Operate([this] { m_pApp->RunZProfile(); })) return;
    if (!HasZProfile())
        m_pOperator->EmergencyStop(ZProfileNotCreated(), EXIT_WRONG);
    else if (!SaveZProfile(m_Options.strMakeZProfile))
        Fail(m_Options.strMakeZProfile + QStringLiteral(": cannot be written"));
    else
        m_pScreen->AddLogMsg(QStringLiteral("Z profiling completed"), MSG_INFO);
    AppConfig::m_bUseZProfile = true;
}

void CRunner::RunJob()
{
    if (!m_pJob || m_eFailed != EXIT_DONE) return;
    m_pMoves->BeginCounting();
    for (const eAxis axis : {X_AXIS, Y_AXIS, Z_AXIS})
        AxisOf(m_WorkZero, axis) = m_pMachine->CarriageMm(axis) - m_pApp->GetCurPos(axis);
    if (m_pRelief) FollowCarriages();
    m_bJobRuns = true;
    (void)Operate([this] { m_pJob->Start(*m_pApp, m_Options); });
}

// ---- The end ----------------------------------------------------------------------------------------------------

stSummary CRunner::Summarize() const
{
    stSummary summary;
    summary.strFile = m_Options.strJob.isEmpty() ? QStringLiteral("vantor-run") : m_Options.strJob;
    summary.strPicture = m_Options.strPicture;
    summary.eResult = m_eFailed != EXIT_DONE ? m_eFailed : m_pOperator->Result();
    summary.bRealTime = m_Options.bRealTime;
    if (m_pJob) {
        summary.lLines = m_pJob->Lines();
        if (m_pJob->HasGCode()) summary.strSize = m_pJob->Size();
    }
    summary.lLinesRun = m_lLinesRun;
    summary.iToolChanges = m_pOperator->ToolChanges();
    summary.fMachineTime = static_cast<double>(CWait::Now() - m_lBegin) / 1e9;
    summary.fWallTime = static_cast<double>(m_Wall.nsecsElapsed()) / 1e9;
    summary.iAxes = AppConfig::m_iMchType;
    summary.figures = m_pMoves->Figures();
    for (int axis = 0; axis < summary.iAxes; ++axis) {
        summary.ends[static_cast<size_t>(axis)] = m_pApp->m_AxisCtrl[axis].GetCurPosLong();
        summary.carriages[static_cast<size_t>(axis)] = m_pMachine->Carriage(axis);
    }
    summary.lstTold = m_pScreen->Told();
    summary.lTold = m_pScreen->ToldCount();
    return summary;
}

void CRunner::SavePicture(const QString& strPath, const QImage& image)
{
    CFileWriter file(strPath);
    if (!file.Open() || !image.save(&file, "PNG") || !file.Commit())
        Fail(strPath + QStringLiteral(": cannot be written"));
}

eExit CRunner::Finish()
{
    m_pScreen->EndProgress();
    if (!m_pMoves->Close()) Fail(m_Options.strMoves + QStringLiteral(": could not be written whole"));
    stSummary summary = Summarize();
    if (m_pEdges && !m_pEdges->Close()) Fail(m_Options.strEdges + QStringLiteral(": could not be written whole"));
    if (!m_Options.strPicture.isEmpty()) {
        const QString strNote = QStringLiteral("machine time %1    path %2 mm")
                                    .arg(ClockTime(summary.fMachineTime))
                                    .arg(summary.figures.fFeedPath + summary.figures.fRapidPath, 0, 'f', 1);
        const QImage image = DrawToolPath(m_pMoves->Path(), QFileInfo(summary.strFile).fileName(), strNote);
        SavePicture(m_Options.strPicture, image);
    }
    if (m_pRelief) SavePicture(m_Options.strRelief, m_pRelief->Draw(m_pJob ? m_pJob->Block() : stReliefBlock()));
    if (QString strWhy; m_pJob && !m_pJob->Finish(strWhy)) Fail(strWhy);
    if (m_eFailed != EXIT_DONE) summary.eResult = m_eFailed;
    if (!m_Options.strSummary.isEmpty() && !ReplaceFile(m_Options.strSummary, SummaryJson(summary)))
        Fail(m_Options.strSummary + QStringLiteral(": cannot be written"));
    PrintUnlessQuiet(SummaryText(summary));
    return m_eFailed != EXIT_DONE && summary.eResult != EXIT_INTERRUPTED ? m_eFailed : summary.eResult;
}
