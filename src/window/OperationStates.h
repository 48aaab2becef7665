#pragma once
#include <QtGlobal>

#include <vector>

class QWidget;
class Ui_MainWindow;

// Which widgets of the window are off during which operation. Interface thread.
class COperationStates
{
public:
    // jogPanel: lies on the form and is no part of it.
    COperationStates(const Ui_MainWindow& form, QWidget& jogPanel);

    // A and B have their buttons where the machine was started with them: a change needs a restart.
    void SetFiveAxes(bool bFiveAxes);
    void Begin(qint32 iOperation);
    void End(qint32 iOperation);
    // Off while shapes are edited; what the running operation keeps off stays off.
    void EnableSelectors(bool bEnable, qint32 iRunning);

private:
    enum eKind
    {
        PLAIN,
        SELECTOR,     // of a screen
        EXTRA_AXIS,   // A or B
        PROBE
    };
    struct stRow
    {
        QWidget* pWidget;
        unsigned uOff;   // a bit for each operation
        eKind eWhat = PLAIN;
    };
    bool MayBeEnabled(const stRow& row) const;

    std::vector<stRow> m_lstRows;
    bool m_bFiveAxes = false, m_bSelectorsOff = false;
};
