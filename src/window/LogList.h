#pragma once
#include "common/MachineTypes.h"

#include <QString>

class QListWidget;

// The operator's log: the newest line on top, in the colour of its kind. Interface thread.
class CLogList
{
public:
    explicit CLogList(QListWidget& list) : m_List(list) {}

    void Add(const QString& strMsg, eAppMsgType eMsgType);   // with the time of day; an empty text is none
    void Clear();
    void AskToClear();
    void Save();   // asks for the file

private:
    QListWidget& m_List;
};
