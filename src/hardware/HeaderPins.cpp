#include "hardware/HeaderPins.h"

#include "config/AppConfig.h"
#include "hardware/RpiGpio.h"

#include <algorithm>

using A = AppConfig;

static void Claim(QMap<int, QString>& roles, int iPin, const QString& strRole)
{
    if (iPin < 0) return;   // not used
    QString& strHeld = roles[iPin];
    strHeld = strHeld.isEmpty() ? strRole : strHeld + QStringLiteral(", ") + strRole;
}

QMap<int, QString> PinRoles()
{
    QMap<int, QString> roles;
    for (int axis = 0; axis < std::min<int>(A::m_iMchType, MAX_AXES); ++axis) {
        if (A::m_iAxisPulseOutput[axis] == 0) continue;   // another board was selected: no pins before a restart
        const QString strAxis = A::m_strAxisNames[axis].left(1);
        Claim(roles, A::m_iAxisPulseOutput[axis], strAxis + QStringLiteral(" Pulse"));
        Claim(roles, A::m_iAxisDirOutput[axis], strAxis + QStringLiteral(" Direction"));
        Claim(roles, A::m_iAxisMchHomeSensorInput[axis], strAxis + QStringLiteral(" Home"));
    }
    Claim(roles, A::m_iSpindlePwmOutput, QStringLiteral("Spindle PWM"));
    Claim(roles, A::m_iPgmStatusOutput, QStringLiteral("Program Status"));
    Claim(roles, A::m_iEStopInput, QStringLiteral("Emergency Stop"));
    Claim(roles, A::m_iPgmStartInput, QStringLiteral("Program Start"));
    Claim(roles, A::m_iZProbeInput, QStringLiteral("Z Probe"));
    if (A::m_eVantorCtrl > VTR5_CTRL) return roles;   // outputs and inputs are bits of the board there
    for (auto it = A::m_lstMCodesPin.cbegin(); it != A::m_lstMCodesPin.cend(); ++it)
        Claim(roles, it.value(), QStringLiteral("M%1").arg(it.key()));
    for (auto it = A::m_lstIPs.cbegin(); it != A::m_lstIPs.cend(); ++it)
        if (it.value() != 0) Claim(roles, it.value(), QStringLiteral("Input %1").arg(it.key()));
    return roles;
}

bool IsPinHigh(int iPin)
{
    return CRpiGpio::ReadInput(static_cast<quint16>(iPin)) != 0;
}
