#pragma once
#include "config/AppConfig.h"
#include "screens/shapes/DlgShapes.h"
#include "support/CleanMachine.h"
#include "support/screens/PressAndAnswer.h"
#include "support/screens/TestHost.h"
#include "widgets/MyView.h"

#include <QListWidget>

// The shapes screen in a window of the tests, worked by presses.
class CShapesTest : public CCleanMachine
{
protected:
    static constexpr double SCALE = 430.0 / 300.0;   // pixels per mm of a fresh work area

    CShapesTest()
    {
        AppConfig::m_fEndMillDia = 2.0;
        m_Host.Place(m_Screen);
        m_Screen.ConfigSettings();
    }

    QWidget& Dialog(const char* szClass) { return Child<QWidget>(m_Screen, QLatin1String(szClass)); }
    // Presses a button that opens a dialog over the list, and works the dialog, which must be finished in the end.
    template <class Fn> void InDialog(const QString& strButton, const char* szClass, Fn fnWork)
    {
        Work(szClass, fnWork);
        Click(Child(m_Screen, strButton));
        ExpectClosed();
    }
    // The same for the dialog of an entry, by a double click on its row.
    template <class Fn> void Edit(int iRow, const char* szClass, Fn fnWork)
    {
        Work(szClass, fnWork);
        const QRect row = List().visualItemRect(List().item(iRow));
        QTest::mouseClick(List().viewport(), Qt::LeftButton, {}, row.center());
        QTest::mouseDClick(List().viewport(), Qt::LeftButton, {}, row.center());
        ExpectClosed();
    }

    QListWidget& List() { return Child<QListWidget>(m_Screen, "Lw_Shapes"); }
    QStringList Names()
    {
        QStringList rows, entries;
        for (int n = 0; n < List().count(); ++n) rows += List().item(n)->text();
        for (const stEngShape& shape : Shapes()) entries += shape.Common().strShapeName;
        EXPECT_EQ(rows, entries) << "the list shows something else";
        return rows;
    }
    std::vector<stEngShape>& Shapes() { return m_Screen.m_stCuttingInfo.lstShapes; }
    QString Log() { return m_Host.TakeLog().join('|'); }

    CMyView& View() { return Child<CMyView>(m_Screen, "View_WorkArea"); }
    // A place of the work area on the fitted view.
    static QPoint At(double fX, double fY) { return {qRound(25 + fX * SCALE), qRound(313 - fY * SCALE)}; }
    void TouchAt(double fX, double fY)
    {
        TouchDown(View(), At(fX, fY));
        TouchUp(View(), At(fX, fY));
    }
    void Drag(QPoint from, QPoint to)
    {
        TouchDown(View(), from);
        for (int n = 1; n <= 4; ++n) TouchMove(View(), from + (to - from) * n / 4);
        TouchUp(View(), to);
    }
    QRgb Pixel(double fX, double fY) { return View().grab().toImage().pixel(At(fX, fY)); }

    // The file dialog, which looks for jpg files first, does not hide what lies in another folder.
    QString InFolder(const char* szName)
    {
        EXPECT_TRUE(QDir(m_Home.path()).mkpath("pictures"));
        return m_Home.filePath("pictures/") + szName;
    }

    CTestHost m_Host;
    CDlgShapes m_Screen;

private:
    template <class Fn> void Work(const char* szClass, Fn fnWork)
    {
        m_bWorked = false;
        QTimer::singleShot(0, &m_Screen, [this, szClass, fnWork] {
            m_bWorked = true;
            ASSERT_TRUE(m_Screen.IsEditing()) << szClass << " did not open";
            QWidget& dialog = Dialog(szClass);
            EXPECT_EQ(dialog.geometry(), QRect(525, 0, 375, 390));
            fnWork(dialog);
            if (!dialog.isVisible()) return;
            ADD_FAILURE() << szClass << " was left open";
            m_Screen.hide();
        });
    }
    void ExpectClosed()
    {
        EXPECT_TRUE(m_bWorked);
        EXPECT_FALSE(m_Screen.IsEditing());
        EXPECT_EQ(m_Host.m_lstSelectors, (std::vector<bool>{false, true}));
        m_Host.m_lstSelectors.clear();
    }
    bool m_bWorked = false;
};
