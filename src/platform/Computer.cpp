#include "platform/Computer.h"

#include <QProcess>
#include <QSemaphore>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <exception>
#include <memory>
#include <mutex>
#include <sched.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <system_error>
#include <thread>
#include <vector>

void BindThreadToCore(int iCore)
{
    cpu_set_t mask;   // 128 bytes, one bit a core
    CPU_ZERO(&mask);
    CPU_SET(static_cast<size_t>(iCore), &mask);
    (void)sched_setaffinity(0, sizeof mask, &mask);
}

void ForEachOnFreeCores(size_t uCount, const std::function<void(size_t)>& fnTask)
{
    cpu_set_t mask;
    CPU_ZERO(&mask);
    (void)sched_getaffinity(0, sizeof mask, &mask);
    if (CPU_COUNT(&mask) > 1) CPU_CLR(static_cast<size_t>(PULSE_CORE), &mask);
    static constexpr int STEPS_BACK = 5;   // of niceness: a third of the share of a thread without it
    std::atomic<size_t> uNext = 0;
    std::exception_ptr pThrown;
    std::mutex mutex;
    const auto Work = [&] {
        try {
            for (size_t n = uNext++; n < uCount; n = uNext++) fnTask(n);
        } catch (...) {
            uNext = uCount;
            const std::lock_guard lock(mutex);
            pThrown = std::current_exception();
        }
    };
    const auto WorkBehind = [&] {
        (void)sched_setaffinity(0, sizeof mask, &mask);
        // An axis that moves by itself has no core of its own, and goes ahead. Not SCHED_IDLE: on a busy computer a
        // load would not end.
        (void)setpriority(PRIO_PROCESS, 0, getpriority(PRIO_PROCESS, 0) + STEPS_BACK);   // this thread alone
        Work();
    };
    std::vector<std::thread> threads;
    threads.reserve(std::min(uCount, static_cast<size_t>(std::max(CPU_COUNT(&mask), 1))));
    try {
        while (threads.size() < threads.capacity()) threads.emplace_back(WorkBehind);
    } catch (const std::system_error&) {
        // Those that could be had do it, or the caller.
    }
    for (std::thread& thread : threads) thread.join();
    Work();   // what is left where no thread could be had
    if (pThrown) std::rethrow_exception(pThrown);
}

void AdviseLargePages(void* pMemory, size_t uBytes)
{
    static constexpr std::uintptr_t LARGE = 2 << 20;
    const auto uFrom = (reinterpret_cast<std::uintptr_t>(pMemory) + LARGE - 1) & ~(LARGE - 1);
    const auto uTo = (reinterpret_cast<std::uintptr_t>(pMemory) + uBytes) & ~(LARGE - 1);
    if (uTo > uFrom) (void)madvise(reinterpret_cast<void*>(uFrom), uTo - uFrom, MADV_HUGEPAGE);
}

eLockedMemory LockMemory()
{
    rlimit limit{};
    const bool bUnlimited = getrlimit(RLIMIT_MEMLOCK, &limit) == 0 && limit.rlim_cur == RLIM_INFINITY;
    if (bUnlimited && mlockall(MCL_CURRENT | MCL_FUTURE) == 0) return LOCKED_ALL;
    return mlockall(MCL_CURRENT) == 0 ? LOCKED_PRESENT : LOCKED_NOTHING;
}

void TouchStack()
{
    static constexpr size_t TOUCHED = 64 * 1024, PAGE = 4096;
    volatile char bytes[TOUCHED];
    for (size_t n = 0; n < TOUCHED; n += PAGE) bytes[n] = 0;
    (void)bytes[0];
}

void TouchStacks(int iThreads)
{
    static constexpr int START_LIMIT_MS = 1000;
    QSemaphore started, end;
    std::vector<std::unique_ptr<QThread>> threads;
    for (int n = 0; n < iThreads; ++n) {
        threads.emplace_back(QThread::create([&] {
            TouchStack();
            started.release();
            end.acquire();   // none takes the stack of one that has ended
        }));
        threads.back()->setStackSize(THREAD_STACK);
        threads.back()->start();
    }
    (void)started.tryAcquire(iThreads, START_LIMIT_MS);   // one that finds no memory does not start
    end.release(iThreads);
    for (const auto& pThread : threads) pThread->wait();
}

static bool StartProcess(const QString& strProgram)
{
    return QProcess::startDetached(strProgram, {}, QString());
}
static StartDetachedFn g_fnStart = StartProcess;

bool StartDetached(const QString& strProgram)
{
    return g_fnStart(strProgram);
}
void SetStartDetached(StartDetachedFn fn)
{
    g_fnStart = fn ? fn : StartProcess;
}
