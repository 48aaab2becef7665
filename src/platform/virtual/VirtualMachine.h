#pragma once
#include "platform/virtual/VirtualPins.h"

#include <array>
#include <functional>
#include <limits>

// How one axis of a machine is wired and built. A pin below 0 is not connected. mm are those of the machine: 0 is
// wherever the sensor and the start are measured from.
struct stVirtualAxis
{
    static constexpr double NO_SENSOR = std::numeric_limits<double>::infinity();

    int iPulsePin = -1, iDirPin = -1, iHomePin = -1;
    int iUpLevel = 0;   // level of the direction pin at which a step moves the carriage up
    double fMmPerPulse = 0.001;
    double fSensorAt = NO_SENSOR;   // mm; the sensor is high there and everywhere beyond
    bool bSensorAbove = true;       // beyond means further up, otherwise further down
    double fStart = 0.0;            // mm, rounded to whole pulses
};

struct stVirtualMachine
{
    std::array<stVirtualAxis, 5> axes;
    int iProbePin = -1, iEStopPin = -1, iStartPin = -1;
};

// Told of every change of level on a pulse or direction pin, behind the step that it makes.
// On the thread that writes the pin; a pulse pin has one writer at a time, different pins have different ones.
class CEdgeRecorder
{
public:
    enum ePinRole
    {
        ROLE_PULSE = 0,
        ROLE_DIRECTION = 1
    };
    virtual ~CEdgeRecorder() = default;
    virtual void OnEdge(int iAxis, ePinRole eRole, int iLevel, qint64 lCarriage) = 0;
};

// The machine behind the virtual pins: counts the steps on the pulse pins by the level of the direction pins, moves
// the carriages, and drives the home sensors and the Z-probe. It knows its wiring, not what the settings say of it: a
// wrong direction or a swapped pin shows as a carriage in the wrong place.
// Give it to CVirtualPins::SetObserver. It is called from every thread that writes pins; no lock, no allocation.
class CVirtualMachine : public CPinObserver
{
public:
    // Height in mm of what the probe meets below the tool at X, Y (mm). Called on the threads that step X, Y and Z.
    using HeightFn = std::function<double(double fX, double fY)>;

    // Takes the levels that the pins have and sets the inputs to those of a machine at its start.
    explicit CVirtualMachine(const stVirtualMachine& machine);

    void OnWrite(int iPin, int iLevel) final;

    // The probe is high while the tool is at or below the height. Without one it meets nothing. While nothing moves.
    void SetSurface(HeightFn fnHeight);
    void SetFlatSurface(double fHeight);
    // What an operator or a person at the machine does.
    void PressEmergencyStop(bool bDown) { SetPin(m_iEStopPin, bDown); }
    void PressStart(bool bDown) { SetPin(m_iStartPin, bDown); }
    // Puts a carriage somewhere else by hand. While nothing moves.
    void PlaceCarriage(int iAxis, qint64 lPulses);

    qint64 Carriage(int iAxis) const { return m_Axes[size_t(iAxis)].lPos.load(std::memory_order_relaxed); }   // pulses
    double CarriageMm(int iAxis) const { return Mm(m_Axes[size_t(iAxis)]); }

    void SetRecorder(CEdgeRecorder* pRecorder) { m_pRecorder.store(pRecorder, std::memory_order_release); }

private:
    struct alignas(64) stAxis   // a cache line each: they are stepped from different threads
    {
        std::atomic<qint64> lPos = 0;    // pulses
        std::atomic<qint64> lStep = 1;   // of the next pulse, by the direction pin
        qint64 lSensorAt = 0;            // pulses
        int iHomePin = -1, iUpLevel = 0;
        bool bSensorAbove = true;
        std::atomic<bool> bOnSensor = false;
        double fMmPerPulse = 0.0;
    };
    struct stPin
    {
        quint8 ucAxis = NOT_WIRED;
        CEdgeRecorder::ePinRole eRole = CEdgeRecorder::ROLE_PULSE;
        std::atomic<quint8> ucLevel = 0;
    };
    static constexpr quint8 NOT_WIRED = 255;
    static constexpr double SAME_HEIGHT = 1e-9;   // mm, far below a pulse: rounding of pulses times mm

    static double Mm(const stAxis& axis)
    {
        return static_cast<double>(axis.lPos.load(std::memory_order_relaxed)) * axis.fMmPerPulse;
    }
    static void SetPin(int iPin, bool bHigh)
    {
        if (iPin >= 0) CVirtualPins::SetInput(iPin, bHigh ? 1 : 0);
    }
    void Wire(int iPin, size_t uAxis, CEdgeRecorder::ePinRole eRole);
    void Step(size_t uAxis, stAxis& axis);
    void SetDirection(stAxis& axis, int iLevel);
    void UpdateSensor(stAxis& axis);
    void UpdateProbe();

    std::array<stPin, CVirtualPins::PINS> m_Pins;
    std::array<stAxis, 5> m_Axes;
    std::atomic<CEdgeRecorder*> m_pRecorder = nullptr;
    // Without a function the height is the same everywhere, and X and Y need not ask.
    HeightFn m_fnHeight;
    double m_fHeight = -std::numeric_limits<double>::infinity();
    int m_iProbePin, m_iEStopPin, m_iStartPin;
    std::atomic<bool> m_bProbeHigh = false;
};
