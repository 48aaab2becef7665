#pragma once
#include "config/SettingsTable.h"
#include "screens/settings/DlgMachineSettings.h"
#include "screens/settings/DlgUserSettings.h"
#include "support/CleanMachine.h"
#include "support/screens/ScreenSupport.h"
#include "support/screens/TestHost.h"

#include <QTabWidget>

#include <ostream>

inline void PrintTo(const QString& str, std::ostream* pOut)
{
    *pOut << '"' << str.toStdString() << '"';
}

// A machine that has just started, and a window for the screens.
class CSettingsTest : public CCleanMachine
{
protected:
    CSettingsTest() { Start(VTR3_CTRL); }
    void Start(int iBoard)
    {
        AppConfig::WithdrawBoardPins();
        AppConfig::m_eVantorCtrl = iBoard;
        AppConfig::ApplyBoardPins();
        AppConfig::DeriveFeeds();
        AppConfig::DerivePwmFrequency();
        m_Host.m_Machine.InitMachine();
    }
    // A button that lies on a page of tabs: the page comes to the front first.
    static QPushButton& Reach(QWidget& screen, const QString& strButton)
    {
        auto& button = Child(screen, strButton);
        if (auto* pTabs = screen.findChild<QTabWidget*>("tabWidget"))
            for (int n = 0; n < pTabs->count(); ++n)
                if (pTabs->widget(n)->isAncestorOf(&button)) pTabs->setCurrentIndex(n);
        return button;
    }
    static void Press(QWidget& screen, const QString& strButton) { Click(Reach(screen, strButton)); }
    static void SelectRow(QWidget& screen, int iRow)
    {
        auto& combo = Child<QComboBox>(screen, "Cmb_VantorCntrolSel");
        QTest::mouseClick(&combo, Qt::LeftButton);
        ASSERT_TRUE(WaitFor([&] { return combo.view()->isVisible(); }));
        const QModelIndex row = combo.model()->index(iRow, 0);
        // The box takes no row for a moment after it has opened.
        ASSERT_TRUE(WaitFor([&] {
            QTest::mouseClick(combo.view()->viewport(), Qt::LeftButton, {}, combo.view()->visualRect(row).center());
            return !combo.view()->isVisible();
        }));
    }

    CTestHost m_Host;
};
