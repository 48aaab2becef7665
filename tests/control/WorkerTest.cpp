#include "common/Paths.h"
#include "machine/WorkerFixture.h"
#include "platform/Computer.h"
#include "support/Files.h"

#include <QDir>
#include <QRegularExpression>

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
    EXPECT_TRUE(QRegularExpression("^\\w{3} \\w{3} \\d{1,2} \\d{4}\\.txt$").match(lstFiles[0]).hasMatch());
    const QString strText = ReadAll(strFolder + '/' + lstFiles[0]);
    EXPECT_TRUE(QRegularExpression("^\\[[\\d:]{8}\\]first\\[[\\d:]{8}\\]µ$").match(strText).hasMatch());
}

TEST_F(Worker, InitTellsWhyAnAxisCannotMove)
{
    AppConfig::m_fAxisAcc[Y_AXIS] = 0.0;
    m_App.InitMachine();
    EXPECT_EQ(m_App.TakeErrors(), QStringList("Y-Axis acceleration must be greater than zero"));
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
        };
        m_App.RunAs(OP_WORK_HOME);
        EXPECT_EQ(StatusLevel(), bSimulation ? 1 : 0);
        EXPECT_EQ(std::exchange(m_lstStarted, {}), QStringList("sudo shutdown now"));
        EXPECT_EQ(m_App.m_eOperation, OP_WORK_HOME);   // until the interface has taken note
    }
}

TEST_F(Worker, AnOperationResetsTheSpeedsAndGoesToWorkZeroFirstByItsCode)
{
    struct stFrame
    {
        eOperation eCode;
        bool bSingleLine, bResets;
        int iWorkZeroMoves;
    };
    Build();
    const GCodeProgram program(1);
    m_App.m_pGCodeProgram = &program;
    for (const stFrame& frame :
         {stFrame{OP_WORK_HOME, false, true, 1}, stFrame{OP_GCODE, false, true, 1}, stFrame{OP_GCODE, true, true, 0},
          stFrame{OP_Z_PROFILE, false, false, 1}, stFrame{OP_MCH_HOME, false, false, 0}}) {
        m_App.m_bExecSingleLine = frame.bSingleLine;
        m_App.m_iWorkZeroMoves = 0;
        m_App.m_AxisCtrl[X_AXIS].SetVelocityAcc(3.0, 600.0);
        m_App.m_fnWorkZero = [&] { EXPECT_EQ(NextFeed(X_AXIS), frame.bResets ? 15.0 : 3.0) << frame.eCode; };
        m_App.RunAs(frame.eCode);
        EXPECT_EQ(m_App.m_iWorkZeroMoves, frame.iWorkZeroMoves) << frame.eCode;
        EXPECT_FALSE(CAllAxisCtrl::m_bAutoModeRunning);
    }
}

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
    const auto Stop = [&] {
        m_App.m_bPause = true;
        if (GetParam().bEmergency) AppConfig::m_bEmergencyStopON = true;
        m_App.StopAll();
        m_App.m_eOperation = OP_NONE;
        if (GetParam().bReleased) AppConfig::m_bEmergencyStopON = false;
        m_App.m_lstMoves.clear();   // those to work zero
    };
    m_App.m_fnAtWorkZero = Stop;
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

// ---- Starts ---------------------------------------------------------------------------------------------------------

enum class eJob
{
    PROGRAM,
    LINE,
    SHAPES
};
struct stSpindle
{
    eJob eWhat;
    bool bSimulation, bCw, bCcw;
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
    AppConfig::m_fZSafePos = 1e9;     // no way to work zero
    AppConfig::m_eSelUnits = 1;       // kept in the settings, other than the factor of the coordinates
    stShapeCuttingInfo shapes;
    if (job.eWhat == eJob::LINE)
        m_App.StartExecGCodeLine(&program, 2);
    else if (job.eWhat == eJob::PROGRAM)
        m_App.StartGCode(&program);
    else
        m_App.StartShapeCutting(&shapes);
    m_App.wait();
    EXPECT_EQ(CVirtualPins::Level(AppConfig::m_lstMCodesPin[3]), job.iCwLevel);
    EXPECT_EQ(CVirtualPins::Level(AppConfig::m_lstMCodesPin[4]), job.iCcwLevel);
    EXPECT_EQ(AppConfig::m_bSpindleOn, job.bSimulation ? job.eWhat == eJob::LINE : job.bCw || job.bCcw);
    EXPECT_EQ(m_App.m_iWorkZeroMoves, job.eWhat == eJob::PROGRAM ? 1 : 0);
    QStringList calls = {"busy", "clear"};
    if (job.eWhat != eJob::SHAPES) calls.prepend("Until G20 or G21, F is read in inches and coordinates in mm");
    EXPECT_EQ(m_Screen.m_lstCalls, calls);
    EXPECT_TRUE(m_App.m_bOperationFinished);
}
INSTANTIATE_TEST_SUITE_P(Jobs, WorkerSpindle,
                         testing::Values(stSpindle{eJob::PROGRAM, false, true, true, 1, 0},
                                         stSpindle{eJob::PROGRAM, false, false, true, 0, 1},
                                         stSpindle{eJob::PROGRAM, false, false, false, 0, 0},
                                         stSpindle{eJob::PROGRAM, true, true, false, 0, 0},
                                         stSpindle{eJob::LINE, true, false, true, 0,
                                                   0},   // counts as on, moves no relay
                                         stSpindle{eJob::SHAPES, false, true, true, 1, 0},
                                         stSpindle{eJob::SHAPES, true, false, true, 0, 0}));
}   // namespace
