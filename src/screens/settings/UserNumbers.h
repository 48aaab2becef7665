#pragma once
#include "machine/MotorSettings.h"
#include "screens/host/SettingsInput.h"

#include <functional>
#include <variant>
#include <vector>

// The numbers of the user settings, each with its button: one entry an axis where the setting has one.
struct stUserNumber
{
    QString strButton;
    eAxis axis;                               // Z for what is not of one axis
    bool bOfAxis;                             // greyed where the machine does not have the axis
    std::function<stNumberField()> fnField;   // ranges follow other settings
    std::variant<double*, CShared<double>*> value;
    // Stores what was entered; a text that comes back is for the log. Null: the value is stored as it is.
    std::function<QString(CMotorSettings&, double)> fnStore;

    double Value() const
    {
        return std::visit([](const auto* pValue) { return static_cast<double>(*pValue); }, value);
    }
    void SetValue(double fValue) const
    {
        std::visit([fValue](auto* pValue) { *pValue = fValue; }, value);
    }
};
const std::vector<stUserNumber>& UserNumbers();
