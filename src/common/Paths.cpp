#include "common/Paths.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

static QString& Root()
{
    static QString strRoot;
    return strRoot;
}

void CPaths::SetHomeFolder(const QString& strFolder)
{
    Root() = strFolder.isEmpty() || strFolder == HOME_FOLDER ? QString() : QDir(strFolder).absolutePath();
}

QString CPaths::HomeFolder()
{
    return Root().isEmpty() ? HOME_FOLDER : Root();
}

QString CPaths::Map(const QString& strPath)
{
    if (Root().isEmpty()) return strPath;
    if (strPath == HOME_FOLDER || strPath.startsWith(HOME_FOLDER + QLatin1Char('/')))
        return Root() + strPath.mid(HOME_FOLDER.size());
    return strPath;
}

static QString& Mount()
{
    static QString strMount;
    return strMount;
}

QString CPaths::MountFolder()
{
    return Mount().isEmpty() ? QStringLiteral("/media/vantor") : Mount();
}

void CPaths::SetMountFolder(const QString& strFolder)
{
    Mount() = strFolder;
}

QString CPaths::Establish()
{
    if (Root().isEmpty() && !QFileInfo(HOME_FOLDER).isWritable())
        SetHomeFolder(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                      QStringLiteral("/vantor"));
    QDir().mkpath(Map(WORKING_FOLDER));
    return HomeFolder();
}
