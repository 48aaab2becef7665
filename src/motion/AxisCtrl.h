#pragma once
#include "common/MachineTypes.h"
#include "common/Shared.h"
#include "motion/PulseLoops.h"
#include "motion/RampTable.h"
#include "time/VirtualTime.h"

#include <QElapsedTimer>
#include <QMutex>
#include <QThread>

#include <atomic>
#include <limits>
#include <vector>

// One axis: its position, its two sets of ramp tables, its soft limits, and a thread that makes its step pulses in
// every move that is not coordinated. In coordinated motion the object only keeps tables, counts and position.
// Called from the interface and the worker thread, never from its own. mm and mm/s outside, position units
// (1/10000 mm, CUnitConverter) inside. A refusal is false, its text in GetErrorMsg.
class AxisCtrl : public QThread, private CVirtualRun
{
public:
    AxisCtrl();
    ~AxisCtrl() override;

    // Takes step size, limits and feed from AppConfig. False: the ramp was refused, and the axis is marked.
    bool ConfigAxis();
    bool UpdateStepResolution();
    bool UpdateDutyCycle();

    // Builds the ramp tables of the inactive slot for fVel (mm/s) at fAcc (mm/s^2); the next move uses them. Any
    // thread, also while the axis moves. A refusal (WhyNoRamp) changes nothing but the mark below.
    bool SetVelocityAcc(double fVel, double fAcc);
    // The same on a pooled thread, for a caller that must not wait for up to 90 ms; the next move does. A later build,
    // of either kind, takes its place. Why it was refused is in GetBuildError.
    void SetVelocityAccSoon(double fVel, double fAcc);
    // Empty, or why the last build was refused; a marked axis makes no move. One that was never built is marked, and
    // so is one that needs a restart.
    QString GetBuildError() const;
    // Touches the memory of tables with so many entries, so that the first build of such a one finds it there. While
    // the axis stands.
    void ReserveRamp(size_t uEntries);

    // The position becomes minus the work-zero offset: the axis is at its home.
    void SetMchHome();
    // The position becomes 0 and the limits follow.
    void SetWorkZero();
    bool MoveWorkZero();
    bool MoveAxisHome();         // ends at the sensor
    bool Jog(eDirection eDir);   // to the soft limit, or until DeccelerateAxis
    bool CheckValidMotion(qint64 lTarget);
    bool MoveAbs(double fPos);
    bool MoveRel(double fDelta);
    // Checks and prepares a move of the coordinated mode; starts nothing.
    bool SetAxisMovParams(double fPos);
    void SetCurPos(double fPos);
    double GetCurPos() const;
    qint32 GetCurPosLong() const { return m_lCurPos; }
    QString GetErrorMsg() const;
    bool IsAxisHomeSet() const { return m_bHomeDone; }
    void ClearHome() { m_bHomeDone = false; }
    bool GetAxisState() const { return m_bMoving; }
    void DeccelerateAxis();
    // Ends the move at once, without a ramp, and waits until the thread is idle.
    void Stop();
    // The same without the wait: where several axes are to stop, all are told first.
    void RequestStop() { m_bMoving.Exchange(false); }
    // Raises m_bHoming or m_bWatchZProbe for the moves to come, whatever was to end with the last one. Worker.
    void BeginWatch(CShared<bool>& bWatch);
    // Sensor and probe are no longer watched, on an axis that still moves from its standstill on: with the watch gone
    // it would run through.
    void EndWatch();
    // Drops a watch that was to end with a move which has ended since. By whoever commands the next one, never by the
    // axis's own thread: that may come to it late, when the watch is the next homing's.
    void SettleWatch();
    // Puts m_eDir on the pin and lets it settle: what was commanded in simulation, or before the pins were set up, has
    // not got there.
    void PutDirection();

    static constexpr qint32 NO_LIMIT = 100'000'000;   // 10 m: moves that run until something ends them

    CShared<bool> m_bHoming = false;   // the loop watches the home sensor, limits are not checked
    qint16 m_sAxis = 0;
    bool m_bStoreVelCurve = false;                           // record the ramp for the settings graph
    std::vector<double> m_lstHighTime[2], m_lstLowTime[2];   // ns, one entry a pulse of the ramp
    double m_fConstHighTime[2] = {100.0, 100.0}, m_fConstLowTime[2] = {100.0, 100.0};   // ns
    std::vector<double> m_lstVelCurve;                                                  // pulses/s
    CShared<qint32> m_lPosLimit = 0, m_lNegLimit = 0;
    CShared<quint8> m_ucCurTable = 0;                                          // the slot that moves use
    CShared<quint32> m_uAccPulses = 0, m_uConstPulses = 0, m_uDecPulses = 0;   // of the coming or running move
    CShared<bool> m_bDecelerate = false;
    QElapsedTimer m_Timer;
    CShared<qint32> m_lCurPos = 0, m_lTargetPos = 0;
    CShared<qint32> m_lPosPerPulse = 0;   // truncated once, at ConfigAxis
    CShared<bool> m_bMoving = false;      // also the stop flag of the loop
    CShared<bool> m_bHomeDone = false;
    CShared<bool> m_bThreadIdle = true;
    CShared<eDirection> m_eDir = DIR_CW;      // last put on the pin
    CShared<double> m_fVel[2] = {3.0, 3.0};   // mm/s for which each slot was built
    CShared<bool> m_bNewTable = false;        // a rebuilt set waits in the inactive slot
    QMutex m_Mutex;                           // around the building of a set
    CShared<bool> m_bWatchZProbe = false;
    CShared<bool> m_bEndWatch = false;       // the watch ends with the move
    CShared<bool> m_bNeedsRestart = false;   // the board was changed: this axis has no pins of its own yet, or no more

    // The pulse of the active slot in one coordinated move.
    stAxisTrack Track(bool bSelected);

protected:
    void run() override;

private:
    // The move that lies between the position and the target, by its counts.
    struct stWay
    {
        bool bNone;   // shorter than one step
        bool bPositive;
        quint32 uPulses;
    };
    stWay Way() const;
    qint32 SignedStep() const;
    bool MoveTo(qint64 lTarget);
    bool MoveAxis();
    void CreateMotionCurve();
    void SetDirection(eDirection eDir);
    void UseNewTable();
    void SplitMove(quint32 uPulses);
    void WaitForThread();
    void StartThread();
    bool Refuse(const QString& strWhy);
    bool RefuseBuild(const QString& strWhy);
    stAxisRun MakeRun();
    // What a slot was built for; not a number: for nothing.
    struct stBuilt
    {
        stRampSettings settings;
        double fVel = std::numeric_limits<double>::quiet_NaN(), fAcc = 0.0;
        bool operator==(const stBuilt&) const = default;
    };
    bool BuildTable(const stBuilt& wanted, bool bStoreCurve);
    void FillTable(const stBuilt& wanted, size_t uSlot, bool bStoreCurve);
    bool ReuseTable(const stBuilt& wanted, size_t uSlot);
    void FinishBuild();

    stRampTable m_Building;                     // gets the memory of a slot while that is built
    stBuilt m_Built[2];                         // under m_Mutex, like all of the building
    std::atomic<quint32> m_uBuilds = 0;         // asked for so far
    std::atomic<quint32> m_uPendingBuild = 0;   // the last of them, where it is a pooled one and not done
    std::atomic<int> m_iPooled = 0;             // tasks that know this axis

    bool IsDue() const override { return m_bStartPending; }
    qint64 Run(qint64 lStart) override;
    void Finish() override;
    bool m_bStartPending = false;   // dry run

    mutable QMutex m_TextMutex;   // around the two texts, which cross threads
    QString m_strErrMsg, m_strBuildErr;
};
