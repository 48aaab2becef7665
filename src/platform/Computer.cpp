#include "platform/Computer.h"

#include <QProcess>

#include <sched.h>
#include <sys/mman.h>
#include <sys/resource.h>

void BindThreadToCore(int iCore)
{
    cpu_set_t mask;   // 128 bytes, one bit a core
    CPU_ZERO(&mask);
    CPU_SET(static_cast<size_t>(iCore), &mask);
    (void)sched_setaffinity(0, sizeof mask, &mask);
}

eLockedMemory LockMemory()
{
    rlimit limit{};
    const bool bUnlimited = getrlimit(RLIMIT_MEMLOCK, &limit) == 0 && limit.rlim_cur == RLIM_INFINITY;
    if (bUnlimited && mlockall(MCL_CURRENT | MCL_FUTURE) == 0) return LOCKED_ALL;
    return mlockall(MCL_CURRENT) == 0 ? LOCKED_PRESENT : LOCKED_NOTHING;
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
