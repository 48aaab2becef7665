#pragma once
#include <QString>
#include <QtGlobal>

#include <optional>

namespace Ui {
class CdlgGCode;
}

// What the screen shows of the store: ten lines beside their scroll bar, one of them in the edit field, and the errors
// of the last check. Interface thread.
class CProgramView
{
public:
    explicit CProgramView(Ui::CdlgGCode& form);

    void Begin();         // with the first row and the first error
    void Clear();         // the program has gone
    void ShowNew();       // another is there
    void ShowChecked();   // its faulty lines are marked, and the first of them is current

    // ---- Lines ----
    void FillRows(qint32 iPlace);
    void ShowAgain() { ShowFrom(m_iFirstRow); }   // lines have changed their text or place
    // One has come or gone; iLine becomes the current one. -1: none.
    void ShowChange(qint32 iLine);
    void StepBack();                   // by a row, ahead of ShowChange
    qint32 CurrentLine() const;        // of the store; -1: none
    void SelectLine(qint32 iLine);     // in view, current, and in the edit field
    void ShowExecuted(qint32 iLine);   // in view and in the field; the current row stays
    void ShowField(qint32 iLine);
    // The field takes the place of the current line: why it must not; empty: it may. It may show another one, or less
    // than the whole.
    QString WhyNotUpdated() const;
    void ShowUpdated();   // the current line has another text

    // ---- Errors ----
    void ShowErrorsOf(qint32 iLine);
    void GoToError(std::optional<quint32> uLine);
    quint32 ErrorLine() const { return m_iCurErrLine; }   // of the error shown

private:
    void ShowFrom(qint32 iPlace);   // the scroll bar follows
    void BringIntoView(qint32 iLine);
    void SetScrollMaximum(qint32 iMaximum);
    void ShowErrorCount();

    Ui::CdlgGCode& m_Form;
    qint32 m_iFirstRow = 0;   // line of the first row
    quint32 m_iCurErrLine = 0;
};
