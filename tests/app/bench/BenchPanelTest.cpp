#include "app/bench/BenchPanel.h"

#include "app/RunWindow.h"
#include "config/AppConfig.h"
#include "platform/WiringPi.h"
#include "support/CleanMachine.h"
#include "support/screens/ScreenSupport.h"

namespace {
class BenchPanel : public CCleanMachine
{
protected:
    BenchPanel() { CVirtualPins::SetObserver(&m_Machine); }
    int Level(int iPin) const { return CVirtualPins::Level(iPin); }
    const bool m_bLoaded = AppConfig::LoadConfig(CONFIG_FILE);   // first: the panel is wired by it
    CBenchPanel::stWiring m_Wiring = CBenchPanel::WiringOfSettings();
    CVirtualMachine m_Machine{m_Wiring.machine};
    CBenchPanel m_Panel{m_Machine, m_Wiring};
};

TEST_F(BenchPanel, SwitchesSetTheInputsAndShowThem)
{
    ShowWindow(m_Panel);
    const std::pair<const char*, int> switches[] = {{"Btn_EStop", AppConfig::m_iEStopInput},
                                                    {"Btn_Probe", AppConfig::m_iZProbeInput},
                                                    {"Btn_Home_X", AppConfig::m_iAxisMchHomeSensorInput[X_AXIS]},
                                                    {"Btn_Home_Y", AppConfig::m_iAxisMchHomeSensorInput[Y_AXIS]},
                                                    {"Btn_Home_Z", AppConfig::m_iAxisMchHomeSensorInput[Z_AXIS]},
                                                    {"Btn_Input1", AppConfig::m_lstIPs.value(1)}};
    for (const auto& [szName, iPin] : switches) {
        EXPECT_EQ(Level(iPin), 0) << szName;
        Click(m_Panel, szName);
        EXPECT_EQ(Level(iPin), 1) << szName;
        Click(m_Panel, szName);
        EXPECT_EQ(Level(iPin), 0) << szName;
        CVirtualPins::SetInput(iPin, 1);   // the machine's own doing
        EXPECT_TRUE(WaitFor([&] { return Child(m_Panel, szName).isChecked(); })) << szName;
        CVirtualPins::SetInput(iPin, 0);
    }
    EXPECT_FALSE(Child(m_Panel, "Btn_Home_A").isEnabled());
    // However short the click, the supervision loop must see it.
    Click(m_Panel, "Btn_Start");
    EXPECT_EQ(Level(AppConfig::m_iPgmStartInput), 1);
    EXPECT_TRUE(WaitFor([&] { return Level(AppConfig::m_iPgmStartInput) == 0; }));
}

TEST_F(BenchPanel, ShowsCarriagesAndOutputs)
{
    ShowWindow(m_Panel);
    EXPECT_EQ(Child<QLabel>(m_Panel, "Lbl_Pos_X").text(), "90.0000 mm");   // in the middle of 0 to 180
    EXPECT_EQ(Child<QLabel>(m_Panel, "Lbl_Pos_A").text(), "-");
    m_Machine.PlaceCarriage(X_AXIS, -1000);
    EXPECT_TRUE(WaitFor([&] {
        return Child<QLabel>(m_Panel, "Lbl_Pos_X").text() ==
               QString::number(-1000 * m_Wiring.machine.axes[X_AXIS].fMmPerPulse, 'f', 4) + " mm";
    }));
    const QLabel& lamp = Child<QLabel>(m_Panel, "Lamp_SpindleCW");
    const QString strDark = lamp.styleSheet();
    digitalWrite(AppConfig::m_lstMCodesPin.value(3), 1);
    digitalWrite(AppConfig::m_iPgmStatusOutput, 1);
    EXPECT_TRUE(WaitFor([&] { return lamp.styleSheet() != strDark; }));
    EXPECT_EQ(Child<QLabel>(m_Panel, "Lamp_Programruns").styleSheet(), lamp.styleSheet());
    EXPECT_EQ(Child<QLabel>(m_Panel, "Lamp_SpindleCCW").styleSheet(), strDark);
    EXPECT_TIDY(m_Panel);
    SaveScreen(m_Panel, "bench-panel");
}

TEST(BenchPlaces, AreSideBySideAndNeverOverStop)
{
    const QSize panel(320, 800);
    const auto Places = [&](int iWidth, int iHeight) {   // of a window that has been put in the middle
        const QRect screen(0, 0, iWidth, iHeight);
        return CBenchPanel::PlacesOn(screen, QRect((iWidth - 1250) / 2, (iHeight - 840) / 2, 1250, 840), panel);
    };
    for (const QSize& screen : {QSize(1920, 1080), QSize(1600, 900)}) {
        const auto places = Places(screen.width(), screen.height());
        EXPECT_GE(places.window.x(), 0);
        EXPECT_GE(places.panel.x(), places.window.x() + 1250);
        EXPECT_LE(places.panel.x() + panel.width(), screen.width());
    }
    EXPECT_EQ(Places(1366, 768).window, QPoint(0, 0));
    EXPECT_EQ(Places(1366, 768).panel, QPoint(0, 0));
}

TEST(RunGuarded, TellsWhatWasThrownAndEndsWithoutAnErrorStatus)
{
    bool bStopped = false;
    const auto Stop = [&] { bStopped = true; };
    EXPECT_EQ(RunGuarded([] { return 7; }, Stop), 7);
    EXPECT_FALSE(bStopped);
    CAnswer box(QMessageBox::Ok);
    EXPECT_EQ(RunGuarded([]() -> int { throw 1; }, Stop), 0);
    EXPECT_TRUE(bStopped);
    EXPECT_EQ(box.Title(), "error here");
    EXPECT_EQ(box.Text(), "something screwed up");
}
}   // namespace
