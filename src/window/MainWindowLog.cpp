#include "common/FileWriter.h"
#include "common/Paths.h"
#include "widgets/ButtonStyle.h"
#include "window/MainWindowUi.h"

#include <QDateTime>
#include <QFileDialog>
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

void MainWindow::AddLogMsg(const QString& strMsg, eAppMsgType eMsgType)
{
    if (strMsg.isEmpty() || PostToInterface([this, strMsg, eMsgType] { AddLogMsg(strMsg, eMsgType); })) return;
    QListWidget& list = *m_pUi->LV_Log;
    auto* pItem = new QListWidgetItem(QLatin1Char('[') + QTime::currentTime().toString() + QLatin1Char(']') + strMsg);
    pItem->setForeground(LogColor(eMsgType));
    // Measured once: the list would measure all its lines again for each new one.
    const QRect room(0, 0, list.viewport()->width() - 2 * ITEM_MARGIN, 0);
    const int iHeight = list.fontMetrics().boundingRect(room, Qt::TextWordWrap, pItem->text()).height();
    pItem->setSizeHint(QSize(room.width(), iHeight));
    list.insertItem(0, pItem);
    while (list.count() > MOST_LOG_LINES) delete list.takeItem(list.count() - 1);
    list.scrollToTop();
    list.viewport()->repaint();   // at once: the line is to be read however long the thread is busy behind it
}

void MainWindow::ClearLog()
{
    m_pUi->LV_Log->clear();
}

static QString LogFileName(const QString& strName)
{
    const qsizetype iFirst = strName.lastIndexOf(QLatin1Char('/')) + 1;
    // A point at the start of the name opens no extension.
    return strName.indexOf(QLatin1Char('.'), iFirst + 1) < 0 ? strName + QStringLiteral(".txt") : strName;
}

void MainWindow::SaveLog()
{
    const QString strName =
        QFileDialog::getSaveFileName(this, QStringLiteral("Select file name"), CPaths::Map(HOME_FOLDER),
                                     QStringLiteral("text Files(*.txt)"), nullptr, QFileDialog::DontUseNativeDialog);
    if (strName.isEmpty()) return;
    QString strText;
    for (int row = 0; row < m_pUi->LV_Log->count(); ++row)
        strText += m_pUi->LV_Log->item(row)->text() + QLatin1Char('\n');
    const QString strFile = LogFileName(strName);
    if (ReplaceFile(strFile, strText.toUtf8()))
        AddLogMsg(QStringLiteral("Log saved: ") + strFile, MSG_INFO);
    else
        AddLogMsg(QStringLiteral("Log not saved, file not writable: ") + strFile, MSG_ERROR);
}

void MainWindow::on_Btn_ClearLog_clicked()
{
    m_pUi->Btn_ClearLog->setStyleSheet(BTN_BKGND_GREEN);
    const auto eAnswer = QMessageBox::question(this, QStringLiteral("Information"), QStringLiteral("Clear Log?"),
                                               QMessageBox::Yes | QMessageBox::No);
    if (eAnswer == QMessageBox::Yes) ClearLog();
    ResetBtnBkGnd(m_pUi->Btn_ClearLog, BTN_BKGND_GRAY);
}

void MainWindow::on_Btn_SaveLog_clicked()
{
    m_pUi->Btn_SaveLog->setStyleSheet(BTN_BKGND_GREEN);
    SaveLog();
    ResetBtnBkGnd(m_pUi->Btn_SaveLog, BTN_BKGND_GRAY);
}
