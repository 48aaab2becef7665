#include "config/AppConfig.h"
#include "support/CleanMachine.h"
#include "support/Files.h"
#include "support/FullDisk.h"
#include "ui/ScreenSupport.h"
#include "ui/TestHost.h"
#include "zprofile/DlgJobSettings.h"
#include "zprofile/DlgZProfiler.h"

#include <QFileDialog>
#include <QLabel>

namespace {
class JobSettings : public CCleanMachine
{
protected:
    JobSettings()
    {
        m_Host.Place(m_Screen);
        m_Screen.ConfigSettings();
        WriteAll(m_Home.filePath("plate.txt"), "2\n3\n0,0,0\n10,0,-0.25\n20,0,0.5\n20,10,0\n10,10,0\n0,10,0.125\n");
    }
    void Do(const char* szName) { Click(m_Screen, szName); }
    QPushButton& Create() { return Child(m_Screen, "Btn_CreateZProfile"); }
    auto& Grid() { return AppConfig::m_ZProfileInfo.lstPoints; }
    QString Shown()
    {
        QStringList texts;
        for (const char* szName : {"Rows", "Nodes", "Along", "Across", "Heights", "Use"})
            texts.append(Child<QLabel>(m_Screen, QString("Lbl_Grid") + szName).text());
        return texts.join('|');
    }
    void LoadPlate()
    {
        const CAnswer file(CAnswer::File(m_Home.filePath("plate.txt")));
        Do("Btn_LoadZProfile");
    }

    CTestHost m_Host;
    CdlgJobSettings m_Screen;
};
using L = QStringList;
const QString NO_GRID = "Z-Profile not created!\nPlease create z-profile with atleast 2X2 Points";
}   // namespace

TEST_F(JobSettings, LoadsAGridAndTellsWhichOneIsInForce)
{
    EXPECT_EQ(Shown(), "0|0|-|-|-|No");
    LoadPlate();
    EXPECT_EQ(m_Host.TakeLog(), L("Z-Profile loaded from\n" + m_Home.filePath("plate.txt")));
    EXPECT_EQ(Shown(), "2|3|0.0000 to 20.0000 mm|0.0000 to 10.0000 mm|-0.2500 to 0.5000 mm|No");
    EXPECT_TRUE(WaitFor([this] { return Child(m_Screen, "Btn_LoadZProfile").styleSheet() == BTN_BKGND_GRAY; }));
    {
        const CAnswer no(QMessageBox::No);
        Do("Btn_LoadZProfile");
        EXPECT_EQ(no.Title() + '/' + no.Text(), "Information/Z-Profile already created. Load new?");
    }
    {
        const CAnswer yes(QMessageBox::Yes), file(CAnswer::File(""));
        Do("Btn_LoadZProfile");
        EXPECT_EQ(file.Title(), "Select a file to Open...");
    }
    EXPECT_EQ(Grid().size(), 2u);
    WriteAll(m_Home.filePath("empty.txt"), "");
    const CAnswer yes(QMessageBox::Yes), file(CAnswer::File(m_Home.filePath("empty.txt")));
    Do("Btn_LoadZProfile");
    EXPECT_EQ(m_Host.TakeLog(), L("File read error\n" + m_Home.filePath("empty.txt")));
    EXPECT_EQ(Shown(), "0|0|-|-|-|No");   // wanted: the old grid is gone
}

TEST_F(JobSettings, SavesAGridUnderATextName)
{
    Do("Btn_SaveZProfile");
    Grid() = {{{}}};
    Do("Btn_SaveZProfile");
    EXPECT_EQ(m_Host.TakeLog(), L({NO_GRID, NO_GRID}));
    Grid() = {{{}, {1.5}}, {{}, {1.5}}};
    {
        const CAnswer file(CAnswer::File(m_Home.filePath("saved.TXT")));
        Do("Btn_SaveZProfile");
        EXPECT_EQ(file.Title(), "Select a file to Open...");
    }
    EXPECT_EQ(ReadAll(m_Home.filePath("saved.TXT.txt")), "2\n2\n0,0,0\n1.5,0,0\n0,0,0\n1.5,0,0\n");
    m_Host.TakeLog();
    {   // the dialog has asked about the name as typed only
        const CAnswer file(CAnswer::File(m_Home.filePath("plate"))), no(QMessageBox::No);
        Do("Btn_SaveZProfile");
    }
    EXPECT_EQ(m_Host.TakeLog(), L());
    const CFullDisk disk(10);
    const CAnswer file(CAnswer::File(m_Home.filePath("plate"))), yes(QMessageBox::Yes);
    Do("Btn_SaveZProfile");
    EXPECT_TRUE(m_Host.TakeLog().value(0).startsWith("Z-Profile not saved"));
    EXPECT_TRUE(ReadAll(m_Home.filePath("plate.txt")).startsWith("2\n3\n"));
}

TEST_F(JobSettings, FilesWaitForTheMachine)
{
    m_Host.Machine().m_eOperation = OP_WORK_HOME;
    Do("Btn_SaveZProfile");
    Do("Btn_LoadZProfile");
    m_Host.Machine().m_eOperation = OP_NONE;
    m_Host.Machine().m_AxisCtrl[Z_AXIS].m_bMoving = true;
    Do("Btn_SaveZProfile");
    m_Host.Machine().m_AxisCtrl[Z_AXIS].m_bMoving = false;
    EXPECT_EQ(m_Host.TakeLog(), QStringList(3, "Machine in use"));
}

TEST_F(JobSettings, CreatesAGridAfterItsQuestions)
{
    AppControl& machine = m_Host.Machine();
    AppConfig::m_bHomeSensorsUsed = true;
    AppConfig::m_bEmergencyStopON = true;
    Do("Btn_CreateZProfile");
    AppConfig::m_bEmergencyStopON = false;
    Do("Btn_CreateZProfile");
    EXPECT_EQ(m_Host.TakeLog(),
              L({"Release Emergency Switch", "Homing not done!\nUse \"Move Home\" in user Settings"}));
    AppConfig::m_bHomeSensorsUsed = false;
    Grid() = {{{}, {}}, {{}, {}}};
    {
        const CAnswer no(QMessageBox::No);
        Do("Btn_CreateZProfile");
        EXPECT_EQ(no.Title() + '/' + no.Text(), "Information/Z-Profile already created. Create new?");
    }
    {
        const CAnswer yes(QMessageBox::Yes), cancel([](QWidget&modal) { Click(modal, "Btn_Cancel"); });
        Do("Btn_CreateZProfile");
    }
    EXPECT_EQ(machine.m_eOperation, OP_NONE);
    EXPECT_TRUE(WaitFor([this] { return Create().styleSheet() == BTN_BKGND_GRAY; }));
    Grid().clear();
    machine.m_AxisCtrl[X_AXIS].m_bMoving = true;
    const auto Press = [](QWidget& modal) { Click(modal, "Btn_Ok"); };
    {
        const CAnswer ok(Press);
        Do("Btn_CreateZProfile");
    }
    EXPECT_EQ(machine.GetErrMsg(), "Axis in use");
    EXPECT_TRUE(Create().isEnabled());
    EXPECT_TRUE(WaitFor([this] { return Create().styleSheet() == BTN_BKGND_GRAY; }));
    machine.m_AxisCtrl[X_AXIS].m_bMoving = false;
    {
        const CAnswer ok(Press);
        Do("Btn_CreateZProfile");
    }
    EXPECT_EQ(machine.m_eOperation, OP_Z_PROFILE);
    for (const QPushButton* pButton : m_Screen.findChildren<QPushButton*>()) EXPECT_FALSE(pButton->isEnabled());
    EXPECT_EQ(Create().styleSheet(), BTN_BKGND_GREEN);
    SaveScreen(m_Screen, "job-settings-measuring");
    machine.StopAll();
    machine.wait();
    machine.m_eOperation = OP_NONE;
    m_Screen.ResetUI();
    EXPECT_TRUE(Create().isEnabled() && Create().styleSheet() == BTN_BKGND_GRAY);
}

TEST_F(JobSettings, IsTidyAndStays)
{
    LoadPlate();
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
    EXPECT_EQ(dialog.windowTitle(), "Z Profile Settings");
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
        const CTestHost::stKeypad& pad = m_Host.m_lstKeypads.back();
        EXPECT_EQ(pad.strTitle + '/' + pad.strCtrlTxt + '/' + pad.strValue,
                  QString("%1/%1/%2").arg(value.szLabel, value.szBefore));
        EXPECT_EQ(std::tuple(pad.fLow, pad.fHigh, pad.bShowSign, pad.iPrecision), std::tuple(0.0, 0.0, true, 4));
        EXPECT_EQ(value.fValue, -12345.6);
        EXPECT_EQ(button.text(), QString("-12345.6000\n") + value.szLabel);
    }
    SaveScreen(dialog, "z-profiler");
    EXPECT_TIDY(dialog);
    Click(dialog, "Btn_Cancel");
    EXPECT_EQ(dialog.result(), QDialog::Rejected);
    EXPECT_FALSE(dialog.isVisible());
}
