#pragma once
#include "screens/host/ScreenHost.h"
#include "widgets/ButtonStyle.h"

#include <QPushButton>

// Paints a button while its slot runs. Afterwards it shows its state at rest again, late enough for the press to be
// seen. Interface thread.
class CPressedBtn
{
public:
    CPressedBtn(CScreenHost& host, QPushButton* pButton, const QString& strRest = BTN_BKGND_GRAY,
                const QString& strPressed = BTN_BKGND_GREEN)
        : m_Host(host), m_pButton(pButton), m_strRest(strRest)
    {
        pButton->setStyleSheet(strPressed);
        pButton->repaint();   // a slot that computes for long must not look unheard
    }
    ~CPressedBtn()
    {
        if (!m_strRest.isEmpty()) m_Host.ResetBtnBkGnd(m_pButton, m_strRest);
    }
    CPressedBtn(const CPressedBtn&) = delete;
    CPressedBtn& operator=(const CPressedBtn&) = delete;

    void RestAt(const QString& strStyle) { m_strRest = strStyle; }
    // What was started goes on: its end gives the button back.
    void StayOn() { m_strRest.clear(); }

private:
    CScreenHost& m_Host;
    QPushButton* m_pButton;
    QString m_strRest;
};
