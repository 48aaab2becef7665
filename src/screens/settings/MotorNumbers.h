#pragma once
#include "machine/MotorSettings.h"
#include "screens/host/SettingsInput.h"

#include <functional>
#include <vector>

// The motor values of the selected axis, each with its button.
struct stMotorNumber
{
    QString strButton;
    std::function<stNumberField(eAxis)> fnField;
    std::function<double(eAxis)> fnValue;
    // Stores what was entered; a text that comes back is for the log.
    std::function<QString(CMotorSettings&, eAxis, double)> fnStore;
    bool bGraph = true;      // the ramp changes
    bool bOfPlace = false;   // positions are counted by it
};
const std::vector<stMotorNumber>& MotorNumbers();
