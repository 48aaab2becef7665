#include "window/ScreenStack.h"

#include "config/AppConfig.h"
#include "gcode/ProgramState.h"
#include "widgets/DlgKeyPad.h"

#include <QMessageBox>
#include <QPushButton>

#include <algorithm>

static const QString SCREEN_BTN_UNSELECTED = QStringLiteral(
    "background-color: qradialgradient(spread:pad, cx:0.5, cy:0.5, radius:0.8, fx:0.5, fy:0.5, stop:0 rgba(255, 255, "
    "255, 255), stop:1 rgba(100, 100, 100, 255));border-radius: 20px; border-style: solid; border-width: "
    "2px;border-color: black;");
static const QString SCREEN_BTN_SELECTED = QStringLiteral(
    "background-color: qradialgradient(spread:pad, cx:0.5, cy:0.5, radius:0.8, fx:0.5, fy:0.5, stop:0 rgba(255, 255, "
    "255, 255), stop:1 rgba(0, 0, 255, 255));border-radius: 20px; border-style: solid; border-width: "
    "2px;border-color: black;");

void CScreenStack::SetUp()
{
    for (const stScreen& entry : m_lstScreens) entry.pButton->setStyleSheet(SCREEN_BTN_UNSELECTED);
}

void CScreenStack::Show(const QWidget& screen)
{
    const auto next = std::find_if(m_lstScreens.begin(), m_lstScreens.end(),
                                   [&screen](const stScreen& entry) { return entry.pScreen == &screen; });
    if (next == m_lstScreens.end() || (next->bLocked && !PassLock(next->pButton->window()))) return;
    if (next->fnUpdate) next->fnUpdate();
    if (m_pCurDlg) m_pCurDlg->hide();
    m_pCurDlg = next->pScreen;
    m_pCurDlg->show();
    if (m_pCurDlgBtn) m_pCurDlgBtn->setStyleSheet(SCREEN_BTN_UNSELECTED);
    m_pCurDlgBtn = next->pButton;
    m_pCurDlgBtn->setStyleSheet(SCREEN_BTN_SELECTED);
}

bool CScreenStack::PassLock(QWidget* pWindow)
{
    while (AppConfig::m_bAppPassword) {
        CDlgKeyPad keypad(pWindow);
        keypad.SetCurValue(QString());
        keypad.setWindowTitle(QStringLiteral("Passkey"));
        keypad.exec();
        if (keypad.m_strNewValue == AppConfig::m_strAppPassword) return true;
        const auto eAnswer = QMessageBox::critical(pWindow, QStringLiteral("Error"), QStringLiteral("Wrong Pass Key"),
                                                   QMessageBox::Retry | QMessageBox::Abort);
        if (eAnswer != QMessageBox::Retry) return false;
    }
    return true;
}

const stScreen* CScreenStack::Shown() const
{
    const auto shown = std::find_if(m_lstScreens.begin(), m_lstScreens.end(),
                                    [this](const stScreen& entry) { return entry.pScreen == m_pCurDlg; });
    return shown == m_lstScreens.end() ? nullptr : &*shown;
}

bool CScreenStack::AreSettingsShown() const
{
    const stScreen* pShown = Shown();
    return pShown && !pShown->fnStart;
}

QString CScreenStack::WhyNotStart() const
{
    if (AreSettingsShown()) return QStringLiteral("Please select G-Code/Shape-Cutting/Image-Carving Window");
    return CProgramState::WhyNot(CProgramState::START, false);
}

bool CScreenStack::StartShown()
{
    const stScreen* pShown = Shown();
    return pShown && pShown->fnStart && pShown->fnStart();
}
