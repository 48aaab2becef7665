#pragma once
#include "control/AppControl.h"
#include "screens/host/ScreenHost.h"

#include <QWidget>

#include <deque>
#include <optional>
#include <vector>

// The window of a screen under test: records what the screen says and answers its keypads.
class CTestHost : public QWidget, public CScreenHost
{
public:
    struct stLog
    {
        QString strText;
        eAppMsgType eType;
        bool operator==(const stLog&) const = default;
    };
    struct stKeypad
    {
        QPushButton* pButton;
        QString strTitle, strCtrlTxt, strValue;
        double fLow, fHigh;
        bool bShowSign;
        quint16 iPrecision;
    };

    CTestHost();
    ~CTestHost() override;

    // Makes the host the screen's parent, puts it where the window has its work screens, and shows both.
    void Place(QWidget& screen, QPoint at = QPoint(10, 45));

    // What the next keypads return, first one first; no value stands for Cancel. A keypad without an answer fails.
    void Type(std::optional<double> fValue) { m_lstAnswers.push_back(fValue); }
    // The texts logged since the last call.
    QStringList TakeLog();

    AppControl& Machine() override { return m_Machine; }
    void AddLogMsg(const QString& strMsg, eAppMsgType eType) override { m_lstLog.push_back({strMsg, eType}); }
    bool IsEmergencyStopOn() override;
    void ResetBtnBkGnd(QPushButton* pButton, const QString& strStyle) override;
    double OpenKeypad(QPushButton* pButton, const QString& strTitle, const QString& strCtrlTxt, const QString& strValue,
                      stFloatPoint fRange, bool bShowSign, quint16 iPrecision) override;
    void ClearToolGraphics() override {}
    void EnlMchHomingOptions(bool bEnable) override { m_lstHomingOptions.push_back(bEnable); }
    void EnableDisableSpindleSpeedCtrl(bool bEnable) override { m_lstSpindleCtrl.push_back(bEnable); }
    void UpdateUserSettings() override { ++m_iUserSettingsUpdated; }
    void GrabKeyboard(bool bGrab) override { m_lstGrabs.push_back(bGrab); }
    void EnableJogPanel(bool) override {}
    void EnableScreenSelectors(bool bEnable) override { m_lstSelectors.push_back(bEnable); }

    AppControl m_Machine;
    std::vector<stLog> m_lstLog;
    std::vector<stKeypad> m_lstKeypads;   // all that were opened
    int m_iUserSettingsUpdated = 0;
    std::vector<bool> m_lstHomingOptions, m_lstSpindleCtrl, m_lstGrabs, m_lstSelectors;

private:
    std::deque<std::optional<double>> m_lstAnswers;
};
