#include "common/FileWriter.h"

#include <QFileInfo>

#include <cerrno>
#include <system_error>
#include <unistd.h>

bool CFileWriter::open(OpenMode mode)
{
    const QFileInfo target(fileName());
    if (!target.exists() || target.isFile()) return QSaveFile::open(mode);
    setErrorString(QString::fromStdString(std::make_error_code(std::errc::not_supported).message()));
    return false;
}

bool CFileWriter::ReachesDisk()
{
    if (!flush()) return false;
    // A disk may say only now that it is full or gone; EINVAL: it has no such call.
    if (fsync(handle()) == 0 || errno == EINVAL) return true;
    setErrorString(qt_error_string());
    return false;
}

bool CFileWriter::Commit()
{
    return ReachesDisk() && commit();
}

bool ReplaceFile(const QString& strPath, const QByteArray& content)
{
    CFileWriter file(strPath);
    return file.Open() && file.write(content) == content.size() && file.Commit();
}
