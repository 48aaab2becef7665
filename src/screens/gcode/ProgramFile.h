#pragma once
#include "screens/host/ScreenHost.h"

class QLineEdit;
class QWidget;

// The file of the held program: its name, whether the program has changed since, and what the operator is asked before
// it is opened or saved. Interface thread.
class CProgramFile
{
public:
    CProgramFile(QWidget& screen, QLineEdit& shown) : m_Screen(screen), m_Shown(shown) {}

    const QString& Name() const { return m_strFile; }   // empty: unnamed
    void Take(const QString& strPath);                  // another program is held
    void MarkEdited() { m_bEdited = true; }

    // ---- Which one; empty: none ----
    QString AskProgram();   // perhaps the one that a run was interrupted in, with its line
    QString AskDrawing();

    // ---- Saving; false: it has not come to it, and why has been told ----
    bool AskToSave();     // ahead of another program; true also where the changes are given up
    bool Save();          // under its name, if it has one of its own
    bool SaveAs();        // false also: cancelled
    bool OverWrite();     // false: the disk failed while writing; the old file stands
    bool SaveUnsaved();   // a changed one, in the working folder

private:
    CScreenHost& Host() const;

    QWidget& m_Screen;
    QLineEdit& m_Shown;
    QString m_strFile;
    bool m_bEdited = false;    // changed since it was loaded or saved
    QString m_strOpenFilter;   // the kind of file chosen last
};
