#include "screens/host/ScreenHost.h"

#include "common/Refusals.h"
#include "control/AppControl.h"

CMachine& CScreenHost::MachineParts()
{
    return Machine();
}

qint32 CScreenHost::Operation()
{
    return Machine().m_eOperation;
}

bool CScreenHost::IsMachineFree()
{
    return Machine().IsFree();
}

bool CScreenHost::IsWorkerRunning()
{
    return Machine().isRunning();
}

QString CScreenHost::WhyNotFree()
{
    return IsMachineFree() ? QString() : MACHINE_IN_USE;
}

QString CScreenHost::WhyNotHomed()
{
    return Machine().GetHomeDone() ? QString() : HOMING_NOT_DONE_SHOWN;
}

bool CScreenHost::Refused(const QString& strWhy)
{
    if (!strWhy.isEmpty()) AddLogMsg(strWhy, MSG_ERROR);
    return !strWhy.isEmpty();
}

bool CScreenHost::StartHoming()
{
    return Machine().StartMchHomingSequence();
}

bool CScreenHost::StartHoming(eAxis axis)
{
    return Machine().StartMchHomingSequence(axis);
}

bool CScreenHost::StartZProfile()
{
    return Machine().RunZProfile();
}

CScreenHost& HostOf(const QObject& screen)
{
    // The parent of a screen is a host by construction; a null here is a programming error.
    CScreenHost* pHost = dynamic_cast<CScreenHost*>(screen.parent());
    Q_ASSERT(pHost);
    return *pHost;
}
