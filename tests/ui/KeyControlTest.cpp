#include "ui/KeyControl.h"

#include "machine/AppControl.h"
#include "ui/UsbProgram.h"

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

TEST(Keys, OfHoldsActByTheKindOfPress)
{
    struct stHold
    {
        int iKey;
        eKeyAction eShort, eShortStep, eHeld;
    };
    for (const stHold& test : {stHold{Qt::Key_0, KEY_TOGGLE_MODE, KEY_TOGGLE_MODE, KEY_HOME_ALL},
                               stHold{Qt::Key_1, KEY_MOVE_Z_ZERO, KEY_SET_JOG_STEP, KEY_SET_Z_ZERO},
                               stHold{Qt::Key_5, KEY_MOVE_ALL_ZERO, KEY_SET_JOG_STEP, KEY_SET_ALL_ZERO},
                               stHold{Qt::Key_7, KEY_MOVE_XY_ZERO, KEY_SET_JOG_STEP, KEY_SET_XY_ZERO},
                               stHold{Qt::Key_6, KEY_NOTHING, KEY_NOTHING, KEY_NOTHING},
                               stHold{-1, KEY_NOTHING, KEY_NOTHING, KEY_NOTHING}}) {
        EXPECT_EQ(DecideShortPress(test.iKey, true).eAction, test.eShort);
        EXPECT_EQ(DecideShortPress(test.iKey, false).eAction, test.eShortStep);
        EXPECT_EQ(DecideHeldKey(test.iKey).eAction, test.eHeld);
    }
}

TEST(Keys, ChooseAJogStepOfWholePulses)
{
    EXPECT_NEAR(JogStepOf(Qt::Key_1, 0.001), 0.01, 1e-12);
    EXPECT_NEAR(JogStepOf(Qt::Key_5, 0.001), 0.05, 1e-12);
    EXPECT_NEAR(JogStepOf(Qt::Key_7, 0.001), 0.1, 1e-12);
    EXPECT_NEAR(JogStepOf(Qt::Key_1, 0.003), 0.012, 1e-12);
    EXPECT_NEAR(JogStepOf(Qt::Key_7, 0.25), 0.25, 1e-12);
    EXPECT_NEAR(JogStepOf(Qt::Key_7, 0.0), 0.1, 1e-12) << "and it ends";
}

class UsbSearch : public testing::Test
{
protected:
    void Make(const char* szPath)
    {
        const QString strPath = m_Mount.filePath(QString::fromLatin1(szPath));
        ASSERT_TRUE(QDir().mkpath(QFileInfo(strPath).path()));
        ASSERT_TRUE(QFile(strPath).open(QIODevice::WriteOnly));
    }
    stUsbProgram Find() { return FindUsbProgram(m_Mount.path()); }
    QTemporaryDir m_Mount;
};
TEST_F(UsbSearch, FindsNoStickInAnEmptyOrMissingFolder)
{
    EXPECT_FALSE(Find().bStickFound);
    EXPECT_FALSE(FindUsbProgram(m_Mount.filePath("gone")).bStickFound);
}
TEST_F(UsbSearch, TakesTheFirstFileOfTheFirstFolderThatHasOne)
{
    Make("A/readme.md");
    Make("B/sub/deep.ncc");
    Make("C/b.tap");
    Make("C/a.ngc");
    Make("C/c.txt");
    Make("D/a.ncc");
    EXPECT_EQ(Find().strFile, m_Mount.filePath("C/b.tap"));
    Make("B/x.ncc");
    EXPECT_EQ(Find().strFile, m_Mount.filePath("B/x.ncc"));
}
TEST_F(UsbSearch, KnowsLowerCaseEndingsInFoldersOnly)
{
    Make("A/PART.NCC");
    Make("loose.ncc");
    EXPECT_TRUE(Find().bStickFound);
    EXPECT_EQ(Find().strFile, QString());
}
}   // namespace
