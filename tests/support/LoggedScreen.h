#pragma once
#include "common/OperatorScreen.h"

#include <QStringList>

// Keeps what the operator would see. In force while it lives; one thread.
class CLoggedScreen : public COperatorScreen
{
public:
    CLoggedScreen() { COperatorScreen::Set(this); }
    void EnableDisableWindows() override {}
    void ClearToolGraphics() override {}
    void OnOperationFinish() override {}
    void UpdateWorkArea() override {}
    void AddLogMsg(const QString& strMsg, eAppMsgType eType) override
    {
        m_lstLog += QStringLiteral("%1 %2").arg(int(eType)).arg(strMsg);
    }
    void ShowCriticalBox(const QString& strTitle, const QString& strText) override
    {
        m_lstBoxes += strTitle + QStringLiteral(": ") + strText;
    }
    QStringList m_lstLog, m_lstBoxes;
};
