#include "common/FileWriter.h"

#include <QFileInfo>

#include <system_error>

bool CFileWriter::open(OpenMode mode)
{
    const QFileInfo target(fileName());
    if (!target.exists() || target.isFile()) return QSaveFile::open(mode);
    setErrorString(QString::fromStdString(std::make_error_code(std::errc::not_supported).message()));
    return false;
}

bool CFileWriter::Commit()
{
    return flush() && commit();
}

bool ReplaceFile(const QString& strPath, const QByteArray& content)
{
    CFileWriter file(strPath);
    return file.Open() && file.write(content) == content.size() && file.Commit();
}
