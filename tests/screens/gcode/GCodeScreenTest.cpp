#include "common/Paths.h"
#include "config/AppConfig.h"
#include "gcode/ExecStatus.h"
#include "gcode/ProgramState.h"
#include "screens/gcode/DlgGCode.h"
#include "support/CleanMachine.h"
#include "support/Files.h"
#include "support/screens/PressAndAnswer.h"
#include "support/screens/TestHost.h"
#include "widgets/ButtonStyle.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScrollBar>

#include <algorithm>
#include <thread>

namespace {
using L = QStringList;
using Store = CGCodeStore;
const L EDITS = {"UpdateGCodeLine", "InsertNewGCodeLine", "AddNewGCodeLine",
                 "DeleteGCodeLine", "MoveGCodeLineUp",    "MoveGCodeLineDown"};
const QString STILL_LOADING = "Preveious G-Code Still Loading", STILL_COMPILING = "Preveious G-Code Still Compiling";

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
    CAnswer::Fn File(const QString& strName) { return CAnswer::File(strName.isEmpty() ? "" : Path(strName)); }
    QPushButton& Button(const QString& strName) { return Child(m_Screen, "Btn_" + strName); }
    template <class... A> QString Do(const QString& strName, const A&... answers)
    {
        return PressAndAnswer(Button(strName), answers...);
    }
    L LogOf(const L& buttons)
    {
        m_Host.TakeLog();
        for (const QString& strName : buttons) Do(strName);
        return m_Host.TakeLog();
    }
    QLineEdit& Field() { return Child<QLineEdit>(m_Screen, "LE_GCodeCmnds"); }
    QScrollBar& Bar() { return Child<QScrollBar>(m_Screen, "VS_ForGCodeScrolling"); }
    QListWidget& List() { return Child<QListWidget>(m_Screen, "LW_GcodeCommands"); }
    void ClickRow(int iRow)
    {
        const QPoint at = List().visualItemRect(List().item(iRow)).center();
        QTest::mouseClick(List().viewport(), Qt::LeftButton, {}, at);
    }
    static L Rows(const QListWidget& list)
    {
        L rows;
        for (int n = 0; n < list.count(); ++n) rows.append(list.item(n)->text());
        return rows;
    }
    L Rows() { return Rows(List()); }
    QString Current() { return Rows().value(List().currentRow()) + '|' + Field().text(); }
    // The number of errors and the texts of the one shown; name of the program and start line.
    QString Errors()
    {
        return Child<QLabel>(m_Screen, "LBL_GCodeCompileErrorCount").text() + '|' +
               Rows(Child<QListWidget>(m_Screen, "LW_GCodeCompileErrors")).join('|');
    }
    QString Name() { return Child<QLineEdit>(m_Screen, "LE_GCodeFile").text(); }
    QString StartLine() { return Button("GCodeExecStartLine").text(); }
    static L Lines() { return {Store::m_lstOfGCodeLines.begin(), Store::m_lstOfGCodeLines.end()}; }
    static L Numbered(int iLines)
    {
        L lines;
        for (int n = 0; n < iLines; ++n) lines.append(QString("G1 X%1 Y0").arg(n));
        return lines;
    }

    bool Logged(const QString& strText)
    {
        return WaitFor([&] {
            return std::ranges::any_of(m_Host.m_lstLog, [&](const auto& line) { return line.strText == strText; });
        });
    }
    void Load(const L& lstLines, const QString& strName = "part.tap")
    {
        WriteAll(Path(strName), lstLines.join('\n').toUtf8());
        Do("OpenGCode", File(strName));
        ASSERT_TRUE(Logged("G-Code Loaded"));
        m_Host.TakeLog();
    }
    void Compile()
    {
        Do("CompileGCode");
        ASSERT_TRUE(Logged("G-Code Compilation Completed"));
    }
    void Change()
    {
        ClickRow(0);
        Do("MoveGCodeLineDown");
    }

    CTestHost m_Host;
    CdlgGCode m_Screen;
};
}   // namespace

// ---- Open -----------------------------------------------------------------------------------------------------------

TEST_F(GCodeScreen, OpensAProgramAndChecksIt)
{
    AppConfig::m_GCodeRunSettings.iCurLine = 4;
    WriteAll(Path("part.tap"), "G0 X1\r\nG5\nM30");
    EXPECT_EQ(Do("OpenGCode", File("part.tap")), "Select a file to Open...: ");
    ASSERT_TRUE(Logged("G-Code Loaded"));
    EXPECT_EQ(m_Host.TakeLog(),
              L({"Loading G-Code.This may take few seconds based on the G-Code File size", "G-Code Loaded"}));
    EXPECT_EQ(Rows(), L({"G0 X1", "G5", "M30"}));
    EXPECT_EQ(Bar().maximum(), 0);   // of fewer than ten lines, never below
    EXPECT_EQ(Current(), "G0 X1|");
    EXPECT_EQ(Errors(), "0|");   // a load does not check
    EXPECT_EQ(Name() + StartLine(), Path("part.tap") + "0\nStart Line");
    EXPECT_EQ(AppConfig::m_strLastFolderPath, m_Home.path() + '/');
    stExecStatus status;
    ASSERT_TRUE(ReadExecStatus(GCODE_EXEC_STATUS_FILE, status));
    EXPECT_EQ(status.strFile + QString::number(status.iLine), Path("part.tap") + '0');

    Compile();
    EXPECT_EQ(m_Host.TakeLog(), L({"Compiling G-Code. This may take few seconds based on the G-Code File size",
                                   "G-Code Compilation Completed"}));
    EXPECT_EQ(Errors(), "1|Unsupported commands:|G5(Invalid)");
    EXPECT_EQ(Current(), "G5|[1]G5");
    EXPECT_EQ(Button("CompileGCode").styleSheet(), BTN_BKGND_GRAY);

    Do("OpenGCode", File(""));   // cancelled
    EXPECT_EQ(Rows(), L({"G0 X1", "G5", "M30"}));
    Load({"M30"}, "other.tap");
    EXPECT_EQ(Rows().join('|') + Errors() + Name(), "M300|" + Path("other.tap"));
}

TEST_F(GCodeScreen, OffersTheInterruptedProgram)
{
    WriteAll(Path("part.tap"), "G0 X1\nM30");
    ASSERT_TRUE(WriteExecStatus(GCODE_EXEC_STATUS_FILE, Path("part.tap"), 1));
    EXPECT_EQ(Do("OpenGCode", QMessageBox::No, File("")),
              "Information: Open Previous G-Code File?|Select a file to Open...: ");
    Do("OpenGCode", QMessageBox::Yes);
    ASSERT_TRUE(Logged("G-Code Loaded"));
    EXPECT_EQ(StartLine(), "1\nStart Line");
    Do("OpenGCode", File(""));   // with a program in the store the question is not asked
    EXPECT_EQ(AppConfig::m_GCodeRunSettings.iCurLine, 0);

    // A program that is gone, and a status file cut short: the screen stays as it is.
    Do("NewGCode");
    m_Host.TakeLog();
    QFile::remove(Path("part.tap"));
    Do("OpenGCode", QMessageBox::Yes);
    WriteAll(CPaths::Map(GCODE_EXEC_STATUS_FILE), QByteArray("\0\0\0\x20\0G", 6));
    Do("OpenGCode", QMessageBox::Yes);
    ASSERT_TRUE(WriteExecStatus(GCODE_EXEC_STATUS_FILE, QString(), 57));
    Do("OpenGCode", QMessageBox::Yes);
    EXPECT_EQ(m_Host.TakeLog() + L(Name()), L("Unnamed"));
    EXPECT_EQ(AppConfig::m_GCodeRunSettings.iCurLine, 0);
}

// Megabytes in a row, the field or the errors would hold the window for seconds.
TEST_F(GCodeScreen, AFileOfOneEndlessLineIsToldAndShownCut)
{
    WriteAll(Path("part.tap"), QByteArray("G5\r").repeated(3000) + "G5");
    Do("OpenGCode", File("part.tap"));
    ASSERT_TRUE(Logged("The file has no line ends, only carriage returns: it is one line"));
    Compile();
    const QString strCut = " characters in all)";
    EXPECT_TRUE(Rows().value(0).endsWith(strCut) && Errors().endsWith(strCut) && Field().text().endsWith(strCut));
    EXPECT_LT(Rows()[0].size() + Errors().size(), 5000);
    EXPECT_EQ(LogOf({"UpdateGCodeLine"}), L("Line 0 is too long to be changed here"));
}

TEST_F(GCodeScreen, AStickTakesThePlaceOfTheProgram)
{
    Load({"G0 X1", "M30"});
    Change();
    WriteAll(Path("stick.ncc"), "G5");
    EXPECT_FALSE(m_Screen.LoadFromStick(Path("none.ncc")));
    EXPECT_EQ(Lines(), L({"M30", "G0 X1"}));
    ASSERT_TRUE(m_Screen.LoadFromStick(Path("stick.ncc")));
    ASSERT_TRUE(Logged("G-Code loaded:" + Path("stick.ncc")));
    EXPECT_EQ(ReadAll(CPaths::Map(WORKING_FOLDER + "/Unsaved.ncc")), "M30\nG0 X1\n");
    EXPECT_EQ(Lines().join('|') + Name() + Errors(), "G5" + Path("stick.ncc") + "1|Unsupported commands:|G5(Invalid)");

    m_Host.TakeLog();
    ASSERT_TRUE(m_Screen.LoadFromStick("/proc/self/mem"));   // opens, and breaks off
    ASSERT_TRUE(WaitFor([] { return !CProgramState::IsInTask(); }));
    QCoreApplication::processEvents();
    EXPECT_EQ(m_Host.TakeLog() + Lines(), L()) << "nothing is loaded, and nothing says so";
}

// ---- Save -----------------------------------------------------------------------------------------------------------

TEST_F(GCodeScreen, SavesUnderTheNameWithItsExtension)
{
    Do("SaveGCode");   // nothing to save, no dialog
    Load({"G0 X1", "M30"});
    EXPECT_EQ(Do("SaveAsGCode", File("copy")), "Select file tosave...: ");
    EXPECT_EQ(ReadAll(Path("copy.ncc")), "G0 X1\nM30\n");
    EXPECT_EQ(Name(), Path("copy.ncc"));
    // The dialog knows only the name as typed: a file that the extension hits is asked about.
    WriteAll(Path("old.ncc"), "old");
    Do("SaveAsGCode", File("old"), QMessageBox::No);
    EXPECT_EQ(ReadAll(Path("old.ncc")), "old");
    m_Host.TakeLog();
    Do("SaveAsGCode", CAnswer::File("/proc/none.ncc"));
    EXPECT_EQ(m_Host.TakeLog(), L("File Not Readable"));
    EXPECT_EQ(Name(), Path("copy.ncc"));
}

TEST_F(GCodeScreen, AChangedProgramIsSavedBeforeItGoes)
{
    Load({"G0 X1", "M30"});
    Change();
    EXPECT_EQ(Do("OpenGCode", QMessageBox::No, File("")),
              "Information: Save current G-Code?|Select a file to Open...: ");
    Do("OpenGCode", File(""));   // the changes are forgotten: no further question
    Change();
    AppConfig::m_GCodeRunSettings.iCurLine = 1;
    EXPECT_EQ(Do("NewGCode", QMessageBox::Yes), "Information: Save current G-Code?");
    EXPECT_EQ(ReadAll(Path("part.tap")), "G0 X1\nM30\n");
    EXPECT_EQ((Lines() + Rows()).join('|') + Name() + Errors() + StartLine(), "Unnamed0|0\nStart Line");
    Do("NewGCode");   // an empty store: nothing

    // Without a name: the dialog; cancelled there, the program stays.
    Store::m_lstOfGCodeLines = {"M5", "M30"};
    Store::m_lstOfGCodeCmds = {{"M5"}, {"M30"}};
    Bar().valueChanged(0);
    Change();
    Do("NewGCode", QMessageBox::Yes, File(""));
    EXPECT_EQ(Lines(), L({"M30", "M5"}));
}

// ---- View and edit --------------------------------------------------------------------------------------------------

TEST_F(GCodeScreen, ChangesLinesInEditMode)
{
    const auto Type = [this](const QString& strText) {
        Field().selectAll();
        QTest::keyClicks(&Field(), strText);
    };
    EXPECT_EQ(LogOf({"EditGCode"}), L("No G-Code loaded"));
    Load(Numbered(12));
    ClickRow(9);
    EXPECT_FALSE(Field().isEnabled());
    Touch(Field());
    QCoreApplication::processEvents();   // no keyboard may come
    Do("EditGCode");
    m_Screen.hide();
    m_Screen.show();
    EXPECT_EQ(m_Host.m_lstGrabs, std::vector<bool>({false, true, false}));   // letters go to the field, while shown

    Type("[9]G1X99");
    Do("UpdateGCodeLine");
    EXPECT_EQ(Rows().last(), "G1X99");
    Type("[9]M5");
    Do("InsertNewGCodeLine");
    EXPECT_EQ(Current(), "M5|[10]M5");       // in view, for the next press
    const CAnswer pad([](QWidget& modal) {   // the keyboard shows the text alone
        EXPECT_EQ(Child<QLineEdit>(modal, "LE_Text").text(), "M5");
        for (const char* szKey : {"Btn_Clear", "Btn_Key_G", "Btn_Key_5", "Btn_OK"}) Click(modal, szKey);
    });
    Click(Field());
    EXPECT_TRUE(WaitFor([this] { return Field().text() == "[10]G5"; }));
    Do("AddNewGCodeLine");
    EXPECT_EQ(Lines().mid(9, 4), L({"G1X99", "M5", "G5", "G1 X10 Y0"}));
    EXPECT_EQ(Errors(), "1|");   // checked at once
    Do("MoveGCodeLineUp");
    EXPECT_EQ(Lines().mid(10, 2), L({"G5", "M5"}));
    EXPECT_EQ(Errors() + Current(), "1|Unsupported commands:|G5(Invalid)G5|[10]G5");
    Do("MoveGCodeLineDown");
    Do("DeleteGCodeLine");
    EXPECT_EQ(Lines().mid(10, 2), L({"M5", "G1 X10 Y0"}));
    EXPECT_EQ(Errors() + Current(), "0|G1 X10 Y0|");
    Do("EditGCode");
    EXPECT_FALSE(Field().isEnabled());
    EXPECT_EQ(m_Host.m_lstGrabs.back(), true);
}

TEST_F(GCodeScreen, ADeletedLineMovesTheRowsInViewUp)
{
    Load(Numbered(30));
    Bar().setValue(5);
    ClickRow(3);
    Do("EditGCode");
    Do("DeleteGCodeLine");
    EXPECT_EQ(Rows().first(), "G1 X4 Y0");
}

// A worker that runs through lines must not flood the screen with them.
TEST_F(GCodeScreen, LinesThatRunFasterThanTheScreenAreShownAsOne)
{
    struct stCounter : QObject
    {
        bool eventFilter(QObject*, QEvent* pEvent) override
        {
            if (pEvent->type() == QEvent::MetaCall) ++iCalls;
            return false;
        }
        int iCalls = 0;
    } counter;
    Load(Numbered(600));
    m_Screen.installEventFilter(&counter);
    std::thread worker([this] {
        for (unsigned uLine = 1; uLine <= 500; ++uLine) emit m_Host.Machine().SelNxtGCodeLine(uLine);
    });
    worker.join();
    QCoreApplication::processEvents();
    EXPECT_EQ(counter.iCalls, 1);
    EXPECT_TRUE(Current().contains("X499")) << Current().toStdString();
}

TEST_F(GCodeScreen, NothingChangesWhileTheProgramIsInUse)
{
    Load(Numbered(3));
    ClickRow(1);
    Store::m_bGCodeCompiling = true;
    EXPECT_EQ(LogOf(EDITS), QStringList(6, "G-Code Compiling. Please wait!"));
    EXPECT_EQ(LogOf({"OpenGCode", "CompileGCode", "NewGCode"}), QStringList(3, STILL_COMPILING));
    Store::m_bGCodeCompiling = false;
    m_Host.Machine().m_eOperation = OP_GCODE;
    EXPECT_EQ(LogOf(EDITS + L({"NewGCode", "OpenGCode", "CompileGCode"})), QStringList(9, "Machine in use"));
    ClickRow(2);
    EXPECT_EQ(Field().text(), "[1]G1 X1 Y0");
    m_Host.Machine().m_eOperation = OP_NONE;
    // Also what a file leaves that vanishes before it is read.
    Store::m_bGCodeLoading = true;
    EXPECT_EQ(LogOf({"OpenGCode", "SaveAsGCode", "CompileGCode", "NewGCode", "SaveGCode"}),
              QStringList(3, STILL_LOADING));
    EXPECT_EQ(Lines(), Numbered(3));
}

TEST_F(GCodeScreen, WalksTheErrors)
{
    L lines = Numbered(40);
    Load(lines);
    Do("GCodeNextError");   // none: nothing
    lines[3] = lines[39] = "G5";
    lines[20] = "G6 J1";
    Load(lines);
    Compile();
    L seen;
    for (const char* szName : {"First", "Prev", "Next", "Last", "Next", "Prev", "First"}) {
        Do(QString("GCode%1Error").arg(szName));
        seen.append(Current());
        EXPECT_TRUE(Errors().startsWith("3|Unsupported commands:|G"));
    }
    const QString strFirst = "G5|[3]G5", strMiddle = "G6 J1|[20]G6 J1", strLast = "G5|[39]G5";
    EXPECT_EQ(seen, L({strFirst, strFirst, strMiddle, strLast, strLast, strMiddle, strFirst}));
}

// ---- Run ------------------------------------------------------------------------------------------------------------

TEST_F(GCodeScreen, AStartIsRefusedInThisOrder)
{
    AppControl& machine = m_Host.Machine();
    const auto Refusals = [&] {   // of the whole program and of a single line
        m_Host.TakeLog();
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
    Store::m_bGCodeCompiling = true;
    EXPECT_EQ(Refusals(), QStringList(2, "G-Code Compiling. Please wait!"));
    Store::m_bGCodeCompiling = false;
    Compile();
    EXPECT_EQ(Refusals(), QStringList(2, "Fix Compilation errors"));
    Load({"M30"});
    EXPECT_EQ(Refusals(), QStringList(2, "Homing not done!\nUse \"Move Home\" in user Settings"));
    AppConfig::m_bHomeSensorsUsed = false;
    machine.m_AxisCtrl[X_AXIS].m_bMoving = true;
    EXPECT_EQ(Refusals(), L("Machine in use"));
    EXPECT_EQ(machine.GetErrMsg(), "Axis in use");   // the worker's own refusal: the screen stays open
    EXPECT_TRUE(Button("OpenGCode").isEnabled());
    machine.m_AxisCtrl[X_AXIS].m_bMoving = false;
}

TEST_F(GCodeScreen, ASingleLineIsTheRowInTheList)
{
    Load(Numbered(30));
    Bar().setValue(20);
    ClickRow(4);
    EXPECT_EQ(LogOf({"ExecOneGCodeLine"}), L("Single line [4]G1 X4 Y0"));
    EXPECT_EQ(m_Host.Machine().m_iSingleLineNo, 4);   // wanted: not line 24; the log tells the operator
    EXPECT_EQ(Button("ExecOneGCodeLine").styleSheet(), BTN_BKGND_GREEN);
    m_Screen.SetCurGCodeLine(4);
    EXPECT_EQ(Current() + Rows().value(0), "G1 X6 Y0|[3]G1 X3 Y0G1 X2 Y0");
    EXPECT_EQ(List().currentRow(), 4);   // the next press runs the same row
    m_Screen.ResetUI(true);
    EXPECT_EQ(Button("ExecOneGCodeLine").styleSheet(), BTN_BKGND_GRAY);
    m_Host.Machine().StopAll();
    m_Host.Machine().wait();
    m_Host.Machine().m_eOperation = OP_NONE;
    EXPECT_EQ(LogOf({"UpdateGCodeLine"}), L("Line 3 is in the field, and line 6 is selected: select the line first"));
    EXPECT_EQ(Lines()[6], "G1 X6 Y0");
}

TEST_F(GCodeScreen, AsksForTheStartLine)
{
    EXPECT_EQ(LogOf({"GCodeExecStartLine"}), L("No G-Code Loaded"));
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
}

TEST_F(GCodeScreen, TogglesTheZProfile)
{
    m_Host.Machine().m_eOperation = OP_WORK_HOME;
    EXPECT_EQ(LogOf({"UseZProfile"}), L("Machine in use"));
    m_Host.Machine().m_eOperation = OP_NONE;
    EXPECT_EQ(LogOf({"UseZProfile"}), L("No Z-Profile data added!\nPlease add Z-Profile data from Job Settings"));
    AppConfig::m_ZProfileInfo.lstPoints = {{{}, {}}, {{}, {}}};
    for (const bool bUse : {true, false}) {
        Do("UseZProfile");
        EXPECT_EQ(AppConfig::m_bUseZProfile, bUse);
        EXPECT_TRUE(
            WaitFor([&] { return Button("UseZProfile").styleSheet() == (bUse ? BTN_BKGND_GREEN : BTN_BKGND_GRAY); }));
    }
}

// ---- Looks ----------------------------------------------------------------------------------------------------------

TEST_F(GCodeScreen, EveryPressIsSeenAndGoesByAndEscapeHidesNothing)
{
    const CAnswer settings([](QWidget&modal) { Click(modal, "Btn_Close"); }), save(File("")), open(File(""));
    for (const QString& strName : L({"GCodeRunSettings", "SaveAsGCode", "OpenGCode", "NewGCode", "SaveGCode",
                                     "CompileGCode", "GCodeFirstError", "GCodePrevError", "GCodeNextError",
                                     "GCodeLastError", "EditGCode", "GCodeExecStartLine", "ExecOneGCodeLine"}) +
                                      EDITS) {
        Do(strName);
        EXPECT_EQ(Button(strName).styleSheet(), BTN_BKGND_GREEN) << strName.toStdString();
        EXPECT_TRUE(WaitFor([&] { return Button(strName).styleSheet() == BTN_BKGND_GRAY; })) << strName.toStdString();
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
    };
    EXPECT_EQ(m_Screen.size(), QSize(900, 390));
    Look("empty");
    L lines = Numbered(100000);
    lines[2] = "(pocket: a comment that is far too long for its row in the list of the ten lines that are in view)";
    lines[5] = lines[8] = "G28 G91 X2";
    Load(lines);
    Look("loaded");
    const QRect last = List().visualItemRect(List().item(9));
    EXPECT_TRUE(last.height() >= 20 && List().viewport()->rect().contains(last));   // all ten are seen
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
