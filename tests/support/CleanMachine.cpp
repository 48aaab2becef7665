#include "support/CleanMachine.h"

#include "common/OperatorScreen.h"
#include "common/Paths.h"
#include "config/AppConfig.h"
#include "config/ConfigNotice.h"
#include "gcode/GCodeStore.h"
#include "motion/AllAxisCtrl.h"
#include "motion/MotionObserver.h"
#include "platform/Computer.h"
#include "platform/virtual/VirtualPins.h"
#include "time/Wait.h"

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>
#include <vector>

namespace {
using Restores = std::vector<std::function<void()>>;

template <class T> void Keep(Restores& list, T& member)
{
    list.push_back([&member, copy = member] { member = copy; });
}
template <class T, size_t N> void Keep(Restores& list, T (&member)[N])
{
    std::vector<T> copy(std::begin(member), std::end(member));
    list.push_back([&member, copy] { std::copy(copy.begin(), copy.end(), std::begin(member)); });
}
template <class... T> Restores KeepAll(T&... members)
{
    Restores list;
    (Keep(list, members), ...);
    return list;
}

using A = AppConfig;
// Taken before the first test, so these are the values of a program that has just started.
const Restores& InitialValues()
{
    static const Restores list = KeepAll(
        A::m_iMchType, A::m_iAxisPulseOutput, A::m_iAxisDirOutput, A::m_iAxisMchHomeSensorInput, A::m_iSpindlePwmOutput,
        A::m_iPgmStatusOutput, A::m_iEStopInput, A::m_iPgmStartInput, A::m_iZProbeInput, A::m_PlaneSel,
        A::m_eAxisHomeDir, A::m_eAxisPosDir, A::m_fAxisPosDirLimit, A::m_fAxisNegDirLimit, A::m_fAxisHomeFeed,
        A::m_fAxisFeedPercent, A::m_fAxisFeed, A::m_fMaxAxisFeed, A::m_fUserAxisFeed, A::m_fAxisAcc,
        A::m_fAxisRateOfAcc, A::m_fAxisDutyCycle, A::m_fAxisMovPerPulse, A::m_fEndMillDia, A::m_fAxisJogFeed,
        A::m_fZSafePos, A::m_iVelAccSamplingTime, A::m_fAxisManualToolChngPos, A::m_bMultipassImgCarving,
        A::m_fMinMaxAxisFeed, A::m_fPlungeFeed, A::m_fHomeRepeatOffset, A::m_eVantorCtrl, A::m_bHomeSensorsUsed,
        A::m_bPWMCtrlUsed, A::m_bKeyboardCtrlUsed, A::m_fAxisWorkZero, A::m_bAppPassword, A::m_strAppPassword,
        A::m_eSelUnits, A::m_bShutdownRPI, A::m_eAxisFeedtype, A::m_bAutoHmOnStartup, A::m_iSpindleSpeeds,
        A::m_bAutoSpindleOnCW, A::m_bAutoSpindleOnCCW, A::m_bAutoSpindleOff, A::m_bEnlManualToolChange,
        A::m_bEnlAutoToolChange, A::m_bUseG01FeedForJog, A::m_stPwmSpndlSettings, A::m_GCodeRunSettings,
        A::m_ZProfileInfo, A::m_strAxisNames, A::m_lstMCodesPin, A::m_lstIPs, A::m_strLastFolderPath,
        A::m_bEmergencyStopON, A::m_bSimulationMode, A::m_bSpindleOn, A::m_bSpindleOnOffStatusChangeInGCode,
        A::m_bSpindleDirInGcode, A::m_bUseZProfile, A::m_iGCodeFileReaderCurIndex);
    return list;
}
}   // namespace

void ClearProgram()
{
    CGCodeStore::m_lstOfGCodeLines = {};
    CGCodeStore::m_lstOfGCodeCmds = {};
    CGCodeStore::m_CompilationErrors.clear();
}

void ResetStatics()
{
    for (const auto& fnRestore : InitialValues()) fnRestore();
    (void)TakeConfigNotice();
    CAllAxisCtrl::m_pAppCtrl = nullptr;
    CAllAxisCtrl::m_bAutoMode = false;
    CAllAxisCtrl::m_bStartMotion = false;
    CAllAxisCtrl::m_bAutoModeRunning = false;
    CAllAxisCtrl::m_lstAxisToMov = {};
    ClearProgram();
    CGCodeStore::m_bGCodeLoading = false;
    CGCodeStore::m_bGCodeCompiling = false;
    CGCodeStore::m_bToolChgCompiling = false;
    CGCodeStore::m_bProgramExchanged = false;
    CMotionObserver::Set(nullptr);
    COperatorScreen::Set(nullptr);
    CVirtualPins::Reset();
    CWait::SetShorten(1);
    SetStartDetached([](const QString&) { return false; });   // no test shuts a computer down
}

CCleanMachine::CCleanMachine()
{
    ResetStatics();
    CPaths::SetHomeFolder(m_Home.path());
    CPaths::SetMountFolder(m_Home.filePath(QStringLiteral("media")));
    CPaths::Establish();
}

CCleanMachine::~CCleanMachine()
{
    ResetStatics();
    CPaths::SetHomeFolder(QString());
    CPaths::SetMountFolder(QString());
}
