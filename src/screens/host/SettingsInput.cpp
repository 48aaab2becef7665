#include "screens/host/SettingsInput.h"

#include "common/Refusals.h"
#include "config/AppConfig.h"
#include "widgets/ButtonStyle.h"

#include <QPushButton>

bool RefuseMachineInUse(CScreenHost& host)
{
    return host.Refused(host.WhyNotFree());
}

bool RefuseChangeOfPlace(CScreenHost& host)
{
    return RefuseMachineInUse(host) || host.Refused(AppConfig::m_bSimulationMode ? NOT_IN_SIMULATION : QString());
}

static QString Printed(const stNumberField& field, double fValue)
{
    return QString::number(fValue, 'f', field.iDecimals);
}

void ShowNumber(QPushButton* pButton, const stNumberField& field, double fValue)
{
    const QString strNumber = Printed(field, fValue);
    pButton->setText(field.strCaption.isEmpty() ? strNumber : strNumber + '\n' + field.strCaption);
}

std::optional<double> AskNumber(CScreenHost& host, QPushButton* pButton, const stNumberField& field, double fValue)
{
    const QString strOld = Printed(field, fValue);
    const double fNew =
        host.OpenKeypad(pButton, field.strTitle, field.strCaption, strOld, field.fRange, field.bSign, field.iDecimals);
    if (fNew == strOld.toDouble()) return std::nullopt;
    return fNew;
}

void ShowSwitch(QPushButton* pButton, bool bOn, const QString& strName, const QString& strOn, const QString& strOff)
{
    pButton->setText(strName + '\n' + (bOn ? strOn : strOff));
    pButton->setStyleSheet(bOn ? BTN_BKGND_GREEN : BTN_BKGND_GRAY);
}
