#include "ui/SlideBar.h"

#include <algorithm>
#include <cmath>
#include <limits>

// Cut towards zero; beyond 16 bits the limit, and 0 for what is no number.
static qint16 ToShort(double fValue)
{
    using Limits = std::numeric_limits<qint16>;
    if (std::isnan(fValue)) return 0;
    return static_cast<qint16>(std::clamp(fValue, double{Limits::min()}, double{Limits::max()}));
}

stSlideBar::stSlideBar()
{
    m_fRange.x = 10.0;
    m_fRange.y = 150.0;
}

void stSlideBar::SetRange(stFloatPoint fRange)
{
    m_fRange = fRange;
    // By the upper limit and not by the span: wanted, so that bars with the same upper limit have the same scale.
    m_fPixPerValue = fRange.y != 0.0 ? (m_sBarLength - 3 * PART) / fRange.y : 0.0;
}

void stSlideBar::Set(double fValue)
{
    m_sValue = ToShort(fValue);
    if (m_sValue >= m_fRange.y) m_sValue = ToShort(m_fRange.y);
    if (m_sValue <= m_fRange.x) m_sValue = ToShort(m_fRange.x);
    PlaceKnob();
}

void stSlideBar::StepUp()
{
    m_sValue = ToShort(m_sValue + m_sStep);
    if (m_sValue >= m_fRange.y) m_sValue = ToShort(m_fRange.y);
    PlaceKnob();
}

void stSlideBar::StepDown()
{
    m_sValue = ToShort(m_sValue - m_sStep);
    if (m_sValue <= m_fRange.x) m_sValue = ToShort(m_fRange.x);
    PlaceKnob();
}

bool stSlideBar::DragKnob(int iSteps)
{
    const int iPos = m_sKnobPos + iSteps * DRAG_STEP;
    if (iSteps == 0 || iPos < m_fRange.x * m_fPixPerValue || iPos > m_fRange.y * m_fPixPerValue ||
        m_fPixPerValue == 0.0)
        return false;
    m_sKnobPos = ToShort(iPos);
    m_sValue = ToShort(std::round(iPos / m_fPixPerValue));
    return true;
}

void stSlideBar::PlaceKnob()
{
    m_sKnobPos = ToShort(m_sValue * m_fPixPerValue);
}
