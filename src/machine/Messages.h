#pragma once
#include <QList>
#include <QMutex>
#include <QString>

// What the worker has to say to the operator: refusals and failures, and what has been done. Taken one by one, the
// newest first. Any thread.
class CMessages
{
public:
    QString GetErrMsg();   // takes the newest; empty when there is none
    QString GetInfoMsg();
    void PushErrMsg(const QString& strMsg);
    void PushInfoMsg(const QString& strMsg);
    // Appends to the day's log.
    static void WriteLog(QString strText);

    QList<QString> m_lstErrMsg, m_lstInfoMsg;   // newest last; guarded on both sides
    mutable QMutex m_MsgMutex;
};
