#include "gcode/GCodeStore.h"

#include "common/Paths.h"
#include "config/AppConfig.h"
#include "gcode/ExecStatus.h"
#include "support/Application.h"
#include "support/CleanMachine.h"
#include "support/Files.h"

#include <QDir>

#include <thread>

using Store = CGCodeStore;

namespace {
class GCodeStore : public CCleanMachine
{
protected:
    QString Write(const QByteArray& content)
    {
        const QString strPath = m_Home.filePath("program.ngc");
        WriteAll(strPath, content);
        return strPath;
    }
    void Load(const QByteArray& content) { Store::LoadGCode(Write(content), nullptr); }
};
class CNotify : public QObject
{
    Q_OBJECT
public:
    CNotify()
    {
        connect(this, &CNotify::GCodeLoadComplete, this, [this] { m_strLog += 'L'; });
        connect(this, &CNotify::GCodeCompilationComplete, this, [this] { m_strLog += 'C'; });
    }
    std::string m_strLog;
signals:
    void GCodeLoadComplete();
    void GCodeCompilationComplete();
};
}   // namespace

// ---- Loading ----

TEST_F(GCodeStore, LoadsAppendWholeFilesAndTellOfTheirEnd)
{
    CNotify notify;
    for (const QByteArray& content : {QByteArray("G0 X1\r\nG1 Y1"), QByteArray(), QByteArray("\nM30\n")}) {
        Store::m_bGCodeLoading = true;
        Store::LoadGCode(Write(content), &notify);
        EXPECT_FALSE(Store::m_bGCodeLoading);
    }
    EXPECT_EQ(notify.m_strLog, "LLL");
    EXPECT_EQ(Store::m_lstOfGCodeLines, (std::vector<QString>{"G0 X1", "G1 Y1", "", "M30"}));
    EXPECT_EQ(Store::m_lstOfGCodeCmds, (GCodeProgram{{"G0", "X1"}, {"G1", "Y1"}, {}, {"M30"}}));
}

TEST_F(GCodeStore, RubbishAndEndlessLinesEndInErrorsWithoutAHang)
{
    QByteArray rubbish;
    for (quint32 n = 0; n < 300'000; ++n) rubbish += char(n * 7919u >> 5);
    const QByteArray lines[] = {rubbish,
                                QByteArray(1 << 20, 'X'),
                                QByteArray("G0X").repeated(350'000),
                                QByteArray("G1").repeated(500'000),
                                QByteArray("G17").repeated(350'000),
                                QByteArray("G2I1J1").repeated(170'000),
                                QByteArray("M200").repeated(250'000)};
    for (const QByteArray& line : lines) {
        ResetStatics();
        Load(line + '\n');
        Store::m_bGCodeCompiling = true;
        Store::CompileGCode(nullptr);
        EXPECT_FALSE(Store::m_bGCodeCompiling);
        size_t uText = 0;   // without a limit hours and hundreds of gigabytes: each word looks at the rest of its line
        for (const auto& [uLine, strText] : Store::m_CompilationErrors) uText += strText.size();
        EXPECT_LT(uText, 30'000'000u) << line.left(10).toStdString();
        EXPECT_EQ(uText == 0, line[0] == 'X') << line.left(10).toStdString();
    }
}

class ThreadsGCodeStore : public GCodeStore
{
};
TEST_F(ThreadsGCodeStore, TasksSendTheirSignalsToTheThreadOfTheObject)
{
    NeedApplication();
    CNotify notify;
    const QString strPath = Write("G1 X1\n");
    std::thread([&] {
        Store::LoadGCode(strPath, &notify);
        Store::CompileGCode(&notify);
    }).join();
    EXPECT_EQ(notify.m_strLog, "");
    QCoreApplication::sendPostedEvents(&notify);
    EXPECT_EQ(notify.m_strLog, "LC");
}

// ---- Tool-change files ----

TEST_F(GCodeStore, ToolFileIsCheckedInThePlaceOfTheProgramWhichIsRestored)
{
    WriteAll(CPaths::Map(WORKING_FOLDER) + "/T1.txt", "M6 (no tools here)\nT2\nG19\nH1 F5\n");
    ASSERT_TRUE(QDir().mkpath(CPaths::Map(WORKING_FOLDER) + "/T3.txt"));   // a folder: not even root opens it
    Load("G0 X1\nT1\nT3 T1.5\nG0 F1\nG4");
    const GCodeProgram before = Store::m_lstOfGCodeCmds;
    CNotify notify;
    Store::m_bGCodeCompiling = true;
    Store::CompileGCode(&notify);
    EXPECT_EQ(Store::m_lstOfGCodeCmds, before);
    EXPECT_EQ(notify.m_strLog, "C");
    EXPECT_FALSE(Store::m_bGCodeCompiling || Store::m_bToolChgCompiling || Store::m_bProgramExchanged);

    std::string strTwo = "T3(Unable to open ATC File,%1/T3.txt)\nT1.5(No ATC commands found. Please check the file, "
                         "%1/T1.5.txt, exists?)";
    strTwo = QString::fromStdString(strTwo).replace("%1", WORKING_FOLDER).toStdString();
    const std::map<quint32, std::string> expected = {
        {1, "T2(Tool Select, 'T', Command must not exist in ATC file,)"},
        {2, strTwo},
        // The plane of the tool's file stays in force for the program.
        {3, "H1(Invalid)\nF5(G19 Plane selected. I value should not be present)\n"
            "F1(G19 Plane selected. I value should not be present)"},
        {4, "G4(Invalid)"}};
    EXPECT_EQ(Store::m_CompilationErrors, expected);
}

// ---- Saving ----

TEST_F(GCodeStore, SavingReplacesTheFileWholeOrLeavesItUntouched)
{
    Load(QString::fromUtf8("G0 X1 (Ø)\n\n x\n").toUtf8());
    const QString strPath = m_Home.filePath("saved.ncc");
    WriteAll(strPath, QByteArray(1000, 'x'));
    EXPECT_TRUE(Store::WriteProgram(strPath));
    EXPECT_EQ(ReadAll(strPath), QString::fromUtf8("G0 X1 (Ø)\n\n x\n").toUtf8());
    EXPECT_FALSE(Store::WriteProgram(m_Home.path()));
    EXPECT_FALSE(Store::WriteProgram(m_Home.filePath("none/saved.ncc")));
    EXPECT_EQ(QDir(m_Home.path()).entryList(QDir::Files), (QStringList{"program.ngc", "saved.ncc"}));
}

// ---- Status file ----

TEST_F(GCodeStore, StatusFileHoldsNameAndLineBigEndian)
{
    EXPECT_TRUE(WriteExecStatus(GCODE_EXEC_STATUS_FILE, QString::fromUtf8("/a/ü"), 0x01020304));
    const QString strPath = CPaths::Map(GCODE_EXEC_STATUS_FILE);
    EXPECT_EQ(ReadAll(strPath).toHex(), "00000008"
                                        "002f0061002f00fc"
                                        "01020304");
    const QByteArray whole = ReadAll(strPath);
    for (qsizetype n = whole.size(); n >= 0; --n) {
        WriteAll(strPath, whole.left(n));
        stExecStatus status{"old", 7};
        EXPECT_TRUE(ReadExecStatus(GCODE_EXEC_STATUS_FILE, status));
        EXPECT_EQ(status.strFile, n < 12 ? QString() : QString::fromUtf8("/a/ü")) << n;
        EXPECT_EQ(status.iLine, n < 16 ? 0 : 0x01020304) << n;
    }
    stExecStatus status;
    EXPECT_FALSE(ReadExecStatus(WORKING_FOLDER, status));
    EXPECT_FALSE(WriteExecStatus(WORKING_FOLDER, "x", 1));
}

#include "GCodeStoreTest.moc"
