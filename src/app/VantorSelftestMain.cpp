#include "app/selftest/Report.h"
#include "common/Paths.h"
#include "config/AppConfig.h"
#include "hardware/RpiGpio.h"
#include "platform/Computer.h"
#include "platform/PinKind.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <csignal>
#include <cstdio>

// vantor-selftest: whether this computer makes pulses in time, to be run before a machine is trusted to it.

namespace {
enum eExit
{
    EXIT_FIT = 0,
    EXIT_NOT_FIT = 1,   // or not confirmed
    EXIT_USAGE = 2
};
constexpr double LEAST_TEST_RATE = 100'000.0;

CShared<bool> g_bRun = true;
void OnSignal(int)
{
    g_bRun = false;
}

struct stCall
{
    double fSeconds = 30.0, fRate = 0.0, fDrivePulse = 1e-6;
    bool bYes = false;
};

// The machine's settings where it has some, otherwise the built-in ones. Only read: the window is who brings an old
// file up to date.
bool ReadSettings()
{
    CPaths::Establish();
    QFile file(CPaths::Map(CONFIG_FILE));
    if (!file.exists()) return true;
    if (!file.open(QIODevice::ReadOnly)) return false;
    (void)AppConfig::ReadConfig(file);   // false for an older file: all that counts here is in it
    return true;
}

stDemand DemandOfSettings()
{
    using A = AppConfig;
    stDemand demand;
    for (int axis = 0; axis < A::m_iMchType; ++axis) {
        if (!(A::m_fAxisMovPerPulse[axis] > 0.0)) continue;
        const double fRate = A::m_fMaxAxisFeed[axis] / A::m_fAxisMovPerPulse[axis];
        if (!(fRate > demand.fRate)) continue;
        demand.fRate = std::min(fRate, MAX_GPIO_FREQUENCY);
        demand.fDuty = A::m_fAxisDutyCycle[axis];
    }
    return demand;
}

std::vector<quint16> PulsePinsOfSettings()
{
    std::vector<quint16> pins;
    for (int axis = 0; axis < AppConfig::m_iMchType; ++axis) {
        const quint16 pin = Pin(AppConfig::m_iAxisPulseOutput[axis]);
        if (std::find(pins.begin(), pins.end(), pin) == pins.end()) pins.push_back(pin);
    }
    return pins;
}

// False: a value that cannot be used, said on stderr.
bool ReadNumber(const QCommandLineParser& parser, const char* szName, double fLeast, double fMost, double& fValue)
{
    const QString strName = QString::fromLatin1(szName);
    if (!parser.isSet(strName)) return true;
    bool bOk = false;
    const double fGiven = parser.value(strName).toDouble(&bOk);
    if (!bOk || !(fGiven >= fLeast && fGiven <= fMost)) {
        std::fprintf(stderr, "vantor-selftest: --%s takes a number from %g to %g\n", szName, fLeast, fMost);
        return false;
    }
    fValue = fGiven;
    return true;
}

void Describe(QCommandLineParser& parser)
{
    parser.setApplicationDescription(QStringLiteral(
        "Makes step pulses with nothing connected, and tells how late their edges are and which step rate is safe.\n"
        "Exit status: 0 fit for a machine, 1 not fit or not confirmed, 2 usage or files."));
    parser.addOptions(
        {{QStringLiteral("seconds"), QStringLiteral("how long (30)"), QStringLiteral("N")},
         {QStringLiteral("rate"),
          QStringLiteral("pulses a second on each pin (twice what the settings ask for, at least 100000)"),
          QStringLiteral("HZ")},
         {QStringLiteral("drive-pulse"),
          QStringLiteral("the shortest pulse that the drives are sure to see, in microseconds (1)"),
          QStringLiteral("US")},
         {QStringLiteral("yes"), QStringLiteral("drives real pins without asking")},
         {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("prints this, and ends")}});
}

// False: the program ends with iExit.
bool ReadCall(const QStringList& arguments, stCall& call, int& iExit)
{
    QCommandLineParser parser;
    Describe(parser);
    iExit = EXIT_USAGE;
    QString strWhy = parser.parse(arguments) ? QString() : parser.errorText();
    if (strWhy.isEmpty() && !parser.positionalArguments().isEmpty())
        strWhy = QStringLiteral("What is %1?").arg(parser.positionalArguments().constFirst());
    if (!strWhy.isEmpty()) {
        std::fprintf(stderr, "vantor-selftest: %s\nTry vantor-selftest --help.\n", qPrintable(strWhy));
        return false;
    }
    if (parser.isSet(QStringLiteral("help"))) {
        std::fputs(qPrintable(parser.helpText()), stdout);
        iExit = EXIT_FIT;
        return false;
    }
    call.bYes = parser.isSet(QStringLiteral("yes"));
    double fPulseUs = call.fDrivePulse * 1e6;
    // The pulses of ten minutes at the highest rate still fit in 32 bits.
    if (!ReadNumber(parser, "seconds", 0.01, 600, call.fSeconds) ||
        !ReadNumber(parser, "rate", 100, MAX_GPIO_FREQUENCY, call.fRate) ||
        !ReadNumber(parser, "drive-pulse", 0.01, 1000, fPulseUs))
        return false;
    call.fDrivePulse = fPulseUs * 1e-6;
    return true;
}

QString PinList(const std::vector<quint16>& pins)
{
    QStringList lst;
    for (const quint16 pin : pins) lst += QString::number(pin);
    return lst.join(QStringLiteral(", "));
}

bool Confirm(const std::vector<quint16>& pins)
{
    std::printf("This drives the pins %s of this computer with pulses. Nothing may be connected to them: no drive, no\n"
                "machine. Type yes to go on: ",
                qPrintable(PinList(pins)));
    std::fflush(stdout);
    char szAnswer[16] = {};
    if (std::fgets(szAnswer, sizeof szAnswer, stdin) && QString::fromLatin1(szAnswer).trimmed() == QLatin1String("yes"))
        return true;
    std::puts("Not confirmed: no pin was touched.");
    return false;
}

int Run(const stCall& call)
{
    if (!ReadSettings()) {
        std::fprintf(stderr, "vantor-selftest: %s cannot be read\n", qPrintable(CPaths::Map(CONFIG_FILE)));
        return EXIT_USAGE;
    }
    stDemand demand = DemandOfSettings();
    if (!(demand.fDuty > 0.0 && demand.fDuty < 1.0)) {
        std::fprintf(stderr, "vantor-selftest: a duty of %g in the settings makes no pulse\n", demand.fDuty);
        return EXIT_USAGE;
    }
    demand.fDrivePulse = call.fDrivePulse;
    stPulseTest test{PulsePinsOfSettings(), call.fRate, demand.fDuty, call.fSeconds, PULSE_CORE};
    if (test.fRate <= 0.0) test.fRate = std::clamp(2.0 * demand.fRate, LEAST_TEST_RATE, MAX_GPIO_FREQUENCY);
    if (PinsAreReal() && !call.bYes && !Confirm(test.pins)) return EXIT_NOT_FIT;

    std::signal(SIGINT, OnSignal);
    std::signal(SIGTERM, OnSignal);
    CRpiGpio::InitRpiGpio();
    std::printf("Pulses on the %s pins %s, %g a second on each, for %g s ...\n", PinsAreReal() ? "real" : "virtual",
                qPrintable(PinList(test.pins)), test.fRate, test.fSeconds);
    std::fflush(stdout);
    const stPulseResult result = RunPulseTest(test, g_bRun);
    // Read while the processor is still warm from the test.
    const stSystemFacts facts = stSystemFacts::Read(QString(), test.iCore);
    const stVerdict verdict = Judge(result, facts, demand, test.fRate, test.iCore);
    std::fputs(
        qPrintable(FiguresText(test, result, facts) + QLatin1Char('\n') + VerdictText(verdict, demand, PinsAreReal())),
        stdout);
    return verdict.bFit ? EXIT_FIT : EXIT_NOT_FIT;
}
}   // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    stCall call;
    int iExit = 0;
    if (!ReadCall(QCoreApplication::arguments(), call, iExit)) return iExit;
    try {
        return Run(call);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vantor-selftest: %s\n", error.what());
        return EXIT_USAGE;
    }
}
