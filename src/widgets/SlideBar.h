#pragma once
#include "common/MachineTypes.h"

// Value and knob of a slide bar, in the terms of its bar: a whole number between two limits, and the pixels that the
// knob has moved from the low end of its track.
struct stSlideBar
{
    stFloatPoint m_fRange;         // lowest and highest value in x and y
    double m_fPixPerValue = 1.0;   // knob travel per unit of value, pixels
    qint16 m_sKnobPos = 75;        // pixels
    qint16 m_sValue = 75;
    qint16 m_sLastKnobPos = 75;   // at the last ValueChanged
    qint16 m_sStep = 5;           // of the two buttons
    qint16 m_sBarLength = 240;    // buttons, track and knob together, pixels

    static constexpr int PART = 30;       // height of all parts and length of a button or the knob, pixels
    static constexpr int DRAG_STEP = 5;   // pixels

    stSlideBar();
    void SetRange(stFloatPoint fRange);
    // The value is cut to a whole number and clamped.
    void Set(double fValue);
    void StepUp();
    void StepDown();
    // Moves the knob by whole drag steps, to the ends of its track at most, and the value with it. The pixels moved.
    int DragKnob(int iPixels);

private:
    void PlaceKnob();
};
