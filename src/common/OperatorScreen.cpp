#include "common/OperatorScreen.h"

static COperatorScreen g_SilentScreen;
static COperatorScreen* g_pScreen = &g_SilentScreen;

COperatorScreen::~COperatorScreen()
{
    if (g_pScreen == this) g_pScreen = &g_SilentScreen;
}

void COperatorScreen::AddLogMsg(const QString&, eAppMsgType) {}
void COperatorScreen::ShowCriticalBox(const QString&, const QString&) {}

COperatorScreen& COperatorScreen::Get()
{
    return *g_pScreen;
}
void COperatorScreen::Set(COperatorScreen* pScreen)
{
    g_pScreen = pScreen ? pScreen : &g_SilentScreen;
}

void TellNotice(const QString& strText)
{
    COperatorScreen::Get().AddLogMsg(strText, MSG_NOTICE);
}
