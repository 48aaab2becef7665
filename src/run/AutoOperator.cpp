#include "run/AutoOperator.h"

#include "common/Refusals.h"
#include "time/Wait.h"

#include <algorithm>
#include <cmath>

static constexpr qint64 WORKER_POLL_US = 1'000'000;   // the worker polls a pause once a second
// Sleeps of the worker under the pause, on the real clock. The first may still be that of the wait for the pause.
static CShared<int> g_iPausedSleeps = 0;
static CShared<const AppControl*> g_pApp = nullptr;

static qint64 Ns(double fSeconds)
{
    return std::llround(std::min(fSeconds * 1e9, static_cast<double>(CVirtualTime::END)));
}

CAutoOperator::CAutoOperator(AppControl& app, CHeadlessScreen& screen, const stRunOptions& options)
    : m_App(app), m_Supervision(app, false), m_Screen(screen), m_Options(options), m_lstInputs(options.lstInputs)
{
    std::stable_sort(m_lstInputs.begin(), m_lstInputs.end(),
                     [](const stTimedInput& a, const stTimedInput& b) { return a.fSeconds < b.fSeconds; });
    g_pApp = &m_App;
    CWait::SetSleepHook(OnSleep);
}

CAutoOperator::~CAutoOperator()
{
    CWait::SetSleepHook(nullptr);
    g_pApp = nullptr;
}

void CAutoOperator::OnSleep(qint64 lUs)
{
    const AppControl* pApp = g_pApp;
    if (pApp && QThread::currentThread() == pApp && lUs >= WORKER_POLL_US && pApp->m_bPause)
        g_iPausedSleeps = g_iPausedSleeps + 1;
}

// ---- Inputs and the time limit ----------------------------------------------------------------------------------

int CAutoOperator::PinOf(const stTimedInput& input) const
{
    switch (input.eWhat) {
    case stTimedInput::ESTOP: return AppConfig::m_iEStopInput;
    case stTimedInput::START: return AppConfig::m_iPgmStartInput;
    case stTimedInput::PROBE: return AppConfig::m_iZProbeInput;
    case stTimedInput::GPIO: return input.iNumber;
    // A number that the map does not have reads pin 0.
    default: return AppConfig::m_lstIPs.value(static_cast<quint8>(input.iNumber), 0);
    }
}

void CAutoOperator::ChangeInput(const stTimedInput& input)
{
    CVirtualPins::SetInput(PinOf(input), input.iLevel);
    WatchInputs();
}

void CAutoOperator::PlanEvents(CVirtualTime& time)
{
    for (const stTimedInput& input : m_lstInputs) {
        const int iPin = PinOf(input);
        // A loop that runs over this time sees the change at its time: a stop ends it, and an axis reads its own
        // sensor.
        const auto fnLoop = [iPin, iLevel = input.iLevel](int iRun, CShared<bool>& bRun) {
            if (iPin == AppConfig::m_iEStopInput && iLevel == 1 && !AppConfig::m_bSimulationMode)
                bRun.SetRelaxed(false);
            else if ((iRun > 0 && iPin == AppConfig::m_iAxisMchHomeSensorInput[iRun - 1]) ||
                     (iRun == 1 + Z_AXIS && iPin == AppConfig::m_iZProbeInput))
                CVirtualPins::SetInput(iPin, iLevel);
        };
        time.AddEvent({Ns(input.fSeconds), [this, input] { ChangeInput(input); }, fnLoop});
    }
    if (m_Options.fMaxTime > 0.0)
        time.AddEvent({Ns(m_Options.fMaxTime),
                       [this] { EmergencyStop(QStringLiteral("the time limit is reached"), EXIT_TIME); },
                       [](int, CShared<bool>& bRun) { bRun.SetRelaxed(false); }});
}

qint64 CAutoOperator::NextDue() const
{
    qint64 lNext = m_uNextInput < m_lstInputs.size() ? Ns(m_lstInputs[m_uNextInput].fSeconds) : CWait::FOREVER;
    if (m_Options.fMaxTime > 0.0 && m_eResult == EXIT_DONE) lNext = std::min(lNext, Ns(m_Options.fMaxTime));
    return lNext;
}

void CAutoOperator::DoWhatIsDue(qint64 lNow)
{
    for (; m_uNextInput < m_lstInputs.size() && Ns(m_lstInputs[m_uNextInput].fSeconds) <= lNow; ++m_uNextInput)
        ChangeInput(m_lstInputs[m_uNextInput]);
    if (m_Options.fMaxTime > 0.0 && lNow >= Ns(m_Options.fMaxTime) && m_eResult == EXIT_DONE)
        EmergencyStop(QStringLiteral("the time limit is reached"), EXIT_TIME);
}

void CAutoOperator::WatchInputs()
{
    if (m_Supervision.ReadStopInput() == STOP_INPUT_RISEN)
        EmergencyStop(QStringLiteral("Emergency Stop Triggered"), EXIT_WRONG);
    // It would only select the program's screen, and while an operation runs not even that.
    if (m_Supervision.ReadStartInput() != START_INPUT_SAME) m_Screen.AddLogMsg(MACHINE_IN_USE, MSG_ERROR);
}

// ---- The supervision loop ---------------------------------------------------------------------------------------

void CAutoOperator::Tick()
{
    m_Supervision.SendSpindleFrequency();
    TakeMessages();
    if (m_Supervision.TakeStartRequest())
        m_Screen.AddLogMsg(QStringLiteral("Program stop: shown, the run goes on"), MSG_NOTICE);
    AnswerToolChange();
    WatchInputs();
    m_Screen.ShowProgress();
}

// The lists give the newest first: told here in the order in which they came.
void CAutoOperator::TakeMessages()
{
    std::vector<QString> lstErrors, lstInfos;
    for (stMessages next = m_Supervision.NextMessages(); !next.IsEmpty(); next = m_Supervision.NextMessages()) {
        if (!next.strError.isEmpty()) lstErrors.push_back(next.strError);
        if (!next.strInfo.isEmpty()) lstInfos.push_back(next.strInfo);
    }
    std::for_each(lstInfos.rbegin(), lstInfos.rend(),
                  [this](const QString& strMsg) { m_Screen.AddLogMsg(strMsg, MSG_INFO); });
    std::for_each(lstErrors.rbegin(), lstErrors.rend(), [this](const QString& strMsg) { m_Screen.AddError(strMsg); });
    m_bErrors |= !lstErrors.empty();
}

bool CAutoOperator::IsWorkerWaiting() const
{
    return CVirtualTime::Current() || g_iPausedSleeps >= 2;
}

void CAutoOperator::AnswerToolChange()
{
    const qint64 lNow = CWait::Now();
    if (m_Supervision.BeginToolChange()) {
        g_iPausedSleeps = 0;
        (void)m_Supervision.Pause();
        ++m_iToolChanges;
        m_eToolChange = TOOL_HELD;
    } else if (m_eToolChange == TOOL_HELD && IsWorkerWaiting()) {
        m_eToolChange = TOOL_ANSWERED;
        m_lLiftAt = lNow + Ns(m_Options.fToolChangeTime);
        CVirtualTime* pTime = CVirtualTime::Current();
        if (pTime && m_lLiftAt > lNow) pTime->AddEvent({m_lLiftAt, [this] { LiftPause(); }, {}});
    }
    if (m_eToolChange == TOOL_ANSWERED && lNow >= m_lLiftAt) LiftPause();
}

void CAutoOperator::LiftPause()
{
    if (m_eToolChange != TOOL_ANSWERED) return;
    m_eToolChange = TOOL_NONE;
    m_App.Resume();
    m_Screen.AddLogMsg(QStringLiteral("Tool change answered after %1 s").arg(m_Options.fToolChangeTime), MSG_NOTICE);
}

void CAutoOperator::EndOperation()
{
    (void)m_Supervision.EndOperation();   // nobody watches what would be shown of it
    m_eToolChange = TOOL_NONE;
}

void CAutoOperator::EmergencyStop(const QString& strWhy, eExit eWhy)
{
    if (m_bStopping) return;   // what ends the moves waits itself
    m_bStopping = true;
    if (m_eResult == EXIT_DONE || eWhy == EXIT_INTERRUPTED) m_eResult = eWhy;
    (void)m_Supervision.EmergencyStop();
    m_eToolChange = TOOL_NONE;
    TakeMessages();
    m_Screen.AddError(strWhy);
    m_bStopping = false;
}
