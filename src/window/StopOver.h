#pragma once
#include <QWidget>

class CMyRndBtn;

// The round Stop over a modal window. Such a window takes the touches of the main window away, Stop's among them, and
// an axis may move beneath it: a box may be asked for during a run, and a motion may begin or end while one is open. So
// each modal window carries Stop on, where it always is: a touch there is a touch of the button, and looks like one.
// It belongs to the modal window and goes with it. Interface thread.
class CStopOver : public QWidget
{
    Q_OBJECT

public:
    // Sees every event of the application, ahead of whom it is for.
    static void Follow(CMyRndBtn& stop, QObject* pObject, const QEvent& event);

protected:
    void mousePressEvent(QMouseEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;
    bool eventFilter(QObject* pObject, QEvent* pEvent) override;

private:
    CStopOver(CMyRndBtn& stop, QWidget& modal);

    CMyRndBtn& m_Stop;
    static inline bool m_bPainting = false;   // of any: two modal windows may lie on each other
};
