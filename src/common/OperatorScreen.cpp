#include "common/OperatorScreen.h"

namespace {
// Where nobody operates the machine: a bench, a test of a part.
class CSilentScreen : public COperatorScreen
{
public:
    void EnableDisableWindows() override {}
    void ClearToolGraphics() override {}
    void OnOperationFinish() override {}
    void UpdateWorkArea() override {}
    void AddLogMsg(const QString&, eAppMsgType) override {}
    void ShowCriticalBox(const QString&, const QString&) override {}
};
CSilentScreen g_SilentScreen;
}   // namespace

static COperatorScreen* g_pScreen = &g_SilentScreen;

COperatorScreen::~COperatorScreen()
{
    if (g_pScreen == this) g_pScreen = &g_SilentScreen;
}

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
