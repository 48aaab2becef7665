#include "widgets/ButtonStyle.h"
#include "widgets/DlgKeyPad.h"
#include "window/MainWindowUi.h"

#include <algorithm>

static QString Decimals(double fValue, int iPrecision)
{
    return QString::number(fValue, 'f', iPrecision);
}

void MainWindow::OpenKeypad(QPushButton* pQBtn, const QString& strWndTitle)
{
    CDlgKeyPad keypad(this);
    keypad.SetCurValue(pQBtn->text());
    keypad.setWindowTitle(strWndTitle);
    keypad.exec();
    pQBtn->setText(Decimals(keypad.m_strNewValue.toDouble(), PRECISION));
}

void MainWindow::OpenKeypad(QPushButton* pQBtn, const QString& strWndTitle, const QString& strCtrlTxt,
                            const QString& strValue)
{
    CDlgKeyPad keypad(this);
    keypad.SetCurValue(strValue);
    keypad.setWindowTitle(strWndTitle);
    keypad.exec();
    pQBtn->setText(Decimals(keypad.m_strNewValue.toDouble(), PRECISION) + QLatin1Char('\n') + strCtrlTxt);
}

double MainWindow::OpenKeypad(QPushButton* pQBtn, const QString& strWndTitle, const QString& strCtrlTxt,
                              const QString& strValue, stFloatPoint fRange, bool bShowSignBtn, quint16 iPrecision)
{
    if (pQBtn) pQBtn->setStyleSheet(BTN_BKGND_GREEN);
    CDlgKeyPad keypad(this);
    keypad.SetCurValue(strValue);
    keypad.setWindowTitle(strWndTitle);
    if (bShowSignBtn) keypad.EnableSign();
    if (iPrecision == 0) keypad.DisableDecimal();
    keypad.exec();

    double fResult = (keypad.m_bCancelled ? strValue : keypad.m_strNewValue).toDouble();
    const bool bChecked = fRange.x != 0.0 || fRange.y != 0.0;
    if (bChecked && (fResult < fRange.x || fResult > fRange.y)) {
        AddLogMsg(QStringLiteral("Value must be between\n") + Decimals(fRange.x, PRECISION) + QStringLiteral(" and ") +
                      Decimals(fRange.y, PRECISION),
                  MSG_ERROR);
        fResult = fResult < fRange.x ? fRange.x : fRange.y;
    }
    if (pQBtn) {
        const QString strNumber = Decimals(fResult, iPrecision);
        pQBtn->setText(strCtrlTxt.isEmpty() ? strNumber : strNumber + QLatin1Char('\n') + strCtrlTxt);
        pQBtn->setStyleSheet(BTN_BKGND_GRAY);
    }
    return fResult;
}
