#include "control/Supervision.h"

#include "common/Refusals.h"
#include "control/AppControl.h"
#include "hardware/RpiGpio.h"
#include "hardware/VantorGpio.h"

#include <cmath>
#include <iterator>
#include <optional>

static constexpr double AT_ZERO = 9e-5;   // mm
// A tick that is due 100 ms ago is more than the window's own work; a line a second tells as much as one for each.
static constexpr qint64 LATE_MS = 100, LATE_TOLD_EVERY_MS = 1000;

static std::optional<quint8> ReadInput(qint8 iPin)
{
    if (AppConfig::m_bSimulationMode || iPin < 0) return std::nullopt;
    return CRpiGpio::ReadInput(Pin(iPin));
}

// Empty where the level is the one that was last seen, or is not read.
static std::optional<quint8> ReadChange(qint8 iPin, quint16& iPrevious)
{
    const std::optional<quint8> input = ReadInput(iPin);
    if (!input || *input == iPrevious) return std::nullopt;
    iPrevious = *input;
    return input;
}

static void LowerStatusOutput()
{
    if (!AppConfig::m_bSimulationMode) CRpiGpio::WriteOutput(Pin(AppConfig::m_iPgmStatusOutput), 0);
}

// ---- The steps of a tick --------------------------------------------------------------------------------------------

void CSupervision::SendSpindleFrequency()
{
    const quint16 iFreq = AppConfig::m_stPwmSpndlSettings.iCurFreq;
    if (!AppConfig::m_bPWMCtrlUsed || m_iLastPwmFreq == iFreq) return;
    m_iLastPwmFreq = iFreq;
    CVANTORGPIO::PwmStart();
}

stMessages CSupervision::NextMessages()
{
    stMessages messages;
    messages.strError = m_Machine.GetErrMsg();
    messages.strInfo = m_Machine.GetInfoMsg();
    return messages;
}

bool CSupervision::TakeStartRequest()
{
    return m_Machine.TakeStartRequest();
}

bool CSupervision::BeginToolChange()
{
    if (!m_Machine.m_bToolChangePause) return false;
    if (m_Machine.m_eOperation == OP_NONE || m_Machine.IsStopRequested()) {
        m_Machine.DropToolChange();
        return false;
    }
    m_Machine.m_Spindle.CountAsOff();
    return true;
}

QString CSupervision::MeasureLateness(qint64 lPeriodMs)
{
    const qint64 lLate = m_SinceTick.isValid() ? m_SinceTick.elapsed() - lPeriodMs : 0;
    m_SinceTick.start();
    if (lLate <= LATE_MS || (m_SinceLateTold.isValid() && m_SinceLateTold.elapsed() < LATE_TOLD_EVERY_MS)) return {};
    m_SinceLateTold.start();
    return QStringLiteral("Supervision was late by %1 ms").arg(lLate);
}

bool CSupervision::TakeOperationEnd()
{
    return m_Machine.TakeFinished();
}

eStopInput CSupervision::ReadStopInput()
{
    const std::optional<quint8> input = ReadChange(AppConfig::m_iEStopInput, m_iPrevEStopInput);
    // The round button works independently of the input, and may have been there first.
    if (!input || (*input != 0) == AppConfig::m_bEmergencyStopON) return STOP_INPUT_SAME;
    if (*input != 0) return STOP_INPUT_RISEN;
    if (m_bStoppedForGood) return STOP_INPUT_SAME;
    AppConfig::m_bEmergencyStopON = false;
    return STOP_INPUT_FALLEN;
}

eStartInput CSupervision::ReadStartInput()
{
    const std::optional<quint8> input = ReadChange(AppConfig::m_iPgmStartInput, m_iPrevPgmStartInput);
    if (!input || *input == 0) return START_INPUT_SAME;
    return WhyNotFree().isEmpty() ? START_INPUT_RISEN : START_INPUT_REFUSED;
}

bool CSupervision::Pause()
{
    if (m_Machine.AnswerToolChange()) return true;
    m_Machine.RequestPause();
    return false;
}

// ---- The end of an operation ----------------------------------------------------------------------------------------

stOperationEnd CSupervision::EndOperation()
{
    stOperationEnd end;
    end.iOperation = m_Machine.m_eOperation;
    if (!AppConfig::m_bEmergencyStopON) end.strMsg = EndMessage(end.iOperation);
    if (IsJob(end.iOperation)) {
        end.bSpindleOff = !AppConfig::m_bSimulationMode && AppConfig::m_bAutoSpindleOff;
        if (end.bSpindleOff) m_Machine.TurnOnOffSpindle(false, DIR_CW);
        m_Machine.m_AxisCommands.ResetAccVel(m_bInterface);   // five long ramps take half a second
    }
    m_Machine.TakeNoteOfEnd();
    (void)m_Machine.TakeFinished();   // the worker may have raised it just before it was stopped
    return end;
}

stOperationEnd CSupervision::Abandon()
{
    m_Machine.StopAll();
    return EndOperation();
}

stOperationEnd CSupervision::EmergencyStop()
{
    AppConfig::m_bEmergencyStopON.Exchange(true);
    LowerStatusOutput();
    const stOperationEnd end = Abandon();
    LowerStatusOutput();
    return end;
}

stOperationEnd CSupervision::StopForGood()
{
    m_bStoppedForGood = true;
    return EmergencyStop();
}

QString CSupervision::ReleaseEmergencyStop()
{
    if (m_bStoppedForGood) return QStringLiteral("Unknown error: restart the program");
    if (ReadInput(AppConfig::m_iEStopInput).value_or(0) != 0) return QStringLiteral("Emergency Stop input is High");
    AppConfig::m_bEmergencyStopON = false;
    return QString();
}

// ---- Words ----------------------------------------------------------------------------------------------------------

QString StartMessage(qint32 iOperation)
{
    static constexpr const char* MESSAGES[] = {"",
                                               "Moving to Work Home",
                                               "Moving to Machine Home",
                                               "Shapes cutting started",
                                               "3D relief Carving started",
                                               "G-Code execution Started",
                                               "Setting Z0 using Z-Probe",
                                               "Z profiling Started"};
    const bool bKnown = iOperation >= 0 && iOperation < static_cast<qint32>(std::size(MESSAGES));
    return QString::fromLatin1(MESSAGES[bKnown ? iOperation : 0]);
}

QString CSupervision::EndMessage(qint32 iOperation) const
{
    switch (iOperation) {
    case OP_WORK_HOME:
        for (int axis = 0; axis < MAX_AXES; ++axis)
            if (!(std::fabs(m_Machine.GetCurPos(static_cast<eAxis>(axis))) <= AT_ZERO)) return QString();
        return QStringLiteral("Work home postion reached");
    case OP_MCH_HOME: return m_Machine.GetHomeDone() ? QStringLiteral("Machine Homing finished") : QString();
    case OP_SHAPES: return QStringLiteral("Shapes cutting completed");
    case OP_IMG_CARVING: return QStringLiteral("3D Relief carving completed");
    case OP_GCODE: return QStringLiteral("G-Code execution finished");
    case OP_Z_PROFILE: return QStringLiteral("Z profiling completed");
    default: return QString();
    }
}

QString CSupervision::WhyNotReleased()
{
    return AppConfig::m_bEmergencyStopON ? RELEASE_EMERGENCY_SWITCH : QString();
}

QString CSupervision::WhyNotFree() const
{
    return m_Machine.IsFree() ? QString() : MACHINE_IN_USE;
}

QString CSupervision::WhyNotInSimulation()
{
    return AppConfig::m_bSimulationMode ? NOT_IN_SIMULATION : QString();
}

QString CSupervision::WhyNotAllHomed() const
{
    return m_Machine.GetHomeDone() ? QString() : HOMING_NOT_DONE_SHOWN;
}

// X alone is asked: wanted, whether all axes have their home is asked where a move of all begins.
QString CSupervision::WhyNotHomed() const
{
    if (!AppConfig::m_bHomeSensorsUsed || m_Machine.m_AxisCtrl[X_AXIS].IsAxisHomeSet()) return QString();
    return HOMING_NOT_DONE_SHOWN;
}
