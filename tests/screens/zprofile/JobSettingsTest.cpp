#include "config/AppConfig.h"
#include "screens/zprofile/DlgJobSettings.h"
#include "screens/zprofile/DlgZProfiler.h"
#include "support/CleanMachine.h"
#include "support/Files.h"
#include "support/FullDisk.h"
#include "support/screens/PressAndAnswer.h"
#include "support/screens/TestHost.h"
#include "widgets/ButtonStyle.h"

#include <QLabel>

namespace {
using L = QStringList;
class JobSettings : public CCleanMachine
{
protected:
    JobSettings()
    {
        m_Host.Place(m_Screen);
        m_Screen.ConfigSettings();
        WriteAll(Path("plate.txt"), "2\n3\n0,0,0\n10,0,-0.25\n20,0,0.5\n20,10,0\n10,10,0\n0,10,0.125\n");
    }
    QString Path(const char* szName) const { return m_Home.filePath(szName); }
    CAnswer::Fn File(const char* szName) { return CAnswer::File(*szName ? Path(szName) : QString()); }
    static CAnswer::Fn Key(const char* szName)
    {
        return [szName](QWidget& modal) { Click(modal, szName); };
    }
    QPushButton& Button(const QString& strName) { return Child(m_Screen, "Btn_" + strName + "ZProfile"); }
    template <class... A> QString Do(const char* szName, const A&... answers)
    {
        return PressAndAnswer(Button(szName), answers...);
    }
    QString Log() { return m_Host.TakeLog().join('|'); }
    auto& Grid() { return AppConfig::m_ZProfileInfo.lstPoints; }
    QString Shown()
    {
        L texts;
        for (const char* szName : {"Rows", "Nodes", "Along", "Across", "Heights", "Use"})
            texts.append(Child<QLabel>(m_Screen, QString("Lbl_Grid") + szName).text());
        return texts.join('|');
    }

    CTestHost m_Host;
    CdlgJobSettings m_Screen;
};
}   // namespace

TEST_F(JobSettings, LoadsAGridAndTellsWhichOneIsInForce)
{
    EXPECT_EQ(Shown(), "0|0|-|-|-|No");
    EXPECT_EQ(Do("Load", File("plate.txt")), "Select a file to Open...: ");
    EXPECT_EQ(Log(), "Z-Profile loaded from\n" + Path("plate.txt"));
    EXPECT_EQ(Shown(), "2|3|0.0000 to 20.0000 mm|0.0000 to 10.0000 mm|-0.2500 to 0.5000 mm|No");
    EXPECT_TRUE(WaitFor([this] { return Button("Load").styleSheet() == BTN_BKGND_GRAY; }));
    EXPECT_EQ(Do("Load", QMessageBox::No), "Information: Z-Profile already created. Load new?");
    Do("Load", QMessageBox::Yes, File(""));   // cancelled
    EXPECT_EQ(Grid().size(), 2u);
    WriteAll(Path("empty.txt"), "");
    AppConfig::m_bUseZProfile = true;
    Do("Load", QMessageBox::Yes, File("empty.txt"));
    EXPECT_EQ(Log(), "File read error\n" + Path("empty.txt") + "|Use Z Profile is off: there is no Z-Profile");
    EXPECT_EQ(Shown(), "0|0|-|-|-|No");   // wanted: the old grid is gone
}

TEST_F(JobSettings, SavesAGridUnderATextName)
{
    const QString strNone = "Z-Profile not created!\nPlease create z-profile with atleast 2X2 Points";
    Do("Save");
    Grid() = {{{}}};
    Do("Save");
    EXPECT_EQ(Log(), strNone + '|' + strNone);
    Grid() = {{{}, {1.5}}, {{}, {1.5}}};
    EXPECT_EQ(Do("Save", File("saved.TXT")), "Select a file to Open...: ");
    EXPECT_EQ(ReadAll(Path("saved.TXT.txt")), "2\n2\n0,0,0\n1.5,0,0\n0,0,0\n1.5,0,0\n");
    EXPECT_EQ(Log(), "Z-Profile saved to\n" + Path("saved.TXT.txt"));
    Do("Save", File("plate"), QMessageBox::No);   // the dialog has asked about the name as typed only
    EXPECT_EQ(Log(), "");
    const CFullDisk disk(10);
    Do("Save", File("plate"), QMessageBox::Yes);
    EXPECT_TRUE(Log().startsWith("Z-Profile not saved"));
    EXPECT_TRUE(ReadAll(Path("plate.txt")).startsWith("2\n3\n"));
}

TEST_F(JobSettings, MeasuresAGrid)
{
    AppControl& machine = m_Host.Machine();
    Do("Create", Key("Btn_Ok"));
    EXPECT_EQ(machine.m_eOperation, OP_Z_PROFILE);
    for (const char* szName : {"Create", "Save", "Load"}) EXPECT_FALSE(Button(szName).isEnabled());
    EXPECT_EQ(Button("Create").styleSheet(), BTN_BKGND_GREEN);
    EXPECT_TRUE(Shown().startsWith("Measuring...|"));
    SaveScreen(m_Screen, "job-settings-measuring");
    m_Screen.ResetUI();   // the window does so before it clears the operation, and the worker may still be leaving
    EXPECT_TRUE(Button("Create").isEnabled() && Button("Create").styleSheet() == BTN_BKGND_GRAY);
    machine.StopAll();
    EXPECT_TRUE(WaitFor([this] { return Shown().startsWith("0|"); }));
}

TEST_F(JobSettings, AMeasurementIsRefusedOrDeclined)
{
    AppControl& machine = m_Host.Machine();
    AppConfig::m_bHomeSensorsUsed = true;
    AppConfig::m_bEmergencyStopON = true;
    Do("Create");
    AppConfig::m_bEmergencyStopON = false;
    Do("Create");
    EXPECT_EQ(Log(), "Release Emergency Switch|Homing not done!\nUse \"Move Home\" in user Settings");
    AppConfig::m_bHomeSensorsUsed = false;
    Grid() = {{{}, {}}, {{}, {}}};
    EXPECT_EQ(Do("Create", QMessageBox::No), "Information: Z-Profile already created. Create new?");
    EXPECT_EQ(Do("Create", QMessageBox::Yes, Key("Btn_Cancel")).section('|', 1), "Z Profile Settings: ");
    EXPECT_EQ(machine.GetErrMsg(), "");
    machine.m_AxisCtrl[X_AXIS].m_bMoving = true;
    Do("Create", QMessageBox::Yes, Key("Btn_Ok"));
    EXPECT_EQ(machine.GetErrMsg(), "Axis in use");
    machine.m_AxisCtrl[X_AXIS].m_bMoving = false;
    EXPECT_TRUE(Button("Create").isEnabled());
    EXPECT_TRUE(WaitFor([this] { return Button("Create").styleSheet() == BTN_BKGND_GRAY; }));
}

TEST_F(JobSettings, IsTidyAndStays)
{
    Do("Load", File("plate.txt"));
    AppConfig::m_bUseZProfile = true;
    m_Screen.hide();
    m_Screen.show();   // what has changed elsewhere is seen
    EXPECT_TRUE(Shown().endsWith("|Yes"));
    QTest::keyClick(&m_Screen, Qt::Key_Escape);
    EXPECT_TRUE(m_Screen.isVisible());
    EXPECT_EQ(m_Screen.size(), QSize(900, 390));
    SaveScreen(m_Screen, "job-settings");
    EXPECT_TIDY(m_Screen);
}

TEST_F(JobSettings, TheProfilerTakesItsValuesAtOnce)
{
    stZProfileInfo& info = AppConfig::m_ZProfileInfo;
    dlgZProfiler dialog(&m_Host);
    dialog.ConfigSettings();
    ShowWindow(dialog);
    SaveScreen(dialog, "z-profiler");
    const struct
    {
        const char *szButton, *szLabel, *szBefore;
        double& fValue;
    } values[] = {{"Btn_Z_Max_Range", "Z Range", "3.0000", info.fZRange},
                  {"Btn_XYStep", "X-Y Step", "10.0000", info.fXYStep},
                  {"Btn_Length", "Length", "150.0000", info.fLength},
                  {"Btn_Width", "Width", "150.0000", info.fWidth},
                  {"Btn_Z_Offset", "Z Offset", "0.0000", info.fZStart}};
    for (const auto& value : values) {
        QPushButton& button = Child(dialog, value.szButton);
        EXPECT_EQ(button.text(), QString(value.szBefore) + '\n' + value.szLabel);
        m_Host.Type(-12345.6);   // no range is imposed
        Click(button);
        EXPECT_TRUE(m_Host.m_lstKeypads.back().bShowSign);
        EXPECT_EQ(value.fValue, -12345.6);
    }
    EXPECT_TIDY(dialog);
    Click(dialog, "Btn_Cancel");   // what was typed stays
    EXPECT_TRUE(dialog.result() == QDialog::Rejected && !dialog.isVisible());
}
