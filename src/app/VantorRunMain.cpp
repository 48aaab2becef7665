#include "run/Runner.h"

#include <QGuiApplication>
#include <QUnhandledException>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <unistd.h>

// Jobs without a display.

static void OnSignal(int iSignal)
{
    CRunner::Interrupt(iSignal);
}

// The first asks for an emergency stop, a second one ends the process.
static void CatchSignals()
{
    struct sigaction action = {};
    action.sa_handler = OnSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

// Without memory for a sentence of its own.
[[noreturn]] static void EndWithoutMemory()
{
    static constexpr char SENTENCE[] = "\nvantor-run: there is not enough memory for this job\n";
    [[maybe_unused]] const auto lWritten = write(STDERR_FILENO, SENTENCE, std::strlen(SENTENCE));
    _exit(EXIT_USAGE);
}

// Also from a thread of the job, whose exceptions nobody catches.
static void OnTerminate()
{
    try {
        if (std::current_exception()) throw;
    } catch (const std::bad_alloc&) {
        EndWithoutMemory();
    } catch (...) {
    }
    std::abort();
}

static eExit Tell(const std::exception_ptr& thrown)
{
    try {
        std::rethrow_exception(thrown);
    } catch (const std::bad_alloc&) {
        EndWithoutMemory();
    } catch (const QUnhandledException& task) {   // a pooled one's, in a wrapper that does not say what it was
        return Tell(task.exception());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vantor-run: %s\n", error.what());
        return EXIT_USAGE;
    }
}

int main(int argc, char* argv[])
{
    QStringList arguments;
    for (int n = 1; n < argc; ++n) arguments += QString::fromLocal8Bit(argv[n]);
    stRunOptions options;
    QString strWhy;
    if (!COptions::Parse(arguments, options, strWhy)) {
        std::fputs(QStringLiteral("vantor-run: %1\nTry vantor-run --help.\n").arg(strWhy).toUtf8().constData(), stderr);
        return EXIT_USAGE;
    }
    if (options.bHelp || options.bVersion) {
        std::fputs((options.bHelp ? COptions::Help() : COptions::Version()).toUtf8().constData(), stdout);
        return EXIT_DONE;
    }
    CatchSignals();
    std::set_terminate(OnTerminate);
    try {
        int iArguments = 1;
        std::unique_ptr<QCoreApplication> pQt;
        if (options.strPicture.isEmpty()) {
            pQt = std::make_unique<QCoreApplication>(iArguments, argv);
        } else {
            qputenv("QT_QPA_PLATFORM", "offscreen");   // for the picture's font: no display is needed
            const auto fnBefore = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
            pQt = std::make_unique<QGuiApplication>(iArguments, argv);   // has its say on folders of a desktop
            qInstallMessageHandler(fnBefore);
        }
        return CRunner(options).Run();
    } catch (...) {
        return Tell(std::current_exception());
    }
}
