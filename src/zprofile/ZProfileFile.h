#pragma once
#include <QString>

// The measured grid (AppConfig::m_ZProfileInfo.lstPoints) as a text file, so that a plate can be cut again without a
// new measurement. Lines: number of rows, number of nodes in row 0, then "x,y,z" for each node, mm, six significant
// digits. While no operation runs: the worker reads the grid.

// What an operator sees who saves a grid that is none.
inline QString ZProfileNotCreated()
{
    return QStringLiteral("Z-Profile not created!\nPlease create z-profile with atleast 2X2 Points");
}
inline const QString Z_PROFILE_NOT_USED = QStringLiteral("Use Z Profile is off: there is no Z-Profile");
// False: the grid is empty, or row 0 has one node or less.
bool HasZProfile();
// Without a grid no move may follow one: true where that was on, and is now off.
bool EndUseOfNoZProfile();

// The name with ".txt" behind it where it does not end so; upper case does not count.
QString ZProfileFileName(const QString& strName);

// One count serves all rows of the file: a row short of the longest one repeats its last node, as the moves read it.
// Writes the grid under exactly this name. False: the disk refuses; an older file then stands as it was.
bool SaveZProfile(const QString& strPath);

// Replaces the grid, which is gone also where the file cannot be read. False: there are no rows now. What is not a
// number counts as 0, and nodes that are missing are zeros, but no more than a file of that size could hold.
bool LoadZProfile(const QString& strPath);
