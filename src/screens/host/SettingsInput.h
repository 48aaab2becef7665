#pragma once
#include "screens/host/ScreenHost.h"

#include <optional>

class QPushButton;

// What every editing slot of the settings screens does alike.

// True, and logged: an operation runs or an axis moves, so no setting changes.
bool RefuseMachineInUse(CScreenHost& host);
// The same, and in simulation: a setting by which places are counted would spoil those that are kept meanwhile.
bool RefuseChangeOfPlace(CScreenHost& host);

// One number behind a button.
struct stNumberField
{
    QString strTitle = {};      // of the keypad
    QString strCaption = {};    // under the number on the button; empty: the number alone
    stFloatPoint fRange = {};   // x lowest, y highest; zeros: no check
    bool bSign = false;         // may be negative
    quint16 iDecimals = PRECISION;
};
void ShowNumber(QPushButton* pButton, const stNumberField& field, double fValue);
// The keypad on the button. Empty where the value stays as it is: a cancelled keypad gives back the printed value,
// which may be a rounding of the stored one.
std::optional<double> AskNumber(CScreenHost& host, QPushButton* pButton, const stNumberField& field, double fValue);

// A button that stays on: green, with its name and state.
void ShowSwitch(QPushButton* pButton, bool bOn, const QString& strName, const QString& strOn = QStringLiteral("ON"),
                const QString& strOff = QStringLiteral("OFF"));
