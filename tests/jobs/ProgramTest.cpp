#include "common/FileWriter.h"
#include "common/Paths.h"
#include "config/SettingsTable.h"
#include "gcode/ExecStatus.h"
#include "gcode/GCodeTokens.h"
#include "machine/MoveSpy.h"
#include "platform/virtual/VirtualPins.h"
#include "support/LoggedScreen.h"

// The line executor and the run loop beyond the reference cases, on virtual time.

namespace {
QString Unsupported(int iLine)
{
    return QStringLiteral("Error:%1 - Command/Format No Supported").arg(iLine);
}
}   // namespace

class ProgramTest : public CMoveTest, public CPinObserver
{
protected:
    ProgramTest()
    {
        AppConfig::ApplyBoardPins();
        CVirtualPins::SetObserver(this);
        QObject::connect(&m_App, &AppControl::SelNxtGCodeLine, &m_App,
                         [this](unsigned uLine) { m_lstShown += int(uLine); });
        m_Time.m_fnSupervise = [this] {
            if (m_bAnswerToolChange && m_App.m_bToolChangePause.Exchange(false))
                m_App.m_bPause = true;
            else if (m_bAnswerToolChange)
                m_App.m_bPause = false;
        };
    }
    ~ProgramTest() override { CVirtualPins::SetObserver(nullptr); }

    void OnWrite(int iPin, int iLevel) override
    {
        for (int axis = 0; axis < AppConfig::m_iMchType; ++axis)
            if (iPin == AppConfig::m_iAxisPulseOutput[axis] || iPin == AppConfig::m_iAxisDirOutput[axis]) return;
        m_lstOutputs += QStringLiteral("%1=%2").arg(iPin).arg(iLevel);
    }
    void Load(const QString& strText)
    {
        GCodeProgram program;
        for (const QString& strLine : strText.split('\n')) program.push_back(TokenizeProgramLine(strLine));
        SetProgram(std::move(program));
    }
    // The whole program from the start line.
    void Run(const QString& strText)
    {
        Load(strText);
        m_App.RunGCode();
        m_App.Settle();
    }
    // Line by line, whatever a line returns.
    std::string ExecLines(const QString& strText)
    {
        Load(strText);
        std::string strResults;
        for (size_t n = 0; n < m_Program.size(); ++n) strResults += m_App.ExecGCodeLine(int(n)) ? '+' : '-';
        m_App.Settle();
        return strResults;
    }
    void WriteToolFile(const char* szName, const char* szText)
    {
        ReplaceFile(CPaths::Map(WORKING_FOLDER + '/' + szName), szText);
    }
    // The emergency stop's flag alone, or a job that is given up: each must do without the other.
    void StopAt(qint64 lMs, bool bEmergency)
    {
        m_Time.AddEvent({m_Time.Now() + lMs * 1'000'000,
                         [=, this] { bEmergency ? void(AppConfig::m_bEmergencyStopON = true) : m_App.StopAll(); },
                         {}});
    }
    qint64 NowMs() const { return m_Time.Now() / 1'000'000; }
    double X() const { return m_App.GetCurPos(X_AXIS); }

    QList<int> m_lstShown;
    QStringList m_lstOutputs;
    bool m_bAnswerToolChange = true;
};

// ---- Modal state ----------------------------------------------------------------------------------------------------

TEST_F(ProgramTest, ARunKeepsUnitsPlaneAndModeOfTheOneBefore)
{
    Begin();
    Run("G20 G91 G18\nG1 X1");
    EXPECT_EQ(X(), 25.4);
    Run("G1 X1");
    EXPECT_EQ(X(), 670.56) << "the position in mm is taken as inches too: (25.4 + 1) * 25.4";
    EXPECT_EQ(AppConfig::m_PlaneSel, 18);
    EXPECT_EQ(AppConfig::m_GCodeRunSettings.iState, G01_MOVE);
    Run("G21 G90 G17\nG0 X0\nX5");
    EXPECT_EQ(X(), 5.0);
    EXPECT_EQ(AppConfig::m_GCodeRunSettings.iState, G00_MOVE);
}

struct stProgram
{
    const char *szName, *szSettings, *szText;
    double fX;   // where X ends
    const char* szErrors = "";
};
class ShortProgram : public ProgramTest, public testing::WithParamInterface<stProgram>
{
};

TEST_P(ShortProgram, EndsAsTold)
{
    for (const QString& strSetting : QString(GetParam().szSettings).split(' ', Qt::SkipEmptyParts)) {
        QString strWhy;
        ASSERT_TRUE(CSettingsTable::Set(strSetting, strWhy)) << strWhy.toStdString();
    }
    Begin();
    Run(GetParam().szText);
    EXPECT_EQ(X(), GetParam().fX);
    EXPECT_EQ(m_App.TakeErrors().join('|'), GetParam().szErrors);
    EXPECT_FALSE(m_App.m_bPause);
}
constexpr const char* USE_FEED = "m_GCodeRunSettings.bUsePrgmFeed=1";
constexpr const char* NO_FEED = "Error:1 - Feed, F-Code, must be greater than zero";
constexpr const char* NO_WORD = "Error:1 - Command/Format No Supported";
INSTANTIATE_TEST_SUITE_P(
    Programs, ShortProgram,
    testing::Values(
        // A feed not above zero ends the run before its line moves, and only where the program's feed is used.
        stProgram{"FeedBehindAMove", USE_FEED, "G1 X1\nG1 X9 F0\nX5", 1, NO_FEED},
        stProgram{"FeedBeforeAMove", USE_FEED, "G1 X1\nF-5 G1 X9\nX5", 1, NO_FEED},
        stProgram{"FeedOfAnArc", USE_FEED, "G1 X1\nG2 X9 I2 J0 F0\nX5", 1, NO_FEED},
        stProgram{"FeedOfAWayBack", USE_FEED, "G1 X1\nG28 G90 X9 Y9 Z9 F0\nX5", 1, NO_FEED},
        stProgram{"FeedNotUsed", "", "F0\nG1 X1 F0\nX3", 3},
        // A comment ends the words of a move and of an arc.
        stProgram{"CommentBehindAMove", USE_FEED, "G0 X5 (F0 X9", 5},
        stProgram{"CommentBehindAnArc", USE_FEED, "G2 X10 I5 J0 (F0 X9 R0 J3", 10},
        // Program stops do not stop.
        stProgram{"Stops", "", "M0\nM1 G1 X2\nM00 M2\nG1 X9", 2},
        // A way back that is made ends the run without a word, one that fails goes on with the next.
        stProgram{"WayBack", "", "G1 X5\nG28\nG1 X9", 0}, stProgram{"WayBackWithWords", "", "G1 X5\nG30 G1 X9", 0},
        stProgram{"WayBackFails", "m_fZSafePos=1e9", "G1 X5\nG30 G1 X9", 9,
                  "Position to move must be within the motion limits"},
        // Calls are found forwards and among N words only.
        stProgram{"CallBackwards", "", "N9\nM97 P9", 0, "No line starting with P9 is found"},
        stProgram{"CallOfAnOWord", "", "M98 O12\nO12", 0, "No line starting with O12 is found"},
        // Words without an action end the run, unknown numbers, labels and comments do not.
        stProgram{"P", "", "\nP1\nX1", 0, NO_WORD}, stProgram{"LateLabel", "", "\nG1 N5\nX1", 0, NO_WORD},
        stProgram{"Mark", "", "\n= \nX1", 0, NO_WORD},
        stProgram{"Others", "", "G99 G1\nM77\nN5\n(P1\n%\n; K\nn6 x1\nI5 J0", 1}),
    [](const auto& param) { return param.param.szName; });

TEST_F(ProgramTest, SimulationSkipsWordsOfOutputsToolsAndSpeeds)
{
    AppConfig::m_bSimulationMode = true;
    AppConfig::m_GCodeRunSettings.bUsePrgmFeed = true;
    Begin();
    Run("M3 S1000 T5 F0\nM6\nM30\nG1 X2\nM66 Q100\nG1 X3");
    EXPECT_EQ(X(), 2.0);
    EXPECT_EQ(m_App.m_strSelTool, "");
    EXPECT_EQ(m_App.TakeErrors(), QStringList({Unsupported(4)})) << "the parameter of a skipped wait";
    EXPECT_TRUE(m_lstOutputs.isEmpty());
    EXPECT_LT(NowMs(), 1000);
}

// ---- M words --------------------------------------------------------------------------------------------------------

TEST_F(ProgramTest, TheSpindleDoesNotStartBehindAStop)
{
    for (const bool bEmergency : {true, false}) {
        Begin();
        m_lstOutputs.clear();
        StopAt(500, bEmergency);
        EXPECT_EQ(ExecLines("M3"), "-");
        EXPECT_TRUE(m_lstOutputs.contains("9=0"));
        EXPECT_FALSE(m_lstOutputs.contains("8=1")) << m_lstOutputs.join(' ').toStdString();
        EXPECT_FALSE(AppConfig::m_bSpindleOn);
        EXPECT_EQ(ExecLines("M4\nM8"), "--") << "nothing is written while it stands";
        EXPECT_FALSE(m_lstOutputs.contains("11=1")) << "nor the coolant";
        AppConfig::m_bEmergencyStopON = false;
    }
}

struct stWait
{
    const char* szLine;
    qint64 lEndMs;
};
class InputWait : public ProgramTest, public testing::WithParamInterface<stWait>
{
};

// Input 1 goes up at 100 ms, down at 300 ms and up at 500 ms.
TEST_P(InputWait, EndsWithItsConditionAndThenTheRunEnds)
{
    Begin();
    for (const int iMs : {100, 300, 500})
        m_Time.AddEvent({iMs * 1'000'000, [iMs] { CVirtualPins::SetInput(19, iMs != 300); }, {}});
    EXPECT_EQ(ExecLines(GetParam().szLine), "-");
    EXPECT_EQ(NowMs(), GetParam().lEndMs);
    EXPECT_EQ(m_App.TakeErrors(), QStringList({Unsupported(0)})) << "of the word behind M66: wanted";
}
INSTANTIATE_TEST_SUITE_P(M66, InputWait,
                         testing::Values(stWait{"M66 Q-5", 0}, stWait{"M66 P1 L1", 100}, stWait{"M66 P1 L2", 300},
                                         stWait{"M66 P1 L3", 100}, stWait{"M66 P1 L4", 0},
                                         stWait{"M66 P1 L2 Q200.5", 200}, stWait{"m66 p1 l1 q50", 50}));

TEST_F(ProgramTest, AWaitEndsWithAStop)
{
    AppConfig::m_GCodeRunSettings.bUsePrgmSpindleSpeed = true;
    AppConfig::m_stPwmSpndlSettings.iTimeDelay = 60000;
    Begin();
    StopAt(500, true);
    ExecLines("S1000");
    EXPECT_EQ(NowMs(), 500);
    AppConfig::m_bEmergencyStopON = false;
    for (const auto& [szLine, bEmergency] :
         {std::pair{"M66 Q900000", true}, {"M66 P1 L3", true}, {"M66 P1 L3", false}}) {
        StopAt(700, bEmergency);
        const qint64 lFrom = NowMs();
        m_Time.AddEvent({m_Time.Now() + 900'000'000, {}, {}});   // or the wait would end for want of anything to come
        ExecLines(szLine);
        EXPECT_EQ(NowMs() - lFrom, 700) << szLine;
        EXPECT_EQ(m_App.TakeErrors().isEmpty(), !bEmergency) << "a job that was given up has no further word";
        AppConfig::m_bEmergencyStopON = false;
    }
}

// The operator may be back within the second in which the worker looks.
TEST_F(ProgramTest, AnAnswerToAToolChangeIsNotLostAndAStopTakesTheQuestionBack)
{
    AppConfig::m_bEnlManualToolChange = AppConfig::m_bEnlAutoToolChange = false;
    m_bAnswerToolChange = false;
    Begin();
    m_Time.AddEvent({100'000'000, [&] { m_App.AnswerToolChange(); }, {}});
    m_Time.AddEvent({200'000'000, [&] { m_App.Resume(); }, {}});
    m_Time.AddEvent({9'000'000'000, {}, {}});
    Run("M6\nG1 X1");
    EXPECT_EQ(X(), 1.0);
    EXPECT_LT(NowMs(), 2000);
    StopAt(300, true);
    EXPECT_EQ(ExecLines("M6"), "-");
    EXPECT_FALSE(m_App.m_bToolChangePause);
    // No word behind it starts the spindle while the hand is at the tool.
    AppConfig::m_bEmergencyStopON = false;
    m_Time.AddEvent({m_Time.Now() + 100'000'000, [&] { m_App.AnswerToolChange(); }, {}});
    bool bHeld = false;
    m_Time.AddEvent({m_Time.Now() + 9'000'000'000,
                     [&] {
                         bHeld = !m_lstOutputs.contains("8=1");
                         m_App.Resume();
                     },
                     {}});
    EXPECT_EQ(ExecLines("M6 M3"), "+");
    EXPECT_TRUE(bHeld && m_lstOutputs.contains("8=1"));
}

// ---- Sub-programs ---------------------------------------------------------------------------------------------------

TEST_F(ProgramTest, ACallSetsItsStacksAndThenEndsTheRun)
{
    Begin();
    Run("G1 X1\nM98 P7 L3\nG1 X2\n\nN007 G1 X3\nM99");
    EXPECT_EQ(X(), 1.0);
    EXPECT_EQ(m_App.TakeErrors(), QStringList({Unsupported(1)}));
    EXPECT_EQ(m_App.m_iCurGCodeLine, 3) << "one before the label";
    EXPECT_EQ(m_App.m_lstSubPrgmStartLine, std::vector<int>({3}));
    EXPECT_EQ(m_App.m_lstSubPrgmRetLine, std::vector<int>({1}));
    EXPECT_EQ(m_App.m_lstSubPrgmRepeats, std::vector<unsigned>({3}));
}

TEST_F(ProgramTest, TheSeventhNestedCallIsRefused)
{
    Begin();
    for (int n = 0; n < 6; ++n) ExecLines("M97 P1\nN1");
    m_App.TakeErrors();
    EXPECT_EQ(ExecLines("M98 P1\nN1"), "-+");
    EXPECT_EQ(m_App.TakeErrors(), QStringList({"Maximum 6 Subprogram nesting is allowed"}));
    EXPECT_EQ(m_App.m_lstSubPrgmStartLine.size(), 6u);
}

// ---- Tool change ----------------------------------------------------------------------------------------------------

TEST_F(ProgramTest, AToolFileLeavesTheProgramWhereItStood)
{
    AppConfig::m_bEnlAutoToolChange = true;
    WriteToolFile("T1.txt", "G1 X3\nM97 P9 L4\nN9");
    WriteToolFile("T2.txt", "\n\n\nG1 X4\nK5\nG1 X99");
    WriteToolFile("T3.txt", "G1 X5\nM6\nG1 X99");
    WriteToolFile("T4.txt", "G1 X6\nM30\nK5");
    ASSERT_TRUE(QFile::link("/proc/self/mem", CPaths::Map(WORKING_FOLDER + "/T5.txt")));   // opens, and breaks off
    CLoggedScreen screen;
    Begin();
    m_App.m_iCurGCodeLine = 0;
    m_App.m_lstSubPrgmRetLine = m_App.m_lstSubPrgmStartLine = {4};
    m_App.m_lstSubPrgmRepeats = {2};
    EXPECT_EQ(ExecLines("T1 M6 T2 M6 T3 M6 T4 M6 T5 M6 T6 M6 G1 Y1"), "+");
    EXPECT_EQ(m_App.m_iCurGCodeLine, 0);
    EXPECT_EQ(m_App.m_lstSubPrgmRetLine, std::vector<int>({4}));
    EXPECT_EQ(m_App.m_lstSubPrgmStartLine, std::vector<int>({4}));
    EXPECT_EQ(m_App.m_lstSubPrgmRepeats, std::vector<unsigned>({2}));
    EXPECT_EQ(m_App.m_pGCodeProgram, &m_Program);
    EXPECT_EQ(m_App.TakeErrors(),
              QStringList({Unsupported(1), Unsupported(4), "Error:1 - Tool Change, M06, must not exist in ATC file"}));
    EXPECT_EQ(X(), 6.0);
    EXPECT_EQ(m_App.GetCurPos(Y_AXIS), 1.0);
    QStringList told;   // of T4 alone nothing: it has come to its end
    for (const char* szTool : {"T1", "T2", "T3", "T5", "T6"})
        told += QStringLiteral("1 Tool change not completed by %1/%2.txt: the old tool may still be in")
                    .arg(WORKING_FOLDER, QLatin1String(szTool));
    EXPECT_EQ(screen.m_lstLog.join('|').toStdString(), told.join('|').toStdString());
}

// ---- The run loop ----------------------------------------------------------------------------------

TEST_F(ProgramTest, TheStatusFileFollowsByTenLinesAndMore)
{
    AppConfig::m_GCodeRunSettings.bSaveExecStatus = true;
    AppConfig::m_GCodeRunSettings.strFile = "/home/vantor/plate.ncc";
    Begin();
    const auto Saved = [] {
        stExecStatus status;
        EXPECT_TRUE(ReadExecStatus(GCODE_EXEC_STATUS_FILE, status));
        EXPECT_EQ(status.strFile, "/home/vantor/plate.ncc");
        return status.iLine;
    };
    Run(QStringLiteral("G90\n").repeated(11) + "M30");
    EXPECT_EQ(Saved(), 10);
    AppConfig::m_GCodeRunSettings.iCurLine = 1;
    Run(QStringLiteral("G90\n").repeated(100));
    EXPECT_EQ(Saved(), 99);
    AppConfig::m_bSimulationMode = true;   // it has cut nothing that another run could go on from
    Run(QStringLiteral("G90\n").repeated(40));
    EXPECT_EQ(Saved(), 99);
}

TEST_F(ProgramTest, AStartLineBelowZeroIsTheFirstAndARunCanBeHeldAndAbandoned)
{
    AppConfig::m_GCodeRunSettings.iCurLine = -5;
    m_bAnswerToolChange = false;
    Begin();
    m_App.m_bPause = true;
    m_Time.AddEvent({3'500'000'000, [&] { m_App.m_bPause = false; }, {}});
    Run("G90\nG1 X1");
    EXPECT_EQ(m_lstShown, QList<int>({0, 1}));
    EXPECT_GE(NowMs(), 4000);
    EXPECT_EQ(X(), 1.0);
    m_App.m_bPause = true;
    StopAt(1500, false);
    m_lstShown.clear();
    Run("G91\nM3");
    EXPECT_TRUE(m_lstShown.isEmpty());
    EXPECT_EQ(AppConfig::m_GCodeRunSettings.sAbsRel, 0) << "no further word";
}
