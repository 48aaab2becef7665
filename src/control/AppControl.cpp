#include "control/AppControl.h"

#include "common/OperatorScreen.h"
#include "common/Refusals.h"
#include "hardware/RpiGpio.h"
#include "machine/MotorSettings.h"
#include "motion/AllAxisCtrl.h"
#include "platform/Computer.h"

#include <algorithm>
#include <iterator>

// Unless outputs are silent.
static void WriteProgramStatus(quint8 ucLevel)
{
    if (!AppConfig::m_bSimulationMode) CRpiGpio::WriteOutput(Pin(AppConfig::m_iPgmStatusOutput), ucLevel);
}

AppControl::AppControl(QObject* pParent) : QThread(pParent)
{
    setStackSize(THREAD_STACK);
    m_ProgramRun.m_fnOnLine = [this](unsigned uLine) { emit SelNxtGCodeLine(uLine); };
}

AppControl::~AppControl()
{
    if (isRunning()) StopAll();
    WaitForWorker();
}

void AppControl::WaitForWorker()
{
    wait();
    ReadLeave();
    (void)static_cast<bool>(m_bOutOfRun);
}

bool AppControl::Refuse(const QString& strWhy)
{
    PushErrMsg(strWhy);
    return false;
}

// ---- Starts ---------------------------------------------------------------------------------------------------------

bool AppControl::ClaimWorker()
{
    if (AppConfig::m_bEmergencyStopON) return Refuse(RELEASE_EMERGENCY_SWITCH);
    // One that has ended, but not for the interface yet, would lose its end.
    if (!IsFree()) return Refuse(AXIS_IN_USE);
    WaitForWorker();   // an ended operation may still be leaving run, and a thread that runs does not start
    for (AxisCtrl& axis : m_AxisCtrl) axis.SettleWatch();   // that of a homing that was given up is not the new one's
    ForgetLast();
    return true;
}

bool AppControl::LaunchOperation(eOperation eCode)
{
    Begin(eCode);
    COperatorScreen::Get().EnableDisableWindows();
    if (eCode != OP_WORK_HOME && eCode != OP_MCH_HOME && eCode != OP_Z_PROBE)
        COperatorScreen::Get().ClearToolGraphics();
    start();
    return true;
}

bool AppControl::ClaimForJob()
{
    return IsMachineIdle() ? ClaimWorker() : Refuse(AXIS_IN_USE);
}

bool AppControl::LaunchJob(eOperation eCode, bool bAutoSpindle)
{
    if (bAutoSpindle && (AppConfig::m_bAutoSpindleOnCW || AppConfig::m_bAutoSpindleOnCCW)) {
        const eDirection eDir = AppConfig::m_bAutoSpindleOnCW ? DIR_CW : DIR_CCW;
        if (const QString strWhy = m_Spindle.WhyNotStarted(eDir); !strWhy.isEmpty()) return Refuse(strWhy);
        TurnOnOffSpindle(true, eDir);
    }
    return LaunchOperation(eCode);
}

bool AppControl::InitMachine(const QString& strWhyNotHome)
{
    SetUpAxes();
    if (!CVirtualTime::Current()) CMotorSettings(*this).ReserveRamps();   // in a dry run no page makes a pulse late
    if (!AppConfig::m_bAutoHmOnStartup) return true;
    // The flag of the stop is not raised here: the first look at the input does all that a rise does.
    if (!strWhyNotHome.isEmpty())
        PushErrMsg(QStringLiteral("Homing at start not begun: ") + strWhyNotHome);
    else if (AppConfig::m_iEStopInput >= 0 && CRpiGpio::ReadInput(Pin(AppConfig::m_iEStopInput)) != 0)
        PushErrMsg(QStringLiteral("Homing at start not begun: Emergency Stop input is High"));
    else
        StartMchHomingSequence();
    return true;
}

void AppControl::SetSimulation(bool bOn)
{
    if (bOn == AppConfig::m_bSimulationMode) return;
    if (bOn) {
        m_GCodePosBeforeSimulation = m_CurGCodePos;
        m_Position.BeginSimulation();
    } else {
        m_Position.EndSimulation();
        m_CurGCodePos = m_GCodePosBeforeSimulation;
    }
}

bool AppControl::StartHoming(const signed char* pAxes)
{
    if (!AppConfig::m_bHomeSensorsUsed) return Refuse(QStringLiteral("Homing Sensor not Enabled for all Axis"));
    if (AppConfig::m_bSimulationMode) return Refuse(NOT_IN_SIMULATION);
    if (!ClaimWorker()) return false;
    m_Homing.Select(pAxes);
    return LaunchOperation(OP_MCH_HOME);
}

bool AppControl::StartMchHomingSequence()
{
    return StartHoming(ALL_AXES);
}
bool AppControl::StartMchHomingSequence(eAxis axis)
{
    signed char selection[MAX_AXES] = {};
    selection[axis] = 1;
    return StartHoming(selection);
}

bool AppControl::StartWorkHomingSequence()
{
    if (!GetHomeDone()) return Refuse(HOMING_NOT_DONE);
    return ClaimWorker() && LaunchOperation(OP_WORK_HOME);
}

bool AppControl::StartZ0usingZProbeSeq()
{
    if (AppConfig::m_bSimulationMode) return Refuse(NOT_IN_SIMULATION);
    return ClaimWorker() && LaunchOperation(OP_Z_PROBE);
}

bool AppControl::RunZProfile()
{
    if (!IsMachineIdle() || m_eOperation != OP_NONE) return Refuse(AXIS_IN_USE);
    if (AppConfig::m_bSimulationMode) return Refuse(NOT_IN_SIMULATION);
    if (const QString strWhy = CSurfaceProbe::WhyNotMeasured(); !strWhy.isEmpty()) return Refuse(strWhy);
    if (!ClaimWorker()) return false;
    TurnOnOffSpindle(false, DIR_CW);
    return LaunchOperation(OP_Z_PROFILE);
}

// A saved work zero and a restart part them: the choice of the units is kept, the factor of the coordinates is not.
void AppControl::TellUnits() const
{
    const bool bFeedInch = AppConfig::m_eSelUnits == 1, bInch = m_fUnitFactor != 1.0;
    if (bFeedInch == bInch) return;
    TellNotice(QStringLiteral("Until G20 or G21, F is read in %1 and coordinates in %2")
                   .arg(bFeedInch ? QStringLiteral("inches") : QStringLiteral("mm"),
                        bInch ? QStringLiteral("inches") : QStringLiteral("mm")));
}

bool AppControl::StartGCode(const GCodeProgram* pProgram)
{
    if (!ClaimForJob()) return false;
    TellUnits();
    m_pGCodeProgram = pProgram;
    ChooseSingleLine(false);
    return LaunchJob(OP_GCODE, !AppConfig::m_bSimulationMode);
}

bool AppControl::StartExecGCodeLine(const GCodeProgram* pProgram, int iLine)
{
    if (!ClaimForJob()) return false;
    TellUnits();
    m_pGCodeProgram = pProgram;
    ChooseSingleLine(true);
    m_iSingleLineNo = iLine;
    const bool bStarted =
        LaunchJob(OP_GCODE, true);            // in simulation too: wanted, a single line is tried with the spindle on
    if (!bStarted) ChooseSingleLine(false);   // the Start button is dead while it stands
    return bStarted;
}

bool AppControl::StartShapeCutting(stShapeCuttingInfo* pInfo)
{
    if (!ClaimForJob()) return false;
    m_pShapeCuttingInfo = pInfo;
    return LaunchJob(OP_SHAPES, !AppConfig::m_bSimulationMode);
}

bool AppControl::StartImgCarving()
{
    if (!ClaimForJob()) return false;
    if (const QString strWhy = WhyNotStarted(m_stImgCarvingData); !strWhy.isEmpty()) return Refuse(strWhy);
    m_uCurCarvingPass = 0;
    return LaunchJob(OP_IMG_CARVING, !AppConfig::m_bSimulationMode);
}

// ---- The worker -----------------------------------------------------------------------------------------------------

void AppControl::run()
{
    const auto eCode = static_cast<eOperation>(static_cast<qint32>(m_eOperation));
    m_iWorkLine = -1;
    Watched([=] { return stWorkCommand{.eKind = WORK_OPERATION, .fValue = static_cast<double>(eCode)}; },
            [&] { RunOperation(eCode); });
    m_bOutOfRun = true;
}

struct AppControl::stWork
{
    eOperation eCode;
    bool bResetSpeeds;     // back to the working feeds
    bool bWorkZeroFirst;   // unless a single line
    bool bCoordinated;     // the auto mode runs
    void (AppControl::*pDo)();
};

void AppControl::DoOperation(eOperation eCode)
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

void AppControl::RunOperation(eOperation eCode)
{
    WriteProgramStatus(1);
    // A stop that came before this thread has already written its 0.
    if (IsStopRequested()) WriteProgramStatus(0);
    try {
        DoOperation(eCode);
    } catch (...) {
        PushErrMsg(QStringLiteral("Operation ended by an unexpected error"));
        m_Homing.AutoHomingFinished();   // or the next moves would be watched by a sensor instead of their limits
    }
    AfterOperationFinish(eCode);
}

bool AppControl::StartJobMotion(bool bWorkZeroFirst)
{
    if (bWorkZeroFirst && !m_bExecSingleLine && !MoveWorkZeroAll()) return false;
    CAllAxisCtrl::StartAutoMode(this);
    // A StopAll in between has ended an auto mode that was not there yet.
    if (!IsStopRequestedBehind()) return true;
    CAllAxisCtrl::StopAutoMode();
    return false;
}

void AppControl::RunProgram()
{
    if (!m_bExecSingleLine) return RunGCode();
    m_iWorkLine = m_iSingleLineNo;
    (void)ExecGCodeLine(m_iSingleLineNo);
}

void AppControl::AfterOperationFinish(eOperation eCode)
{
    if (!IsStopRequested()) EndMotion(eCode);
    if (IsStopRequested()) return EndStoppedOperation();   // it may also have come during that last motion

    WriteProgramStatus(0);
    if (AppConfig::m_bShutdownRPI) StartDetached(QStringLiteral("sudo shutdown now"));
    Leave(true);
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
    if (!AppConfig::m_bEmergencyStopON) {   // there the interface writes the output
        WriteProgramStatus(0);
        CAllAxisCtrl::WaitForAutoModeEnd();
    }
    m_AxisCommands.RequestStop();   // one that began behind the StopAll; nobody else moves until the worker has left
    Leave(false);
}
