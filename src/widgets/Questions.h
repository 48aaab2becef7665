#pragma once
#include <QString>

class QWidget;

// Questions with the buttons Yes and No that several screens ask. Interface thread; each waits for its answer.
bool AskYes(QWidget* pParent, const QString& strQuestion);
// Before a file is saved under strPath, which has been made of strTyped by an ending: the file dialog has asked about
// the name as typed only. True: nothing is there, or it may go.
bool MayReplace(QWidget* pParent, const QString& strTyped, const QString& strPath);
