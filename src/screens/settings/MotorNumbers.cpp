#include "screens/settings/MotorNumbers.h"

#include "config/AppConfig.h"

using A = AppConfig;

static QString PerAxis(eAxis axis, const char* szTitle, const char* szPerTime)
{
    return QLatin1String(szTitle) + (axis < A_AXIS ? QLatin1String("(mm/") : QLatin1String("(deg/")) +
           QLatin1String(szPerTime) + QLatin1Char(')');
}

const std::vector<stMotorNumber>& MotorNumbers()
{
    static const std::vector<stMotorNumber> list = {
        {QStringLiteral("Btn_MaxFeed"),
         [](eAxis axis) {
             return stNumberField{.strTitle = PerAxis(axis, "Axis Feed", "sec"),
                                  .strCaption = QStringLiteral("Max Feed"),
                                  .fRange = {.y = CMotorSettings::HighestMaxFeed(axis)}};
         },
         [](eAxis axis) { return A::m_fMaxAxisFeed[axis]; },
         [](CMotorSettings& motors, eAxis axis, double f) { return motors.SetMaxFeed(axis, f); }},
        {QStringLiteral("Btn_MaxAcc"),
         [](eAxis axis) {
             return stNumberField{.strTitle = PerAxis(axis, "Axis Acceleration", "sec2"),
                                  .strCaption = QStringLiteral("Acc"),
                                  .fRange = {.x = 0.01, .y = 5000.0}};
         },
         [](eAxis axis) { return A::m_fAxisAcc[axis]; },
         [](CMotorSettings& motors, eAxis axis, double f) { return motors.SetAcc(axis, f); }},
        {QStringLiteral("Btn_Axis_Pulse_DutyCycle"),
         [](eAxis) {
             return stNumberField{.strTitle = QStringLiteral("Axis Pulse Duty Cycle"),
                                  .strCaption = QStringLiteral("Duty Cycle"),
                                  .fRange = {.x = 0.25, .y = 0.75}};
         },
         [](eAxis axis) { return A::m_fAxisDutyCycle[axis]; },
         [](CMotorSettings& motors, eAxis axis, double f) {
             motors.SetDutyCycle(axis, f);
             return QString();
         },
         false},
        {QStringLiteral("Btn_RateOfAcc"),
         [](eAxis) {
             return stNumberField{.strTitle = QStringLiteral("Axis Rate Of Acc(mm/sec3)"),
                                  .strCaption = QStringLiteral("Rate of Acc"),
                                  .fRange = {.x = 0.01, .y = 10000000.0}};
         },
         [](eAxis axis) { return A::m_fAxisRateOfAcc[axis]; },
         [](CMotorSettings& motors, eAxis axis, double f) { return motors.SetRateOfAcc(axis, f); }},
        {QStringLiteral("Btn_MovPerPulse"),
         [](eAxis) {
             return stNumberField{.strTitle = QStringLiteral("Move per Pulse(mm)"),
                                  .strCaption = QStringLiteral("Move/Pulse"),
                                  .fRange = {.x = 0.0001, .y = 10.0}};
         },
         [](eAxis axis) { return A::m_fAxisMovPerPulse[axis]; },
         [](CMotorSettings& motors, eAxis axis, double f) { return motors.SetMovPerPulse(axis, f); }, true, true},
        {QStringLiteral("Btn_VelAccUserTimePeriod"),
         [](eAxis) {
             return stNumberField{.strTitle = QStringLiteral("Sampling Time(sec)"),
                                  .strCaption = QStringLiteral("Sampling Time"),
                                  .fRange = {.x = 0.001, .y = 1.0}};
         },
         [](eAxis) { return A::m_iVelAccSamplingTime / 1000000.0; },
         [](CMotorSettings& motors, eAxis, double f) { return motors.SetSamplingTime(f); }},
    };
    return list;
}
