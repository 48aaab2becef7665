#include "platform/Computer.h"

#include <QProcess>

#include <sched.h>

void BindThreadToCore(int iCore)
{
    cpu_set_t mask;   // 128 bytes, one bit a core
    CPU_ZERO(&mask);
    CPU_SET(static_cast<size_t>(iCore), &mask);
    (void)sched_setaffinity(0, sizeof mask, &mask);
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
