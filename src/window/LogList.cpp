#include "window/LogList.h"

#include "common/FileWriter.h"
#include "common/Paths.h"
#include "common/ShownText.h"
#include "widgets/Questions.h"

#include <QDateTime>
#include <QFileDialog>
#include <QListWidget>
#include <QMessageBox>

// A line costs more the longer the list is, and the supervision loop pays for it; older lines than these are dropped.
static constexpr int MOST_LOG_LINES = 1000;

static constexpr int ITEM_MARGIN = 3;   // pixels, of the list's own drawing

static QColor LogColor(eAppMsgType eMsgType)
{
    switch (eMsgType) {
    case MSG_INFO: return {0, 250, 0};
    case MSG_ERROR: return {255, 150, 0};
    case MSG_NOTICE: break;
    }
    return {255, 255, 255};
}

void CLogList::Add(const QString& strMsg, eAppMsgType eMsgType)
{
    if (strMsg.isEmpty()) return;
    auto* pItem =
        new QListWidgetItem(QLatin1Char('[') + QTime::currentTime().toString() + QLatin1Char(']') + ShownText(strMsg));
    pItem->setForeground(LogColor(eMsgType));
    // Measured once: the list would measure all its lines again for each new one.
    const QRect room(0, 0, m_List.viewport()->width() - 2 * ITEM_MARGIN, 0);
    const int iHeight = m_List.fontMetrics().boundingRect(room, Qt::TextWordWrap, pItem->text()).height();
    pItem->setSizeHint(QSize(room.width(), iHeight));
    m_List.insertItem(0, pItem);
    while (m_List.count() > MOST_LOG_LINES) delete m_List.takeItem(m_List.count() - 1);
    m_List.scrollToTop();
    m_List.viewport()->repaint();   // at once: the line is to be read however long the thread is busy behind it
}

void CLogList::Clear()
{
    m_List.clear();
}

void CLogList::AskToClear()
{
    const auto eAnswer = QMessageBox::question(m_List.window(), QStringLiteral("Information"),
                                               QStringLiteral("Clear Log?"), QMessageBox::Yes | QMessageBox::No);
    if (eAnswer == QMessageBox::Yes) Clear();
}

static QString LogFileName(const QString& strName)
{
    const qsizetype iFirst = strName.lastIndexOf(QLatin1Char('/')) + 1;
    // A point at the start of the name opens no extension.
    return strName.indexOf(QLatin1Char('.'), iFirst + 1) < 0 ? strName + QStringLiteral(".txt") : strName;
}

void CLogList::Save()
{
    const QString strName =
        QFileDialog::getSaveFileName(m_List.window(), QStringLiteral("Select file name"), CPaths::Map(HOME_FOLDER),
                                     QStringLiteral("text Files(*.txt)"), nullptr, QFileDialog::DontUseNativeDialog);
    if (strName.isEmpty()) return;
    QString strText;
    for (int row = 0; row < m_List.count(); ++row) strText += m_List.item(row)->text() + QLatin1Char('\n');
    const QString strFile = LogFileName(strName);
    if (!MayReplace(m_List.window(), strName, strFile)) return;
    if (ReplaceFile(strFile, strText.toUtf8()))
        Add(QStringLiteral("Log saved: ") + strFile, MSG_INFO);
    else
        Add(QStringLiteral("Log not saved, file not writable: ") + strFile, MSG_ERROR);
}
