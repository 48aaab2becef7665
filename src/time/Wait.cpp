#include "time/Wait.h"

#include <QElapsedTimer>
#include <QThreadPool>

#include <deque>
#include <functional>
#include <mutex>

CShared<qint64> CWait::m_lShorten = 1;
CShared<void (*)(qint64)> CWait::m_fnSleepHook = nullptr;

static QElapsedTimer StartedTimer()
{
    QElapsedTimer timer;
    timer.start();
    return timer;
}

qint64 CWait::Now()
{
    if (const CVirtualTime* pTime = CVirtualTime::Current()) return pTime->Now();
    static const QElapsedTimer timer = StartedTimer();
    return timer.nsecsElapsed();
}

void CWait::SleepUs(qint64 lUs)
{
    if (CVirtualTime* pTime = CVirtualTime::Current()) return pTime->Sleep(lUs * 1000);
    if (const auto fnHook = static_cast<void (*)(qint64)>(m_fnSleepHook)) fnHook(lUs);
    QThread::usleep(static_cast<unsigned long>(lUs / m_lShorten));
}

namespace {
// Handed to the pool and not begun yet. The pool hands its own data over behind a lock that a thread sanitizer does not
// see; the tasks go by this one. Never destroyed: a pooled thread may outlive main.
struct stTasks
{
    std::mutex mutex;
    std::deque<std::function<void()>> lst;
};
stTasks& Tasks()
{
    static stTasks* const pTasks = new stTasks;
    return *pTasks;
}

void RunNextTask()
{
    std::function<void()> fnTask;
    {
        const std::lock_guard lock(Tasks().mutex);
        fnTask = std::move(Tasks().lst.front());
        Tasks().lst.pop_front();
    }
    try {
        fnTask();
    } catch (...) {
        // Nobody asks for its result.
    }
}
}   // namespace

void RunPooled(std::function<void()> fnTask)
{
    if (CVirtualTime::Current()) return fnTask();
    QThreadPool* pPool = QThreadPool::globalInstance();
    if (pPool->maxThreadCount() < 4) pPool->setMaxThreadCount(4);
    {
        const std::lock_guard lock(Tasks().mutex);
        Tasks().lst.push_back(std::move(fnTask));
    }
    pPool->start([] { RunNextTask(); });
}
