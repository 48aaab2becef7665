// The window's own costs: a tick of the supervision loop while a program runs, the drawing of the tool path, and the
// time from the start of the process to the first painted window.
//   cmake --build build --target window_tick && QT_QPA_PLATFORM=offscreen build/bin/window_tick
#include "common/Paths.h"
#include "config/AppConfig.h"
#include "gcode/GCodeEditor.h"
#include "platform/virtual/VirtualPins.h"
#include "widgets/Look.h"
#include "window/MainWindow.h"

#include <QApplication>
#include <QPaintEvent>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <ctime>
#include <memory>
#include <vector>

namespace {
constexpr const char* CHILD = "VANTOR_BENCH_FIRST_PAINT";
constexpr int TICKS_MS = 34;

double Ms(clockid_t clock)
{
    timespec time;
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) * 1e-6;
}

double Percentile(std::vector<double> lst, double fShare)
{
    std::sort(lst.begin(), lst.end());
    return lst[static_cast<size_t>(fShare * static_cast<double>(lst.size() - 1))];
}

// A window that runs a zigzag of many short lines.
struct stRunningWindow
{
    stRunningWindow()
    {
        CPaths::SetHomeFolder(folder.path());
        pWindow = std::make_unique<MainWindow>();
        pWindow->show();
        QCoreApplication::processEvents();
        for (int n = 0; n < 20000; ++n) {
            const QString strLine = QStringLiteral("G1 X%1 Y%2 Z-%3").arg(n % 100).arg(n % 7).arg(n % 3);
            CGCodeStore::m_lstOfGCodeLines.push_back(strLine);
            CGCodeStore::m_lstOfGCodeCmds.push_back(CGCodeStore::Parse_GCode_Line(strLine));
        }
        pWindow->m_AppControl.StartGCode(&CGCodeStore::m_lstOfGCodeCmds);
    }
    ~stRunningWindow()
    {
        pWindow.reset();
        CGCodeEditor::Clear().waitForFinished();
    }
    QTemporaryDir folder;
    std::unique_ptr<MainWindow> pWindow;
};

void BM_TickDuringJob(benchmark::State& state)
{
    stRunningWindow run;
    std::vector<double> lstWall, lstCpu;
    for (auto _ : state) {
        QEventLoop loop;   // what is painted between two ticks, and the timer's own ticks
        QTimer::singleShot(TICKS_MS, &loop, &QEventLoop::quit);
        loop.exec();
        run.pWindow->m_AppControl.PushInfoMsg(QStringLiteral("a line of the log at every tick"));
        const double fWall = Ms(CLOCK_MONOTONIC), fCpu = Ms(CLOCK_THREAD_CPUTIME_ID);
        run.pWindow->OnTimer();
        lstCpu.push_back(Ms(CLOCK_THREAD_CPUTIME_ID) - fCpu);
        lstWall.push_back(Ms(CLOCK_MONOTONIC) - fWall);
        state.SetIterationTime(lstWall.back() * 1e-3);
    }
    state.counters["wall_p50_ms"] = Percentile(lstWall, 0.5);
    state.counters["wall_p95_ms"] = Percentile(lstWall, 0.95);
    state.counters["cpu_max_ms"] = Percentile(lstCpu, 1.0);
}
BENCHMARK(BM_TickDuringJob)->UseManualTime()->Iterations(300)->Unit(benchmark::kMillisecond);

// A log as full as it gets.
void BM_LogLine(benchmark::State& state)
{
    QTemporaryDir folder;
    CPaths::SetHomeFolder(folder.path());
    MainWindow window;
    window.show();
    QCoreApplication::processEvents();
    for (int n = 0; n < 2500; ++n) window.AddLogMsg(QStringLiteral("line\nof two"), MSG_INFO);
    for (auto _ : state) window.AddLogMsg(QStringLiteral("one line more"), MSG_INFO);
}
BENCHMARK(BM_LogLine)->Unit(benchmark::kMillisecond);

void BM_DrawToolPaths(benchmark::State& state)
{
    stRunningWindow run;
    for (auto _ : state) run.pWindow->DrawToolPaths();
}
BENCHMARK(BM_DrawToolPaths)->Unit(benchmark::kMicrosecond);

// Of a process of its own, from before its start.
void BM_FirstPaint(benchmark::State& state)
{
    for (auto _ : state) {
        QProcess child;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QString::fromLatin1(CHILD), QStringLiteral("1"));
        child.setProcessEnvironment(environment);
        const double fStart = Ms(CLOCK_MONOTONIC);
        child.start(QCoreApplication::applicationFilePath(), QStringList());
        child.waitForFinished();
        state.SetIterationTime((child.readAllStandardOutput().trimmed().toDouble() - fStart) * 1e-3);
    }
}
BENCHMARK(BM_FirstPaint)->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);

class CPaintWatch : public QObject
{
public:
    bool eventFilter(QObject* pObject, QEvent* pEvent) override
    {
        if (pEvent->type() == QEvent::UpdateRequest)
            QTimer::singleShot(0, pObject, [] {
                std::printf("%.3f\n", Ms(CLOCK_MONOTONIC));
                QCoreApplication::quit();
            });
        return false;
    }
};

int PaintOnce(QApplication& app)
{
    QTemporaryDir folder;
    CPaths::SetHomeFolder(folder.path());
    MainWindow window;
    CPaintWatch watch;
    window.installEventFilter(&watch);
    window.show();
    return app.exec();
}
}   // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    CLook::Apply(app);
    if (qEnvironmentVariableIsSet(CHILD)) return PaintOnce(app);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
