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
// False: the grid is empty, or row 0 has one node or less.
bool HasZProfile();

// The name with ".txt" behind it where it does not end so; upper case does not count.
QString ZProfileFileName(const QString& strName);

// Writes the grid under exactly this name. False: the disk refuses; an older file then stands as it was.
bool SaveZProfile(const QString& strPath);

// Replaces the grid, which is gone also where the file cannot be read. False: there are no rows now. What is not a
// number counts as 0, and nodes that are missing are zeros, but no more than a file of that size could hold.
bool LoadZProfile(const QString& strPath);
