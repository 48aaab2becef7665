#include "run/Supervision.h"

#include "hardware/RpiGpio.h"
#include "hardware/VantorGpio.h"
#include "time/Wait.h"

#include <algorithm>
#include <cmath>

static constexpr qint64 WORKER_POLL_US = 1'000'000;   // the worker polls a pause once a second
// Sleeps of the worker under the pause, on the real clock. The first may still be that of the wait for the pause.
static CShared<int> g_iPausedSleeps = 0;
static CShared<const AppControl*> g_pApp = nullptr;

static qint64 Ns(double fSeconds)
{
    return std::llround(fSeconds * 1e9);
}

CSupervision::CSupervision(AppControl& app, CVirtualMachine& machine, CHeadlessScreen& screen,
                           const stRunOptions& options)
    : m_App(app), m_Machine(machine), m_Screen(screen), m_Options(options), m_lstInputs(options.lstInputs)
{
    std::stable_sort(m_lstInputs.begin(), m_lstInputs.end(),
                     [](const stTimedInput& a, const stTimedInput& b) { return a.fSeconds < b.fSeconds; });
    g_pApp = &m_App;
    CWait::SetSleepHook(OnSleep);
}

CSupervision::~CSupervision()
{
    CWait::SetSleepHook(nullptr);
    g_pApp = nullptr;
}

void CSupervision::OnSleep(qint64 lUs)
{
    const AppControl* pApp = g_pApp;
    if (pApp && QThread::currentThread() == pApp && lUs >= WORKER_POLL_US && pApp->m_bPause)
        g_iPausedSleeps = g_iPausedSleeps + 1;
}

// ---- Inputs and the time limit ----------------------------------------------------------------------------------

int CSupervision::PinOf(const stTimedInput& input) const
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

void CSupervision::ChangeInput(const stTimedInput& input)
{
    CVirtualPins::SetInput(PinOf(input), input.iLevel);
    WatchInputs();
}

void CSupervision::PlanEvents(CVirtualTime& time)
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

qint64 CSupervision::NextDue() const
{
    qint64 lNext = m_uNextInput < m_lstInputs.size() ? Ns(m_lstInputs[m_uNextInput].fSeconds) : CWait::FOREVER;
    if (m_Options.fMaxTime > 0.0 && m_eResult == EXIT_DONE) lNext = std::min(lNext, Ns(m_Options.fMaxTime));
    return lNext;
}

void CSupervision::DoWhatIsDue(qint64 lNow)
{
    for (; m_uNextInput < m_lstInputs.size() && Ns(m_lstInputs[m_uNextInput].fSeconds) <= lNow; ++m_uNextInput)
        ChangeInput(m_lstInputs[m_uNextInput]);
    if (m_Options.fMaxTime > 0.0 && lNow >= Ns(m_Options.fMaxTime) && m_eResult == EXIT_DONE)
        EmergencyStop(QStringLiteral("the time limit is reached"), EXIT_TIME);
}

// Changes, not levels; in simulation the two inputs are not read.
void CSupervision::WatchInputs()
{
    if (AppConfig::m_bSimulationMode) return;
    if (AppConfig::m_iEStopInput >= 0) {
        const quint8 ucEStop = CRpiGpio::ReadInput(Pin(AppConfig::m_iEStopInput));
        const bool bChanged = ucEStop != m_ucEStop;
        m_ucEStop = ucEStop;
        if (bChanged && ucEStop != 0 && !AppConfig::m_bEmergencyStopON)
            EmergencyStop(QStringLiteral("Emergency Stop Triggered"), EXIT_WRONG);
        else if (bChanged && ucEStop == 0 && AppConfig::m_bEmergencyStopON)
            AppConfig::m_bEmergencyStopON = false;
    }
    const quint8 ucStart = CRpiGpio::ReadInput(Pin(AppConfig::m_iPgmStartInput));
    // It would only select the program's screen, and while an operation runs not even that.
    if (ucStart != 0 && m_ucStart == 0) m_Screen.AddLogMsg(QStringLiteral("Machine in use"), MSG_ERROR);
    m_ucStart = ucStart;
}

// ---- The supervision loop ---------------------------------------------------------------------------------------

void CSupervision::Tick()
{
    SendPwm();
    TakeMessages();
    if (m_App.m_bStartBtnPressRequest) {
        m_App.m_bStartBtnPressRequest = false;
        m_Screen.AddLogMsg(QStringLiteral("Program stop: shown, the run goes on"), MSG_NOTICE);
    }
    AnswerToolChange();
    WatchInputs();
    m_Screen.ShowProgress();
}

void CSupervision::SendPwm()
{
    const quint16 uFreq = AppConfig::m_stPwmSpndlSettings.iCurFreq;
    if (!AppConfig::m_bPWMCtrlUsed || uFreq == m_uLastPwmFreq) return;
    m_uLastPwmFreq = uFreq;
    CVANTORGPIO::PwmStart();
}

// The lists give the newest first: told here in the order in which they came.
void CSupervision::TakeMessages()
{
    std::vector<QString> lstErrors, lstInfos;
    for (QString strMsg = m_App.GetErrMsg(); !strMsg.isEmpty(); strMsg = m_App.GetErrMsg()) lstErrors.push_back(strMsg);
    for (QString strMsg = m_App.GetInfoMsg(); !strMsg.isEmpty(); strMsg = m_App.GetInfoMsg())
        lstInfos.push_back(strMsg);
    std::for_each(lstInfos.rbegin(), lstInfos.rend(),
                  [this](const QString& strMsg) { m_Screen.AddLogMsg(strMsg, MSG_INFO); });
    std::for_each(lstErrors.rbegin(), lstErrors.rend(), [this](const QString& strMsg) { m_Screen.AddError(strMsg); });
    m_bErrors |= !lstErrors.empty();
}

bool CSupervision::IsWorkerWaiting() const
{
    return CVirtualTime::Current() || g_iPausedSleeps >= 2;
}

void CSupervision::AnswerToolChange()
{
    const qint64 lNow = CWait::Now();
    if (m_App.m_bToolChangePause) {
        AppConfig::m_bSpindleOn = false;
        g_iPausedSleeps = 0;
        m_App.m_bPause = true;
        m_App.m_bToolChangePause = false;
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

void CSupervision::LiftPause()
{
    if (m_eToolChange != TOOL_ANSWERED) return;
    m_eToolChange = TOOL_NONE;
    m_App.m_bPause = false;
    m_Screen.AddLogMsg(QStringLiteral("Tool change answered after %1 s").arg(m_Options.fToolChangeTime), MSG_NOTICE);
}

void CSupervision::OnOperationFinish()
{
    const qint32 iOperation = m_App.m_eOperation;
    const bool bJob =
        iOperation == OP_GCODE || iOperation == OP_SHAPES || iOperation == OP_IMG_CARVING || iOperation == OP_Z_PROFILE;
    if (bJob && !AppConfig::m_bSimulationMode && AppConfig::m_bAutoSpindleOff) m_App.TurnOnOffSpindle(false, DIR_CW);
    if (bJob) m_App.ResetAccVel();
    m_App.m_eOperation = OP_NONE;
    m_App.m_bPause = false;
    m_App.m_bOperationFinished = false;
    m_eToolChange = TOOL_NONE;
}

void CSupervision::EmergencyStop(const QString& strWhy, eExit eWhy)
{
    if (m_bStopping) return;   // what ends the moves waits itself
    m_bStopping = true;
    if (m_eResult == EXIT_DONE || eWhy == EXIT_INTERRUPTED) m_eResult = eWhy;
    AppConfig::m_bEmergencyStopON.Exchange(true);
    m_App.StopAll();
    OnOperationFinish();
    if (!AppConfig::m_bSimulationMode) CRpiGpio::WriteOutput(Pin(AppConfig::m_iPgmStatusOutput), 0);
    TakeMessages();
    m_Screen.AddError(strWhy);
    m_bStopping = false;
}
