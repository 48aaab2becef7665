#include "screens/jog/DlgManual.h"
#include "support/CleanMachine.h"
#include "support/screens/ScreenSupport.h"
#include "support/screens/TestHost.h"
#include "widgets/ButtonStyle.h"

#include <cmath>

namespace {
// The panel on a real machine whose axes turn on threads of their own.
class ThreadsJogPanel : public CCleanMachine
{
protected:
    ThreadsJogPanel()
    {
        AppConfig::m_iMchType = 5;
        for (int axis = 0; axis < MAX_AXES; ++axis) {
            AppConfig::m_iAxisPulseOutput[axis] = static_cast<qint8>(2 + 2 * axis);
            AppConfig::m_iAxisDirOutput[axis] = static_cast<qint8>(3 + 2 * axis);
        }
        m_Host.m_Machine.InitMachine();
    }
    void Open()
    {
        m_Panel.ConfigSettings();
        m_Host.Place(m_Panel, {540, 450});
    }
    AxisCtrl& Axis(int axis) { return m_Host.m_Machine.m_AxisCtrl[axis]; }
    bool Moving() { return !m_Host.m_Machine.IsMachineIdle(); }
    bool StandsStill()
    {
        return WaitFor([this] { return !Moving(); });
    }
    // "X+ Y-": the axes that left their place since the start.
    std::string Moved()
    {
        QStringList moved;
        for (int axis = 0; axis < MAX_AXES; ++axis) {
            const double fPos = m_Host.m_Machine.GetCurPos(static_cast<eAxis>(axis));
            if (std::abs(fPos) > 1e-9) moved.append(QString("XYZAB"[axis]) + (fPos > 0.0 ? '+' : '-'));
        }
        return moved.join(' ').toStdString();
    }
    CTestHost m_Host;
    CDlgManual m_Panel;
};

TEST_F(ThreadsJogPanel, EveryButtonRunsItsAxesWhileItIsHeld)
{
    Open();
    const std::pair<const char*, const char*> table[] = {
        {"North", "Y+"},        {"South", "Y-"},        {"East", "X+"}, {"West", "X-"},  {"NorthEast", "X+ Y+"},
        {"SouthEast", "X+ Y-"}, {"SouthWest", "X- Y-"}, {"ZUp", "Z+"},  {"ZDown", "Z-"}, {"NorthWest", "X- Y+"},
        {"CW_A", "A+"},         {"ACW_A", "A-"},        {"CW_B", "B+"}, {"ACW_B", "B-"}};
    for (const auto& [szButton, szMoved] : table) {
        for (int axis = 0; axis < MAX_AXES; ++axis) Axis(axis).SetCurPos(0.0);
        QPushButton& button = Child(m_Panel, QString("Btn_Jog") + szButton);
        TouchDown(button, button.rect().center());
        EXPECT_EQ(button.styleSheet(), BTN_BKGND_BLUE) << szButton;
        EXPECT_TRUE(WaitFor([&] { return Moved() == szMoved; })) << szButton << ": " << Moved();
        EXPECT_TRUE(Moving());
        TouchUp(button, button.rect().center());
        EXPECT_EQ(button.styleSheet(), BTN_BKGND_GRAY) << szButton;
        EXPECT_TRUE(StandsStill()) << szButton;
        EXPECT_EQ(Moved(), szMoved);
    }
    EXPECT_EQ(m_Host.TakeLog(), QStringList());
}

TEST_F(ThreadsJogPanel, AJogEndsWhenItIsNoLongerHeld)
{
    Open();
    QPushButton& button = Child(m_Panel, "Btn_JogEast");
    const QPoint middle = button.rect().center();
    // Its axis may be an operation's by then, where the jog has met its limit.
    TouchDown(button, middle);
    ASSERT_TRUE(WaitFor([&] { return Moving(); }));
    m_Host.m_Machine.m_eOperation = OP_MCH_HOME;
    TouchUp(button, middle);
    EXPECT_FALSE(Axis(X_AXIS).m_bDecelerate);
    m_Host.m_Machine.m_eOperation = OP_NONE;
    Axis(X_AXIS).Stop();
    QDialog box(&m_Host);
    box.setModal(true);
    QWidget other;
    const std::pair<const char*, std::function<void()>> ways[] = {
        {"another window becomes the active one",
         [&] {
             EXPECT_EQ(QApplication::activeWindow(), &m_Host);
             ShowWindow(other);
             other.activateWindow();
         }},
        {"the finger leaves",
         [&] {
             TouchMove(button, {-5, 20});
         }},
        {"the panel is disabled", [&] { m_Panel.setEnabled(false); }},
        {"the panel is hidden", [&] { m_Panel.hide(); }},
        {"the window is disabled", [&] { m_Host.setEnabled(false); }},
        {"the window is hidden", [&] { m_Host.hide(); }},
        {"a box blocks the window", [&] { ShowWindow(box); }}};
    for (const auto& [szWay, fnEnd] : ways) {
        TouchDown(button, middle);
        EXPECT_TRUE(WaitFor([&] { return Moving(); })) << szWay;
        fnEnd();
        EXPECT_TRUE(StandsStill()) << szWay;
        box.hide();
        other.hide();
        m_Host.activateWindow();
        m_Host.setEnabled(true);
        m_Panel.setEnabled(true);
        m_Panel.show();
        ShowWindow(m_Host);
        TouchMove(button, middle);   // back on the button, and still down: that is no new press
        TouchMove(button, middle + QPoint(1, 1));
        EXPECT_FALSE(Moving()) << szWay;
        TouchUp(button, middle);
        EXPECT_FALSE(button.isDown()) << szWay;
    }
}

TEST_F(ThreadsJogPanel, StaysSilentUnderAnEmergencyStop)
{
    Open();
    AppConfig::m_bEmergencyStopON = true;
    QPushButton& button = Child(m_Panel, "Btn_JogZUp");
    Press(button);
    EXPECT_EQ(button.styleSheet(), BTN_BKGND_BLUE);
    EXPECT_TRUE(WaitFor([&] { return button.styleSheet() == BTN_BKGND_GRAY; }));
    Release(button);
    EXPECT_FALSE(Moving());
    EXPECT_EQ(m_Host.TakeLog(), QStringList("Release Emergency Switch"));
    QTest::keyClick(&m_Panel, Qt::Key_Escape);
    EXPECT_TRUE(m_Panel.isVisible());
}

TEST_F(ThreadsJogPanel, MovesOnlyTheAxesThatTheControllerHasSetUp)
{
    AppConfig::m_iMchType = 3;
    Open();
    for (const char* szName : {"Btn_JogCW_A", "Btn_JogACW_A", "Btn_JogCW_B", "Btn_JogACW_B", "Lbl_A", "Lbl_B"})
        EXPECT_FALSE(Child<QWidget>(m_Panel, szName).isEnabled()) << szName;
    EXPECT_TIDY(m_Panel);
    SaveScreen(m_Panel, "jog-panel-3-axes");

    AppConfig::m_iMchType = 5;
    m_Panel.ConfigSettings();
    EXPECT_TIDY(m_Panel);
    SaveScreen(m_Panel, "jog-panel");
    AppConfig::m_iMchType = 3;   // another board was chosen; it counts from the next start on
    Press(Child(m_Panel, "Btn_JogCW_A"));
    Release(Child(m_Panel, "Btn_JogCW_A"));
    EXPECT_FALSE(Moving());
    EXPECT_EQ(m_Host.TakeLog(), QStringList("Please Save and Restart application for the changes to take affect"));
}
}   // namespace
