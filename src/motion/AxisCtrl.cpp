#include "motion/AxisCtrl.h"

#include "common/Refusals.h"
#include "common/UnitConverter.h"
#include "config/AppConfig.h"
#include "hardware/RpiGpio.h"
#include "motion/Clocks.h"
#include "motion/MotionObserver.h"
#include "platform/Computer.h"
#include "time/Wait.h"

#include <QMutexLocker>
#include <QScopeGuard>

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

static const char* const g_szAxes[MAX_AXES] = {"X Axis", "Y Axis", "Z Axis", "A Axis", "B Axis"};

// The drive must see the direction settled before the first pulse.
static constexpr qint64 DIRECTION_SETTLING_NS = 5000;

static constexpr qint64 LOWEST_UNIT = std::numeric_limits<qint32>::min();
static constexpr qint64 HIGHEST_UNIT = std::numeric_limits<qint32>::max();

AxisCtrl::AxisCtrl() : m_strBuildErr(QStringLiteral("Axis is not configured"))
{
    setStackSize(THREAD_STACK);
}

AxisCtrl::~AxisCtrl()
{
    if (CVirtualTime* pTime = CVirtualTime::Current()) pTime->DropRun(this);
    m_bMoving = false;
    WaitForThread();
    CWait::SleepUntil([this] { return m_iPooled == 0; }, 100);
}

// What the thread has done is done: said again by run's last store, because a thread sanitizer does not see the lock
// inside wait().
void AxisCtrl::WaitForThread()
{
    wait();
    (void)static_cast<bool>(m_bThreadIdle);
}

bool AxisCtrl::ConfigAxis()
{
    m_lPosPerPulse = CUnitConverter::GetLong(AppConfig::m_fAxisMovPerPulse[m_sAxis]);
    if (AppConfig::m_bHomeSensorsUsed) {
        // Machine limits told in work coordinates; the difference in 64 bits, cut to what a position can be.
        const qint64 lZero = CUnitConverter::GetLong(AppConfig::m_fAxisWorkZero[m_sAxis]);
        const auto Limit = [lZero](double fLimit) {
            return static_cast<qint32>(std::clamp(CUnitConverter::GetLong(fLimit) - lZero, LOWEST_UNIT, HIGHEST_UNIT));
        };
        m_lPosLimit = Limit(AppConfig::m_fAxisPosDirLimit[m_sAxis]);
        m_lNegLimit = Limit(AppConfig::m_fAxisNegDirLimit[m_sAxis]);
    } else {
        m_lPosLimit = NO_LIMIT;
        m_lNegLimit = -NO_LIMIT;
    }
    m_fVel[0] = m_fVel[1] = AppConfig::m_fAxisFeed[m_sAxis];
    return SetVelocityAcc(AppConfig::m_fAxisFeed[m_sAxis], AppConfig::m_fAxisAcc[m_sAxis]);
}

bool AxisCtrl::UpdateStepResolution()
{
    if (!(AppConfig::m_fAxisMovPerPulse[m_sAxis] > 0.0))
        return Refuse(QStringLiteral("Step Resolution value must be greater than zero"));
    ConfigAxis();
    return true;
}

bool AxisCtrl::UpdateDutyCycle()
{
    // No value meets this test, and it stays so: the real check of the range is that of the settings screen.
    const double fDuty = AppConfig::m_fAxisDutyCycle[m_sAxis];
    if (fDuty <= 0.0 && fDuty > 1.0) return Refuse(QStringLiteral("Duty cycle value must be between zero and 1"));
    return SetVelocityAcc(AppConfig::m_fAxisFeed[m_sAxis], AppConfig::m_fAxisAcc[m_sAxis]);
}

void AxisCtrl::SetMchHome()
{
    m_lCurPos = CUnitConverter::GetLong(-AppConfig::m_fAxisWorkZero[m_sAxis]);
    m_bHomeDone = true;
}

void AxisCtrl::SetWorkZero()
{
    m_lCurPos = 0;
    ConfigAxis();
}

static const QString& InMotion()
{
    static const QString strText = QStringLiteral("Axis is in Motion");
    return strText;
}

bool AxisCtrl::MoveWorkZero()
{
    Refuse(QString());
    if (m_bMoving) return Refuse(InMotion());
    if (AppConfig::m_bHomeSensorsUsed && !m_bHomeDone) return Refuse(HOMING_NOT_DONE);
    m_lTargetPos = 0;
    return MoveAxis();
}

bool AxisCtrl::MoveAxisHome()
{
    Refuse(QString());
    if (m_bMoving) return Refuse(InMotion());
    if (!AppConfig::m_bHomeSensorsUsed) return Refuse(QStringLiteral("Home Sensors Not enabled"));
    m_bHomeDone = false;
    m_lTargetPos = AppConfig::m_eAxisHomeDir[m_sAxis] == AppConfig::m_eAxisPosDir[m_sAxis] ? NO_LIMIT : -NO_LIMIT;
    return MoveAxis();
}

bool AxisCtrl::Jog(eDirection eDir)
{
    Refuse(QString());
    if (m_bMoving) return Refuse(InMotion());
    const bool bPositive = eDir == AppConfig::m_eAxisPosDir[m_sAxis];
    const qint32 lLimit = bPositive ? m_lPosLimit : m_lNegLimit, lPos = m_lCurPos;
    if (bPositive ? lPos > lLimit : lPos < lLimit)   // the way to the limit would be the other way
        return Refuse(QLatin1String(g_szAxes[m_sAxis]) + QStringLiteral(" is beyond its limit of ") +
                      QString::number(lLimit / DECIMAL_MULTIPLYER, 'f', PRECISION) +
                      QStringLiteral(", jog the other way"));
    m_lTargetPos = lLimit;
    return MoveAxis();
}

bool AxisCtrl::CheckValidMotion(qint64 lTarget)
{
    if (m_bMoving) return Refuse(InMotion());
    SettleWatch();
    if (m_bHoming) return true;
    if (!AppConfig::m_bHomeSensorsUsed) {
        m_bHomeDone = true;   // without sensors there are no limits on commanded moves
        return true;
    }
    if (!m_bHomeDone) return Refuse(HOMING_NOT_DONE);
    if (lTarget >= m_lNegLimit && lTarget <= m_lPosLimit) return true;
    return Refuse(QLatin1String(g_szAxes[m_sAxis]) + QStringLiteral(" Absolute Position value must be between ") +
                  QString::number(m_lNegLimit / DECIMAL_MULTIPLYER, 'f', PRECISION) + QStringLiteral(" and ") +
                  QString::number(m_lPosLimit / DECIMAL_MULTIPLYER, 'f', PRECISION));
}

static QString OutsideUnits()
{
    return QStringLiteral("Position to move must be within the motion limits");
}

bool AxisCtrl::MoveTo(qint64 lTarget)
{
    if (lTarget < LOWEST_UNIT || lTarget > HIGHEST_UNIT) return Refuse(OutsideUnits());
    if (!CheckValidMotion(lTarget)) return false;
    m_lTargetPos = static_cast<qint32>(lTarget);
    return MoveAxis();
}

bool AxisCtrl::MoveAbs(double fPos)
{
    Refuse(QString());
    return CUnitConverter::FitsLong(fPos) ? MoveTo(CUnitConverter::GetLong(fPos)) : Refuse(OutsideUnits());
}

bool AxisCtrl::MoveRel(double fDelta)
{
    Refuse(QString());
    if (!CUnitConverter::FitsLong(fDelta)) return Refuse(OutsideUnits());
    return MoveTo(static_cast<qint64>(CUnitConverter::GetLong(fDelta)) + m_lCurPos);
}

bool AxisCtrl::SetAxisMovParams(double fPos)
{
    Refuse(QString());
    if (!CUnitConverter::FitsLong(fPos)) return Refuse(OutsideUnits());
    const qint32 lTarget = CUnitConverter::GetLong(fPos);
    if (!CheckValidMotion(lTarget)) return false;
    m_lTargetPos = lTarget;
    CreateMotionCurve();
    return true;
}

void AxisCtrl::SetCurPos(double fPos)
{
    m_lCurPos = CUnitConverter::GetLong(fPos);
}
double AxisCtrl::GetCurPos() const
{
    return CUnitConverter::GetDouble(static_cast<int>(m_lCurPos));
}

void AxisCtrl::DeccelerateAxis()
{
    if (m_bMoving) m_bDecelerate = true;
}

void AxisCtrl::Stop()
{
    m_bMoving = false;
    // A thread that an exception ended has left its flags as they were: it is idle all the same.
    CWait::SleepUntil([this] { return m_bThreadIdle || isFinished(); }, 10000);
    m_bThreadIdle = true;
    Refuse(QString());
}

QString AxisCtrl::GetErrorMsg() const
{
    const QMutexLocker lock(&m_TextMutex);
    return m_strErrMsg;
}

QString AxisCtrl::GetBuildError() const
{
    if (m_bNeedsRestart)
        return AppConfig::m_strAxisNames[m_sAxis] + QStringLiteral(" can't move before the application is restarted");
    const QMutexLocker lock(&m_TextMutex);
    return m_strBuildErr;
}

// Keeps the text; an empty one clears the last.
bool AxisCtrl::Refuse(const QString& strWhy)
{
    const QMutexLocker lock(&m_TextMutex);
    m_strErrMsg = strWhy;
    return false;
}

bool AxisCtrl::RefuseBuild(const QString& strWhy)
{
    const QMutexLocker lock(&m_TextMutex);
    m_strBuildErr = strWhy;
    return strWhy.isEmpty();
}

bool AxisCtrl::SetVelocityAcc(double fVel, double fAcc)
{
    const QMutexLocker lock(&m_Mutex);
    const quint32 uBuild = ++m_uBuilds;
    quint32 uPending = m_uPendingBuild;   // out of date, unless it was asked for since
    if (uPending < uBuild) m_uPendingBuild.compare_exchange_strong(uPending, 0);
    return BuildTable({stRampSettings::OfAxis(m_sAxis), fVel, fAcc}, m_bStoreVelCurve);
}

// The settings are read here: by the time of the build the operator may be changing them. No lock is taken here: the
// build before this one may hold it as long as that takes.
void AxisCtrl::SetVelocityAccSoon(double fVel, double fAcc)
{
    const stBuilt wanted{stRampSettings::OfAxis(m_sAxis), fVel, fAcc};
    const quint32 uBuild = ++m_uBuilds;
    m_uPendingBuild = uBuild;
    ++m_iPooled;
    RunPooled([this, uBuild, wanted] {
        const auto fnLeft = qScopeGuard([this] { --m_iPooled; });   // last: whoever waits for it destroys the axis
        const QMutexLocker lock(&m_Mutex);
        const auto fnDone = qScopeGuard([this, uBuild] {
            quint32 uPending = uBuild;
            m_uPendingBuild.compare_exchange_strong(uPending, 0);
        });
        if (m_uBuilds == uBuild) (void)BuildTable(wanted, false);
    });
}

// Ahead of a move.
void AxisCtrl::FinishBuild()
{
    if (m_uPendingBuild != 0) CWait::SleepUntil([this] { return m_uPendingBuild == 0; }, 100);
}

bool AxisCtrl::BuildTable(const stBuilt& wanted, bool bStoreCurve)
{
    const QString strWhy = WhyNoRamp(wanted.settings, wanted.fVel, wanted.fAcc);
    const QString strAxis = AppConfig::m_strAxisNames[m_sAxis] + QLatin1Char(' ');
    if (!RefuseBuild(strWhy.isEmpty() ? strWhy : strAxis + strWhy)) return false;

    const size_t t = 1u - m_ucCurTable;
    m_fVel[t] = wanted.fVel;
    try {
        FillTable(wanted, t, bStoreCurve);
    } catch (const std::bad_alloc&) {
        m_Built[t] = {};
        return RefuseBuild(strAxis + QStringLiteral("ramp does not fit in memory"));
    }
    return m_bNewTable = true;   // behind the build: a move may look meanwhile
}

void AxisCtrl::FillTable(const stBuilt& wanted, size_t uSlot, bool bStoreCurve)
{
    if (!bStoreCurve && ReuseTable(wanted, uSlot)) return;
    m_Building.lstHigh.swap(m_lstHighTime[uSlot]);
    m_Building.lstLow.swap(m_lstLowTime[uSlot]);
    const auto fnPutBack = qScopeGuard([&] {
        m_Building.lstHigh.swap(m_lstHighTime[uSlot]);
        m_Building.lstLow.swap(m_lstLowTime[uSlot]);
    });
    BuildRamp(wanted.settings, wanted.fVel, wanted.fAcc, m_Building, bStoreCurve ? &m_lstVelCurve : nullptr);
    m_fConstHighTime[uSlot] = m_Building.fConstHigh;
    m_fConstLowTime[uSlot] = m_Building.fConstLow;
    m_Built[uSlot] = wanted;
}

// Where this slot or the other one is built for the very same: a long ramp takes its time, and a stop rebuilds them
// all.
bool AxisCtrl::ReuseTable(const stBuilt& wanted, size_t uSlot)
{
    if (m_Built[uSlot] == wanted) return true;
    const size_t uOther = 1 - uSlot;
    if (!(m_Built[uOther] == wanted)) return false;
    m_lstHighTime[uSlot] = m_lstHighTime[uOther];
    m_lstLowTime[uSlot] = m_lstLowTime[uOther];
    m_fConstHighTime[uSlot] = m_fConstHighTime[uOther];
    m_fConstLowTime[uSlot] = m_fConstLowTime[uOther];
    m_Built[uSlot] = wanted;
    return true;
}

void AxisCtrl::ReserveRamp(size_t uEntries)
{
    const QMutexLocker lock(&m_Mutex);
    try {
        for (size_t t = 0; t < 2; ++t)
            for (std::vector<double>* pTimes : {&m_lstHighTime[t], &m_lstLowTime[t]}) {
                if (pTimes->capacity() >= uEntries) continue;   // touched before
                const size_t uSize = pTimes->size();
                pTimes->resize(uEntries);   // written to: reserve alone would leave the pages to the build
                pTimes->resize(uSize);
            }
    } catch (const std::bad_alloc&) {
        // A build that needs it says so.
    }
}

AxisCtrl::stWay AxisCtrl::Way() const
{
    const qint64 lDist = static_cast<qint64>(m_lCurPos) - m_lTargetPos;
    const qint64 lStep = m_lPosPerPulse;
    if (static_cast<double>(std::abs(lDist)) < static_cast<double>(lStep) || lStep < 1) return {true, false, 0};
    return {false, lDist < 1,
            static_cast<quint32>(std::ceil(static_cast<double>(std::abs(lDist)) / static_cast<double>(lStep)))};
}

bool AxisCtrl::MoveAxis()
{
    SettleWatch();
    FinishBuild();
    if (const QString strWhy = GetBuildError(); !strWhy.isEmpty()) return Refuse(strWhy);
    const stWay way = Way();
    if (way.bNone) return true;
    // A thread that was stopped, or has lowered its flag, may still be on its way: it would take the new counts for
    // its own, and a start would do nothing.
    WaitForThread();
    const eDirection ePosDir = AppConfig::m_eAxisPosDir[m_sAxis];
    SetDirection(way.bPositive ? ePosDir : Opposite(ePosDir));
    UseNewTable();
    SplitMove(way.uPulses);
    if (AppConfig::m_bEmergencyStopON) return true;

    m_bDecelerate = false;   // before the axis counts as moving: a release that comes before its thread runs counts
    m_bMoving.Exchange(true);
    if (AppConfig::m_bEmergencyStopON.Ordered()) {   // raised in between: either it is seen here, or Stop sees the flag
        m_bMoving = false;
        return true;
    }
    StartThread();
    return true;
}

void AxisCtrl::StartThread()
{
    if (CMotionObserver* pObserver = CMotionObserver::Get()) pObserver->OnAxisMove(m_sAxis);   // before the first pulse
    if (CVirtualTime* pTime = CVirtualTime::Current()) {
        m_bThreadIdle = false;
        m_bStartPending = true;
        pTime->SetRun(1 + m_sAxis, this);
    } else {
        start();
    }
}

void AxisCtrl::CreateMotionCurve()
{
    FinishBuild();
    const stWay way = Way();
    if (way.bNone) {
        m_uAccPulses = m_uConstPulses = m_uDecPulses = 0;
        m_lTargetPos = static_cast<qint32>(m_lCurPos);
        return;
    }
    const eDirection ePosDir = AppConfig::m_eAxisPosDir[m_sAxis];
    const eDirection eDir = way.bPositive ? ePosDir : Opposite(ePosDir);
    if (eDir != m_eDir) SetDirection(eDir);
    UseNewTable();
    SplitMove(way.uPulses);
}

void AxisCtrl::PutDirection()
{
    if (!AppConfig::m_bSimulationMode)
        CRpiGpio::WriteOutput(Pin(AppConfig::m_iAxisDirOutput[m_sAxis]), static_cast<quint8>(m_eDir));
    CWait::SpinBeyond(DIRECTION_SETTLING_NS);   // in simulation too: it takes as long as a real run
}

void AxisCtrl::SetDirection(eDirection eDir)
{
    m_eDir = eDir;
    PutDirection();
}

void AxisCtrl::UseNewTable()
{
    if (!m_bNewTable) return;
    m_ucCurTable = static_cast<quint8>(1 - m_ucCurTable);
    m_bNewTable = false;
}

// A move too short for both ramps gets one or two pulses more up than down: wanted, not a slip.
void AxisCtrl::SplitMove(quint32 uPulses)
{
    const size_t uRamp = m_lstHighTime[m_ucCurTable].size();
    if (uPulses < 2 * uRamp) {
        const quint32 uAcc = uPulses / 2 + 1;
        m_uAccPulses = uAcc;
        m_uConstPulses = 0;
        m_uDecPulses = uPulses - uAcc;
    } else {
        m_uAccPulses = static_cast<quint32>(uRamp);
        m_uDecPulses = static_cast<quint32>(uRamp);
        m_uConstPulses = uPulses - static_cast<quint32>(2 * uRamp);
    }
}

qint32 AxisCtrl::SignedStep() const
{
    const qint32 lStep = m_lPosPerPulse;
    return m_eDir == AppConfig::m_eAxisPosDir[m_sAxis] ? lStep : -lStep;
}

stAxisTrack AxisCtrl::Track(bool bSelected)
{
    stAxisTrack track;
    track.bDone = !bSelected;
    if (!bSelected) return track;
    const quint8 ucTable = m_ucCurTable;
    track.uPulsePin = Pin(AppConfig::m_iAxisPulseOutput[m_sAxis]);
    track.uRampDown = static_cast<quint64>(m_uAccPulses) + m_uConstPulses;
    track.uTotal = track.uRampDown + m_uDecPulses;
    track.lDecel = static_cast<qint64>(m_uDecPulses) - 1;
    track.pHigh = m_lstHighTime[ucTable].data();
    track.pLow = m_lstLowTime[ucTable].data();
    track.fConstHigh = m_fConstHighTime[ucTable];
    track.fConstLow = m_fConstLowTime[ucTable];
    track.lDelta = SignedStep();
    track.pAcc = &m_uAccPulses;
    track.pCurPos = &m_lCurPos;
    return track;
}

stAxisRun AxisCtrl::MakeRun()
{
    const quint8 ucTable = m_ucCurTable;
    return {.uPulsePin = Pin(AppConfig::m_iAxisPulseOutput[m_sAxis]),
            .uHomePin = Pin(AppConfig::m_iAxisMchHomeSensorInput[m_sAxis]),
            .uProbePin = Pin(AppConfig::m_iZProbeInput),
            .bSensors = AppConfig::m_bHomeSensorsUsed,
            .bProbeAxis = m_sAxis == Z_AXIS,
            .high = m_lstHighTime[ucTable],
            .low = m_lstLowTime[ucTable],
            .fConstHigh = m_fConstHighTime[ucTable],
            .fConstLow = m_fConstLowTime[ucTable],
            .uAcc = m_uAccPulses,
            .uConst = m_uConstPulses,
            .uDec = m_uDecPulses,
            .lDelta = SignedStep(),
            .lCurPos = m_lCurPos,
            .bDecelerate = m_bDecelerate,
            .bHoming = m_bHoming,
            .bWatchZProbe = m_bWatchZProbe,
            .bSimulation = AppConfig::m_bSimulationMode};
}

void AxisCtrl::run()
{
    try {
        m_bThreadIdle = false;
        stAxisRun move = MakeRun();
        CSpinClock clock(m_Timer);
        CRpiGpio pins;
        RunAxis(move, m_bMoving, clock, pins);
        Finish();
    } catch (...) {   // the flags keep their values: not expected on the machine
        Refuse(QStringLiteral("Axis ctrl run function throw the error"));
    }
}

// The dry run's form of run: the loop stops on a flag of its own, since m_bMoving must stand until the end time.
qint64 AxisCtrl::Run(qint64 lStart)
{
    m_bStartPending = false;
    CShared<bool> bMoving = m_bMoving;
    stAxisRun move = MakeRun();
    CDryAxisClock clock(*CVirtualTime::Current(), 1 + m_sAxis, lStart, bMoving);
    CRpiGpio pins;
    RunAxis(move, bMoving, clock, pins);
    return clock.AbsoluteNow();
}

void AxisCtrl::Finish()
{
    if (CMotionObserver* pObserver = CMotionObserver::Get()) pObserver->OnMoveEnd(m_sAxis);
    m_bDecelerate = false;
    m_bMoving.Exchange(false);
    m_bThreadIdle = true;
}

void AxisCtrl::BeginWatch(CShared<bool>& bWatch)
{
    m_bEndWatch = false;   // of a watch before, whose axis has stood since
    bWatch = true;
}

void AxisCtrl::EndWatch()
{
    m_bEndWatch = true;
    SettleWatch();
}

void AxisCtrl::SettleWatch()
{
    if (!m_bEndWatch || m_bMoving) return;
    m_bHoming = false;
    m_bWatchZProbe = false;
    m_bEndWatch = false;
}
