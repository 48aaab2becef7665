#include "window/KeyControl.h"

#include "control/AppControl.h"
#include "window/UsbProgram.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {
struct stPress
{
    int iKey;
    // Continuous mode idle; step mode idle without and with speed control; a program runs; another operation runs.
    stKeyDecision idle, step, stepSpeed, program, other;
};
constexpr stKeyDecision NO_SPEED{KEY_NO_SPEED_CTRL}, BUSY{KEY_REFUSE_BUSY}, HOLD{KEY_MEASURE_HOLD};
stPress Same(int iKey, stKeyDecision decision)
{
    return {iKey, decision, decision, decision, decision, decision};
}
stPress Idle(int iKey, stKeyDecision decision)
{
    return {iKey, decision, decision, decision, BUSY, BUSY};
}
stPress Override(int iKey, int iFeed, int iSpeed)
{
    const stKeyDecision feed{KEY_FEED_OVERRIDE, iFeed};
    return {iKey, feed, NO_SPEED, {KEY_SPEED_OVERRIDE, iSpeed}, feed, feed};
}

class KeyPress : public testing::TestWithParam<stPress>
{
};
TEST_P(KeyPress, IsDecidedByTheFirstRowThatFits)
{
    const stPress& test = GetParam();
    EXPECT_EQ(DecideKeyPress(test.iKey, {true, OP_NONE, false}), test.idle);
    EXPECT_EQ(DecideKeyPress(test.iKey, {false, OP_NONE, false}), test.step);
    EXPECT_EQ(DecideKeyPress(test.iKey, {false, OP_NONE, true}), test.stepSpeed);
    EXPECT_EQ(DecideKeyPress(test.iKey, {true, OP_GCODE, false}), test.program);
    EXPECT_EQ(DecideKeyPress(test.iKey, {true, OP_MCH_HOME, true}), test.other);
}
INSTANTIATE_TEST_SUITE_P(All, KeyPress,
                         testing::Values(Same(Qt::Key_NumLock, {}), Same(Qt::Key_Enter, {KEY_TOGGLE_STOP}),
                                         Override(Qt::Key_Asterisk, 10, 1), Override(Qt::Key_Slash, -10, -1),
                                         Same(Qt::Key_Minus, {KEY_SPINDLE_CW}),
                                         stPress{Qt::Key_Period,
                                                 {KEY_SHOW_AND_LIGHT_START},
                                                 {KEY_SHOW_AND_LIGHT_START},
                                                 {KEY_SHOW_AND_LIGHT_START},
                                                 {KEY_LIGHT_START},
                                                 BUSY},
                                         stPress{Qt::Key_0, HOLD, HOLD, HOLD, {KEY_TOGGLE_MODE}, {KEY_TOGGLE_MODE}},
                                         Idle(Qt::Key_1, HOLD), Idle(Qt::Key_5, HOLD), Idle(Qt::Key_7, HOLD),
                                         Idle(Qt::Key_Plus, {KEY_LOAD_STICK}), Idle(Qt::Key_2, {KEY_JOG, -1, Y_AXIS}),
                                         Idle(Qt::Key_8, {KEY_JOG, 1, Y_AXIS}), Idle(Qt::Key_3, {KEY_JOG, -1, Z_AXIS}),
                                         Idle(Qt::Key_9, {KEY_JOG, 1, Z_AXIS}), Idle(Qt::Key_4, {KEY_JOG, -1, X_AXIS}),
                                         Idle(Qt::Key_6, {KEY_JOG, 1, X_AXIS}), Idle(Qt::Key_Return, {})));

TEST(Keys, ChooseAJogStepOfWholePulses)
{
    EXPECT_NEAR(JogStepOf(Qt::Key_1, 0.001), 0.01, 1e-12);
    EXPECT_NEAR(JogStepOf(Qt::Key_5, 0.001), 0.05, 1e-12);
    EXPECT_NEAR(JogStepOf(Qt::Key_7, 0.001), 0.1, 1e-12);
    EXPECT_NEAR(JogStepOf(Qt::Key_1, 0.003), 0.012, 1e-12);
    EXPECT_NEAR(JogStepOf(Qt::Key_7, 0.25), 0.25, 1e-12);
    EXPECT_NEAR(JogStepOf(Qt::Key_7, 0.0), 0.1, 1e-12) << "and it ends";
}

TEST(UsbSearch, TakesTheFirstFileOfTheFirstFolderThatHasOne)
{
    QTemporaryDir mount;
    const auto Find = [&] { return FindUsbProgram(mount.path()); };
    const auto FindWith = [&](const char* szPath) {
        const QString strPath = mount.filePath(QString::fromLatin1(szPath));
        EXPECT_TRUE(QDir().mkpath(QFileInfo(strPath).path()) && QFile(strPath).open(QIODevice::WriteOnly));
        return QDir(mount.path()).relativeFilePath(Find().strFile).toStdString();
    };
    EXPECT_FALSE(Find().bStickFound);
    EXPECT_FALSE(FindUsbProgram(mount.filePath("gone")).bStickFound);
    for (const char* szNone : {"loose.ncc", "A/PART.NCC", "A/readme.md", "B/sub/deep.ncc", "C/a.ngc"})
        EXPECT_EQ(FindWith(szNone), "") << szNone;
    EXPECT_TRUE(Find().bStickFound);
    EXPECT_EQ(FindWith("C/c.txt"), "C/c.txt");
    EXPECT_EQ(FindWith("C/b.tap"), "C/b.tap");
    EXPECT_EQ(FindWith("D/a.ncc"), "C/b.tap");
    EXPECT_EQ(FindWith("B/x.ncc"), "B/x.ncc");
}
}   // namespace
