#pragma once
#include "config/AppConfig.h"
#include "motion/MachineAxes.h"

#include <QString>

// What follows from a changed setting of a motor, a travel limit, a feed or the board: the settings screens store
// through these, so that feeds keep their room and the axes always run by what is stored. Interface thread, while the
// machine is free. Ranges are the keypad's. A text that comes back is for the operator's log; empty: nothing to tell.
class CMotorSettings
{
public:
    explicit CMotorSettings(CMachineAxes& machine) : m_Machine(machine) {}

    // Highest values that a screen may offer, mm/s. A user or jog feed leaves room for the override of 150 percent.
    static double HighestMaxFeed(eAxis axis);
    static double HighestUserFeed(eAxis axis);

    // ---- Motor values; mm, s ----
    QString SetMaxFeed(eAxis axis, double fFeed);
    QString SetAcc(eAxis axis, double fAcc);
    // The tables keep the old duty until the axis is next rebuilt.
    void SetDutyCycle(eAxis axis, double fDuty);
    QString SetRateOfAcc(eAxis axis, double fRate);
    // A working feed above what the pulse rate allows with this step is cut.
    QString SetMovPerPulse(eAxis axis, double fStep);
    bool IsFeedCut() const { return m_bFeedCut; }
    QString SetSamplingTime(double fSeconds);
    QString ToggleCurveType();
    // Gives the motor values of one axis to the others of its group: X, Y, Z or A, B.
    QString CopyToGroup(eAxis axis);
    // The axis's ramp is built at its highest feed and recorded in m_lstVelCurve (empty: refused), then at its working
    // feed, with which it is left.
    QString Rebuild(eAxis axis);

    // Ramps to the highest feed find their memory touched: a page that is fetched for the first time holds the first
    // moves of a job up.
    void ReserveRamps();

    // ---- Feeds of the operator; mm/s ----
    QString SetUserFeed(eAxis axis, double fFeed);
    void SetJogFeed(eAxis axis, double fFeed);
    // The jog feeds become the working feeds, now and with every change of the override.
    void UseG01FeedForJog(bool bUse);

    // ---- The operator's overrides, percent of the user feeds ----
    // bRebuild: no job runs, and the axes take their new speeds at once; while one runs its planning reads the factor
    // itself. The caller lets one override in at a time.
    void SetFeedOverride(short iPercentage, bool bRebuild);
    void SetRapidOverride(short iPercentage, bool bRebuild);

    // ---- Limits, directions, sensors, board ----
    // Refused: a positive limit not above the negative one, and the other way round.
    QString SetPosLimit(eAxis axis, double fLimit);
    QString SetNegLimit(eAxis axis, double fLimit);
    // A position that was counted by the old direction, step or board, or without sensors, is that of no home: these,
    // and SetMovPerPulse and CopyToGroup above, clear the homes that they spoil and tell the operator.
    void SetPosDir(eAxis axis, eDirection eDir);
    void SetHomeDir(eAxis axis, eDirection eDir);
    // Limits count with home sensors only.
    QString UseHomeSensors(bool bUse);
    // The number of axes changes at once. Pins are those of the start: A and B make no move unless the machine was
    // started with them.
    void SelectBoard(int iBoard);

private:
    QString ConfigAxes();
    void SpoilHomes(int iFirst, int iLast);
    QString RebuildAll();
    QString Config(eAxis axis);
    void Run(eAxis axis);   // at its working feed
    AxisCtrl& Axis(eAxis axis) { return m_Machine.m_AxisCtrl[axis]; }

    CMachineAxes& m_Machine;
    bool m_bFeedCut = false;
};
