#include "gcode/ExecStatus.h"

#include "common/FileWriter.h"
#include "common/Paths.h"

#include <QDataStream>
#include <QFile>

static constexpr int STREAM_VERSION = 7;   // both fields look alike in every version

bool WriteExecStatus(const QString& strPath, const QString& strFile, qint32 iLine)
{
    QByteArray content;
    QDataStream stream(&content, QIODevice::WriteOnly);
    stream.setVersion(STREAM_VERSION);
    stream << strFile << iLine;
    return ReplaceFile(CPaths::Map(strPath), content);
}

bool ReadExecStatus(const QString& strPath, stExecStatus& status)
{
    QFile file(CPaths::Map(strPath));
    if (!file.open(QIODevice::ReadOnly)) return false;
    QDataStream stream(&file);
    stream.setVersion(STREAM_VERSION);
    status = {};
    stream >> status.strFile >> status.iLine;
    return true;
}
