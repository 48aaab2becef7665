#include "widgets/Questions.h"

#include <QFile>
#include <QMessageBox>

bool AskYes(QWidget* pParent, const QString& strQuestion)
{
    return QMessageBox::information(pParent, QStringLiteral("Information"), strQuestion,
                                    QMessageBox::Yes | QMessageBox::No) == QMessageBox::Yes;
}

bool MayReplace(QWidget* pParent, const QString& strTyped, const QString& strPath)
{
    return strPath == strTyped || !QFile::exists(strPath) ||
           AskYes(pParent, strPath + QStringLiteral(" already exists.\nDo you want to replace it?"));
}
