#include "hardware/VantorGpio.h"

#include "common/OperatorScreen.h"
#include "config/AppConfig.h"
#include "hardware/RpiGpio.h"
#include "hardware/VantorCtrl.h"
#include "platform/PinRights.h"
#include "platform/WiringPi.h"

static constexpr int PWM_CLOCK = 19200000;   // Hz, the oscillator behind the divider
static constexpr int PWM_RANGE = 1024;
static constexpr int MAX_DIVISOR = 4095;   // of 12 bits: a larger one would be cut to another frequency
static constexpr int PWM_MODE = 1;
static constexpr int PIN_MODE_PWM = 8;   // mark-space output
static constexpr int PIN_MODE_OFF = 7;

namespace {
bool IsSpiBoard()
{
    return AppConfig::m_eVantorCtrl > VTR5_CTRL;
}
void SetUpLowOutput(qint8 iPin)
{
    CRpiGpio::SetPinModeOutput(Pin(iPin));
    CRpiGpio::WriteOutput(Pin(iPin), 0);
}
void SetUpAxis(eAxis axis)
{
    SetUpLowOutput(AppConfig::m_iAxisPulseOutput[axis]);
    SetUpLowOutput(AppConfig::m_iAxisDirOutput[axis]);
    CRpiGpio::SetPinModeInput(Pin(AppConfig::m_iAxisMchHomeSensorInput[axis]));
}
void SetUpOutputsOf(std::initializer_list<quint16> lstCodes)
{
    for (const quint16 iCode : lstCodes) SetUpLowOutput(AppConfig::m_lstMCodesPin[iCode]);
}
}   // namespace

void CVANTORGPIO::InitGpio()
{
    CRpiGpio::InitRpiGpio();
    if (MayUsePwmAndSpi()) {
        pwmSetMode(PWM_MODE);
        pwmSetRange(PWM_RANGE);
    }
    for (const eAxis axis : {X_AXIS, Y_AXIS, Z_AXIS}) SetUpAxis(axis);
    SetUpLowOutput(AppConfig::m_iPgmStatusOutput);
    SetUpLowOutput(AppConfig::m_iSpindlePwmOutput);
    if (AppConfig::m_eVantorCtrl == VTR3_CTRL) SetUpOutputsOf({200, 202, 204, 206, 208, 210});
    if (AppConfig::m_eVantorCtrl == VTR5_CTRL)
        for (const eAxis axis : {A_AXIS, B_AXIS}) SetUpAxis(axis);
    if (IsSpiBoard()) return;

    SetUpOutputsOf({3, 4, 7, 8});
    for (const qint8 iPin : {AppConfig::m_iPgmStartInput, AppConfig::m_iZProbeInput, AppConfig::m_iEStopInput})
        CRpiGpio::SetPinModeInput(Pin(iPin));
    // The map holds no key 2: it is added with pin 0, which becomes an input. Wanted, since others rely on the key.
    for (const quint8 iInput : {quint8(1), quint8(2)}) CRpiGpio::SetPinModeInput(AppConfig::m_lstIPs[iInput]);
}

void CVANTORGPIO::SetPinModeOutput(quint16 pin)
{
    if (!IsSpiBoard()) CRpiGpio::SetPinModeOutput(pin);
}

void CVANTORGPIO::SetPinModeInput(quint16 pin)
{
    if (!IsSpiBoard()) CRpiGpio::SetPinModeInput(pin);
}

void CVANTORGPIO::WriteOutput(quint16 pin, quint16 value)
{
    if (IsSpiBoard())
        cvantorctrl::WriteOutput(static_cast<unsigned char>(pin), static_cast<unsigned char>(value));
    else
        CRpiGpio::WriteOutput(pin, static_cast<quint8>(value));
}

quint8 CVANTORGPIO::ReadInput(quint16 pin)
{
    return IsSpiBoard() ? cvantorctrl::ReadInput(pin) : CRpiGpio::ReadInput(pin);
}

void CVANTORGPIO::PwmStart()
{
    const int iFreq = AppConfig::m_stPwmSpndlSettings.iCurFreq;
    const int iDivisor = iFreq > 0 ? PWM_CLOCK / iFreq / PWM_RANGE : 0;
    if (iDivisor < 1 || iDivisor > MAX_DIVISOR) {
        COperatorScreen::Get().AddLogMsg(
            QStringLiteral("Spindle PWM not started: a frequency of %1 Hz cannot be made").arg(iFreq), MSG_ERROR);
        return;
    }
    if (!MayUsePwmAndSpi()) {
        COperatorScreen::Get().AddLogMsg(
            QStringLiteral("Spindle PWM not started: ") + QLatin1String(WHY_NO_PWM_AND_SPI), MSG_ERROR);
        return;
    }
    pwmSetClock(iDivisor);
    const int iPin = Pin(AppConfig::m_iSpindlePwmOutput);
    pwmWrite(iPin, PWM_RANGE / 2);   // the speed is in the frequency, not in the duty
    pinMode(iPin, PIN_MODE_PWM);
}

void CVANTORGPIO::PwmStop()
{
    if (MayUsePwmAndSpi()) pinMode(Pin(AppConfig::m_iSpindlePwmOutput), PIN_MODE_OFF);   // else it never began
}
