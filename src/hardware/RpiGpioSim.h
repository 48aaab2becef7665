#pragma once
#include <QtGlobal>

// The shape of CRpiGpio with nothing behind it. Simulation in the running system goes by AppConfig::m_bSimulationMode
// at each call, not by this class.
class CRpiGpioSim
{
public:
    static void InitRpiGpio() {}
    static void SetPinModeOutput(quint16) {}
    static void SetPinModeInput(quint16) {}
    static void WriteOutput(quint16, quint16) {}   // the value is wider than CRpiGpio's: wanted, without effect
    static quint8 ReadInput(quint16) { return 0; }
};
