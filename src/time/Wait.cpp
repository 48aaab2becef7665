#include "time/Wait.h"

#include <QElapsedTimer>
#include <QThreadPool>
#include <QtConcurrent>

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

void RunPooled(std::function<void()> fnTask)
{
    if (CVirtualTime::Current()) return fnTask();
    QThreadPool* pPool = QThreadPool::globalInstance();
    if (pPool->maxThreadCount() < 4) pPool->setMaxThreadCount(4);
    (void)QtConcurrent::run(std::move(fnTask));
}
