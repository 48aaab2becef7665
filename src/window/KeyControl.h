#pragma once
#include "common/MachineTypes.h"

#include <QtGlobal>

// What the keys of a numeric keypad do to the machine. A short press acts when the key comes up, a hold of one second
// by itself. Decisions only, no state; the window carries them out. Any thread.
enum eKeyAction
{
    KEY_NOTHING,
    KEY_TOGGLE_STOP,      // emergency stop
    KEY_FEED_OVERRIDE,    // by iStep percent
    KEY_SPEED_OVERRIDE,   // by iStep of the spindle's bar
    KEY_NO_SPEED_CTRL,    // refused
    KEY_SPINDLE_CW,
    KEY_LIGHT_START,   // draws Start as pressed and starts nothing
    KEY_TOGGLE_MODE,   // between continuous jog with feed override and step jog with speed override
    KEY_REFUSE_BUSY,
    KEY_LOAD_STICK,
    KEY_SHOW_AND_LIGHT_START,
    KEY_MEASURE_HOLD,
    KEY_JOG,   // of the axis, towards the sign of iStep
    KEY_MOVE_Z_ZERO,
    KEY_MOVE_ALL_ZERO,
    KEY_MOVE_XY_ZERO,
    KEY_SET_JOG_STEP,
    KEY_HOME_ALL,
    KEY_SET_Z_ZERO,
    KEY_SET_ALL_ZERO,
    KEY_SET_XY_ZERO
};

struct stKeyDecision
{
    eKeyAction eAction = KEY_NOTHING;
    int iStep = 0;
    eAxis axis = X_AXIS;
    bool operator==(const stKeyDecision&) const = default;
};

struct stKeyState
{
    bool bContinuous = true;   // the key mode
    int iOperation = 0;        // 0: the machine is free for keys
    bool bSpeedCtrl = false;   // PWM in use, and the speed does not come from the program
};

// iKey: a Qt::Key. The first row of the table that fits decides.
stKeyDecision DecideKeyPress(int iKey, const stKeyState& state);
stKeyDecision DecideShortPress(int iKey, bool bContinuous);
stKeyDecision DecideHeldKey(int iKey);

inline constexpr qint64 KEY_SHORT_MS = 300;   // a press below it is short
inline constexpr qint64 KEY_HELD_MS = 1000;

// The step of a jog that key 1, 5 or 7 chooses (0.01, 0.05, 0.1 mm), as whole pulses of the coarsest axis, whose
// travel per pulse is fPerPulse (mm).
double JogStepOf(int iKey, double fPerPulse);
