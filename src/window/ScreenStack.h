#pragma once
#include <QString>

#include <functional>
#include <vector>

class QPushButton;
class QWidget;

// One screen of the work area.
struct stScreen
{
    QWidget* pScreen;
    QPushButton* pButton;            // of the top row
    std::function<bool()> fnStart;   // true: the worker has started; none: a settings screen, nothing starts there
    std::function<void()> fnUpdate = {};   // before it is shown
    bool bLocked = false;                  // behind the passkey
};

// The screens of the work area, of which one is shown. Interface thread.
class CScreenStack
{
public:
    explicit CScreenStack(std::vector<stScreen> lstScreens) : m_lstScreens(std::move(lstScreens)) {}

    void SetUp();   // the looks of its buttons
    // Of a locked one the passkey is asked first.
    void Show(const QWidget& screen);
    bool AreSettingsShown() const;

    // Why nothing can be started now from the screen that is shown; empty: it can.
    QString WhyNotStart() const;
    bool StartShown();

private:
    const stScreen* Shown() const;
    static bool PassLock(QWidget* pWindow);

    std::vector<stScreen> m_lstScreens;
    QWidget* m_pCurDlg = nullptr;
    QPushButton* m_pCurDlgBtn = nullptr;
};
