#include "config/AppConfig.h"
#include "hardware/VantorCtrl.h"
#include "hardware/VantorGpio.h"
#include "platform/PinKind.h"
#include "platform/PinRights.h"
#include "support/LoggedScreen.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

// The machine's programs linked as on a Pi: against libraries with the entry points of the real ones, which note what
// reaches them.

namespace {
QString Read(const QString& strFile)
{
    QFile file(strFile);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

class RealPins : public testing::Test
{
protected:
    // The libraries ask once for the file's name; the record of a test is what came since its beginning.
    static void SetUpTestSuite()
    {
        static QTemporaryDir folder;
        m_strRecord = folder.filePath(QStringLiteral("record"));
        qputenv("PIN_RECORD", m_strRecord.toLocal8Bit());
        QDir::setCurrent(folder.path());
        GiveRights(true);
    }
    // To a program in the current folder: see the stand-ins.
    static void GiveRights(bool bGive)
    {
        QFile file(QStringLiteral("memory"));
        EXPECT_TRUE(bGive ? file.open(QIODevice::WriteOnly) : file.remove());
    }
    static QString Take()
    {
        const QString strText = Read(m_strRecord);
        QFile::remove(m_strRecord);
        return strText;
    }
    void Start(QProcess& process, const char* szProgram, const QStringList& arguments = {})
    {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("PIN_RECORD"), m_Folder.filePath(QStringLiteral("record")));
        environment.insert(QStringLiteral("XDG_DATA_HOME"), m_Folder.path());
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(QDir::currentPath());
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QString::fromLatin1(szProgram), arguments);
    }
    static inline QString m_strRecord;
    QTemporaryDir m_Folder;
};
}   // namespace

TEST_F(RealPins, EveryOutputOfBothBoardsIsOneFrameOnTheOutputSide)
{
    EXPECT_TRUE(PinsAreReal());
    int iFrames = 0;
    int iBoard = -1;
    for (const QString& strLine : Read(QStringLiteral(TEST_DATA_DIR "/pi/frames.txt")).split('\n')) {
        const QStringList words = strLine.split(' ');
        if (words.size() != 4) continue;   // the heading
        const int iThis = words[0] == QLatin1String("16") ? SPI_CTRL_16 : SPI_CTRL_24;
        if (iThis != iBoard) {
            AppConfig::m_eVantorCtrl = iBoard = iThis;
            cvantorctrl::InitVantorCtrl(static_cast<eVantorController>(iThis));
            EXPECT_EQ(Take(), "spiOpen 0 2000000 192\nspiOpen 2 2000000 256\n");
        }
        for (const int iLevel : {0, 1}) {
            CVANTORGPIO::WriteOutput(words[1].toUShort(), static_cast<quint16>(iLevel));
            EXPECT_EQ(Take(), QStringLiteral("spiWrite 7 %1\n").arg(words[2 + iLevel])) << strLine.toStdString();
            ++iFrames;
        }
    }
    EXPECT_EQ(iFrames, 2 * (16 + 24));
}

TEST_F(RealPins, InputsAreThreeTransfersOfOneByteOnTheInputSide)
{
    AppConfig::m_eVantorCtrl = SPI_CTRL_24;
    cvantorctrl::InitVantorCtrl(SPI_CTRL_24);
    Take();
    // The bytes received are 41, 42, 43, then 44, 45, 46 in base 16.
    EXPECT_EQ(CVANTORGPIO::ReadInput(9), 1);
    EXPECT_EQ(Take(), "spiXfer 5 00\nspiXfer 5 00\nspiXfer 5 00\n");
    EXPECT_EQ(CVANTORGPIO::ReadInput(16), 0);
}

TEST_F(RealPins, WithoutRightsPinsWorkAndTheRestIsRefused)
{
    CLoggedScreen screen;
    Take();
    GiveRights(false);
    AppConfig::m_eVantorCtrl = VTR3_CTRL;
    AppConfig::ApplyBoardPins();
    CVANTORGPIO::InitGpio();
    QStringList start = Read(QStringLiteral(TEST_DATA_DIR "/pi/start.txt")).split('\n');
    const QStringList pins = start.filter(QRegularExpression(QStringLiteral("^(?!pwm)"))).mid(0, start.size() - 6);
    EXPECT_EQ(Take(), pins.join('\n') + '\n');
    AppConfig::m_stPwmSpndlSettings.iCurFreq = 1000;
    CVANTORGPIO::PwmStart();
    CVANTORGPIO::PwmStop();
    EXPECT_TRUE(cvantorctrl::InitVantorCtrl(SPI_CTRL_24));
    cvantorctrl::WriteOutput(1, 1);
    EXPECT_EQ(cvantorctrl::ReadInput(9), 0);
    EXPECT_EQ(Take(), "");
    EXPECT_EQ(screen.m_lstLog.filter(WHY_NO_PWM_AND_SPI).size(), 2);
    EXPECT_TRUE(screen.m_lstLog.value(0).contains("Spindle PWM not started") &&
                screen.m_lstLog.value(1).contains("SPI board not opened"));
    COperatorScreen::Set(nullptr);
    GiveRights(true);
}

TEST_F(RealPins, TheMachinesWindowSetsUpThePinsOfItsBoardAndNothingElse)
{
    const QString strExpected = Read(QStringLiteral(TEST_DATA_DIR "/pi/start.txt"));
    ASSERT_FALSE(strExpected.isEmpty());
    QProcess vantor;
    Start(vantor, VANTOR_ON_PINS);
    ASSERT_TRUE(vantor.waitForStarted());
    const QString strRecord = m_Folder.filePath(QStringLiteral("record"));
    QElapsedTimer timer;
    timer.start();
    while (Read(strRecord).size() < strExpected.size() && timer.elapsed() < 60'000) QThread::msleep(5);
    EXPECT_EQ(Read(strRecord), strExpected);
    EXPECT_EQ(vantor.state(), QProcess::Running) << vantor.readAll().constData();

    QProcess second;   // it would set the pins up under a running job
    Start(second, VANTOR_ON_PINS);
    ASSERT_TRUE(second.waitForFinished(60'000));
    EXPECT_EQ(second.exitCode(), 1);
    EXPECT_TRUE(second.readAll().contains("already runs"));
    EXPECT_EQ(Read(strRecord), strExpected);

    vantor.terminate();   // the window's own shut-down runs
    ASSERT_TRUE(vantor.waitForFinished(60'000));
    EXPECT_EQ(vantor.exitStatus(), QProcess::NormalExit);
    EXPECT_FALSE(vantor.readAll().contains("virtual"));
}

TEST_F(RealPins, AWindowBuiltWithoutTheLibrariesSaysThatNoMachineWillMove)
{
    QProcess vantor;
    Start(vantor, VANTOR_VIRTUAL);
    QByteArray said;
    while (!said.contains("pins are virtual, no machine will move") && vantor.waitForReadyRead(60'000))
        said += vantor.readAll();
    EXPECT_TRUE(said.contains("pins are virtual, no machine will move")) << said.constData();
    vantor.terminate();
    ASSERT_TRUE(vantor.waitForFinished(60'000));
}

TEST_F(RealPins, TheSelfTestTouchesThemOnlyWhenItMay)
{
    const QString strRecord = m_Folder.filePath(QStringLiteral("record"));
    const QStringList call = {QStringLiteral("--seconds"), QStringLiteral("0.05"), QStringLiteral("--rate"),
                              QStringLiteral("200")};
    QProcess refused;
    Start(refused, SELFTEST_ON_PINS, call);
    refused.write("no\n");
    refused.closeWriteChannel();
    ASSERT_TRUE(refused.waitForFinished(60'000));
    EXPECT_EQ(refused.exitCode(), 1);
    EXPECT_TRUE(refused.readAll().contains("no pin was touched"));
    EXPECT_FALSE(QFile::exists(strRecord));

    for (const bool bAsked : {true, false}) {
        GiveRights(bAsked);
        QProcess allowed;
        Start(allowed, SELFTEST_ON_PINS, bAsked ? call : call + QStringList(QStringLiteral("--yes")));
        if (bAsked) allowed.write("yes\n");
        allowed.closeWriteChannel();
        ASSERT_TRUE(allowed.waitForFinished(60'000));
        const QByteArray said = allowed.readAll();
        EXPECT_EQ(said.contains("Type yes"), bAsked);
        EXPECT_TRUE(said.contains("Edges                   60 of 60\n")) << said.constData();
        EXPECT_FALSE(said.contains("virtual")) << said.constData();
        EXPECT_EQ(said.contains("PWM and SPI             allowed\n"), bAsked);
        EXPECT_EQ(said.contains("NOT ALLOWED\n") && said.contains("a board by SPI are refused"), !bAsked);
        // 40 pulses to warm up and 10 that count on each pin, and low at the beginning and at the end.
        const QString strCalls = Read(strRecord);
        for (const char* szPin : {"2", "4", "27"}) {
            EXPECT_EQ(strCalls.count(QStringLiteral("digitalWrite %1 1\n").arg(szPin)), 50);
            EXPECT_EQ(strCalls.count(QStringLiteral("digitalWrite %1 0\n").arg(szPin)), 52);
        }
        QFile::remove(strRecord);
    }
    GiveRights(true);
}
