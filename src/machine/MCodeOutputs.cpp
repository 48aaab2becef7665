#include "machine/MCodeOutputs.h"

#include "config/AppConfig.h"
#include "hardware/VantorGpio.h"

void WriteMCodeOutput(int iCode, quint8 ucLevel)
{
    CVANTORGPIO::WriteOutput(Pin(AppConfig::m_lstMCodesPin[static_cast<quint16>(iCode)]), ucLevel);
}
