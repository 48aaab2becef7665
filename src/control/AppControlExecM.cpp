#include "common/Paths.h"
#include "control/GCodeLineExec.h"
#include "gcode/GCodeWords.h"
#include "hardware/VantorGpio.h"
#include "motion/AllAxisCtrl.h"
#include "time/Wait.h"

#include <QFile>
#include <QTextStream>

#include <algorithm>

// The M words: outputs, tool change, waits, sub-programs.

using Exec = CGCodeLineExec;

static constexpr qint64 OUTPUT_PAUSE_US = 2000000;   // relays, spindle and coolant take their time
static constexpr qint64 BUTTON_PAUSE_US = 100000;    // the supervision loop sees the request meanwhile
static constexpr qint64 TOOL_POLL_US = 1000000;
static constexpr qint64 DWELL_STEP_US = 100;

Exec::eNext Exec::MWord()
{
    static constexpr stNumbers NUMBERS[] = {{0, 1, &Exec::ProgramStop},
                                            {2, 2, &Exec::EndOfProgram},
                                            {3, 4, &Exec::SpindleOn},
                                            {5, 5, &Exec::SpindleOff},
                                            {6, 6, &Exec::ToolChange},
                                            {7, 8, &Exec::CoolantOn},
                                            {9, 9, &Exec::CoolantOff},
                                            {30, 30, &Exec::EndOfProgram},
                                            {66, 66, &Exec::WaitWord},
                                            {80, 80, &Exec::Output80Off},
                                            {81, 81, &Exec::Output80On},
                                            {97, 98, &Exec::CallSubProgram},
                                            {99, 99, &Exec::ReturnFromSubProgram},
                                            {200, 223, &Exec::UserOutput}};
    CAllAxisCtrl::WaitForMotion();
    if (m_App.IsStopRequested()) return eNext::END_RUN;
    // Skipped altogether in simulation, M2 and M30 too: the run goes on to the last line of the file.
    if (AppConfig::m_bSimulationMode) return eNext::WORD;
    m_iNumber = TokenInt(Token());
    return Numbered(NUMBERS);
}

void Exec::Write(int iCode, quint8 ucLevel)
{
    // A code that the map does not have is added with pin 0.
    CVANTORGPIO::WriteOutput(Pin(AppConfig::m_lstMCodesPin[static_cast<quint16>(iCode)]), ucLevel);
}

// The run is not held: wanted, M0 and M1 only ask for the Start button to be drawn as pressed.
Exec::eNext Exec::ProgramStop()
{
    m_App.m_bStartBtnPressRequest = true;
    CWait::SleepUs(BUTTON_PAUSE_US);
    return eNext::WORD;
}

Exec::eNext Exec::SpindleOn()
{
    const int iOther = m_iNumber == 3 ? 4 : 3;
    Write(iOther, 0);
    CWait::SleepUs(OUTPUT_PAUSE_US);
    if (m_App.IsStopRequested()) return eNext::END_RUN;   // a spindle must not start behind a stop
    Write(m_iNumber, 1);
    AppConfig::m_bSpindleOn = true;
    AppConfig::m_bSpindleDirInGcode = m_iNumber == 4;
    AppConfig::m_bSpindleOnOffStatusChangeInGCode = true;
    return eNext::WORD;
}

Exec::eNext Exec::SpindleOff()
{
    Write(3, 0);
    Write(4, 0);
    AppConfig::m_bSpindleOn = false;
    AppConfig::m_bSpindleOnOffStatusChangeInGCode = true;
    return eNext::WORD;
}

Exec::eNext Exec::CoolantOn()
{
    Write(m_iNumber, 1);
    CWait::SleepUs(OUTPUT_PAUSE_US);
    return eNext::WORD;
}

Exec::eNext Exec::CoolantOff()
{
    Write(7, 0);
    Write(8, 0);
    return eNext::WORD;
}

Exec::eNext Exec::Output80Off()
{
    Write(80, 0);
    return eNext::WORD;
}

Exec::eNext Exec::Output80On()
{
    Write(80, 1);
    CWait::SleepUs(OUTPUT_PAUSE_US);
    return eNext::WORD;
}

Exec::eNext Exec::UserOutput()
{
    Write(m_iNumber, m_iNumber % 2 == 0 ? 1 : 0);
    return eNext::WORD;
}

Exec::eNext Exec::ToolChange()
{
    if (m_App.m_bExecSingleLine) return eNext::WORD;
    if (m_App.m_bInAtcFile) {   // it would run itself for ever
        m_App.PushErrMsg(QStringLiteral("Error:%1 - Tool Change, M06, must not exist in ATC file").arg(m_iLine));
        return eNext::END_RUN;
    }
    if (AppConfig::m_bEnlManualToolChange) return ManualToolChange();
    if (AppConfig::m_bEnlAutoToolChange) return AutoToolChange();
    return AskForTool();
}

Exec::eNext Exec::ManualToolChange()
{
    const double* const pPos = AppConfig::m_fAxisManualToolChngPos;
    const auto Move = [&](eAxis axis, bool bWait) {
        m_App.m_AxisCtrl[axis].SetVelocityAcc(AppConfig::m_fAxisFeed[axis], AppConfig::m_fAxisAcc[axis]);
        return m_App.EngMoveAxisAbs(axis, pPos[axis], bWait);   // tells its refusals itself
    };
    m_App.PushInfoMsg(QStringLiteral("Tool Change Sequence Started"));
    m_App.TurnOnOffSpindle(false, DIR_CW);
    // The tool leaves the work before anything moves sideways.
    if (!Move(Z_AXIS, true) || !Move(X_AXIS, false) || !Move(Y_AXIS, false)) return eNext::END_RUN;
    const signed char selection[MAX_AXES] = {1, 1, 0, 0, 0};
    if (!m_App.WaitForMotionFinish(selection)) return eNext::END_RUN;
    const eNext eAsked = AskForTool();
    if (eAsked == eNext::WORD)
        for (int axis = X_AXIS; axis <= Z_AXIS; ++axis) AxisOf(m_App.m_CurGCodePos, axis) = pPos[axis];
    return eAsked;
}

// Until the supervision loop has set the pause; the run loop then holds at the next line.
Exec::eNext Exec::AskForTool()
{
    m_App.m_bToolChangePause = true;
    m_App.PushInfoMsg(QStringLiteral("Change tool and click start"));
    while (!m_App.m_bPause) {
        CWait::SleepUs(TOOL_POLL_US);
        if (m_App.IsStopRequested()) return eNext::END_RUN;
    }
    return eNext::WORD;
}

Exec::eNext Exec::AutoToolChange()
{
    if (m_App.m_strSelTool.empty()) {
        m_App.PushInfoMsg(QStringLiteral("No Tool Selected. Please use 'T' command before M06"));
        return eNext::WORD;
    }
    const QString strPath =
        WORKING_FOLDER + QLatin1Char('/') + QString::fromLatin1(m_App.m_strSelTool) + QStringLiteral(".txt");
    QFile file(CPaths::Map(strPath));
    if (!file.exists()) {
        m_App.PushInfoMsg(QStringLiteral("No ATC commands found. Please check the file, ") + strPath +
                          QStringLiteral(", exists?"));
        return eNext::WORD;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        m_App.PushInfoMsg(QStringLiteral("Unable to open ATC File"));
        return eNext::WORD;
    }
    GCodeProgram program;
    for (QTextStream stream(&file); !stream.atEnd();)
        program.push_back(AppControl::Parse_GCode_Line(stream.readLine()));
    file.close();
    m_App.RunAtcFile(program);
    return eNext::WORD;
}

// M66 Q: a dwell of Q ms. M66 P L, M66 P L Q: until input P does what L says, at most Q ms. The parameters that follow
// end the run once the wait is over: wanted, the rule that the next word follows is common to all M words.
Exec::eNext Exec::WaitWord()
{
    const size_t uWords = m_Tokens.size() - m_uToken;
    const auto Nanoseconds = [](const std::string& strToken) {
        return std::max<qint64>(0, CutTo<qint64>(TokenFloat(strToken) * 1000000.0));
    };
    const auto Stopped = [this] { return m_App.IsStopRequested(); };
    if (uWords == 2) CWait::SleepUntil(Stopped, DWELL_STEP_US, Nanoseconds(*TokenBehind(1)));
    if (uWords < 3) return eNext::WORD;

    const quint16 pin = AppConfig::m_lstIPs[CutTo<quint8>(TokenFloat(*TokenBehind(1)))];
    const int iMode = TokenInt(*TokenBehind(2));
    bool bArmed = false;
    const auto Happened = [&] {
        if (m_App.IsStopRequested()) return true;
        const int iLevel = CVANTORGPIO::ReadInput(pin);
        switch (iMode) {
        case 1: return bArmed ? iLevel != 0 : (bArmed = iLevel == 0, false);
        case 2: return bArmed ? iLevel != 1 : (bArmed = iLevel == 1, false);
        case 3: return iLevel != 0;
        case 4: return iLevel == 0;
        default: return true;
        }
    };
    CWait::SpinUntil(Happened, uWords == 4 ? Nanoseconds(*TokenBehind(3)) : CWait::FOREVER);
    return eNext::WORD;
}

namespace {
// 0 for text that is no whole number.
unsigned WordUInt(const std::string& strToken)
{
    return QString::fromLatin1(strToken).mid(1).toUInt();
}
}   // namespace

// The number behind the call ends the run once the stacks are set: wanted as with M66, so that calls are seen line by
// line only.
Exec::eNext Exec::CallSubProgram()
{
    if (m_App.m_bExecSingleLine) return eNext::WORD;
    if (m_App.m_lstSubPrgmStartLine.size() >= size_t(AppControl::m_iMaxSubPrgmNesting)) {
        m_App.PushErrMsg(
            QStringLiteral("Maximum %1 Subprogram nesting is allowed").arg(AppControl::m_iMaxSubPrgmNesting));
        return eNext::END_RUN;
    }
    const std::string* pTarget = TokenBehind(1);
    if (!pTarget) return eNext::UNSUPPORTED;
    const unsigned uTarget = WordUInt(*pTarget);
    // Not backwards, and among N words only, for M98 too.
    const GCodeProgram& program = *m_App.m_pGCodeProgram;
    const auto found = std::find_if(program.begin() + m_iLine, program.end(), [&](const GCodeTokens& tokens) {
        return !tokens.empty() && TokenLetter(tokens[0]) == 'N' && WordUInt(tokens[0]) == uTarget;
    });
    if (found == program.end()) {
        m_App.PushErrMsg(QStringLiteral("No line starting with ") + QString::fromLatin1(*pTarget) +
                         QStringLiteral(" is found"));
        return eNext::END_RUN;
    }
    m_App.m_iCurGCodeLine = std::max(static_cast<int>(found - program.begin()) - 1, 0);
    m_App.m_lstSubPrgmStartLine.push_back(m_App.m_iCurGCodeLine);
    m_App.m_lstSubPrgmRetLine.push_back(m_iLine);
    const std::string* pRepeats = m_Tokens.size() > 2 ? TokenBehind(2) : nullptr;
    m_App.m_lstSubPrgmRepeats.push_back(pRepeats ? WordUInt(*pRepeats) : 1);
    return eNext::WORD;
}

Exec::eNext Exec::ReturnFromSubProgram()
{
    if (m_App.m_bExecSingleLine) return eNext::WORD;
    if (m_App.m_lstSubPrgmRetLine.empty()) {
        m_App.PushErrMsg(QStringLiteral("No line Number defined (M97) to return"));
        return eNext::END_RUN;
    }
    if (--m_App.m_lstSubPrgmRepeats.back() != 0) {   // 0 repeats wrap round and go on practically for ever
        m_App.m_iCurGCodeLine = m_App.m_lstSubPrgmStartLine.back();
        return eNext::WORD;
    }
    m_App.m_iCurGCodeLine = m_App.m_lstSubPrgmRetLine.back();
    m_App.m_lstSubPrgmRepeats.pop_back();
    m_App.m_lstSubPrgmStartLine.pop_back();
    m_App.m_lstSubPrgmRetLine.pop_back();
    return eNext::WORD;
}
