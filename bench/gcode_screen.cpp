// How long the window stands still while a program of a million lines is loaded by the button, and what a step of the
// scroll bar costs. Prints JSON. bin/gcode_screen [LINES]
#include "common/Paths.h"
#include "config/AppConfig.h"
#include "control/AppControl.h"
#include "screens/gcode/DlgGCode.h"
#include "widgets/Look.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QElapsedTimer>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTimer>
#include <QtConcurrent>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {
class CHost : public QWidget, public CScreenHost
{
public:
    AppControl& Machine() override { return m_Machine; }
    void AddLogMsg(const QString& strMsg, eAppMsgType) override { m_strLast = strMsg; }
    bool IsEmergencyStopOn() override { return false; }
    void ResetBtnBkGnd(QPushButton* pButton, const QString& strStyle) override
    {
        QTimer::singleShot(150, pButton, [=] { pButton->setStyleSheet(strStyle); });
    }
    double OpenKeypad(QPushButton*, const QString&, const QString&, const QString&, stFloatPoint, bool,
                      quint16) override
    {
        return 0.0;
    }
    void ClearToolGraphics() override {}
    void EnlMchHomingOptions(bool) override {}
    void EnableDisableSpindleSpeedCtrl(bool) override {}
    void UpdateUserSettings() override {}
    void GrabKeyboard(bool) override {}
    void EnableJogPanel(bool) override {}
    void EnableScreenSelectors(bool) override {}

    AppControl m_Machine;
    QString m_strLast;
};

// The longest time between two ticks that are due every millisecond, ms: by the clock, and of the thread's own work,
// which other programs on the computer do not lengthen.
struct stStandstill
{
    double fWall = 0.0, fWork = 0.0;
};

double ThreadMs()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

class CTicks
{
public:
    stStandstill m_Longest;
    void Restart()
    {
        m_Longest = {};
        m_fWork = ThreadMs();
        m_Since.start();
    }
    template <class Done> stStandstill Until(Done&& done)
    {
        QTimer tick;
        tick.setTimerType(Qt::PreciseTimer);
        QEventLoop loop;
        QObject::connect(&tick, &QTimer::timeout, [&] {
            const double fWork = ThreadMs();
            m_Longest.fWall = std::max(m_Longest.fWall, double(m_Since.nsecsElapsed()) / 1e6);
            m_Longest.fWork = std::max(m_Longest.fWork, fWork - m_fWork);
            m_fWork = fWork;
            m_Since.restart();
            if (done()) loop.quit();
        });
        Restart();
        tick.start(1);
        loop.exec();
        return m_Longest;
    }

private:
    QElapsedTimer m_Since;
    double m_fWork = 0.0;
};

struct stLoad
{
    stStandstill dialog, load;   // until the file is chosen, and from then on
};

// Presses Open and answers the file dialog, as an operator does. The presses themselves count.
stLoad LoadByButton(CHost& host, CdlgGCode& screen, const QString& strPath)
{
    host.m_strLast.clear();
    stLoad result{};
    CTicks ticks;
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, [&] {
        auto* pDialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        if (!pDialog) return;
        answer.stop();
        pDialog->findChild<QLineEdit*>("fileNameEdit")->setText(strPath);
        result.dialog = ticks.m_Longest;
        ticks.Restart();
        pDialog->findChild<QDialogButtonBox*>("buttonBox")->button(QDialogButtonBox::Open)->click();
    });
    answer.start(100);
    QTimer::singleShot(0, &screen, [&] { screen.findChild<QPushButton*>("Btn_OpenGCode")->click(); });
    result.load = ticks.Until([&] { return host.m_strLast == "G-Code Loaded"; });
    return result;
}

double ScrollStepUs(CdlgGCode& screen)
{
    auto& bar = *screen.findChild<QScrollBar*>("VS_ForGCodeScrolling");
    constexpr int STEPS = 500;
    QElapsedTimer timer;
    timer.start();
    for (int n = 0; n < STEPS; ++n) {
        bar.setValue(bar.maximum() / 2 + n % 5);
        QCoreApplication::processEvents();   // what has to be painted
    }
    return double(timer.nsecsElapsed()) / 1e3 / STEPS;
}

void Write(const QString& strPath, int iLines)
{
    QFile file(strPath);
    if (!file.open(QIODevice::WriteOnly)) std::exit(2);
    for (int n = 0; n < iLines; ++n)
        file.write(QStringLiteral("G1 X%1 Y%2 Z-0.5 F600\n").arg(n * 0.013, 0, 'f', 3).arg(n % 977).toUtf8());
}
}   // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    CLook::Apply(app);
    const int iLines = argc > 1 ? std::atoi(argv[1]) : 1'000'000;
    QTemporaryDir folder;
    CPaths::SetHomeFolder(folder.path());
    CPaths::Establish();
    const QString strShort = folder.filePath("short.tap"), strLong = folder.filePath("long.tap");
    Write(strShort, 15);
    Write(strLong, iLines);

    CHost host;
    CdlgGCode screen;
    screen.setParent(&host);
    screen.ConfigSettings();
    host.resize(screen.size());
    host.show();
    screen.show();
    // The yardstick: the same ticks beside a thread that only computes.
    const auto spin = QtConcurrent::run([] {
        QElapsedTimer timer;
        for (timer.start(); timer.elapsed() < 1000;) {
        }
    });
    const stStandstill busy = CTicks().Until([&] { return spin.isFinished(); });
    const stLoad brief = LoadByButton(host, screen, strShort);
    const double fShort = ScrollStepUs(screen);
    const stLoad first = LoadByButton(host, screen, strLong);
    const double fLong = ScrollStepUs(screen);
    const stLoad again = LoadByButton(host, screen, strLong);   // the old program is freed meanwhile
    const auto Print = [](const char* szName, const stStandstill& time, const char* szEnd) {
        std::printf("  \"%s\": {\"wall\": %.1f, \"work\": %.1f}%s\n", szName, time.fWall, time.fWork, szEnd);
    };
    std::printf("{\"lines\": %d, \"longest_standstill_ms\": {\n", iLines);
    Print("beside_a_busy_thread", busy, ",");
    Print("file_dialog_opens", brief.dialog, ",");
    Print("load_of_15_lines", brief.load, ",");
    Print("load", first.load, ",");
    Print("load_over_a_program", again.load, "},");
    std::printf(" \"standstill_bound_ms\": 50, \"scroll_step_us\": {\"of_15_lines\": %.0f, \"of_all\": %.0f}}\n",
                fShort, fLong);
}
