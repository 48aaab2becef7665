#include "control/AppControl.h"

#include "common/Paths.h"
#include "hardware/RpiGpio.h"
#include "motion/AllAxisCtrl.h"
#include "platform/Computer.h"
#include "time/Wait.h"

#include <QDateTime>
#include <QFile>
#include <QMutexLocker>

#include <algorithm>
#include <iterator>
#include <utility>

// An alarm, not a stop: axes that are still moving behind it keep running.
static constexpr qint64 MOTION_TIMEOUT_NS = 300'000'000'000;

static QString AxisInUse()
{
    return QStringLiteral("Axis in use");
}

// Unless outputs are silent.
static void WriteProgramStatus(quint8 ucLevel)
{
    if (!AppConfig::m_bSimulationMode) CRpiGpio::WriteOutput(Pin(AppConfig::m_iPgmStatusOutput), ucLevel);
}

AppControl::AppControl(QObject* pParent) : QThread(pParent)
{
    // All five, also where InitMachine sets up three: a settings screen rebuilds every axis, each from its own values.
    for (int axis = 0; axis < MAX_AXES; ++axis) m_AxisCtrl[axis].m_sAxis = static_cast<qint16>(axis);
}

AppControl::~AppControl()
{
    if (isRunning()) StopAll();
    WaitForWorker();
}

// What the worker has done is done: said again by its last two stores, because a thread sanitizer does not see the
// lock inside wait().
void AppControl::WaitForWorker()
{
    wait();
    (void)static_cast<bool>(m_bWorkerBusy);
    (void)static_cast<bool>(m_bOperationFinished);
}

// ---- Start and stop -------------------------------------------------------------------------------------------------

bool AppControl::InitMachine()
{
    m_iAxesSetUp = AxesInUse();
    for (int axis = 0; axis < m_iAxesSetUp; ++axis) {
        AxisCtrl& ctrl = m_AxisCtrl[axis];
        ctrl.m_sAxis = static_cast<qint16>(axis);
        ctrl.ConfigAxis();
        ctrl.SetWorkZero();
        if (const QString strWhy = ctrl.GetBuildError(); !strWhy.isEmpty()) PushErrMsg(strWhy);
    }
    if (AppConfig::m_bAutoHmOnStartup) StartMchHomingSequence();
    return true;
}

bool AppControl::ClaimWorker()
{
    if (m_bWorkerBusy) {
        PushErrMsg(AxisInUse());
        return false;
    }
    WaitForWorker();   // an ended operation may still be leaving run, and a thread that runs does not start
    m_bAbandoned = false;
    // What the last operation has left for the interface must not be taken for the new one's.
    m_bOperationFinished = false;
    m_bToolChangePause = false;
    return true;
}

void AppControl::LaunchOperation(eOperation eCode)
{
    m_bWorkerBusy = true;
    m_eOperation = eCode;
    COperatorScreen::Get().EnableDisableWindows();
    if (eCode != OP_WORK_HOME && eCode != OP_MCH_HOME && eCode != OP_Z_PROBE)
        COperatorScreen::Get().ClearToolGraphics();
    start();
}

bool AppControl::ClaimForJob()
{
    if (IsMachineIdle()) return ClaimWorker();
    PushErrMsg(AxisInUse());
    return false;
}

void AppControl::LaunchJob(eOperation eCode, bool bAutoSpindle)
{
    if (bAutoSpindle && AppConfig::m_bAutoSpindleOnCW)
        TurnOnOffSpindle(true, DIR_CW);
    else if (bAutoSpindle && AppConfig::m_bAutoSpindleOnCCW)
        TurnOnOffSpindle(true, DIR_CCW);
    LaunchOperation(eCode);
}

void AppControl::StartGCode(const GCodeProgram* pProgram)
{
    if (!ClaimForJob()) return;
    m_pGCodeProgram = pProgram;
    m_bExecSingleLine = false;   // may stand from a single line that was given up
    LaunchJob(OP_GCODE, !AppConfig::m_bSimulationMode);
}

void AppControl::StartExecGCodeLine(const GCodeProgram* pProgram, int iLine)
{
    if (!ClaimForJob()) return;
    m_pGCodeProgram = pProgram;
    m_bExecSingleLine = true;
    m_iSingleLineNo = iLine;
    LaunchJob(OP_GCODE, true);   // in simulation too: wanted, a single line is tried with the spindle on
}

void AppControl::StopAll()
{
    m_bAbandoned.Exchange(true);   // before the pause goes: the worker that wakes must see it
    m_bPause = false;
    CAllAxisCtrl::StopAutoMode();
    CAllAxisCtrl::WaitForAutoModeEnd();
    for (int axis = 0; axis < AxesInUse(); ++axis) m_AxisCtrl[axis].Stop();
}

bool AppControl::IsMachineIdle() const
{
    return std::none_of(m_AxisCtrl, m_AxisCtrl + AxesInUse(), [](const AxisCtrl& ctrl) { return ctrl.GetAxisState(); });
}

// ---- Messages and log -----------------------------------------------------------------------------------------------

static QString TakeNewest(QMutex& mutex, QList<QString>& list)
{
    const QMutexLocker lock(&mutex);
    return list.isEmpty() ? QString() : list.takeLast();
}

QString AppControl::GetErrMsg()
{
    return TakeNewest(m_MsgMutex, m_lstErrMsg);
}
QString AppControl::GetInfoMsg()
{
    return TakeNewest(m_MsgMutex, m_lstInfoMsg);
}
void AppControl::PushErrMsg(const QString& strMsg)
{
    const QMutexLocker lock(&m_MsgMutex);
    m_lstErrMsg.append(strMsg);
}
void AppControl::PushInfoMsg(const QString& strMsg)
{
    const QMutexLocker lock(&m_MsgMutex);
    m_lstInfoMsg.append(strMsg);
}

void AppControl::WriteLog(QString strText)
{
    QFile file(CPaths::Map(HOME_FOLDER + QStringLiteral("/vantor_log/") + QDate::currentDate().toString(Qt::TextDate) +
                           QStringLiteral(".txt")));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) return;   // no folder, no log
    // No line end: wanted, callers that write lines bring their own.
    const QString strTime = QTime::currentTime().toString(Qt::TextDate);
    file.write((QStringLiteral("[") + strTime + QStringLiteral("]") + strText).toUtf8());
}

// ---- The worker -----------------------------------------------------------------------------------------------------

void AppControl::run()
{
    const auto eCode = static_cast<eOperation>(static_cast<qint32>(m_eOperation));
    WriteProgramStatus(1);
    // A stop that came before this thread has already written its 0.
    if (IsStopRequested()) WriteProgramStatus(0);
    try {
        RunOperation(eCode);
    } catch (...) {
        PushErrMsg(QStringLiteral("Operation ended by an unexpected error"));
    }
    AfterOperationFinish(eCode);
}

struct AppControl::stWork
{
    eOperation eCode;
    bool bResetSpeeds;     // back to the working feeds
    bool bWorkZeroFirst;   // unless a single line
    bool bCoordinated;     // the auto mode runs
    void (AppControl::*pDo)();
};

void AppControl::RunOperation(eOperation eCode)
{
    static constexpr stWork lstWork[] = {
        {OP_Z_PROBE, false, false, false, &AppControl::SetZ0usingZProbe},
        // The axes keep their speeds: wanted, the surface is probed at the speed that was last set on them.
        {OP_Z_PROFILE, false, false, false, &AppControl::CreateZProfile},
        {OP_MCH_HOME, false, false, false, &AppControl::MoveMchHomeAll},
        {OP_WORK_HOME, true, false, false, &AppControl::GoToWorkZero},
        {OP_GCODE, true, true, true, &AppControl::RunProgram},
        // From where the tool is: the first shape lifts it anyway.
        {OP_SHAPES, true, false, true, &AppControl::CutShapes},
        {OP_IMG_CARVING, true, true, true, &AppControl::RunImgCarving},
    };
    const auto work = std::find_if(std::begin(lstWork), std::end(lstWork),
                                   [eCode](const stWork& entry) { return entry.eCode == eCode; });
    if (work == std::end(lstWork)) return;
    if (work->bResetSpeeds) ResetAccVel();
    if (work->bCoordinated && !StartJobMotion(work->bWorkZeroFirst)) return;
    (this->*work->pDo)();
}

bool AppControl::StartJobMotion(bool bWorkZeroFirst)
{
    if (bWorkZeroFirst && !m_bExecSingleLine && !MoveWorkZeroAll()) return false;
    CAllAxisCtrl::StartAutoMode(this);
    // A StopAll in between has ended an auto mode that was not there yet.
    if (!m_bAbandoned.Ordered() && !AppConfig::m_bEmergencyStopON.Ordered()) return true;
    CAllAxisCtrl::StopAutoMode();
    return false;
}

void AppControl::RunProgram()
{
    if (m_bExecSingleLine)
        (void)ExecGCodeLine(m_iSingleLineNo);
    else
        RunGCode();
}

void AppControl::AfterOperationFinish(eOperation eCode)
{
    if (!IsStopRequested()) EndMotion(eCode);
    if (IsStopRequested()) return EndStoppedOperation();   // it may also have come during that last motion

    WriteProgramStatus(0);
    if (AppConfig::m_bShutdownRPI) StartDetached(QStringLiteral("sudo shutdown now"));
    m_bExecSingleLine = false;
    m_bWorkerBusy = false;
    m_bOperationFinished = true;
}

void AppControl::EndMotion(eOperation eCode)
{
    CAllAxisCtrl::WaitForMotion();
    CAllAxisCtrl::StopAutoMode();
    CAllAxisCtrl::WaitForAutoModeEnd();
    // A program takes care of its own Z.
    if (eCode != OP_SHAPES && eCode != OP_IMG_CARVING && eCode != OP_Z_PROFILE) return;
    // A safe height of zero is negated here, and only here: wanted, it is the same place.
    const double fSafe = AppConfig::m_fZSafePos;
    const double fHeight = AppConfig::m_bHomeSensorsUsed || fSafe > 0.0 ? SafeHeight() : -fSafe;
    (void)EngMoveAxisAbs(Z_AXIS, fHeight, true);
}

// The interface has finished the operation itself: no move, no shut-down, no m_bOperationFinished.
void AppControl::EndStoppedOperation()
{
    CAllAxisCtrl::StopAutoMode();
    m_bExecSingleLine = false;              // the Start button is dead while it stands
    if (!AppConfig::m_bEmergencyStopON) {   // there the interface writes the output
        WriteProgramStatus(0);
        CAllAxisCtrl::WaitForAutoModeEnd();
    }
    m_bWorkerBusy = false;
}

bool AppControl::IsAnyMoving(const signed char* pSelection) const
{
    for (int axis = 0; axis < AxesInUse(); ++axis)
        if (pSelection[axis] && m_AxisCtrl[axis].GetAxisState()) return true;
    return false;
}

bool AppControl::WaitForMotionFinish(const signed char* pSelection)
{
    if (std::none_of(pSelection, pSelection + AxesInUse(), [](signed char cFlag) { return cFlag != 0; })) return true;
    bool bStop = false;
    const bool bEnded = CWait::SpinUntil(
        [&] {
            bStop = IsStopRequested();
            return bStop || !IsAnyMoving(pSelection);
        },
        MOTION_TIMEOUT_NS);
    if (bEnded && !bStop) return true;
    for (int axis = 0; axis < AxesInUse(); ++axis) {
        if (!pSelection[axis] || !m_AxisCtrl[axis].GetAxisState()) continue;
        if (!bStop)
            PushErrMsg(QStringLiteral("Error:") + AppConfig::m_strAxisNames[axis] + QStringLiteral(" Motion Timeout"));
        else if (m_bAbandoned)
            m_AxisCtrl[axis].Stop();   // started just behind the StopAll that has ended the operation
    }
    return false;
}
