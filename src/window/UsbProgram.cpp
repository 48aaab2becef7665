#include "window/UsbProgram.h"

#include <QDir>
#include <QStringList>

stUsbProgram FindUsbProgram(const QString& strMountFolder)
{
    // Lower case only, and without the point: wanted, it is the endings that count on sticks written by this machine.
    static const QStringList ENDINGS = {QStringLiteral("txt"), QStringLiteral("ncc"), QStringLiteral("tap")};
    const QDir mount(strMountFolder);
    const QDir::Filters all = QDir::AllEntries | QDir::NoDotAndDotDot;
    if (mount.entryList(all).isEmpty()) return {};
    for (const QFileInfo& folder : mount.entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot))
        for (const QFileInfo& file : QDir(folder.filePath()).entryInfoList(QDir::Files))
            if (ENDINGS.contains(file.filePath().right(3))) return {true, file.filePath()};
    return {true, QString()};
}
