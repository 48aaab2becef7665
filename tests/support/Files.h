#pragma once
#include <QByteArray>
#include <QFile>
#include <QString>

#include <gtest/gtest.h>

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
