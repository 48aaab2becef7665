#pragma once
#include <QString>

// The status file, from which an interrupted program resumes: its name and the line to go on from, as a big-endian
// stream. The path goes through CPaths. Any thread, one writer at a time.
struct stExecStatus
{
    QString strFile;
    qint32 iLine = 0;   // zero-based
};

// The file is the old one or the new one, also after a crash. False where the disk refuses.
bool WriteExecStatus(const QString& strPath, const QString& strFile, qint32 iLine);

// False: it cannot be opened. What a short file lacks reads as an empty name and line 0.
bool ReadExecStatus(const QString& strPath, stExecStatus& status);
