#include "widgets/SlideBar.h"

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

int stSlideBar::DragKnob(int iPixels)
{
    if (m_fPixPerValue <= 0.0) return 0;
    const int iFrom = m_sKnobPos, iTo = iFrom + iPixels / DRAG_STEP * DRAG_STEP;
    m_sKnobPos = ToShort(std::clamp(double(iTo), m_fRange.x * m_fPixPerValue, m_fRange.y * m_fPixPerValue));
    m_sValue = ToShort(std::round(m_sKnobPos / m_fPixPerValue));
    return m_sKnobPos - iFrom;
}

void stSlideBar::PlaceKnob()
{
    m_sKnobPos = ToShort(m_sValue * m_fPixPerValue);
}
