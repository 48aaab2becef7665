#include "time/VirtualTime.h"

#include <algorithm>
#include <utility>

CVirtualTime* CVirtualTime::m_pCurrent = nullptr;

CVirtualTime::CVirtualTime()
{
    m_pCurrent = this;
}
CVirtualTime::~CVirtualTime()
{
    m_pCurrent = nullptr;
}

void CVirtualTime::SetRun(int iRun, CVirtualRun* pRun)
{
    m_Slots[size_t(iRun)] = {pRun, FOREVER};
}

void CVirtualTime::DropRun(const CVirtualRun* pRun)
{
    for (stSlot& slot : m_Slots)
        if (slot.pRun == pRun) slot = {};
}

void CVirtualTime::AddEvent(stVirtualEvent event)
{
    const auto place = std::upper_bound(m_lstEvents.begin(), m_lstEvents.end(), event.lAt,
                                        [](qint64 lAt, const stVirtualEvent& other) { return lAt < other.lAt; });
    m_lstEvents.insert(place, std::move(event));
}

void CVirtualTime::RunWhatIsDue()
{
    if (IsInterrupted() && !m_bInterruptTold) {
        m_bInterruptTold = true;
        if (m_fnInterrupted) m_fnInterrupted();
    }
    if (std::exchange(m_bRunOut, false) && m_fnRunOut) m_fnRunOut();
    for (stSlot& slot : m_Slots) {
        if (!slot.pRun || slot.lEnd != FOREVER || !slot.pRun->IsDue()) continue;
        slot.lEnd = std::max(m_lNow, slot.pRun->Run(m_lNow));
        m_lEdgeTime = m_lNow;
    }
}

// To the earliest of the end of a run, an event and lUntil; of one time in this order.
CVirtualTime::eStep CVirtualTime::Step(qint64 lUntil)
{
    stSlot* pFirst = nullptr;
    for (stSlot& slot : m_Slots)
        if (slot.pRun && slot.lEnd != FOREVER && (!pFirst || slot.lEnd < pFirst->lEnd)) pFirst = &slot;
    const qint64 lEnd = pFirst ? pFirst->lEnd : FOREVER;
    const qint64 lEvent = m_lstEvents.empty() ? FOREVER : std::max(m_lNow, m_lstEvents.front().lAt);

    if (pFirst && lEnd <= lEvent && lEnd <= lUntil) {
        Advance(lEnd);
        pFirst->lEnd = FOREVER;
        pFirst->pRun->Finish();
        return SOMETHING_CAME;
    }
    if (lEvent != FOREVER && lEvent <= lUntil) {
        Advance(lEvent);
        FireFirstEvent();
        return SOMETHING_CAME;
    }
    if (lUntil == FOREVER) {
        if (m_fnStuck) m_fnStuck();
        return NOTHING_WILL_COME;
    }
    Advance(lUntil);
    return LIMIT_REACHED;
}

void CVirtualTime::FireFirstEvent()
{
    const auto fnAction = std::move(m_lstEvents.front().fnAction);   // it may add events, or wait itself
    m_lstEvents.erase(m_lstEvents.begin());
    if (fnAction) fnAction();
}

void CVirtualTime::Advance(qint64 lTo)
{
    if (lTo <= m_lNow) return;   // an event that waited itself has moved beyond
    if (m_fnAdvance) m_fnAdvance(lTo);
    m_lNow = m_lEdgeTime = lTo;
}
