#pragma once
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <csignal>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

// Calls of vantor-run in a folder of their own.
class RunnerTest : public testing::Test
{
protected:
    struct stResult
    {
        int iExit;
        QString strOut, strErr;
    };
    stResult Call(const QStringList& arguments, const QByteArray& input = {})
    {
        QProcess process;
        Start(process, arguments);
        process.write(input);
        process.closeWriteChannel();
        return End(process);
    }
    void Start(QProcess& process, const QStringList& arguments)
    {
        process.setWorkingDirectory(m_Folder.path());
        process.start(QStringLiteral(VANTOR_RUN), arguments);
    }
    static stResult End(QProcess& process)
    {
        EXPECT_TRUE(process.waitForFinished(240'000)) << "it hangs";
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

    // Ctrl-C once the program has said strSaid.
    static stResult Interrupt(QProcess& process, const char* szSaid)
    {
        process.setReadChannel(QProcess::StandardError);
        QByteArray said;
        while (!said.contains(szSaid) && process.waitForReadyRead(60'000)) said += process.readAllStandardError();
        EXPECT_TRUE(said.contains(szSaid)) << said.constData();
        ::kill(static_cast<pid_t>(process.processId()), SIGINT);
        return End(process);
    }

    static QStringList Words(const char* szLine)
    {
        return QString::fromLatin1(szLine).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    }
    QString Path(const char* szName) const { return m_Folder.filePath(QString::fromLatin1(szName)); }
    void Write(const char* szName, const QByteArray& content) const
    {
        QFile file(Path(szName));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    QByteArray Read(const char* szName) const
    {
        QFile file(Path(szName));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << szName;
        return file.readAll();
    }
    QJsonObject Summary(const char* szName = "summary.json") const
    {
        return QJsonDocument::fromJson(Read(szName)).object();
    }
    // Rows of a CSV file, each by the names of its columns.
    using Row = std::map<std::string, QString>;
    std::vector<Row> Csv(const char* szName) const
    {
        QList<QByteArray> lines = Read(szName).split('\n');
        const QStringList names = QString::fromLatin1(lines.takeFirst()).split(QLatin1Char(','));
        std::vector<Row> rows;
        for (const QByteArray& line : lines) {
            if (line.isEmpty()) continue;
            const QStringList cells = QString::fromLatin1(line).split(QLatin1Char(','));
            EXPECT_EQ(cells.size(), names.size());
            Row& row = rows.emplace_back();
            for (qsizetype n = 0; n < cells.size() && n < names.size(); ++n) row[names[n].toStdString()] = cells[n];
        }
        return rows;
    }
    static QString Example(const char* szName)
    {
        return QStringLiteral(SOURCE_DIR "/examples/") + QLatin1String(szName);
    }

    QTemporaryDir m_Folder;
};

inline std::ostream& operator<<(std::ostream& out, const QString& str)
{
    return out << str.toStdString();
}
