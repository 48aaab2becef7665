#pragma once
#include "common/Operation.h"

#include <QElapsedTimer>
#include <QString>

class AppControl;

// What the end of an operation has come to, for whoever shows it.
struct stOperationEnd
{
    qint32 iOperation = OP_NONE;   // OP_NONE: none was running
    QString strMsg;                // empty: not what it was for, or the emergency stop is on
    bool bSpindleOff = false;      // the spindle was switched off with it
};

struct stMessages
{
    QString strError, strInfo;   // empty: none
    bool IsEmpty() const { return strError.isEmpty() && strInfo.isEmpty(); }
};

enum eStopInput
{
    STOP_INPUT_SAME,
    STOP_INPUT_RISEN,   // the caller stops the machine
    STOP_INPUT_FALLEN   // the emergency stop has been lifted
};

enum eStartInput
{
    START_INPUT_SAME,
    START_INPUT_RISEN,
    START_INPUT_REFUSED   // while the machine is in use
};

// The operator's side of the machine, without a screen: what a tick carries from the worker to the operator, the two
// inputs, and the ways in which an operation ends. Whoever watches the machine calls the steps and shows what they
// give; the window does so in the order in which they stand here.
// The thread that starts operations; in a dry run the worker's, whenever it sleeps.
class CSupervision
{
public:
    // bInterface: it is called where an operator's touches wait, so that what takes long goes to the pool.
    explicit CSupervision(AppControl& machine, bool bInterface = true) : m_Machine(machine), m_bInterface(bInterface) {}

    // ---- The steps of a tick ----
    // To its pin, where it has changed.
    void SendSpindleFrequency();
    // One of each kind, the newest.
    stMessages NextMessages();
    // True: the program asks that Start be shown as pressed.
    bool TakeStartRequest();
    // True: the program waits for a tool. The spindle counts as off; Pause holds the worker. A request that a stop has
    // overtaken is dropped.
    bool BeginToolChange();
    // True: the worker has come to the end of its operation, which is still to be ended here.
    bool TakeOperationEnd();
    // At its head: a line for the log where it comes much later than it is due, lPeriodMs behind the last one; empty
    // where there is nothing to tell. An input is acted on no sooner than its tick comes.
    QString MeasureLateness(qint64 lPeriodMs);
    // Changes of the inputs, not their levels; in simulation, and where none is wired, nothing is read.
    eStopInput ReadStopInput();
    // Wanted: it shows the program and lights Start, and no more. A program is started by a press of the button.
    eStartInput ReadStartInput();

    // The worker holds before its next command. True: a tool change has asked for it, and the worker has said so.
    bool Pause();

    // ---- The end of an operation ----
    // Of one that is over, and of one that was given up.
    stOperationEnd EndOperation();
    // Everything stands at once; the operation is given up.
    stOperationEnd Abandon();
    // The flag, which every loop reads, the status output, the axes, the operation, and the output again, which a
    // worker may have raised meanwhile: in this order. In simulation the output stays as it is.
    stOperationEnd EmergencyStop();
    // The same, and nothing releases it: behind an error of which nothing is known the machine is not to be run.
    stOperationEnd StopForGood();
    // Empty: released. Else the stop stays in force, and why.
    QString ReleaseEmergencyStop();

    // ---- Why something may not start, in the operator's words; empty: it may ----
    static QString WhyNotReleased();   // the emergency stop is on
    QString WhyNotFree() const;        // an operation runs or an axis moves
    QString WhyNotHomed() const;       // homing is asked for
    QString WhyNotAllHomed() const;    // the same of every axis in use
    static QString WhyNotInSimulation();

private:
    QString EndMessage(qint32 iOperation) const;

    AppControl& m_Machine;
    const bool m_bInterface;
    quint16 m_iLastPwmFreq = 0;                                // last given to the pin
    quint16 m_iPrevEStopInput = 0, m_iPrevPgmStartInput = 0;   // last seen levels
    bool m_bStoppedForGood = false;
    QElapsedTimer m_SinceTick, m_SinceLateTold;
};

// What is told when an operation begins; empty for none.
QString StartMessage(qint32 iOperation);
