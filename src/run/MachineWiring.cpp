#include "run/MachineWiring.h"

#include "config/AppConfig.h"

stVirtualMachine MachineOfSettings(bool bSensors)
{
    using A = AppConfig;
    stVirtualMachine machine;
    for (int axis = 0; axis < A::m_iMchType; ++axis) {
        stVirtualAxis& built = machine.axes[static_cast<size_t>(axis)];
        built.iPulsePin = A::m_iAxisPulseOutput[axis];
        built.iDirPin = A::m_iAxisDirOutput[axis];
        built.iHomePin = A::m_iAxisMchHomeSensorInput[axis];
        built.iUpLevel = A::m_eAxisPosDir[axis];
        if (A::m_fAxisMovPerPulse[axis] > 0.0) built.fMmPerPulse = A::m_fAxisMovPerPulse[axis];
        if (!bSensors) continue;
        // The home is 0 of the machine's coordinates; a machine that is switched on stands somewhere in between.
        built.fSensorAt = 0.0;
        built.bSensorAbove = A::m_eAxisHomeDir[axis] == A::m_eAxisPosDir[axis];
        built.fStart = (A::m_fAxisPosDirLimit[axis] + A::m_fAxisNegDirLimit[axis]) / 2.0;
    }
    machine.iProbePin = A::m_iZProbeInput;
    machine.iEStopPin = A::m_iEStopInput;
    machine.iStartPin = A::m_iPgmStartInput;
    return machine;
}
