#pragma once
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QtTest>

#include <functional>
#include <gtest/gtest.h>

// ---- Widgets and waiting ----

// A widget of a screen by its object name. A missing one ends the test.
template <class T = QPushButton> T& Child(const QWidget& screen, const QString& strName)
{
    T* pChild = screen.findChild<T*>(strName);
    if (!pChild) throw std::runtime_error("no widget " + strName.toStdString());
    return *pChild;
}

void ShowWindow(QWidget& window);   // until it is exposed
// Runs the event loop until the condition holds; the result is that of the condition.
bool WaitFor(const std::function<bool()>& fnCondition, int iLimitMs = 10000);

// ---- Fingers ----

// A whole press of a widget that must be visible and enabled, at its middle. Passes through what lies on top of it.
void Click(QWidget& widget);
inline void Click(const QWidget& screen, const QString& strName)
{
    Click(Child<QWidget>(screen, strName));
}
void Press(QWidget& widget);   // and holds it
void Release(QWidget& widget);
// The same on the place where the widget stands in its window: what lies on top gets it, and a modal box keeps it.
void Touch(QWidget& widget);
void TouchDown(QWidget& widget, QPoint at);
void TouchMove(QWidget& widget, QPoint at);   // may lie outside of the widget
void TouchUp(QWidget& widget, QPoint at);

// ---- Boxes, keypads and file dialogs ----

// Answers the next modal widget that comes; several answers are used in the order of their making. The test fails when
// none came while the answer lived, and when one comes that nobody answers.
class CAnswer
{
public:
    using Fn = std::function<void(QWidget& modal)>;
    explicit CAnswer(Fn fnAnswer);
    explicit CAnswer(QMessageBox::StandardButton eButton);
    ~CAnswer();
    CAnswer(const CAnswer&) = delete;
    CAnswer& operator=(const CAnswer&) = delete;

    // Keys of the keypad by their text, "12.5-" (the sign key comes last), then OK; nothing typed keeps the value.
    static Fn Keys(const QString& strKeys, bool bOk = true);
    // Writes the name into the file dialog and presses Open or Save; an empty name cancels.
    static Fn File(const QString& strPath);

    const QString& Title() const { return m_strTitle; }   // of what came
    const QString& Text() const { return m_strText; }     // of a message box

    static void Watch();   // once, from main

private:
    friend class CModalWatch;
    Fn m_fnAnswer;
    bool m_bCame = false;
    QString m_strTitle, m_strText;
};

// ---- Looks ----

// What TidyFaults lets pass, by object names.
struct stTidy
{
    QStringList lstOverlap;   // may lie over siblings
    QStringList lstSmall;     // may be below 40 pixels for a finger
    QStringList lstAny;       // not looked at, with all below it
};
// Walks every visible widget of a screen: text that does not fit its rectangle, siblings that overlap, widgets outside
// of their parent, text below 12 pixels, targets below 40 pixels. One line for each fault.
QStringList TidyFaults(const QWidget& screen, const stTidy& exempt = {});
#define EXPECT_TIDY(...) EXPECT_EQ(TidyFaults(__VA_ARGS__).join('\n').toStdString(), "")

// Saves the widget's picture into the folder that VANTOR_SCREENS names; nothing without it.
void SaveScreen(QWidget& widget, const QString& strName);
