#pragma once
#include "common/Shared.h"

#include <QThread>

// A square wave on the spindle's PWM pin made by a thread that spins: the fallback for a pin without hardware PWM. Half
// of each period is high; the frequency is AppConfig's iCurFreq, and a change is in force from the next edge on. Takes
// one core while it runs. No screen makes one at present. Interface thread.
class CPWM : public QThread
{
public:
    ~CPWM() override;
    void PwmStart();   // without a frequency the pin stays low
    void PwmStop();    // does not wait: the thread ends within one check, and leaves the pin low

protected:
    void run() override;

private:
    CShared<bool> m_bRun = false;
};
