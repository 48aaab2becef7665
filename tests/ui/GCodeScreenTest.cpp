#include "common/Paths.h"
#include "config/AppConfig.h"
#include "gcode/DlgGCode.h"
#include "gcode/ExecStatus.h"
#include "support/CleanMachine.h"
#include "support/Files.h"
#include "support/FullDisk.h"
#include "ui/ScreenSupport.h"
#include "ui/TestHost.h"

#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScrollBar>

#include <algorithm>
#include <thread>

namespace {
class GCodeScreen : public CCleanMachine
{
protected:
    GCodeScreen()
    {
        m_Host.Place(m_Screen);
        m_Screen.ConfigSettings();
    }
    ~GCodeScreen() override
    {
        m_Host.Machine().StopAll();
        m_Host.Machine().wait();
    }

    QString Path(const QString& strName) const { return m_Home.filePath(strName); }
    QPushButton& Button(const QString& strName) { return Child(m_Screen, "Btn_" + strName); }
    void Do(const QString& strName) { Click(Button(strName)); }
    QLineEdit& Field() { return Child<QLineEdit>(m_Screen, "LE_GCodeCmnds"); }
    QScrollBar& Bar() { return Child<QScrollBar>(m_Screen, "VS_ForGCodeScrolling"); }
    QListWidget& List() { return Child<QListWidget>(m_Screen, "LW_GcodeCommands"); }
    void ClickRow(int iRow)
    {
        const QPoint at = List().visualItemRect(List().item(iRow)).center();
        QTest::mouseClick(List().viewport(), Qt::LeftButton, {}, at);
    }
    static QStringList Rows(const QListWidget& list)
    {
        QStringList rows;
        for (int n = 0; n < list.count(); ++n) rows.append(list.item(n)->text());
        return rows;
    }
    QStringList Rows() { return Rows(List()); }
    QStringList Errors() { return Rows(Child<QListWidget>(m_Screen, "LW_GCodeCompileErrors")); }
    QString Count() { return Child<QLabel>(m_Screen, "LBL_GCodeCompileErrorCount").text(); }
    QString File() { return Child<QLineEdit>(m_Screen, "LE_GCodeFile").text(); }
    static QStringList Store()
    {
        return {CGCodeStore::m_lstOfGCodeLines.begin(), CGCodeStore::m_lstOfGCodeLines.end()};
    }

    bool Logged(const QString& strText)
    {
        return WaitFor([&] {
            return std::any_of(m_Host.m_lstLog.begin(), m_Host.m_lstLog.end(),
                               [&](const auto& line) { return line.strText == strText; });
        });
    }
    // Through the button and its file dialog.
    void Open(const QString& strPath)
    {
        const CAnswer file(CAnswer::File(strPath));
        Do("OpenGCode");
    }
    void Load(const QStringList& lstLines, const QString& strName = "part.tap")
    {
        WriteAll(Path(strName), lstLines.join('\n').toUtf8());
        Open(Path(strName));
        ASSERT_TRUE(Logged("G-Code Loaded"));
        m_Host.TakeLog();
    }
    void Compile()
    {
        Do("CompileGCode");
        ASSERT_TRUE(Logged("G-Code Compilation Completed"));
    }
    static QStringList Numbered(int iLines)
    {
        QStringList lines;
        for (int n = 0; n < iLines; ++n) lines.append(QString("G1 X%1 Y0").arg(n));
        return lines;
    }
    void Type(const QString& strText)   // into the open field
    {
        Field().selectAll();
        QTest::keyClicks(&Field(), strText);
    }

    CTestHost m_Host;
    CdlgGCode m_Screen;
};
using L = QStringList;
}   // namespace

// ---- Open -----------------------------------------------------------------------------------------------------------

TEST_F(GCodeScreen, OpensAProgramAndChecksIt)
{
    AppConfig::m_GCodeRunSettings.iCurLine = 4;
    WriteAll(Path("part.tap"), "G0 X1\r\nG5\nM30");
    Open(Path("part.tap"));
    ASSERT_TRUE(Logged("G-Code Loaded"));
    EXPECT_EQ(m_Host.TakeLog(),
              L({"Loading G-Code.This may take few seconds based on the G-Code File size", "G-Code Loaded"}));
    EXPECT_EQ(Rows(), L({"G0 X1", "G5", "M30"}));
    EXPECT_EQ(List().currentRow(), 0);
    EXPECT_EQ(Bar().maximum(), 0);   // of fewer than ten lines, never below
    EXPECT_EQ(File(), Path("part.tap"));
    EXPECT_EQ(Field().text(), "");
    EXPECT_EQ(Button("GCodeExecStartLine").text(), "0\nStart Line");
    EXPECT_EQ(AppConfig::m_strLastFolderPath, m_Home.path() + '/');
    stExecStatus status;
    ASSERT_TRUE(ReadExecStatus(GCODE_EXEC_STATUS_FILE, status));
    EXPECT_EQ(status.strFile + QString::number(status.iLine), Path("part.tap") + '0');
    EXPECT_EQ(Count(), "0");   // a load does not check

    Compile();
    EXPECT_EQ(m_Host.TakeLog(), L({"Compiling G-Code. This may take few seconds based on the G-Code File size",
                                   "G-Code Compilation Completed"}));
    EXPECT_EQ(Count(), "1");
    EXPECT_EQ(Errors(), L({"Unsupported commands:", "G5(Invalid)"}));
    EXPECT_EQ(List().currentRow(), 1);
    EXPECT_EQ(Field().text(), "[1]G5");
    EXPECT_EQ(Button("CompileGCode").styleSheet(), BTN_BKGND_GRAY);
}

TEST_F(GCodeScreen, AnotherFileReplacesTheProgramAndAnUnreadableOneDoesNot)
{
    Load({"G5"});
    Compile();
    Open(QString());   // cancelled
    EXPECT_EQ(File(), Path("part.tap"));
    Load({"M30"}, "other.tap");
    EXPECT_EQ(Rows() + L(File()) + L(Count()) + Errors(), L({"M30", Path("other.tap"), "0"}));

    // Gone since the status file was written: nothing is said.
    Do("NewGCode");
    m_Host.TakeLog();
    QFile::remove(Path("other.tap"));
    const CAnswer previous(QMessageBox::Yes);
    Do("OpenGCode");
    EXPECT_EQ(m_Host.TakeLog() + L(File()), L("Unnamed"));
}

TEST_F(GCodeScreen, OffersTheInterruptedProgram)
{
    WriteAll(Path("part.tap"), "G0 X1\nM30");
    ASSERT_TRUE(WriteExecStatus(GCODE_EXEC_STATUS_FILE, Path("part.tap"), 1));
    {
        const CAnswer no(QMessageBox::No), file(CAnswer::File(""));
        Do("OpenGCode");
        EXPECT_EQ(no.Title() + ' ' + no.Text(), "Information Open Previous G-Code File?");
        EXPECT_EQ(file.Title(), "Select a file to Open...");
    }
    {
        const CAnswer yes(QMessageBox::Yes);
        Do("OpenGCode");
    }
    ASSERT_TRUE(Logged("G-Code Loaded"));
    EXPECT_EQ(AppConfig::m_GCodeRunSettings.iCurLine, 1);
    EXPECT_EQ(Button("GCodeExecStartLine").text(), "1\nStart Line");
    Open("");   // with a program in the store the question is not asked
    EXPECT_EQ(AppConfig::m_GCodeRunSettings.iCurLine, 0);
}

TEST_F(GCodeScreen, AnUnreadableOrCutStatusFileOpensNothing)
{
    const QString strStatus = CPaths::Map(GCODE_EXEC_STATUS_FILE);
    WriteAll(strStatus, QByteArray("\0\0\0\x20\0G", 6));
    {
        const CAnswer yes(QMessageBox::Yes);
        Do("OpenGCode");
    }
    QFile::remove(strStatus);
    ASSERT_TRUE(QDir().mkpath(strStatus));   // a folder cannot be read as a file
    const CAnswer yes(QMessageBox::Yes), told(QMessageBox::Ok);
    Do("OpenGCode");
    EXPECT_EQ(told.Title() + ' ' + told.Text(), "Critical error Unable to open Config File");
    EXPECT_EQ(m_Host.TakeLog() + L(File()), L("Unnamed"));
}

TEST_F(GCodeScreen, WhileALoadRunsThereIsNothingToDo)
{
    Load({"G0 X1", "M30"});
    CGCodeStore::m_bGCodeLoading = true;   // also what a file leaves that vanishes before it is read
    for (const char* szName : {"OpenGCode", "SaveAsGCode", "CompileGCode"}) Do(szName);
    EXPECT_EQ(m_Host.TakeLog(), L({"Preveious G-Code Still Loading", "Preveious G-Code Still Loading",
                                   "Preveious G-Code Still Loading"}));
    Do("NewGCode");
    Do("SaveGCode");
    Bar().setValue(1);
    EXPECT_EQ(m_Host.TakeLog(), L());
    EXPECT_EQ(Store(), L({"G0 X1", "M30"}));
}

// ---- Save -----------------------------------------------------------------------------------------------------------

TEST_F(GCodeScreen, SavesUnderTheNameWithItsExtension)
{
    Do("SaveGCode");   // nothing to save, no dialog
    Load({"G0 X1", "M30"});
    {
        const CAnswer file(CAnswer::File(Path("copy")));
        Do("SaveAsGCode");
        EXPECT_EQ(file.Title(), "Select file tosave...");
    }
    EXPECT_EQ(ReadAll(Path("copy.ncc")), "G0 X1\nM30\n");
    EXPECT_EQ(File(), Path("copy.ncc"));
    // The dialog knows only the name as typed: a file that the extension hits is asked about.
    WriteAll(Path("old.ncc"), "old");
    {
        const CAnswer file(CAnswer::File(Path("old"))), no(QMessageBox::No);
        Do("SaveAsGCode");
    }
    EXPECT_EQ(ReadAll(Path("old.ncc")) + File().toUtf8(), "old" + Path("copy.ncc").toUtf8());
    m_Host.TakeLog();
    const CAnswer file(CAnswer::File("/proc/none.ncc"));
    Do("SaveAsGCode");
    EXPECT_EQ(m_Host.TakeLog(), L("File Not Readable"));
}

TEST_F(GCodeScreen, AChangedProgramIsSavedBeforeItGoes)
{
    const auto Change = [this] {
        ClickRow(0);
        Do("MoveGCodeLineDown");
    };
    Load({"G0 X1", "M30"});
    Change();
    {
        const CAnswer no(QMessageBox::No), file(CAnswer::File(""));
        Do("OpenGCode");
        EXPECT_EQ(no.Title() + ' ' + no.Text(), "Information Save current G-Code?");
    }
    Open("");   // the changes are forgotten: no further question
    Change();
    AppConfig::m_GCodeRunSettings.iCurLine = 1;
    {
        const CAnswer yes(QMessageBox::Yes);
        Do("NewGCode");
    }
    EXPECT_EQ(ReadAll(Path("part.tap")), "G0 X1\nM30\n");
    EXPECT_EQ(Store() + Rows() + L({File(), Count(), Button("GCodeExecStartLine").text()}),
              L({"Unnamed", "0", "0\nStart Line"}));
    Do("NewGCode");   // an empty store: nothing

    // Without a name: the dialog; cancelled there, the program stays.
    CGCodeStore::m_lstOfGCodeLines = {"M5", "M30"};
    CGCodeStore::m_lstOfGCodeCmds = {{"M5"}, {"M30"}};
    Bar().valueChanged(0);
    Change();
    const CAnswer yes(QMessageBox::Yes), file(CAnswer::File(""));
    Do("NewGCode");
    EXPECT_EQ(Store(), L({"M30", "M5"}));
}

TEST_F(GCodeScreen, AFullDiskIsToldAndAVanishedOneIsNot)
{
    QDir(m_Home.path()).mkdir("stick");
    Load(Numbered(300), "stick/part.tap");
    ClickRow(0);
    Do("DeleteGCodeLine");
    const QByteArray old = ReadAll(Path("stick/part.tap"));
    {
        const CFullDisk disk(100);
        Do("SaveGCode");
    }
    EXPECT_EQ(m_Host.TakeLog(),
              L("G-Code File not written, the old one is kept. Is the disk full?\n" + Path("stick/part.tap")));
    EXPECT_EQ(ReadAll(Path("stick/part.tap")), old);

    QDir(Path("stick")).removeRecursively();
    const CAnswer yes(QMessageBox::Yes);   // the change is still unsaved
    Do("NewGCode");
    EXPECT_EQ(m_Host.TakeLog() + Store(), L());   // wanted: the old thing goes without a word
}

TEST_F(GCodeScreen, AStickTakesThePlaceOfTheProgram)
{
    Load({"G0 X1", "M30"});
    ClickRow(0);
    Do("MoveGCodeLineDown");
    WriteAll(Path("stick.ncc"), "G5");
    EXPECT_FALSE(m_Screen.LoadFromStick(Path("none.ncc")));
    EXPECT_EQ(Store(), L({"M30", "G0 X1"}));
    ASSERT_TRUE(m_Screen.LoadFromStick(Path("stick.ncc")));
    EXPECT_FALSE(m_Screen.LoadFromStick(Path("stick.ncc")) && CGCodeStore::m_bGCodeCompiling);
    ASSERT_TRUE(Logged("G-Code loaded:" + Path("stick.ncc")));
    EXPECT_EQ(ReadAll(CPaths::Map(WORKING_FOLDER + "/Unsaved.ncc")), "M30\nG0 X1\n");
    EXPECT_EQ(Store() + L({File(), Count()}), L({"G5", Path("stick.ncc"), "1"}));
}

// ---- View and edit --------------------------------------------------------------------------------------------------

TEST_F(GCodeScreen, ScrollsThroughWindowsOfTenRows)
{
    Load(Numbered(25));
    EXPECT_EQ(Bar().maximum(), 15);
    Bar().triggerAction(QAbstractSlider::SliderToMaximum);
    EXPECT_EQ(Rows(), Numbered(25).mid(15));
    Bar().triggerAction(QAbstractSlider::SliderPageStepSub);
    EXPECT_EQ(Rows(), Numbered(25).mid(5, 10));
    ClickRow(3);
    EXPECT_EQ(Field().text(), "[8]G1 X8 Y0");
    QWheelEvent wheel({50, 50}, {50, 50}, {}, {0, -120}, Qt::NoButton, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(List().viewport(), &wheel);
    EXPECT_EQ(Rows(), Numbered(25).mid(5, 10));
    Bar().setValue(0);
    Do("DeleteGCodeLine");   // no row is current after a scroll: nothing
    EXPECT_EQ(Store().size(), 25);
}

TEST_F(GCodeScreen, ChangesLinesInEditMode)
{
    Do("EditGCode");
    EXPECT_EQ(m_Host.TakeLog(), L("No G-Code loaded"));
    Load(Numbered(12));
    ClickRow(9);
    EXPECT_FALSE(Field().isEnabled());
    Do("EditGCode");
    EXPECT_TRUE(Field().isEnabled());
    EXPECT_EQ(m_Host.m_lstGrabs, std::vector<bool>({false}));   // letters go to the field
    m_Screen.hide();
    m_Screen.show();
    EXPECT_EQ(m_Host.m_lstGrabs, std::vector<bool>({false, true, false}));

    Type("[9]G1X99");
    Do("UpdateGCodeLine");
    EXPECT_EQ(Rows().last(), "G1X99");
    EXPECT_EQ(CGCodeStore::m_lstOfGCodeCmds[9], (GCodeTokens{"G1", "X99"}));
    Type("[9]M5");
    Do("InsertNewGCodeLine");
    EXPECT_EQ(Store().mid(9, 2), L({"G1X99", "M5"}));
    EXPECT_EQ(Bar().maximum(), 12);
    EXPECT_EQ(Rows().value(List().currentRow()) + Field().text(), "M5[10]M5");   // in view, for the next press
    {
        const CAnswer pad([](QWidget& modal) {   // the keyboard shows the text alone
            EXPECT_EQ(Child<QLineEdit>(modal, "LE_Text").text(), "M5");
            for (const char* szKey : {"Btn_Clear", "Btn_Key_G", "Btn_Key_5", "Btn_OK"}) Click(modal, szKey);
        });
        Click(Field());
        EXPECT_TRUE(WaitFor([this] { return Field().text() == "[10]G5"; }));
    }
    Do("AddNewGCodeLine");
    EXPECT_EQ(Store().mid(10, 3), L({"M5", "G5", "G1 X10 Y0"}));
    EXPECT_EQ(Count(), "1");   // checked at once

    Do("MoveGCodeLineUp");
    EXPECT_EQ(Store().mid(10, 2) + Errors(), L({"G5", "M5", "Unsupported commands:", "G5(Invalid)"}));
    Do("MoveGCodeLineDown");
    EXPECT_EQ(Store().mid(10, 2), L({"M5", "G5"}));
    Do("DeleteGCodeLine");
    EXPECT_EQ(Store().mid(10, 2) + L(Field().text()), L({"M5", "G1 X10 Y0", ""}));
    EXPECT_EQ(Count(), "0");
    for (int n = 0; n < 20; ++n) Do("DeleteGCodeLine");
    EXPECT_EQ(Store() + Rows(), L());
    EXPECT_EQ(Bar().maximum(), 0);
    Type("M30");
    Do("UpdateGCodeLine");   // adds
    EXPECT_EQ(Rows(), L("M30"));
    Do("EditGCode");
    EXPECT_FALSE(Field().isEnabled());
    EXPECT_EQ(m_Host.m_lstGrabs.back(), true);
}

TEST_F(GCodeScreen, ChangesAreRefusedWhileTheProgramIsInUse)
{
    Load(Numbered(3));
    ClickRow(1);
    const auto Refused = [this] {
        for (const char* szName : {"UpdateGCodeLine", "InsertNewGCodeLine", "AddNewGCodeLine", "DeleteGCodeLine",
                                   "MoveGCodeLineUp", "MoveGCodeLineDown"})
            Do(szName);
        return m_Host.TakeLog();
    };
    CGCodeStore::m_bGCodeCompiling = true;
    EXPECT_EQ(Refused(), QStringList(6, "G-Code Compiling. Please wait!"));
    Do("OpenGCode");
    Do("CompileGCode");
    Do("NewGCode");
    EXPECT_EQ(m_Host.TakeLog(), QStringList(3, "Preveious G-Code Still Compiling"));
    CGCodeStore::m_bGCodeCompiling = false;
    m_Host.Machine().m_eOperation = OP_GCODE;
    EXPECT_EQ(Refused(), QStringList(6, "Machine in use"));
    Do("NewGCode");
    ClickRow(2);
    EXPECT_EQ(m_Host.TakeLog() + L(Field().text()), L("[1]G1 X1 Y0"));
    m_Host.Machine().m_eOperation = OP_NONE;
    EXPECT_EQ(Store(), Numbered(3));
    // After a scroll no row is current.
    List().setCurrentRow(-1);
    Do("UpdateGCodeLine");
    Do("AddNewGCodeLine");
    EXPECT_EQ(m_Host.TakeLog(), QStringList(2, "Select a G-Code line first"));
}

TEST_F(GCodeScreen, WalksTheErrors)
{
    const L walk = {"GCodeFirstError", "GCodePrevError", "GCodeNextError", "GCodeLastError"};
    QStringList lines = Numbered(40);
    Load(lines);
    for (const QString& strName : walk) Do(strName);   // none: nothing
    EXPECT_EQ(List().currentRow(), 0);
    for (const int n : {3, 20, 39}) lines[n] = "G5";
    lines[20] = "G6 J1";
    Load(lines);
    Compile();
    QStringList seen;
    for (const QString& strName : walk + L({"GCodeNextError", "GCodePrevError", "GCodeFirstError", "GCodePrevError"})) {
        Do(strName);
        seen.append(Field().text());
        EXPECT_EQ(Rows().value(List().currentRow()), CGCodeEditor::TextOf(Field().text()));
        EXPECT_EQ(Errors().size(), 2);
    }
    EXPECT_EQ(seen, L({"[3]G5", "[3]G5", "[20]G6 J1", "[39]G5", "[39]G5", "[20]G6 J1", "[3]G5", "[3]G5"}));
    // Of a tool-change file with more lines than the program.
    CGCodeStore::m_CompilationErrors[99] = "T9(x)";
    Do("GCodeLastError");
    EXPECT_EQ(Errors() + L(Field().text()), L({"Unsupported commands:", "T9(x)", ""}));
    EXPECT_EQ(List().currentRow(), -1);
}

// ---- Run ------------------------------------------------------------------------------------------------------------

TEST_F(GCodeScreen, AStartIsRefusedInThisOrder)
{
    AppControl& machine = m_Host.Machine();
    // The whole program, then a single line.
    const auto Refusals = [&] {
        EXPECT_FALSE(m_Screen.StartGCode());
        Do("ExecOneGCodeLine");
        EXPECT_FALSE(machine.isRunning());
        return m_Host.TakeLog();
    };
    AppConfig::m_bHomeSensorsUsed = true;
    AppConfig::m_bEmergencyStopON = true;
    EXPECT_EQ(Refusals(), QStringList(2, "Release Emergency Switch"));
    AppConfig::m_bEmergencyStopON = false;
    EXPECT_EQ(Refusals(), L({"No G-Code added", "No G-Code Loaded"}));
    Load({"G5"});
    CGCodeStore::m_bGCodeCompiling = true;
    EXPECT_EQ(Refusals(), QStringList(2, "G-Code Compiling. Please wait!"));
    CGCodeStore::m_bGCodeCompiling = false;
    Compile();
    m_Host.TakeLog();
    EXPECT_EQ(Refusals(), QStringList(2, "Fix Compilation errors"));
    Load({"M30"}, "good.tap");
    EXPECT_EQ(Refusals(), QStringList(2, "Homing not done!\nUse \"Move Home\" in user Settings"));
    AppConfig::m_bHomeSensorsUsed = false;
    machine.m_eOperation = OP_WORK_HOME;
    EXPECT_FALSE(m_Screen.StartGCode());
    EXPECT_EQ(m_Host.TakeLog(), L("Machine in use"));
    machine.m_eOperation = OP_NONE;
    machine.m_AxisCtrl[X_AXIS].m_bMoving = true;   // the worker itself refuses: the screen stays open
    EXPECT_EQ(Refusals(), L("Machine in use"));
    EXPECT_EQ(machine.GetErrMsg(), "Axis in use");
    EXPECT_TRUE(Button("OpenGCode").isEnabled());
    machine.m_AxisCtrl[X_AXIS].m_bMoving = false;
}

TEST_F(GCodeScreen, StartsPausesAndResumesAProgram)
{
    AppControl& machine = m_Host.Machine();
    Load({"G1 X2000", "M30"});
    Do("EditGCode");
    ASSERT_TRUE(m_Screen.StartGCode());
    EXPECT_EQ(machine.m_eOperation, OP_GCODE);
    EXPECT_EQ(machine.m_pGCodeProgram, &CGCodeStore::m_lstOfGCodeCmds);
    EXPECT_EQ(AppConfig::m_GCodeRunSettings.strFile, Path("part.tap"));
    EXPECT_EQ(m_Host.m_iGraphicsCleared, 1);
    for (QPushButton* pButton : m_Screen.findChildren<QPushButton*>()) EXPECT_FALSE(pButton->isEnabled());
    EXPECT_FALSE(List().isEnabled());
    EXPECT_FALSE(Field().isEnabled());   // edit mode has ended
    AppConfig::m_bEnlManualToolChange = true;
    for (const bool bPause : {true, false}) {
        EXPECT_TRUE(m_Screen.StartGCode());
        EXPECT_EQ(machine.m_bPause, bPause);
    }
    EXPECT_EQ(m_Host.TakeLog(), L({"G-Code execution paused", "G-Code execution resumed"}));
    EXPECT_EQ(m_Host.m_lstJogPanel, std::vector<bool>({false}));
    m_Screen.PauseGCode();
    EXPECT_TRUE(machine.m_bPause);
    m_Screen.ResetUI(true);
    EXPECT_TRUE(Button("OpenGCode").isEnabled() && List().isEnabled());
    EXPECT_FALSE(Button("OpenDXF").isEnabled());   // until there is a screen for drawings
}

TEST_F(GCodeScreen, ASingleLineIsTheRowInTheList)
{
    AppControl& machine = m_Host.Machine();
    Load(Numbered(30));
    Bar().setValue(20);
    ClickRow(4);
    Do("ExecOneGCodeLine");
    EXPECT_EQ(machine.m_iSingleLineNo, 4);   // wanted: not line 24; the log tells the operator
    EXPECT_TRUE(machine.m_bExecSingleLine);
    EXPECT_EQ(m_Host.TakeLog(), L("Single line [4]G1 X4 Y0"));
    EXPECT_EQ(Button("ExecOneGCodeLine").styleSheet(), BTN_BKGND_GREEN);
    m_Screen.SetCurGCodeLine(4);
    EXPECT_EQ(Field().text() + Rows().value(0), "[3]G1 X3 Y0G1 X2 Y0");
    EXPECT_EQ(List().currentRow(), 4);   // the next press runs the same row
    m_Screen.ResetUI(true);
    EXPECT_EQ(Button("ExecOneGCodeLine").styleSheet(), BTN_BKGND_GRAY);
}

TEST_F(GCodeScreen, TheRunningLineStaysInView)
{
    Load(Numbered(2000));
    Field().setText("as before");
    m_Screen.SetCurGCodeLine(0);
    m_Screen.SetCurGCodeLine(2001);
    EXPECT_EQ(Field().text(), "as before");
    for (const unsigned uLine : {1u, 10u, 11u, 1000u, 999u, 2000u}) {
        m_Screen.SetCurGCodeLine(uLine);
        EXPECT_EQ(Field().text(), QString("[%1]G1 X%1 Y0").arg(uLine - 1));
        EXPECT_EQ(Rows().value(List().currentRow()), QString("G1 X%1 Y0").arg(uLine - 1));
    }
    // The worker's calls do not pile up in the queue of the screen.
    std::thread worker([this] {
        for (unsigned uLine = 1; uLine <= 500; ++uLine) emit m_Host.Machine().SelNxtGCodeLine(uLine);
    });
    worker.join();
    int iShown = 0;
    QObject::connect(&Field(), &QLineEdit::textChanged, [&] { ++iShown; });
    EXPECT_TRUE(WaitFor([this] { return Field().text() == "[499]G1 X499 Y0"; }));
    EXPECT_EQ(iShown, 1);
}

TEST_F(GCodeScreen, AsksForTheStartLine)
{
    Do("GCodeExecStartLine");
    EXPECT_EQ(m_Host.TakeLog(), L("No G-Code Loaded"));
    for (const auto& [iLines, fHigh] : {std::pair{1, 1.0}, {2, 1.0}, {30, 29.0}}) {
        Load(Numbered(iLines));
        AppConfig::m_GCodeRunSettings.iCurLine = 1;
        m_Host.Type(29.0);
        Do("GCodeExecStartLine");
        const CTestHost::stKeypad& pad = m_Host.m_lstKeypads.back();
        EXPECT_EQ(pad.strTitle + '/' + pad.strCtrlTxt + '/' + pad.strValue, "G-Code Start Line/Start Line/1");
        EXPECT_EQ(std::tuple(pad.fLow, pad.fHigh, pad.bShowSign, pad.iPrecision), std::tuple(0.0, fHigh, false, 0));
        EXPECT_EQ(AppConfig::m_GCodeRunSettings.iCurLine, static_cast<int>(fHigh));
    }
    EXPECT_EQ(Button("GCodeExecStartLine").text(), "29\nStart Line");
}

TEST_F(GCodeScreen, TogglesTheZProfile)
{
    const auto Shows = [this](const QString& strStyle) {
        return WaitFor([&] { return Button("UseZProfile").styleSheet() == strStyle; });
    };
    Do("UseZProfile");
    m_Host.Machine().m_eOperation = OP_WORK_HOME;
    Do("UseZProfile");
    EXPECT_EQ(m_Host.TakeLog(),
              L({"No Z-Profile data added!\nPlease add Z-Profile data from Job Settings", "Machine in use"}));
    EXPECT_TRUE(Shows(BTN_BKGND_GRAY));
    m_Host.Machine().m_eOperation = OP_NONE;
    AppConfig::m_ZProfileInfo.lstPoints = {{{}, {}}, {{}, {}}};
    Do("UseZProfile");
    EXPECT_TRUE(AppConfig::m_bUseZProfile && Shows(BTN_BKGND_GREEN));
    Do("UseZProfile");
    EXPECT_TRUE(!AppConfig::m_bUseZProfile && Shows(BTN_BKGND_GRAY));
}

// ---- Looks ----------------------------------------------------------------------------------------------------------

TEST_F(GCodeScreen, EveryPressIsSeenAndGoesByAndEscapeHidesNothing)
{
    const CAnswer save(CAnswer::File("")), open(CAnswer::File(""));
    const CAnswer settings([](QWidget& modal) { Click(modal, "Btn_Close"); });
    for (const char* szName :
         {"SaveAsGCode",       "OpenGCode",          "GCodeRunSettings",   "NewGCode",         "SaveGCode",
          "UpdateGCodeLine",   "InsertNewGCodeLine", "AddNewGCodeLine",    "DeleteGCodeLine",  "MoveGCodeLineUp",
          "MoveGCodeLineDown", "CompileGCode",       "GCodeFirstError",    "GCodePrevError",   "GCodeNextError",
          "GCodeLastError",    "EditGCode",          "GCodeExecStartLine", "ExecOneGCodeLine", "UseZProfile"}) {
        Do(szName);
        EXPECT_EQ(Button(szName).styleSheet(), BTN_BKGND_GREEN) << szName;
        EXPECT_TRUE(WaitFor([&] { return Button(szName).styleSheet() == BTN_BKGND_GRAY; })) << szName;
    }
    QTest::keyClick(&m_Screen, Qt::Key_Escape);
    QTest::keyClick(&m_Screen, Qt::Key_Return);   // no button is the default one
    EXPECT_TRUE(m_Screen.isVisible());
}

TEST_F(GCodeScreen, IsTidyInEveryState)
{
    const auto Look = [this](const char* szState) {
        SaveScreen(m_Screen, QString("gcode-") + szState);
        EXPECT_TIDY(m_Screen);
        for (int n = 0; n < List().count(); ++n) EXPECT_GE(List().visualItemRect(List().item(n)).height(), 20);
    };
    EXPECT_EQ(m_Screen.size(), QSize(900, 390));
    Look("empty");
    QStringList lines = Numbered(100000);
    lines[2] = "(pocket: a comment that is far too long for its row in the list of the ten lines that are in view)";
    lines[5] = lines[8] = "G28 G91 X2";
    Load(lines);
    Look("loaded");
    EXPECT_TRUE(List().viewport()->rect().contains(List().visualItemRect(List().item(9))));   // all ten are seen
    Compile();
    Do("EditGCode");
    EXPECT_TRUE(WaitFor([this] { return Button("CompileGCode").styleSheet() == BTN_BKGND_GRAY; }));
    Look("errors");
    Do("EditGCode");
    AppConfig::m_GCodeRunSettings.iCurLine = 99999;
    m_Host.Type(99999.0);
    Do("GCodeExecStartLine");
    m_Screen.SetCurGCodeLine(99999);
    m_Screen.ResetUI(false);
    Look("running");
}
