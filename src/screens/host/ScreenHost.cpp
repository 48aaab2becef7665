#include "screens/host/ScreenHost.h"

#include "control/AppControl.h"

bool CScreenHost::IsMachineFree()
{
    return Machine().m_eOperation == OP_NONE && Machine().IsMachineIdle();
}

CScreenHost& HostOf(const QObject& screen)
{
    // The parent of a screen is a host by construction; a null here is a programming error.
    CScreenHost* pHost = dynamic_cast<CScreenHost*>(screen.parent());
    Q_ASSERT(pHost);
    return *pHost;
}
