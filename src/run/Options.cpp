#include "run/Options.h"

#include "common/MachineTypes.h"
#include "run/JobKind.h"

#include <cmath>
#include <functional>

namespace {
// An option's setter: false leaves why in the second text, to be read behind the option's name.
using SetFn = std::function<bool(stRunOptions&, const QString& strValue, QString& strWhy)>;

struct stOption
{
    const char* szName;
    const char* szValue;   // how --help calls its value; null: it takes none
    const char* szHelp;    // lines
    SetFn fnSet;
};

SetFn Flag(bool stRunOptions::*pFlag)
{
    return [pFlag](stRunOptions& options, const QString&, QString&) { return options.*pFlag = true; };
}

SetFn Text(QString stRunOptions::*pText)
{
    return [pText](stRunOptions& options, const QString& strValue, QString& strWhy) {
        if (strValue.isEmpty()) strWhy = QStringLiteral("the value is empty");
        options.*pText = strValue;
        return !strValue.isEmpty();
    };
}

bool ReadSeconds(const QString& strValue, double& fSeconds)
{
    bool bOk = false;
    fSeconds = strValue.toDouble(&bOk);
    return bOk && fSeconds >= 0.0 && fSeconds < 1e9;   // 30 years fit in 64 bits of ns
}

bool SetToolChangeTime(stRunOptions& options, const QString& strValue, QString& strWhy)
{
    if (ReadSeconds(strValue, options.fToolChangeTime)) return true;
    strWhy = QStringLiteral("\"%1\" is not a number of seconds").arg(strValue);
    return false;
}

bool SetMaxTime(stRunOptions& options, const QString& strValue, QString& strWhy)
{
    if (ReadSeconds(strValue, options.fMaxTime) && options.fMaxTime > 0.0) return true;
    strWhy = QStringLiteral("\"%1\" is not a number of seconds above 0").arg(strValue);
    return false;
}

bool SetStartLine(stRunOptions& options, const QString& strValue, QString& strWhy)
{
    bool bOk = false;
    options.iStartLine = strValue.toInt(&bOk);
    if (bOk && options.iStartLine >= 1) return true;
    strWhy = QStringLiteral("\"%1\" is not a line number; the first line is 1").arg(strValue);
    return false;
}

bool ReadInputName(const QString& strName, stTimedInput& input)
{
    static const std::pair<QString, stTimedInput::eKind> names[] = {{QStringLiteral("estop"), stTimedInput::ESTOP},
                                                                    {QStringLiteral("start"), stTimedInput::START},
                                                                    {QStringLiteral("probe"), stTimedInput::PROBE}};
    for (const auto& [strKnown, eKind] : names)
        if (strName == strKnown) {
            input.eWhat = eKind;
            return true;
        }
    const bool bGpio = strName.startsWith(QLatin1String("gpio"));
    input.eWhat = bGpio ? stTimedInput::GPIO : stTimedInput::INPUT;
    bool bOk = false;
    input.iNumber = strName.mid(bGpio ? 4 : 0).toInt(&bOk);
    return bOk && (bGpio ? input.iNumber >= 0 && input.iNumber <= 63 : input.iNumber >= 1 && input.iNumber <= 4);
}

bool AddInput(stRunOptions& options, const QString& strValue, QString& strWhy)
{
    const qsizetype iEqual = strValue.indexOf(QLatin1Char('=')), iAt = strValue.indexOf(QLatin1Char('@'));
    stTimedInput input;
    const QString strLevel = strValue.mid(iEqual + 1, iAt - iEqual - 1);
    const bool bForm = iEqual > 0 && iAt > iEqual && (strLevel == QLatin1String("0") || strLevel == QLatin1String("1"));
    if (!bForm || !ReadInputName(strValue.left(iEqual), input) || !ReadSeconds(strValue.mid(iAt + 1), input.fSeconds)) {
        strWhy = QStringLiteral("\"%1\" is not NAME=LEVEL@SECONDS, with NAME one of 1 to 4, estop, start, probe, gpioN "
                                "and LEVEL 0 or 1")
                     .arg(strValue);
        return false;
    }
    input.iLevel = strLevel.toInt();
    options.lstInputs.push_back(input);
    return true;
}

bool AddJobField(stRunOptions& options, const QString& strValue, QString&)
{
    options.lstJobFields += strValue;   // which there are, the kind of job knows
    return true;
}

bool AddSetting(stRunOptions& options, const QString& strValue, QString&)
{
    options.lstSettings += strValue;   // read when the configuration has been loaded
    return true;
}

const std::vector<stOption>& Table()
{
    using O = stRunOptions;
    static const std::vector<stOption> table = {
        {"--check", nullptr, "reads and compiles only: each error on a line of its own, FILE:LINE: TEXT",
         Flag(&O::bCheck)},
        {"--real-time", nullptr, "on the real clock, with the real threads, instead of a dry run", Flag(&O::bRealTime)},
        {"--start-line", "N", "begins at line N of the program; the first is 1", SetStartLine},
        {"--data-dir", "DIR",
         "the machine's home folder (configuration, ATC files, status file); created if\n"
         "missing. Without it a run keeps nothing and starts from the built-in settings",
         Text(&O::strDataDir)},
        {"--config", "FILE", "a configuration file from a machine, only read", Text(&O::strConfig)},
        {"--set", "NAME=VALUE",
         "a setting for this run, such as m_fAxisAcc[0]=300; without an index an array\n"
         "takes the value in all elements. May be repeated",
         AddSetting},
        {"--job", "NAME=VALUE", "a field of the job itself, for jobs that are no programs. May be repeated",
         AddJobField},
        {"--to-gcode", "FILE", "writes the job as a G-code program instead of running it", Text(&O::strToGCode)},
        {"--list-settings", nullptr, "prints all settings with their values, and ends", Flag(&O::bListSettings)},
        {"--homing", nullptr, "homes the machine first; sensors at 0 of the machine's coordinates", Flag(&O::bHoming)},
        {"--simulation", nullptr, "simulation mode: outputs silent, M words skipped", Flag(&O::bSimulation)},
        {"--surface", "FILE|Z",
         "what the probe meets: a profile file, or a flat height in mm; in work\n"
         "coordinates as the run begins. Flat at 0 without it",
         Text(&O::strSurface)},
        {"--probe-z0", nullptr, "sets Z0 with the probe before anything else is done", Flag(&O::bProbeZ0)},
        {"--make-z-profile", "FILE", "measures the surface (m_ZProfileInfo), saves it, and the job follows it",
         Text(&O::strMakeZProfile)},
        {"--z-profile", "FILE", "loads a saved profile, and the job follows it", Text(&O::strZProfile)},
        {"--tool-change-time", "S", "a tool change is answered after S seconds of the machine (0)", SetToolChangeTime},
        {"--input", "N=LEVEL@S",
         "an input takes LEVEL S seconds after the run began; N is 1 to 4 (as M66\n"
         "counts), estop, start, probe, or gpioN. May be repeated",
         AddInput},
        {"--max-time", "S", "ends the run with an emergency stop after S seconds of the machine", SetMaxTime},
        {"--moves", "FILE", "one CSV row for each move", Text(&O::strMoves)},
        {"--edges", "FILE", "one CSV row for each edge on a pulse or direction pin", Text(&O::strEdges)},
        {"--picture", "FILE", "the tool path as PNG", Text(&O::strPicture)},
        {"--relief", "FILE",
         "what a flat tool of m_fEndMillDia has left of the work piece, as PNG of 16-bit\n"
         "grey: white is Z 0, black the deepest cut",
         Text(&O::strRelief)},
        {"--summary", "FILE", "the summary as JSON", Text(&O::strSummary)},
        {"--quiet", nullptr, "prints errors only", Flag(&O::bQuiet)},
        {"--version", nullptr, "prints the version, and ends", Flag(&O::bVersion)},
        {"--help", nullptr, "prints this, and ends", Flag(&O::bHelp)},
    };
    return table;
}

const stOption* Find(const QString& strName)
{
    for (const stOption& option : Table())
        if (strName == QLatin1String(option.szName)) return &option;
    return strName == QLatin1String("-h") ? Find(QStringLiteral("--help")) : nullptr;
}

bool IsOption(const QString& strArgument)
{
    return strArgument.startsWith(QLatin1Char('-')) && strArgument != QLatin1String("-");
}

bool TakeOption(const QStringList& arguments, qsizetype& i, stRunOptions& options, QString& strWhy)
{
    const QString& strArgument = arguments[i];
    const qsizetype iEqual = strArgument.indexOf(QLatin1Char('='));
    const QString strName = strArgument.left(iEqual < 0 ? strArgument.size() : iEqual);
    const stOption* pOption = Find(strName);
    if (!pOption) {
        strWhy = QStringLiteral("unknown option %1").arg(strName);
        return false;
    }
    QString strValue = iEqual < 0 ? QString() : strArgument.mid(iEqual + 1);
    if (!pOption->szValue && iEqual >= 0) {
        strWhy = QStringLiteral("%1 takes no value").arg(strName);
        return false;
    }
    if (pOption->szValue && iEqual < 0) {
        if (++i >= arguments.size()) {
            strWhy = QStringLiteral("%1 needs a value: %2").arg(strName, QLatin1String(pOption->szValue));
            return false;
        }
        strValue = arguments[i];
    }
    if (pOption->fnSet(options, strValue, strWhy)) return true;
    strWhy = QStringLiteral("%1: %2").arg(strName, strWhy);
    return false;
}

bool CheckTogether(const stRunOptions& options, QString& strWhy)
{
    if (options.bHelp || options.bVersion || options.bListSettings) return true;
    const bool bWithoutJob =
        !options.bCheck && (options.bHoming || options.bProbeZ0 || !options.strMakeZProfile.isEmpty());
    const bool bOfJob = !options.strToGCode.isEmpty() || !options.lstJobFields.isEmpty();
    if (options.strJob.isEmpty() && (!bWithoutJob || bOfJob)) strWhy = QStringLiteral("no job is given");
    if (!options.strZProfile.isEmpty() && !options.strMakeZProfile.isEmpty())
        strWhy = QStringLiteral("--z-profile and --make-z-profile exclude each other");
    if (!options.strToGCode.isEmpty() && options.bCheck)
        strWhy = QStringLiteral("--check and --to-gcode exclude each other");
    return strWhy.isEmpty();
}
}   // namespace

bool COptions::Parse(const QStringList& arguments, stRunOptions& options, QString& strWhy)
{
    bool bOptions = true;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        if (bOptions && arguments[i] == QLatin1String("--")) {
            bOptions = false;
        } else if (bOptions && IsOption(arguments[i])) {
            if (!TakeOption(arguments, i, options, strWhy)) return false;
        } else if (arguments[i].isEmpty() || !options.strJob.isEmpty()) {
            strWhy = arguments[i].isEmpty() ? QStringLiteral("the job's name is empty")
                                            : QStringLiteral("one job at a time: %1 is one too many").arg(arguments[i]);
            return false;
        } else {
            options.strJob = arguments[i];
        }
    }
    return CheckTogether(options, strWhy);
}

QString COptions::Help()
{
    static constexpr int COLUMN = 26;
    QString strHelp = QStringLiteral(
        "Usage: vantor-run JOB [OPTIONS]\n"
        "\n"
        "Runs a job without a display, on a virtual machine: a dry run, exact and as fast as the computer\n"
        "allows. JOB may be left out with --homing, --probe-z0 and --make-z-profile. Its ending tells what\n"
        "it is:\n");
    strHelp += JobKindsHelp() + QStringLiteral("\nOptions:\n");
    for (const stOption& option : Table()) {
        QString strName = QStringLiteral("  ") + QLatin1String(option.szName);
        if (option.szValue) strName += QLatin1Char(' ') + QLatin1String(option.szValue);
        const QStringList lines = QString::fromLatin1(option.szHelp).split(QLatin1Char('\n'));
        for (qsizetype n = 0; n < lines.size(); ++n)
            strHelp += (n == 0 ? strName : QString()).leftJustified(COLUMN) + QStringLiteral("  ") + lines[n] +
                       QLatin1Char('\n');
    }
    return strHelp +
           QStringLiteral(
               "\n"
               "Lengths are mm, times seconds of the machine, line numbers 1-based; an \"Error:\" of the system keeps\n"
               "its own zero-based number behind FILE:LINE. Results go to standard output, progress and messages to\n"
               "standard error.\n"
               "\n"
               "--moves: number, line, mode, then from, to and reached (mm) and acceleration, constant and\n"
               "deceleration pulses of each axis, start and end (ns). A single-axis move tells of its own axis only.\n"
               "--edges: time (ns), axis, pin role, level, the system's position (1/10000 mm), the carriage (pulses).\n"
               "\n"
               "Exit status: 0 done, 1 the program is wrong or the run told an error, 2 usage or files, 3 a time "
               "limit\n"
               "or a wait that nothing will ever end, 130 after Ctrl-C.\n");
}

QString COptions::Version()
{
    return QStringLiteral("vantor-run ") + SOFTWARE_VERSION + QLatin1Char('\n');
}
