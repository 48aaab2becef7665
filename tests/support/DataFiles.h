#pragma once
#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>
#include <string>
#include <vector>

// Files of tests/data.
inline QString DataPath(const QString& strFile)
{
    return QStringLiteral(TEST_DATA_DIR "/") + strFile;
}
inline QByteArray ReadAll(const QString& strPath)
{
    QFile file(strPath);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << strPath.toStdString();
    return file.readAll();
}
inline void WriteAll(const QString& strPath, const QByteArray& content)
{
    QFile file(strPath);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << strPath.toStdString();
    EXPECT_EQ(file.write(content), content.size());
}
inline QJsonObject ReadJson(const QString& strFile)
{
    return QJsonDocument::fromJson(ReadAll(DataPath(strFile))).object();
}
// The names of the files of a folder that match, without their extension.
inline std::vector<std::string> CaseNames(const char* szFolder, const char* szPattern)
{
    std::vector<std::string> lst;
    const QDir folder(DataPath(QString::fromLatin1(szFolder)));
    for (const QString& strFile : folder.entryList({QString::fromLatin1(szPattern)}, QDir::Files, QDir::Name))
        lst.push_back(strFile.left(strFile.lastIndexOf(QLatin1Char('.'))).toStdString());
    EXPECT_FALSE(lst.empty()) << szFolder;
    return lst;
}
