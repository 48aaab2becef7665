#include "screens/dxf/DlgDxfToGCode.h"

#include "app/RunWindow.h"
#include "config/AppConfig.h"
#include "motion/AllAxisCtrl.h"
#include "screens/gcode/DlgGCode.h"
#include "support/CleanMachine.h"
#include "support/Files.h"
#include "support/screens/PressAndAnswer.h"
#include "support/screens/TestHost.h"
#include "widgets/ButtonStyle.h"
#include "window/MainWindow.h"

#include <QDir>
#include <QLineEdit>
#include <QListWidget>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <typeinfo>

namespace {
QString Shown(const CTestHost::stKeypad& keypad)
{
    return QString("%1 %2|%3|%4|%5 to %6|%7|%8")
        .arg(keypad.pButton->objectName(), keypad.strTitle, keypad.strCtrlTxt, keypad.strValue)
        .arg(keypad.fLow)
        .arg(keypad.fHigh)
        .arg(keypad.bShowSign ? "sign" : "no sign")
        .arg(keypad.iPrecision);
}

class DxfSettings : public CCleanMachine
{
protected:
    DxfSettings() { ShowWindow(m_Dialog); }
    QString Ask(const char* szButton, double fTyped)
    {
        m_Host.Type(fTyped);
        Click(m_Dialog, szButton);
        return Shown(m_Host.m_lstKeypads.back());
    }
    CTestHost m_Host;
    dlgDxfToGCode m_Dialog{&m_Host};
};
}   // namespace

TEST_F(DxfSettings, EachButtonAsksForItsValue)
{
    SaveScreen(m_Dialog, "dxf-settings");
    EXPECT_TIDY(m_Dialog);
    const std::pair<const char*, const char*> texts[] = {{"Btn_Feed", "600\nFeed"},
                                                         {"Btn_EndMillDia", "1\nEnd-Mill "},
                                                         {"Btn_AxisStep_Z", "1\nz Step"},
                                                         {"Btn_ShapeDepth", "-1.0000\nDepth"}};
    for (const auto& [szButton, szText] : texts) EXPECT_EQ(Child(m_Dialog, szButton).text(), szText);
    AppConfig::m_GCodeRunSettings.bUsePrgmFeed = true;
    const dlgDxfToGCode counts(&m_Host);
    for (const auto& [pDialog, szFeed] :
         {std::pair<const QDialog*, const char*>{&m_Dialog, "does not count: "}, {&counts, "counts: "}})
        EXPECT_TRUE(pDialog->findChild<QLabel*>("Lbl_Feed")->text().startsWith(szFeed));

    AppConfig::m_fMinMaxAxisFeed = 20;
    AppConfig::m_fAxisMovPerPulse[Z_AXIS] = 0.005;
    EXPECT_EQ(Ask("Btn_Feed", 700), "Btn_Feed Feed in mm/min|Feed|600.0000|1 to 1200|no sign|4");
    EXPECT_EQ(Ask("Btn_EndMillDia", 3), "Btn_EndMillDia End-Mill Dia in mm|End-Mill|1.0000|1 to 100|no sign|4");
    EXPECT_EQ(Ask("Btn_AxisStep_Z", 0), "Btn_AxisStep_Z Z Step in mm|z Step|1.0000|0 to 10000|no sign|4");
    EXPECT_EQ(Ask("Btn_ShapeDepth", -2.5), "Btn_ShapeDepth Total Depth|Depth|-1.0000|-10000 to -0.005|sign|4");
    EXPECT_EQ(Ask("Btn_ShapeDepth", -4), "Btn_ShapeDepth Total Depth|Depth|-2.5000|-10000 to -0.005|sign|4");
    const stDXF2GCode& settings = m_Dialog.m_stSettings;
    EXPECT_EQ(
        (std::array{settings.fFeed, settings.fToolDia, settings.fStepDown, settings.fTotalDepth, settings.fZSafe}),
        (std::array{700.0, 3.0, 0.0, 4.0, 5.0}));

    Click(m_Dialog, "Btn_Ok");
    EXPECT_FALSE(m_Dialog.isVisible());
}

TEST_F(DxfSettings, HomeSensorsTellHowFarDownZMayGo)
{
    AppConfig::m_bHomeSensorsUsed = true;
    AppConfig::m_fAxisNegDirLimit[Z_AXIS] = -80;
    EXPECT_TRUE(Ask("Btn_AxisStep_Z", 2).contains("|0 to 80|"));
    EXPECT_TRUE(Ask("Btn_ShapeDepth", -90).contains("|-80 to -0.001|"));
    EXPECT_EQ(m_Dialog.m_stSettings.fTotalDepth, 80);
}

// ---- The button -----------------------------------------------------------------------------------------------------

namespace {
const QByteArray LINE = "0\nSECTION\n2\nENTITIES\n0\nLINE\n10\n5\n20\n5\n11\n8\n21\n9\n0\nENDSEC\n0\nEOF\n";
const QByteArray BAD_NUMBER = "0\nSECTION\n2\nENTITIES\n0\nLINE\n10\nfive\n";

class OpenDxf : public CCleanMachine
{
protected:
    OpenDxf()
    {
        m_Host.Place(m_Screen);
        m_Screen.ConfigSettings();
        WriteAll(Path("part.dxf"), LINE);
    }
    QString Path(const QString& strName) const { return m_Home.filePath(strName); }
    QPushButton& Button(const QString& strName) { return Child(m_Screen, "Btn_" + strName); }
    template <class... A> QString Do(const QString& strName, const A&... answers)
    {
        return PressAndAnswer(Button(strName), answers...);
    }
    CAnswer::Fn File(const QString& strName) { return CAnswer::File(Path(strName)); }
    static void Ok(QWidget& dialog) { Click(dialog, "Btn_Ok"); }
    bool Loaded()
    {
        return WaitFor([&] {
            return std::ranges::any_of(m_Host.m_lstLog, [](const auto& l) { return l.strText == "G-Code Loaded"; });
        });
    }
    void Open(const QString& strDrawing = "part.dxf")
    {
        EXPECT_EQ(Do("OpenDXF", File(strDrawing), Ok), "Select a file to Open...: |DXF to G-Code: ");
        ASSERT_TRUE(Loaded());
    }
    // A held program with a name of its own, changed since.
    void HoldChanged()
    {
        WriteAll(Path("held.tap"), "G0 X1\nG0 X2");
        Do("OpenGCode", File("held.tap"));
        ASSERT_TRUE(Loaded());
        auto& list = Child<QListWidget>(m_Screen, "LW_GcodeCommands");
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(list.item(0)).center());
        Do("MoveGCodeLineDown");
        m_Host.TakeLog();
    }
    static QString Held() { return CGCodeStore::m_lstOfGCodeLines.empty() ? "" : CGCodeStore::m_lstOfGCodeLines[0]; }
    QString Name() { return Child<QLineEdit>(m_Screen, "LE_GCodeFile").text(); }

    CTestHost m_Host;
    CdlgGCode m_Screen;
};
const QStringList OPENED = {"Creating G-Code from DXF file", "Not a valid DXF File"};
}   // namespace

TEST_F(OpenDxf, ADrawingBecomesTheHeldProgramUnderItsOwnName)
{
    AppConfig::m_GCodeRunSettings.iCurLine = 7;
    Child<QLineEdit>(m_Screen, "LE_GCodeCmnds").setText("old");
    m_Host.Type(-2);
    EXPECT_EQ(Do("OpenDXF", File("part.dxf"),
                 [](QWidget& dialog) {
                     Click(dialog, "Btn_ShapeDepth");
                     Click(dialog, "Btn_Ok");
                 }),
              "Select a file to Open...: |DXF to G-Code: ");
    EXPECT_EQ(Button("OpenDXF").styleSheet(), BTN_BKGND_GREEN) << "for a moment";
    ASSERT_TRUE(Loaded());
    EXPECT_EQ(m_Host.TakeLog(),
              QStringList({"Creating G-Code from DXF file", "G-Code saved at" + Path("part.dxf"), "G-Code Loaded"}));
    EXPECT_EQ(Name(), Path("part.dxf"));
    EXPECT_EQ(Child<QLineEdit>(m_Screen, "LE_GCodeCmnds").text(), "");
    EXPECT_EQ(Button("GCodeExecStartLine").text(), "1\nStart Line");
    EXPECT_EQ(AppConfig::m_GCodeRunSettings.iCurLine, 0);
    EXPECT_EQ(AppConfig::m_strLastFolderPath, m_Home.path() + '/');
    const QString strProgram = ReadAll(Path("part..ncc"));
    EXPECT_EQ(Held(), strProgram.section('\n', 0, 0));
    EXPECT_EQ(strProgram.count("G1 Z-2.0000\n"), 1);
    EXPECT_TRUE(WaitFor([&] { return Button("OpenDXF").styleSheet() == BTN_BKGND_GRAY; }));

    Do("CompileGCode");
    ASSERT_TRUE(WaitFor([] { return !CGCodeStore::m_bGCodeCompiling; }));
    EXPECT_TRUE(CGCodeStore::m_CompilationErrors.empty());
}

TEST_F(OpenDxf, TheDialogHasNoCancelAndForgetsItsValues)
{
    Do("OpenDXF", File("part.dxf"), [](QWidget& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    ASSERT_TRUE(Loaded());
    const QByteArray byDefault = ReadAll(Path("part..ncc"));
    m_Host.Type(50);
    Do("OpenDXF", File("part.dxf"), [](QWidget& dialog) {
        Click(dialog, "Btn_EndMillDia");
        dialog.close();
    });
    EXPECT_TRUE(ReadAll(Path("part..ncc")).contains("tool_dia=50.0000"));
    ASSERT_TRUE(WaitFor([] { return !CGCodeStore::m_bGCodeLoading; }));
    Open();
    EXPECT_EQ(ReadAll(Path("part..ncc")), byDefault);
}

TEST_F(OpenDxf, AnInvalidDrawingLeavesTheHeldProgram)
{
    HoldChanged();
    WriteAll(Path("empty.dxf"), "0\nEOF\n");
    WriteAll(Path("empty..ncc"), "of an earlier drawing");
    Do("OpenDXF", QMessageBox::No, File("empty.dxf"), Ok);
    EXPECT_EQ(m_Host.m_lstLog.back().eType, MSG_ERROR);
    EXPECT_EQ(m_Host.TakeLog(), OPENED);
    EXPECT_EQ(Held() + Name(), "G0 X2" + Path("held.tap"));
    EXPECT_FALSE(QFile::exists(Path("empty..ncc")));

    m_Host.Type(0);
    Do("OpenDXF", File("part.dxf"), [](QWidget& dialog) {
        Click(dialog, "Btn_AxisStep_Z");
        Click(dialog, "Btn_Ok");
    });
    EXPECT_EQ(m_Host.TakeLog(), OPENED) << "a step of 0";
}

TEST_F(OpenDxf, AChangedProgramMayBeSavedFirst)
{
    HoldChanged();
    EXPECT_EQ(Do("OpenDXF", QMessageBox::Yes, CAnswer::File("")),
              "Information: Save current G-Code?|Select a file to Open...: ");
    EXPECT_EQ(ReadAll(Path("held.tap")).simplified(), "G0 X2 G0 X1");
    EXPECT_EQ(m_Host.TakeLog(), QStringList("G-Code saved: " + Path("held.tap"))) << "no drawing was chosen";
    EXPECT_EQ(Do("OpenDXF", CAnswer::File("")), "Select a file to Open...: ") << "saved is not changed";

    HoldChanged();
    Do("OpenDXF", QMessageBox::No, CAnswer::File(""));
    EXPECT_EQ(ReadAll(Path("held.tap")).simplified(), "G0 X1 G0 X2");
    EXPECT_EQ(Do("OpenDXF", CAnswer::File("")), "Select a file to Open...: ") << "No forgets the change";
}

TEST_F(OpenDxf, SaveNeverOverwritesTheDrawing)
{
    WriteAll(Path("PLATE.DXF"), LINE);
    for (const char* szDrawing : {"part.dxf", "PLATE.DXF"}) {
        Open(szDrawing);
        EXPECT_EQ(Do("SaveGCode", File("mine")), "Select file tosave...: ");
        EXPECT_EQ(ReadAll(Path(szDrawing)), LINE);
        EXPECT_EQ(Name(), Path("mine.ncc"));
        EXPECT_EQ(ReadAll(Path("mine.ncc")).simplified(),
                  ReadAll(QString::fromStdString(DxfOutputName(Path(szDrawing).toStdString()))).simplified());
        QFile::remove(Path("mine.ncc"));
        m_Host.TakeLog();
    }
    // The question before the next drawing saves in the same way; whoever then cancels keeps the program.
    Open();
    auto& list = Child<QListWidget>(m_Screen, "LW_GcodeCommands");
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(list.item(0)).center());
    Do("MoveGCodeLineDown");
    EXPECT_EQ(Do("OpenDXF", QMessageBox::Yes, CAnswer::File("")),
              "Information: Save current G-Code?|Select file tosave...: ");
    EXPECT_EQ(ReadAll(Path("part.dxf")), LINE);
}

TEST_F(OpenDxf, IsRefusedWhileTheProgramIsInUse)
{
    const auto Refusal = [&](auto& flag) {
        flag = true;
        m_Host.TakeLog();
        Do("OpenDXF");
        flag = false;
        return m_Host.TakeLog();
    };
    EXPECT_EQ(Refusal(CGCodeStore::m_bGCodeLoading), QStringList("Preveious G-Code Still Loading"));
    EXPECT_EQ(Refusal(CGCodeStore::m_bGCodeCompiling), QStringList("Preveious G-Code Still Compiling"));
    m_Screen.ResetUI(false);
    EXPECT_FALSE(Button("OpenDXF").isEnabled());
    m_Screen.ResetUI(true);
    EXPECT_TRUE(Button("OpenDXF").isEnabled());
}

namespace {
class BadDrawing : public CCleanMachine
{
protected:
    // The whole program with its own catch-all, in a process of its own, which ends with status 0 if all went well.
    void OpenAndEnd()
    {
        const QString strDrawing = m_Home.filePath("bad.dxf");
        WriteAll(strDrawing, BAD_NUMBER);
        AppControl* pMachine = nullptr;
        bool bDestroyed = false, bMoved = false, bStood = false;
        CAnswer file(CAnswer::File(strDrawing)), dialog([&](QWidget&modal) {
            // A machine that moves opens no drawing: it moves from here on.
            pMachine->m_AxisCtrl[X_AXIS].MoveRel(500);
            bMoved = WaitFor([&] { return pMachine->m_AxisCtrl[X_AXIS].GetCurPos() > 0.01; });
            Click(modal, "Btn_Ok");
        }),
            box([&](QWidget&modal) {
                bStood = pMachine->IsMachineIdle() && AppConfig::m_bEmergencyStopON;
                Click(*qobject_cast<QMessageBox*>(&modal)->button(QMessageBox::Ok));
            });
        const int iStatus = RunWindow(*qApp, [&](QWidget& window) {
            pMachine = &dynamic_cast<MainWindow&>(window).m_AppControl;
            QObject::connect(&window, &QObject::destroyed, [&] { bDestroyed = true; });
            QTimer::singleShot(0, &window, [&] { Click(window, "Btn_OpenDXF"); });
        });
        // Now nobody listens to the worker any more, and no motion loop is left.
        const bool bEnded =
            bDestroyed && !dynamic_cast<MainWindow*>(&COperatorScreen::Get()) && !CAllAxisCtrl::m_bAutoModeRunning;
        std::fprintf(stderr, "box: %s, status %d, moved %d, stood %d, ended %d, program held %zu\n",
                     box.Title().toUtf8().constData(), iStatus, bMoved, bStood, bEnded,
                     CGCodeStore::m_lstOfGCodeLines.size());
        std::_Exit(HasFailure() ? 1 : 0);
    }
};
}   // namespace

TEST_F(BadDrawing, IsThrownToTheProgramsCatchAllWhichEndsInOrder)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(OpenAndEnd(), testing::ExitedWithCode(0),
                "box: error here, status 0, moved 1, stood 1, ended 1, program held 0");
}
