#include "window/KeypadEntry.h"

#include "screens/host/SettingsInput.h"
#include "widgets/ButtonStyle.h"
#include "widgets/DlgKeyPad.h"

#include <QPushButton>

static QString Decimals(double fValue, int iPrecision)
{
    return QString::number(fValue, 'f', iPrecision);
}

QString CKeypadEntry::Enter(const QString& strTitle, const QString& strValue)
{
    if (RefuseMachineInUse(m_Host)) return strValue;   // over the keypad there is no Stop
    CDlgKeyPad keypad(&m_Window);
    keypad.SetCurValue(strValue);
    keypad.setWindowTitle(strTitle);
    keypad.exec();
    return Decimals(keypad.m_strNewValue.toDouble(), PRECISION);
}

double CKeypadEntry::Enter(QPushButton* pButton, const QString& strTitle, const QString& strCaption,
                           const QString& strValue, stFloatPoint fRange, bool bShowSign, quint16 iPrecision)
{
    if (RefuseMachineInUse(m_Host)) return strValue.toDouble();
    if (pButton) pButton->setStyleSheet(BTN_BKGND_GREEN);
    CDlgKeyPad keypad(&m_Window);
    keypad.SetCurValue(strValue);
    keypad.setWindowTitle(strTitle);
    if (bShowSign) keypad.EnableSign();
    if (iPrecision == 0) keypad.DisableDecimal();
    keypad.exec();

    const double fResult = Clamp((keypad.m_bCancelled ? strValue : keypad.m_strNewValue).toDouble(), fRange);
    if (pButton) {
        const QString strNumber = Decimals(fResult, iPrecision);
        pButton->setText(strCaption.isEmpty() ? strNumber : strNumber + QLatin1Char('\n') + strCaption);
        pButton->setStyleSheet(BTN_BKGND_GRAY);
    }
    return fResult;
}

double CKeypadEntry::Clamp(double fValue, stFloatPoint fRange)
{
    const bool bChecked = fRange.x != 0.0 || fRange.y != 0.0;
    if (!bChecked || !(fValue < fRange.x || fValue > fRange.y)) return fValue;
    m_Host.AddLogMsg(QStringLiteral("Value must be between\n") + Decimals(fRange.x, PRECISION) +
                         QStringLiteral(" and ") + Decimals(fRange.y, PRECISION),
                     MSG_ERROR);
    return fValue < fRange.x ? fRange.x : fRange.y;
}
