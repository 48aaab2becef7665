#include "common/Paths.h"
#include "machine/WorkerFixture.h"
#include "platform/Computer.h"

#include <QDate>
#include <QDir>
#include <QRegularExpression>

#include <cmath>

namespace {
// The worker's frame around every operation, on virtual time and on the test's own thread.

class Worker : public CWorkerTest
{
protected:
    Worker() { SetStartDetached(CountStart); }
    static bool CountStart(const QString& strProgram)
    {
        m_lstStarted += strProgram;
        return true;
    }
    static inline QStringList m_lstStarted;
    void SetUp() override { m_lstStarted.clear(); }
};

TEST_F(Worker, MessagesAreTakenNewestFirst)
{
    for (const char* sz : {"one", "two", "three"}) {
        m_App.PushErrMsg(QLatin1String(sz));
        m_App.PushInfoMsg(QLatin1String(sz));
    }
    for (const char* sz : {"three", "two", "one", ""}) {
        EXPECT_EQ(m_App.GetErrMsg(), QLatin1String(sz));
        EXPECT_EQ(m_App.GetInfoMsg(), QLatin1String(sz));
    }
}

TEST_F(Worker, TheLogIsAppendedWithoutLineEndsAndDoesNotMakeItsFolder)
{
    const QString strFolder = CPaths::HomeFolder() + "/vantor_log";
    AppControl::WriteLog("lost");
    EXPECT_FALSE(QDir(strFolder).exists());

    QDir().mkpath(strFolder);
    AppControl::WriteLog("first");
    AppControl::WriteLog(QStringLiteral("µ"));
    const QStringList lstFiles = QDir(strFolder).entryList(QDir::Files);
    ASSERT_EQ(lstFiles.size(), 1);
    EXPECT_TRUE(QRegularExpression("^\\w{3} \\w{3} \\d{1,2} \\d{4}\\.txt$").match(lstFiles[0]).hasMatch())
        << lstFiles[0].toStdString();
    QFile file(strFolder + '/' + lstFiles[0]);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString strText = file.readAll();
    EXPECT_TRUE(
        QRegularExpression("^\\[\\d\\d:\\d\\d:\\d\\d\\]first\\[\\d\\d:\\d\\d:\\d\\d\\]µ$").match(strText).hasMatch())
        << strText.toStdString();
}

TEST_F(Worker, InitTellsWhyAnAxisCannotMove)
{
    AppConfig::m_fAxisAcc[Y_AXIS] = 0.0;
    m_App.m_AxisCtrl[X_AXIS].SetCurPos(7.0);
    m_App.InitMachine();
    EXPECT_EQ(m_App.TakeErrors(), QStringList("Y-Axis acceleration must be greater than zero"));
    EXPECT_EQ(m_App.m_AxisCtrl[Z_AXIS].m_sAxis, Z_AXIS);
    EXPECT_EQ(m_App.GetCurPos(X_AXIS), 0.0);
    EXPECT_EQ(m_App.m_AxisCtrl[Z_AXIS].m_lNegLimit, -AxisCtrl::NO_LIMIT);
}

// ---- Waiting for single axes ----------------------------------------------------------------------------------------

TEST_F(Worker, FiveMinutesAreAnAlarmThatLeavesTheAxesRunning)
{
    Build();
    for (const eAxis axis : {X_AXIS, Y_AXIS}) m_App.m_AxisCtrl[axis].SetVelocityAcc(0.1, 600.0);
    ASSERT_TRUE(m_App.MoveAbs(X_AXIS, 40.0) && m_App.MoveAbs(Y_AXIS, 40.0) && m_App.MoveAbs(Z_AXIS, 1.0));
    const qint64 lFrom = m_Time.Now();
    const signed char unused[MAX_AXES] = {0, 0, 0, 1, 1}, selection[MAX_AXES] = {1, 0, 1, 0, 0};
    EXPECT_TRUE(m_App.WaitForMotionFinish(unused));   // A and B of a machine of three axes: no wait at all
    EXPECT_EQ(m_Time.Now(), lFrom);
    EXPECT_FALSE(m_App.WaitForMotionFinish(selection));
    EXPECT_EQ(m_Time.Now() - lFrom, 300'000'000'000);
    EXPECT_EQ(m_App.TakeErrors(), QStringList("Error:X-Axis Motion Timeout"));
    EXPECT_FALSE(m_App.IsMachineIdle());
    EXPECT_TRUE(m_App.WaitForMotionFinish(selection));   // and it arrives
    EXPECT_EQ(m_App.GetCurPos(X_AXIS), 40.0);
}

TEST_F(Worker, AnEmergencyStopEndsAWaitWithoutAMessage)
{
    Build();
    EmergencyStopAt(0.5);
    EXPECT_FALSE(m_App.EngMoveAxisAbs(X_AXIS, 100.0, true));
    EXPECT_EQ(m_App.TakeErrors(), QStringList());
    EXPECT_TRUE(m_App.IsMachineIdle());
    EXPECT_LT(m_App.GetCurPos(X_AXIS), 7.5);
    EXPECT_NEAR(m_pMachine->CarriageMm(X_AXIS), m_App.GetCurPos(X_AXIS), 0.0005);
    EXPECT_FALSE(m_App.EngMoveAxisAbs(X_AXIS, 0.0, true));   // and nothing starts behind it
}

// A job that is given up between two of its moves: the axis that starts behind StopAll stands again at once.
TEST_F(Worker, AMoveThatStartsBehindStopAllIsStopped)
{
    Build();
    m_App.StopAll();
    ASSERT_TRUE(m_App.MoveAbs(X_AXIS, 10.0));   // the axes themselves know nothing of it: they still jog
    EXPECT_FALSE(m_App.IsMachineIdle());
    const signed char selection[MAX_AXES] = {1, 0, 0, 0, 0};
    EXPECT_FALSE(m_App.WaitForMotionFinish(selection));
    EXPECT_TRUE(m_App.IsMachineIdle());
}

// ---- The end of an operation ----------------------------------------------------------------------------------------

struct stEnd
{
    eOperation eCode;
    bool bSensors;
    double fSafe, fWorkZero;
    const char* szMove;   // of Z, empty: none
};
class WorkerEnd : public Worker, public testing::WithParamInterface<stEnd>
{
};

TEST_P(WorkerEnd, RaisesZBehindShapesCarvingAndProbingOnly)
{
    const stEnd& end = GetParam();
    AppConfig::m_bHomeSensorsUsed = end.bSensors;
    AppConfig::m_fZSafePos = end.fSafe;
    AppConfig::m_fAxisWorkZero[Z_AXIS] = end.fWorkZero;
    Build();
    m_App.SetMchHome();
    CAllAxisCtrl::StartAutoMode(&m_App);
    m_App.m_bExecSingleLine = true;
    CVirtualPins::SetInput(AppConfig::m_iPgmStatusOutput, 1);
    m_App.AfterOperationFinish(end.eCode);

    EXPECT_EQ(m_App.m_lstMoves, QStringList(end.szMove).filter(QRegularExpression(".")));
    EXPECT_FALSE(CAllAxisCtrl::m_bAutoModeRunning);
    EXPECT_EQ(StatusLevel(), 0);
    EXPECT_FALSE(m_App.m_bExecSingleLine);
    EXPECT_TRUE(m_App.m_bOperationFinished);
    EXPECT_TRUE(m_lstStarted.isEmpty());
}
INSTANTIATE_TEST_SUITE_P(Codes, WorkerEnd,
                         testing::Values(stEnd{OP_WORK_HOME, false, 5.0, 0.0, ""}, stEnd{OP_MCH_HOME, false, 5, 0, ""},
                                         stEnd{OP_GCODE, false, 5.0, 0.0, ""}, stEnd{OP_Z_PROBE, false, 5.0, 0.0, ""},
                                         stEnd{OP_SHAPES, false, 5.0, 0.0, "Z 5"},
                                         stEnd{OP_IMG_CARVING, false, -5.0, -9.0, "Z 5"},
                                         stEnd{OP_Z_PROFILE, false, 0.0, 0.0, "Z -0"},   // zero is negated here
                                         stEnd{OP_Z_PROFILE, true, -2.0, -12.5, "Z 10.5"}));

TEST_F(Worker, RunRaisesTheStatusOutputUnlessSimulatingAndShutsTheComputerDown)
{
    Build();
    AppConfig::m_bShutdownRPI = true;
    for (const bool bSimulation : {false, true}) {
        AppConfig::m_bSimulationMode = bSimulation;
        m_App.m_fnWorkZero = [=] {
            EXPECT_EQ(StatusLevel(), bSimulation ? 0 : 1);
            CVirtualPins::SetInput(AppConfig::m_iPgmStatusOutput, 1);
            return true;
        };
        m_App.RunAs(OP_WORK_HOME);
        EXPECT_EQ(StatusLevel(), bSimulation ? 1 : 0);
        EXPECT_EQ(std::exchange(m_lstStarted, {}), QStringList("sudo shutdown now"));
        EXPECT_EQ(m_App.m_eOperation, OP_WORK_HOME);   // until the interface has taken note
    }
}

// Operation, and whether it puts the axes back to their working feeds and goes to work zero first.
struct stFrame
{
    eOperation eCode;
    bool bSingleLine, bResets;
    int iWorkZeroMoves;
};
class WorkerFrame : public Worker, public testing::WithParamInterface<stFrame>
{
};
TEST_P(WorkerFrame, GoesByTheOperation)
{
    Build();
    const GCodeProgram program(1);
    m_App.m_pGCodeProgram = &program;
    m_App.m_bExecSingleLine = GetParam().bSingleLine;
    m_App.m_AxisCtrl[X_AXIS].SetVelocityAcc(3.0, 600.0);
    m_App.m_fnWorkZero = [&] {
        EXPECT_EQ(NextFeed(X_AXIS), GetParam().bResets ? 15.0 : 3.0);
        return true;
    };
    m_App.RunAs(GetParam().eCode);
    EXPECT_EQ(m_App.m_iWorkZeroMoves, GetParam().iWorkZeroMoves);
    EXPECT_EQ(CAllAxisCtrl::m_pAppCtrl != nullptr, GetParam().eCode == OP_GCODE);
    EXPECT_FALSE(CAllAxisCtrl::m_bAutoModeRunning);
    EXPECT_TRUE(m_App.m_bOperationFinished);
}
INSTANTIATE_TEST_SUITE_P(Codes, WorkerFrame,
                         testing::Values(stFrame{OP_WORK_HOME, false, true, 1}, stFrame{OP_GCODE, false, true, 1},
                                         stFrame{OP_GCODE, true, true, 0}, stFrame{OP_Z_PROFILE, false, false, 1},
                                         stFrame{OP_MCH_HOME, false, false, 0}));

// ---- Stops ----------------------------------------------------------------------------------------------------------

struct stStop
{
    bool bEmergency, bReleased;
};
class WorkerStop : public Worker, public testing::WithParamInterface<stStop>
{
};
// The interface has finished the operation itself. A stop that is released before the worker has seen it counts too.
TEST_P(WorkerStop, EndsTheOperationWithoutMoveShutDownOrFinish)
{
    Build();
    AppConfig::m_bShutdownRPI = true;
    m_App.m_bExecSingleLine = true;
    m_App.m_bPause = true;
    const auto Stop = [&] {
        if (GetParam().bEmergency) AppConfig::m_bEmergencyStopON = true;
        m_App.StopAll();
        m_App.m_eOperation = OP_NONE;
        if (GetParam().bReleased) AppConfig::m_bEmergencyStopON = false;
        return true;
    };
    m_App.m_fnWorkZero = Stop;
    m_App.m_bExecSingleLine = false;
    m_App.RunAs(OP_GCODE);   // goes on to start the auto mode, behind the StopAll
    EXPECT_FALSE(CAllAxisCtrl::m_bAutoMode);
    m_App.m_bExecSingleLine = true;
    m_App.RunAs(OP_Z_PROFILE);
    EXPECT_FALSE(CAllAxisCtrl::m_bAutoMode);
    EXPECT_FALSE(m_App.m_bPause);
    EXPECT_FALSE(m_App.m_bExecSingleLine);   // or the Start button stays dead
    EXPECT_FALSE(m_App.m_bOperationFinished);
    EXPECT_EQ(StatusLevel(), 0);
    EXPECT_EQ(m_App.m_lstMoves.filter(QStringLiteral("Z 5")), QStringList());
    EXPECT_TRUE(m_lstStarted.isEmpty());
    EXPECT_EQ(m_App.TakeErrors(), QStringList());
}
INSTANTIATE_TEST_SUITE_P(Kinds, WorkerStop,
                         testing::Values(stStop{true, false}, stStop{true, true}, stStop{false, false}));

TEST_F(Worker, AStopDuringTheLastLiftStillCounts)
{
    Build();
    AppConfig::m_bShutdownRPI = true;
    EmergencyStopAt(0.1);
    m_App.AfterOperationFinish(OP_SHAPES);
    EXPECT_GT(Z(), 0.0);
    EXPECT_FALSE(m_App.m_bOperationFinished);
    EXPECT_TRUE(m_lstStarted.isEmpty());
}

// ---- Starts ---------------------------------------------------------------------------------------------------------

TEST_F(Worker, AJobWithAnAxisMovingIsRefusedAndTheCodeStays)
{
    Build();
    const GCodeProgram program;
    m_App.m_eOperation = OP_SHAPES;
    ASSERT_TRUE(m_App.MoveAbs(Y_AXIS, 1.0));
    m_App.StartGCode(&program);
    m_App.StartExecGCodeLine(&program, 3);
    m_App.RunZProfile();
    EXPECT_EQ(m_App.TakeErrors(), QStringList({"Axis in use", "Axis in use", "Axis in use"}));
    EXPECT_EQ(m_App.m_eOperation, OP_SHAPES);
    EXPECT_FALSE(m_App.m_bExecSingleLine);
    EXPECT_EQ(m_App.m_pGCodeProgram, nullptr);
    EXPECT_EQ(m_Screen.m_lstCalls, QStringList());
}

struct stSpindle
{
    bool bSingleLine, bSimulation, bCw, bCcw;
    int iCwLevel, iCcwLevel;
};
class WorkerSpindle : public Worker, public testing::WithParamInterface<stSpindle>
{
};
TEST_P(WorkerSpindle, StartsWithTheJob)
{
    const stSpindle& job = GetParam();
    Build();
    AppConfig::m_bSimulationMode = job.bSimulation;
    AppConfig::m_bAutoSpindleOnCW = job.bCw;
    AppConfig::m_bAutoSpindleOnCCW = job.bCcw;
    const GCodeProgram program(3);
    m_App.m_bExecSingleLine = true;   // left behind by a line that was given up
    m_App.m_fnWorkZero = [] { return false; };
    if (job.bSingleLine)
        m_App.StartExecGCodeLine(&program, 2);
    else
        m_App.StartGCode(&program);
    m_App.wait();
    EXPECT_EQ(CVirtualPins::Level(AppConfig::m_lstMCodesPin[3]), job.iCwLevel);
    EXPECT_EQ(CVirtualPins::Level(AppConfig::m_lstMCodesPin[4]), job.iCcwLevel);
    EXPECT_EQ(AppConfig::m_bSpindleOn, job.iCwLevel + job.iCcwLevel > 0);
    EXPECT_EQ(m_App.m_eOperation, OP_GCODE);
    EXPECT_EQ(m_App.m_iWorkZeroMoves, job.bSingleLine ? 0 : 1);
    EXPECT_EQ(CAllAxisCtrl::m_pAppCtrl != nullptr, job.bSingleLine);   // not behind a way to work zero that failed
    EXPECT_EQ(m_Screen.m_lstCalls, QStringList({"busy", "clear"}));
    EXPECT_TRUE(m_App.m_bOperationFinished);
}
INSTANTIATE_TEST_SUITE_P(Jobs, WorkerSpindle,
                         testing::Values(stSpindle{false, false, true, true, 1, 0},
                                         stSpindle{false, false, false, true, 0, 1},
                                         stSpindle{false, false, false, false, 0, 0},
                                         stSpindle{false, true, true, false, 0, 0},
                                         stSpindle{true, true, false, true, 0, 1}));   // in simulation too
}   // namespace
