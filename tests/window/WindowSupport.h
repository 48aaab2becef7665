#pragma once
#include "config/AppConfig.h"
#include "platform/virtual/VirtualMachine.h"
#include "support/CleanMachine.h"
#include "support/screens/ScreenSupport.h"
#include "window/MainWindow.h"

#include <memory>
#include <vector>

inline void Answer(QWidget& modal, QMessageBox::StandardButton eButton)   // a message box, from within a CAnswer
{
    Click(*qobject_cast<QMessageBox*>(&modal)->button(eButton));
}

// Sees every write ahead of the machine, on the thread that writes; while it lives.
class CPinWatch : public CPinObserver
{
public:
    CPinWatch(CVirtualMachine& machine, std::function<void(int iPin, int iLevel)> fnOnWrite)
        : m_Machine(machine), m_fnOnWrite(std::move(fnOnWrite))
    {
        CVirtualPins::SetObserver(this);
    }
    ~CPinWatch() override { CVirtualPins::SetObserver(&m_Machine); }
    void OnWrite(int iPin, int iLevel) override
    {
        m_fnOnWrite(iPin, iLevel);
        m_Machine.OnWrite(iPin, iLevel);
    }

private:
    CVirtualMachine& m_Machine;
    std::function<void(int, int)> m_fnOnWrite;
};

// The window on the virtual machine, with real threads and a real clock. Settings made before Open are those of its
// configuration file.
class CWindowTest : public CCleanMachine
{
protected:
    CWindowTest();
    ~CWindowTest() override;

    MainWindow& Open();
    MainWindow& Window() { return *m_pWindow; }
    AppControl& Machine() { return m_pWindow->m_AppControl; }
    CVirtualMachine& Carriages() { return *m_pMachine; }
    void Close();

    QPushButton& Button(const QString& strName) { return Child(*m_pWindow, strName); }
    CMyRndBtn& Round(const char* szName) { return Child<CMyRndBtn>(*m_pWindow, QLatin1String(szName)); }
    CdlgMyHorizSlideBar& Bar(const char* szName)
    {
        return Child<CdlgMyHorizSlideBar>(*m_pWindow, QLatin1String(szName));
    }
    void TouchButton(const QString& strName) { Touch(Button(strName)); }
    void Key(int iKey, bool bDown = true);   // of the keypad, to the window that has the focus
    void TapKey(int iKey)
    {
        Key(iKey, true);
        Key(iKey, false);
    }

    // Log texts without their times, newest first, but for the lateness of ticks, which is the computer's.
    QStringList Log() const;
    bool Logged(const QString& strText) const { return Log().contains(strText); }
    void ExpectLogged(const QString& strText);   // waits for it
    void ClearLog() { m_pWindow->ClearLog(); }

    // The program that is held, compiled.
    void Hold(const QStringList& lstLines);
    void StartByTouch();
    bool WaitIdle(int iLimitMs = 30000);
    static int StatusOutput();

    bool m_bStopHighAtStart = false;   // the input, before the window is there
    std::unique_ptr<CVirtualMachine> m_pMachine;
    std::unique_ptr<MainWindow> m_pWindow;
};
