#pragma once
#include "common/MachineTypes.h"

#include <QFuture>
#include <QString>

#include <optional>

// What the screen of the program does to the store, without a widget: which lines are in view, how a line is changed,
// where the next error stands. Lines are zero-based. Interface thread, while no load and no compilation runs and no
// operation executes the program; whoever calls has asked CProgramState first.
class CGCodeEditor
{
public:
    static constexpr qint32 ROWS = 10;   // lines in view, so that a program of any length costs the list nothing

    // Lines iFirst up to, and without, iEnd.
    struct stRows
    {
        qint32 iFirst = 0, iEnd = 0;
        bool Holds(qint32 iLine) const { return iLine >= iFirst && iLine < iEnd; }
    };

    static qint32 LineCount();
    // The rows in view for a place of the scroll bar: near the end the last ten.
    static stRows RowsAt(qint32 iPlace);
    // The place of the scroll bar that has the line in view: unchanged where it already is, otherwise one line above.
    static qint32 PlaceWith(qint32 iLine, const stRows& rows);

    // The edit field of a line, "[", its index, "]" and its text; and what stands behind the first "]" of the field.
    static QString Field(qint32 iLine);
    static QString TextOf(const QString& strField);
    static std::optional<qint32> NumberOf(const QString& strField);   // none: it does not begin with one

    // The tokens are those of the store's tokenizer. No check: the operator compiles.
    static void Update(qint32 iLine, const QString& strText);
    // Puts a line behind iLine (-1: before the first) and checks the program. The tokens are what blanks part, not
    // those of the tokenizer: wanted, it differs from Update.
    static void InsertBehind(qint32 iLine, const QString& strText);
    static void Delete(qint32 iLine);
    // Errors go along with their lines.
    static void Swap(qint32 iLine, qint32 iOther);

    // The line of an error; at the ends it stays. Nothing where there is none.
    static std::optional<quint32> FirstError();
    static std::optional<quint32> LastError();
    static std::optional<quint32> ErrorBefore(quint32 uLine);
    static std::optional<quint32> ErrorBehind(quint32 uLine);
    // Empty: the line has none.
    static QString ErrorText(quint32 uLine);

    // The store, or its errors alone, is empty at once. What it held is freed on the pool: a million lines take longer
    // than a screen may stand. A load that follows waits for it, so that never two programs fill the memory and never
    // two threads take the processor from the screen.
    static QFuture<void> Clear();
    static void ClearErrors();

private:
    static void Recompile();
};
