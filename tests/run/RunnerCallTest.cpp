#include "run/Call.h"

// How vantor-run is called: options, files, exit statuses and streams.

namespace {
const QByteArray SQUARE = "G0 Z2\nG1 X10 Y4\nG1 X0 Y0\nM30\n";

struct stBadCall
{
    const char* szArguments;   // parted by blanks
    const char* szWhy;
};
class BadCall : public RunnerTest, public testing::WithParamInterface<stBadCall>
{
};
TEST_P(BadCall, EndsWithStatusTwoAndSaysWhy)
{
    Write("job.ngc", SQUARE);
    Write("empty.ngc", "");
    Write("prof.txt", "0\n0\n");
    Write("row.txt", "1\n2\n0,0,0\n1,0,0\n");
    const stResult result = Call(Words(GetParam().szArguments));
    EXPECT_EQ(result.iExit, 2);
    EXPECT_TRUE(result.strErr.contains(QLatin1String(GetParam().szWhy))) << result.strErr;
    EXPECT_TRUE(result.strOut.isEmpty()) << result.strOut;
}
INSTANTIATE_TEST_SUITE_P(
    All, BadCall,
    testing::Values(
        stBadCall{"", "no job"}, stBadCall{"--bogus", "unknown option --bogus"},
        stBadCall{"job.ngc other.ngc", "one job at a time"}, stBadCall{"missing.ngc", "missing.ngc: No such file"},
        stBadCall{".", ".: is a folder"}, stBadCall{"empty.ngc --check", "empty.ngc: is empty"},
        stBadCall{"job.ngc --start-line 0", "--start-line"}, stBadCall{"job.ngc --check=1", "takes no value"},
        stBadCall{"job.ngc --max-time 0", "--max-time"},
        stBadCall{"job.ngc --tool-change-time -1", "--tool-change-time"}, stBadCall{"job.ngc --input 5=1@2", "--input"},
        stBadCall{"job.ngc --set m_fNothing=1", "--set m_fNothing=1: "},
        stBadCall{"job.ngc --set m_fAxisAcc[0]=fast", "--set"},
        stBadCall{"job.ngc --config missing.dat", "missing.dat"}, stBadCall{"job.ngc --z-profile prof.txt", "prof.txt"},
        stBadCall{"job.ngc --surface missing.txt", "missing.txt"},
        stBadCall{"job.ngc --surface prof.txt", "prof.txt: is not a profile"},
        stBadCall{"job.ngc --surface row.txt", "row.txt: is not a profile"},
        stBadCall{"job.ngc --z-profile row.txt", "row.txt: is not a profile"},
        stBadCall{"job.ngc --z-profile a --make-z-profile b", "exclude each other"},
        stBadCall{"job.ngc --moves nowhere/m.csv", "nowhere/m.csv"},
        stBadCall{"job.ngc --picture job.ngc", "would be overwritten"},
        stBadCall{"job.ngc --to-gcode out.ngc", "is a program already"},
        stBadCall{"job.ngc --job fZStep=1", "no fields"}, stBadCall{"--homing --to-gcode out.ngc", "no job"},
        stBadCall{"job.ngc --edges x --moves x", "two results"},
        stBadCall{"job.ngc --data-dir job.ngc/x", "job.ngc/x"}));

TEST_F(RunnerTest, HelpTellsOfEveryOption)
{
    const stResult help = Call({"--help"});
    EXPECT_EQ(help.iExit, 0);
    for (const QString& strOption :
         Words("--check --real-time --start-line --data-dir --config --set --list-settings --homing --simulation "
               "--z-profile --make-z-profile --probe-z0 --job --to-gcode --surface --tool-change-time --input "
               "--max-time --moves "
               "--edges --picture --summary --quiet --version --help status"))
        EXPECT_TRUE(help.strOut.contains(strOption)) << strOption;
    EXPECT_EQ(Call({"--version"}).strOut, QStringLiteral("vantor-run Ver4.0\n"));
}

TEST_F(RunnerTest, CheckTellsEachWrongLineOnALineOfItsOwn)
{
    const stResult result = Call({"--check", Example("errors.ngc")});
    EXPECT_EQ(result.iExit, 1);
    const QString strAt = Example("errors.ngc") + QLatin1Char(':');
    for (const char* szLine : {"7: G4(Invalid) / P100(Invalid)", "11: N1.5(Invalid Code)", "14: X2(Repitition)",
                               "26: G2(Data Missing:X/Y/Z must be given)",
                               "31: G28(G28 Must be followed with G90 or G91 and X~ Y~ Z~) / (Ex:G28 G91 X60 Y60 Z10)",
                               "55: O200(Sub-Program must be preceeded by M30-Code)"})
        EXPECT_TRUE(result.strOut.contains(strAt + QLatin1String(szLine) + QLatin1Char('\n'))) << szLine;
    EXPECT_EQ(result.strOut.count(QLatin1Char('\n')), 46) << "every kind of error";
    EXPECT_EQ(result.strOut.count(QLatin1Char('\n')), result.strOut.count(strAt));
    EXPECT_TRUE(result.strErr.isEmpty()) << result.strErr;

    const stResult refused = Call({Example("errors.ngc"), "--moves", "m.csv"});
    EXPECT_EQ(refused.iExit, 1);
    EXPECT_EQ(refused.strOut, result.strOut);
    EXPECT_TRUE(refused.strErr.contains(QLatin1String("not run")));
    EXPECT_FALSE(QFile::exists(Path("m.csv")));
    EXPECT_EQ(Call({"--check", Example("plate.ngc")}).iExit, 0);
}

TEST_F(RunnerTest, RubbishEndsInMessagesAndNeverInACrash)
{
    QByteArray rubbish;
    for (quint32 n = 0, x = 1; n < 200'000; ++n) rubbish += static_cast<char>((x = x * 1664525u + 1013904223u) >> 24);
    Write("rubbish.ngc", rubbish);
    EXPECT_EQ(Call({"--check", "rubbish.ngc"}).iExit, 1);
    EXPECT_EQ(Call({"rubbish.ngc"}).iExit, 1);
    Write("long.ngc", "G1 X" + QByteArray(1'000'000, '1') + "\nM30\n");
    EXPECT_EQ(Call({"--check", "long.ngc"}).iExit, 0);
    Write("apple.ngc", "G1 X1\rG1 X2\rM30");
    EXPECT_TRUE(Call({"--check", "apple.ngc"}).strErr.contains("no line ends, only carriage returns"));
    const stResult away = Call({"long.ngc", "--quiet"});
    EXPECT_EQ(away.iExit, 1);
    EXPECT_EQ(away.strErr, QStringLiteral("long.ngc:1: Position to move must be within the motion limits\n"));
}

TEST_F(RunnerTest, AMillionLinesAreChecked)
{
    Write("million.ngc", QByteArray("G1 X10.5 Y-3 Z1\n").repeated(1'000'000) + "G4\n");
    const stResult result = Call({"--check", "million.ngc"});
    EXPECT_EQ(result.iExit, 1);
    EXPECT_EQ(result.strOut, QStringLiteral("million.ngc:1000001: G4(Invalid)\n"));
}

TEST_F(RunnerTest, ReadsStandardInput)
{
    const stResult result = Call({"-", "--summary", "summary.json"}, SQUARE);
    EXPECT_EQ(result.iExit, 0) << result.strErr;
    EXPECT_EQ(Summary()["lines"].toInt(), 4);
    EXPECT_EQ(Call({"-", "--check"}, "G4\n").strOut, QStringLiteral("-:1: G4(Invalid)\n"));
    EXPECT_EQ(Call({"-"}, "").iExit, 2);
}

TEST_F(RunnerTest, QuietPrintsErrorsOnly)
{
    Write("job.ngc", "M6\n" + SQUARE);
    const stResult loud = Call({"job.ngc"});
    EXPECT_TRUE(loud.strOut.startsWith(QLatin1String("job.ngc: done\n"))) << loud.strOut;
    EXPECT_TRUE(loud.strErr.contains(QLatin1String("Change tool and click start"))) << loud.strErr;
    EXPECT_FALSE(loud.strErr.contains(QLatin1Char('\r'))) << "no progress line without a terminal";
    const stResult quiet = Call({"job.ngc", "--quiet"});
    EXPECT_EQ(quiet.iExit, 0);
    EXPECT_TRUE((quiet.strOut + quiet.strErr).isEmpty()) << quiet.strOut << quiet.strErr;
}

TEST_F(RunnerTest, SettingsAreListedAsSet)
{
    const stResult plain = Call({"--list-settings"});
    EXPECT_EQ(plain.iExit, 0);
    EXPECT_TRUE(plain.strOut.contains(QLatin1String("m_fAxisAcc[0]=600\n")));
    const stResult set = Call({"--list-settings", "--set", "m_fAxisAcc[1]=300", "--set=m_fUserAxisFeed=20"});
    EXPECT_TRUE(set.strOut.contains(QLatin1String("m_fAxisAcc[0]=600\nm_fAxisAcc[1]=300\n")));
    EXPECT_TRUE(set.strOut.contains(QLatin1String("m_fAxisFeed[4]=20\n"))) << "derived behind the settings";
}

TEST_F(RunnerTest, DataFolderKeepsWhatAMachineKeepsAndAConfigFileIsOnlyRead)
{
    Write("job.ngc", SQUARE.repeated(7).replace("M30\n", ""));
    const QStringList save{"--set", "m_GCodeRunSettings.bSaveExecStatus=1", "--quiet"};
    EXPECT_EQ(Call(QStringList{"job.ngc", "--data-dir", "machine/home"} + save).iExit, 0);
    EXPECT_TRUE(QFile::exists(Path("machine/home/VANTOR/VANTOR.dat")));
    EXPECT_TRUE(Read("machine/home/VANTOR/GCodeStatus.dat").size() > 8);
    EXPECT_TRUE(QFile::rename(Path("machine/home/VANTOR/VANTOR.dat"), Path("old.dat")));

    QByteArray config = Read("old.dat");
    config[config.indexOf("4") + 0] = '3';   // "Ver4.0": an older file would be brought up to date
    Write("old.dat", config);
    EXPECT_EQ(Call(QStringList{"job.ngc", "--config", "old.dat"} + save).iExit, 0);
    EXPECT_EQ(Read("old.dat"), config);
    EXPECT_EQ(QDir(m_Folder.path()).entryList(QDir::Files), (QStringList{"job.ngc", "old.dat"}));

    // Tool-change files are looked for there.
    Write("machine/home/VANTOR/T1.txt", "G0 X3\nM30\n");
    Write("tool.ngc", "T1\nM6\nG0 Y2\nM30\n");
    EXPECT_EQ(Call({"tool.ngc", "--check"}).iExit, 1);
    EXPECT_EQ(
        Call({"tool.ngc", "--data-dir", "machine/home", "--set", "m_bEnlAutoToolChange=1", "--summary", "summary.json"})
            .iExit,
        0);
    EXPECT_EQ(Summary()["end_mm"].toObject()["X"].toDouble(), 3.0);
}
}   // namespace
