// Page faults of the first axis moves and the first jobs of a program, on real threads and the virtual pins, at
// settings whose highest feed needs long ramps: without what the start of vantor prepares, and with it. And how long
// the interface is held when it notes the end of a job.
//   build/bin/first_job [--prepared [--locked]]
#include "common/OperatorScreen.h"
#include "config/AppConfig.h"
#include "control/AppControl.h"
#include "control/Supervision.h"
#include "machine/MotorSettings.h"
#include "motion/AllAxisCtrl.h"
#include "platform/Computer.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <cstdio>
#include <sys/resource.h>

namespace {
class CSilentScreen : public COperatorScreen
{
    void EnableDisableWindows() override {}
    void ClearToolGraphics() override {}
    void OnOperationFinish() override {}
    void UpdateWorkArea() override {}
    void AddLogMsg(const QString&, eAppMsgType) override {}
    void ShowCriticalBox(const QString&, const QString&) override {}
};

double ProcessorMs(const rusage& use)
{
    return static_cast<double>(use.ru_utime.tv_sec + use.ru_stime.tv_sec) * 1e3 +
           static_cast<double>(use.ru_utime.tv_usec + use.ru_stime.tv_usec) / 1e3;
}

template <class Fn> void Measure(const char* szWhat, Fn&& fnDo)
{
    rusage before{}, after{};
    QElapsedTimer timer;
    getrusage(RUSAGE_SELF, &before);
    timer.start();
    fnDo();
    const double fMs = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    getrusage(RUSAGE_SELF, &after);
    std::printf("%-22s %7ld faults %9.1f ms %9.1f ms of processor\n", szWhat, after.ru_minflt - before.ru_minflt, fMs,
                ProcessorMs(after) - ProcessorMs(before));
}
}   // namespace

int main(int argc, char** argv)
{
    const QCoreApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    CSilentScreen screen;
    COperatorScreen::Set(&screen);
    AppConfig::ApplyBoardPins();
    for (int axis = 0; axis < AppConfig::m_iMchType; ++axis) {
        AppConfig::m_fMaxAxisFeed[axis] = 400.0;   // 133,000 pulses of a ramp
        AppConfig::m_fUserAxisFeed[axis] = AppConfig::m_fAxisFeed[axis] = 260.0;
    }
    AppConfig::m_fMinMaxAxisFeed = 400.0;
    AppControl machine;
    machine.SetUpAxes();
    if (arguments.contains(QStringLiteral("--prepared")))
        Measure("preparation", [&] {
            CMotorSettings(machine).ReserveRamps();
            CAllAxisCtrl::TouchThreads();
            if (arguments.contains(QStringLiteral("--locked"))) (void)LockMemory();
        });
    Measure("ramp to highest feed", [&] { (void)machine.m_AxisCtrl[X_AXIS].SetVelocityAcc(400.0, 600.0); });
    for (const char* szWhat : {"first axis move", "second axis move"})
        Measure(szWhat, [&] {
            (void)machine.MoveAbs(Y_AXIS, machine.GetCurPos(Y_AXIS) + 5.0);
            machine.m_AxisCtrl[Y_AXIS].wait();
        });
    const GCodeProgram program = {{"G0", "X10", "Y8"}, {"G1", "X0", "Y3"}, {"G0", "Z2"}, {"G1", "X5", "Y5"}};
    CSupervision supervision(machine);
    for (const char* szWhat : {"first job", "second job", "third job"}) {
        Measure(szWhat, [&] {
            (void)machine.StartGCode(&program);
            machine.wait();
        });
        Measure("  its end is noted", [&] { (void)supervision.EndOperation(); });
    }
    return 0;
}
