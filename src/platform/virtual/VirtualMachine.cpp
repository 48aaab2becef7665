#include "platform/virtual/VirtualMachine.h"

#include <cmath>

using eRole = CEdgeRecorder::ePinRole;

CVirtualMachine::CVirtualMachine(const stVirtualMachine& machine)
    : m_iProbePin(machine.iProbePin), m_iEStopPin(machine.iEStopPin), m_iStartPin(machine.iStartPin)
{
    for (size_t n = 0; n < m_Axes.size(); ++n) {
        const stVirtualAxis& from = machine.axes[n];
        stAxis& axis = m_Axes[n];
        axis.fMmPerPulse = from.fMmPerPulse;
        axis.lPos = std::llround(from.fStart / from.fMmPerPulse);
        axis.iUpLevel = from.iUpLevel;
        axis.bSensorAbove = from.bSensorAbove;
        if (std::isfinite(from.fSensorAt)) {
            axis.iHomePin = from.iHomePin;
            axis.lSensorAt = std::llround(from.fSensorAt / from.fMmPerPulse);
        }
        Wire(from.iPulsePin, n, CEdgeRecorder::ROLE_PULSE);
        Wire(from.iDirPin, n, CEdgeRecorder::ROLE_DIRECTION);
        SetDirection(axis, from.iDirPin < 0 ? 0 : CVirtualPins::Level(from.iDirPin));
        if (axis.iHomePin >= 0) SetPin(axis.iHomePin, false);
        UpdateSensor(axis);
    }
    PressEmergencyStop(false);
    PressStart(false);
    SetPin(m_iProbePin, false);
}

void CVirtualMachine::Wire(int iPin, size_t uAxis, eRole eRoleOfPin)
{
    if (iPin < 0) return;
    stPin& pin = m_Pins[static_cast<size_t>(iPin) & (CVirtualPins::PINS - 1)];
    pin.ucAxis = static_cast<quint8>(uAxis);
    pin.eRole = eRoleOfPin;
    pin.ucLevel = CVirtualPins::Level(iPin) != 0 ? 1 : 0;
}

void CVirtualMachine::OnWrite(int iPin, int iLevel)
{
    stPin& pin = m_Pins[static_cast<size_t>(iPin) & (CVirtualPins::PINS - 1)];
    if (pin.ucAxis == NOT_WIRED) return;
    const quint8 ucLevel = iLevel != 0 ? 1 : 0;
    if (pin.ucLevel.load(std::memory_order_relaxed) == ucLevel) return;
    pin.ucLevel.store(ucLevel, std::memory_order_relaxed);

    stAxis& axis = m_Axes[pin.ucAxis];
    if (pin.eRole == CEdgeRecorder::ROLE_DIRECTION)
        SetDirection(axis, ucLevel);
    else if (ucLevel != 0)
        Step(pin.ucAxis, axis);
    if (CEdgeRecorder* pRecorder = m_pRecorder.load(std::memory_order_acquire); pRecorder) [[unlikely]]
        pRecorder->OnEdge(pin.ucAxis, pin.eRole, ucLevel, axis.lPos.load(std::memory_order_relaxed));
}

void CVirtualMachine::SetDirection(stAxis& axis, int iLevel)
{
    axis.lStep.store(iLevel == axis.iUpLevel ? 1 : -1, std::memory_order_relaxed);
}

inline void CVirtualMachine::Step(size_t uAxis, stAxis& axis)
{
    // One thread steps an axis at a time: a load and a store, no locked instruction.
    axis.lPos.store(axis.lPos.load(std::memory_order_relaxed) + axis.lStep.load(std::memory_order_relaxed),
                    std::memory_order_relaxed);
    if (axis.iHomePin >= 0) UpdateSensor(axis);
    if (uAxis == 2 || (uAxis < 2 && m_fnHeight)) UpdateProbe();
}

inline void CVirtualMachine::UpdateSensor(stAxis& axis)
{
    const qint64 lPos = axis.lPos.load(std::memory_order_relaxed);
    const bool bOn = axis.iHomePin >= 0 && (axis.bSensorAbove ? lPos >= axis.lSensorAt : lPos <= axis.lSensorAt);
    if (axis.bOnSensor.load(std::memory_order_relaxed) == bOn) return;
    axis.bOnSensor.store(bOn, std::memory_order_relaxed);
    SetPin(axis.iHomePin, bOn);
}

inline void CVirtualMachine::UpdateProbe()
{
    const double fHeight = m_fnHeight ? m_fnHeight(Mm(m_Axes[0]), Mm(m_Axes[1])) : m_fHeight;
    const bool bHigh = Mm(m_Axes[2]) <= fHeight + SAME_HEIGHT;
    if (m_bProbeHigh.load(std::memory_order_relaxed) == bHigh) return;
    m_bProbeHigh.store(bHigh, std::memory_order_relaxed);
    SetPin(m_iProbePin, bHigh);
}

void CVirtualMachine::SetSurface(HeightFn fnHeight)
{
    m_fnHeight = std::move(fnHeight);
    m_fHeight = -std::numeric_limits<double>::infinity();
    UpdateProbe();
}

void CVirtualMachine::SetFlatSurface(double fHeight)
{
    m_fnHeight = nullptr;
    m_fHeight = fHeight;
    UpdateProbe();
}

void CVirtualMachine::PlaceCarriage(int iAxis, qint64 lPulses)
{
    stAxis& axis = m_Axes[static_cast<size_t>(iAxis)];
    axis.lPos = lPulses;
    UpdateSensor(axis);
    UpdateProbe();
}
