#pragma once
#include <QString>

// Looks for a program on the sticks below the mount folder: the first file, in the order of their names, of the first
// folder that has one. There is no choice, since this way is made for working without the screen.
struct stUsbProgram
{
    bool bStickFound = false;   // the mount folder has entries
    QString strFile;            // empty: no program
};
stUsbProgram FindUsbProgram(const QString& strMountFolder);
