#pragma once
#include "common/MachineTypes.h"

#include <QString>

class CScreenHost;
class QPushButton;
class QWidget;

// A number that the operator enters on the modal keypad, with the validation contract of the whole system. Interface
// thread.
class CKeypadEntry
{
public:
    CKeypadEntry(QWidget& window, CScreenHost& host) : m_Window(window), m_Host(host) {}

    // What the keypad returns, with four decimals.
    QString Enter(const QString& strTitle, const QString& strValue);
    // As CScreenHost::OpenKeypad.
    double Enter(QPushButton* pButton, const QString& strTitle, const QString& strCaption, const QString& strValue,
                 stFloatPoint fRange, bool bShowSign, quint16 iPrecision);

private:
    double Clamp(double fValue, stFloatPoint fRange);

    QWidget& m_Window;
    CScreenHost& m_Host;
};
