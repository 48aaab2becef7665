#include "window/KeyControl.h"

#include "common/Operation.h"
#include "common/UnitConverter.h"
#include "config/AppConfig.h"

#include <Qt>

#include <algorithm>
#include <iterator>

namespace {
constexpr int ANY_KEY = -1;

using Condition = bool (*)(const stKeyState&);
bool Always(const stKeyState&)
{
    return true;
}
bool Continuous(const stKeyState& state)
{
    return state.bContinuous;
}
bool SpeedCtrl(const stKeyState& state)
{
    return state.bSpeedCtrl;
}
bool RunsGCode(const stKeyState& state)
{
    return state.iOperation == OP_GCODE;
}
bool Runs(const stKeyState& state)
{
    return state.iOperation != OP_NONE;
}

struct stRow
{
    int iKey;
    Condition fnFits;
    stKeyDecision decision;
};

constexpr int FEED_STEP = 10, SPEED_STEP = 1;

// In this order: keys above the refusal act while an operation runs, those below it only on a free machine.
constexpr stRow PRESSES[] = {
    {Qt::Key_NumLock, Always, {}},
    {Qt::Key_Enter, Always, {KEY_TOGGLE_STOP}},
    {Qt::Key_Asterisk, Continuous, {KEY_FEED_OVERRIDE, FEED_STEP}},
    {Qt::Key_Asterisk, SpeedCtrl, {KEY_SPEED_OVERRIDE, SPEED_STEP}},
    {Qt::Key_Asterisk, Always, {KEY_NO_SPEED_CTRL}},
    {Qt::Key_Slash, Continuous, {KEY_FEED_OVERRIDE, -FEED_STEP}},
    {Qt::Key_Slash, SpeedCtrl, {KEY_SPEED_OVERRIDE, -SPEED_STEP}},
    {Qt::Key_Slash, Always, {KEY_NO_SPEED_CTRL}},
    {Qt::Key_Minus, Always, {KEY_SPINDLE_CW}},
    {Qt::Key_Period, RunsGCode, {KEY_LIGHT_START}},
    {Qt::Key_0, Runs, {KEY_TOGGLE_MODE}},
    {ANY_KEY, Runs, {KEY_REFUSE_BUSY}},
    {Qt::Key_Plus, Always, {KEY_LOAD_STICK}},
    {Qt::Key_Period, Always, {KEY_SHOW_AND_LIGHT_START}},
    {Qt::Key_0, Always, {KEY_MEASURE_HOLD}},
    {Qt::Key_1, Always, {KEY_MEASURE_HOLD}},
    {Qt::Key_5, Always, {KEY_MEASURE_HOLD}},
    {Qt::Key_7, Always, {KEY_MEASURE_HOLD}},
    {Qt::Key_2, Always, {KEY_JOG, -1, Y_AXIS}},
    {Qt::Key_8, Always, {KEY_JOG, 1, Y_AXIS}},
    {Qt::Key_3, Always, {KEY_JOG, -1, Z_AXIS}},
    {Qt::Key_9, Always, {KEY_JOG, 1, Z_AXIS}},
    {Qt::Key_4, Always, {KEY_JOG, -1, X_AXIS}},
    {Qt::Key_6, Always, {KEY_JOG, 1, X_AXIS}},
};

struct stHoldRow
{
    int iKey;
    eKeyAction eShortContinuous, eShortStep, eHeld;
};
constexpr stHoldRow HOLDS[] = {
    {Qt::Key_0, KEY_TOGGLE_MODE, KEY_TOGGLE_MODE, KEY_HOME_ALL},
    {Qt::Key_1, KEY_MOVE_Z_ZERO, KEY_SET_JOG_STEP, KEY_SET_Z_ZERO},
    {Qt::Key_5, KEY_MOVE_ALL_ZERO, KEY_SET_JOG_STEP, KEY_SET_ALL_ZERO},
    {Qt::Key_7, KEY_MOVE_XY_ZERO, KEY_SET_JOG_STEP, KEY_SET_XY_ZERO},
};

const stHoldRow* HoldOf(int iKey)
{
    const auto found =
        std::find_if(std::begin(HOLDS), std::end(HOLDS), [iKey](const stHoldRow& row) { return row.iKey == iKey; });
    return found == std::end(HOLDS) ? nullptr : found;
}
}   // namespace

stKeyDecision DecideKeyPress(int iKey, const stKeyState& state)
{
    for (const stRow& row : PRESSES)
        if ((row.iKey == ANY_KEY || row.iKey == iKey) && row.fnFits(state)) return row.decision;
    return {};
}

stKeyDecision DecideShortPress(int iKey, bool bContinuous)
{
    const stHoldRow* pRow = HoldOf(iKey);
    if (!pRow) return {};
    return {bContinuous ? pRow->eShortContinuous : pRow->eShortStep};
}

stKeyDecision DecideHeldKey(int iKey)
{
    const stHoldRow* pRow = HoldOf(iKey);
    return pRow ? stKeyDecision{pRow->eHeld} : stKeyDecision{};
}

double JogStepOf(int iKey, double fPerPulse)
{
    const double fTarget = iKey == Qt::Key_1 ? 0.01 : iKey == Qt::Key_5 ? 0.05 : 0.1;
    // A pulse below a position unit is no pulse, and adding it would not end.
    if (!(fPerPulse >= 1.0 / DECIMAL_MULTIPLYER)) return fTarget;
    double fStep = fPerPulse;
    while (CUnitConverter::GetLong(fStep) < CUnitConverter::GetLong(fTarget)) fStep += fPerPulse;
    return fStep;
}
