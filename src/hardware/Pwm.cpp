#include "hardware/Pwm.h"

#include "config/AppConfig.h"
#include "hardware/RpiGpio.h"

#include <QElapsedTimer>

CPWM::~CPWM()
{
    PwmStop();
    wait();
}

void CPWM::PwmStart()
{
    m_bRun = true;
    start(QThread::HighestPriority);
}

void CPWM::PwmStop()
{
    m_bRun = false;
}

// ns; 0: no frequency is set.
static qint64 HalfPeriod()
{
    const quint16 iFreq = AppConfig::m_stPwmSpndlSettings.iCurFreq;
    return iFreq == 0 ? 0 : 500'000'000 / iFreq;
}

void CPWM::run()
{
    const quint16 uPin = Pin(AppConfig::m_iSpindlePwmOutput);
    qint64 lHalf = HalfPeriod();
    quint8 ucLevel = 1;
    if (lHalf > 0) CRpiGpio::WriteOutput(uPin, ucLevel);
    QElapsedTimer timer;
    timer.start();
    while (m_bRun && lHalf > 0) {
        if (timer.nsecsElapsed() < lHalf) continue;
        lHalf = HalfPeriod();
        ucLevel ^= 1u;
        CRpiGpio::WriteOutput(uPin, ucLevel);
        timer.restart();
    }
    CRpiGpio::WriteOutput(uPin, 0);
}
