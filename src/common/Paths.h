#pragma once
#include "common/MachineTypes.h"

// Where the constant paths of the product live on this computer. On the machine they are used as they stand;
// elsewhere, and in tests, everything that begins with HOME_FOLDER lives below a root. Set the root before any
// thread starts; reading is for any thread.
class CPaths
{
public:
    // Empty: paths are used as they stand.
    static void SetHomeFolder(const QString& strFolder);
    static QString HomeFolder();

    // The place of a path: its HOME_FOLDER replaced; any other path unchanged.
    static QString Map(const QString& strPath);

    // Where the computer mounts USB sticks, a folder for each. Tests give one of their own.
    static QString MountFolder();
    static void SetMountFolder(const QString& strFolder);   // empty: the computer's

    // Makes the home folder usable: HOME_FOLDER itself where it can be written, else a folder of the user's own.
    // Creates it and its working folder; the result is the home folder in force.
    static QString Establish();
};
