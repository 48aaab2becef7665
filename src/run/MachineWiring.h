#pragma once
#include "platform/virtual/VirtualMachine.h"

// A machine that is built and wired as the settings say, with the board's pins. With bSensors it has a home sensor at
// machine position 0 of every axis and stands in the middle of its travel. After the configuration has been loaded.
stVirtualMachine MachineOfSettings(bool bSensors);
