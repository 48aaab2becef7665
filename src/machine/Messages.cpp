#include "machine/Messages.h"

#include "common/Paths.h"

#include <QDateTime>
#include <QFile>
#include <QMutexLocker>

static QString TakeNewest(QMutex& mutex, QList<QString>& list)
{
    const QMutexLocker lock(&mutex);
    return list.isEmpty() ? QString() : list.takeLast();
}

QString CMessages::GetErrMsg()
{
    return TakeNewest(m_MsgMutex, m_lstErrMsg);
}
QString CMessages::GetInfoMsg()
{
    return TakeNewest(m_MsgMutex, m_lstInfoMsg);
}
void CMessages::PushErrMsg(const QString& strMsg)
{
    const QMutexLocker lock(&m_MsgMutex);
    m_lstErrMsg.append(strMsg);
}
void CMessages::PushInfoMsg(const QString& strMsg)
{
    const QMutexLocker lock(&m_MsgMutex);
    m_lstInfoMsg.append(strMsg);
}

void CMessages::WriteLog(QString strText)
{
    QFile file(CPaths::Map(HOME_FOLDER + QStringLiteral("/vantor_log/") + QDate::currentDate().toString(Qt::TextDate) +
                           QStringLiteral(".txt")));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) return;   // no folder, no log
    // No line end: wanted, callers that write lines bring their own.
    const QString strTime = QTime::currentTime().toString(Qt::TextDate);
    file.write((QStringLiteral("[") + strTime + QStringLiteral("]") + strText).toUtf8());
}
