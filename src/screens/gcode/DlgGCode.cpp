#include "screens/gcode/DlgGCode.h"

#include "common/Paths.h"
#include "common/Refusals.h"
#include "config/AppConfig.h"
#include "control/AppControl.h"
#include "gcode/ExecStatus.h"
#include "gcode/ProgramState.h"
#include "screens/dxf/DlgDxfToGCode.h"
#include "screens/gcode/DlgGCodeSettings.h"
#include "screens/host/PressedBtn.h"
#include "screens/host/SettingsInput.h"
#include "ui_DlgGCode.h"
#include "widgets/ButtonStyle.h"
#include "widgets/DlgTextPad.h"
#include "widgets/Look.h"

#include <QFile>
#include <QLabel>
#include <QScopeGuard>
#include <QThread>
#include <QTimer>
#include <QWheelEvent>
#include <QtConcurrent>

#include <algorithm>
#include <cmath>

static QString NoLineSelected()
{
    return QStringLiteral("Select a G-Code line first");
}

static std::unique_ptr<Ui::CdlgGCode> SetUp(QDialog* pDialog)
{
    auto pUi = std::make_unique<Ui::CdlgGCode>();
    pUi->setupUi(pDialog);
    return pUi;
}

CdlgGCode::CdlgGCode(QWidget* pParent)
    : QDialog(pParent), m_pUi(SetUp(this)), m_View(*m_pUi), m_File(*this, *m_pUi->LE_GCodeFile)
{
    for (QPushButton* pButton : findChildren<QPushButton*>()) pButton->setStyleSheet(BTN_BKGND_GRAY);
    for (QLabel* pLabel : {m_pUi->Hdg_Program, m_pUi->Hdg_Lines, m_pUi->Hdg_Check, m_pUi->Hdg_Run})
        pLabel->setStyleSheet(CLook::HEADING_STYLE);
    // The running line is shown in the closed field: it must be read from afar.
    m_pUi->LE_GCodeCmnds->setStyleSheet(QStringLiteral("QLineEdit:disabled {color: rgb(230, 230, 230);}"));
    m_pUi->LE_GCodeCmnds->installEventFilter(this);
    connect(this, &CdlgGCode::GCodeLoadComplete, this, &CdlgGCode::on_GCode_Load_Complete);
    connect(this, &CdlgGCode::GCodeCompilationComplete, this, &CdlgGCode::on_GCode_Compile_Complete);
}

CdlgGCode::~CdlgGCode()
{
    m_LoadTask.waitForFinished();   // they report to this object
    m_CompileTask.waitForFinished();
}

void CdlgGCode::ConfigSettings()
{
    m_bToolChgCompiling = false;
    m_File.Take({});
    m_View.Begin();
    m_bSingleLineRun = false;
    SetEditMode(false);
    // Directly on the worker's thread, where the slot's queue is kept at one call.
    disconnect(m_RunningLine);
    m_RunningLine = connect(
        &Host().Machine(), &AppControl::SelNxtGCodeLine, this, [this](unsigned uLine) { OnRunningLine(uLine); },
        Qt::DirectConnection);
    ShowUseOfZProfile();
    ShowStartLine();
}

void CdlgGCode::ShowUseOfZProfile()
{
    m_pUi->Btn_UseZProfile->setStyleSheet(AppConfig::m_bUseZProfile ? BTN_BKGND_GREEN : BTN_BKGND_GRAY);
}

void CdlgGCode::ResetUI(bool bEnable)
{
    if (m_bSingleLineRun) {
        m_bSingleLineRun = false;
        m_pUi->Btn_ExecOneGCodeLine->setStyleSheet(BTN_BKGND_GRAY);
    }
    for (QPushButton* pButton : findChildren<QPushButton*>()) pButton->setEnabled(bEnable);
    m_pUi->LW_GcodeCommands->setEnabled(bEnable);
    ShowUseOfZProfile();
}

// ---- State ----------------------------------------------------------------------------------------------------------

bool CdlgGCode::IsProgramRunning() const
{
    return Host().Operation() == OP_GCODE;
}

QString CdlgGCode::WhyNot(const stProgramUse& use) const
{
    return CProgramState::WhyNot(use, IsProgramRunning());
}

QString CdlgGCode::WhyNotChanged(const stProgramUse& use) const
{
    const QString strWhy = WhyNot(use);
    // A worker that was given up may still sleep in a line of the program.
    return strWhy.isEmpty() && !Host().IsMachineFree() ? MACHINE_IN_USE : strWhy;
}

QString CdlgGCode::WhyNotRun(const stProgramUse& use) const
{
    // Whether the axes are free is asked where the run begins.
    const QString strWhy = WhyNot(use);
    return strWhy.isEmpty() ? Host().WhyNotHomed() : strWhy;
}

// ---- View -----------------------------------------------------------------------------------------------------------

void CdlgGCode::on_VS_ForGCodeScrolling_valueChanged(int iValue)
{
    m_View.FillRows(iValue);
}

// A program may run through lines faster than a screen can show them: of those that wait, only the newest counts.
void CdlgGCode::OnRunningLine(unsigned int uLine)
{
    if (QThread::currentThread() == thread()) return SetCurGCodeLine(uLine);
    m_uRunningLine = uLine;
    if (m_bRunningLinePosted.Exchange(true)) return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_bRunningLinePosted.Exchange(false);   // before the line is read, so that a newer one is posted anew
            SetCurGCodeLine(m_uRunningLine.Ordered());
        },
        Qt::QueuedConnection);
}

void CdlgGCode::SetCurGCodeLine(unsigned int uLine)
{
    if (uLine == 0 || uLine > static_cast<unsigned>(CGCodeEditor::LineCount())) return;
    // The line before: wanted, the worker reads one move ahead of the axes.
    const auto iLine = static_cast<qint32>(uLine - 1);
    if (m_bSingleLineRun)
        m_View.ShowExecuted(iLine);   // the row that the next press executes stays the operator's choice
    else
        m_View.SelectLine(iLine);
}

void CdlgGCode::on_LW_GcodeCommands_itemClicked(QListWidgetItem*)
{
    if (IsProgramRunning()) return;
    const qint32 iLine = m_View.CurrentLine();
    m_View.ShowField(iLine);
    m_View.ShowErrorsOf(iLine);
}

void CdlgGCode::ShowStartLine()
{
    m_pUi->Btn_GCodeExecStartLine->setText(QString::number(AppConfig::m_GCodeRunSettings.iCurLine) +
                                           QStringLiteral("\nStart Line"));
}

// ---- Check ----------------------------------------------------------------------------------------------------------

void CdlgGCode::on_Btn_CompileGCode_clicked()
{
    CPressedBtn press(Host(), m_pUi->Btn_CompileGCode);
    if (Refused(WhyNotChanged(CProgramState::CHECK))) return;
    Host().AddLogMsg(QStringLiteral("Compiling G-Code. This may take few seconds based on the G-Code File size"),
                     MSG_INFO);
    CGCodeEditor::ClearErrors();
    CompileInBackground([] { return true; });
    press.StayOn();
}

void CdlgGCode::on_GCode_Compile_Complete()
{
    if (m_bGCodeCompiling) return;     // of one before: another has begun, which will tell its own end
    m_CompileTask.waitForFinished();   // it has nothing left to do but to end
    Host().AddLogMsg(QStringLiteral("G-Code Compilation Completed"), MSG_INFO);
    if (!m_strStickFile.isEmpty()) Host().AddLogMsg(QStringLiteral("G-Code loaded:") + m_strStickFile, MSG_INFO);
    m_strStickFile.clear();
    m_pUi->Btn_CompileGCode->setStyleSheet(BTN_BKGND_GRAY);
    m_View.ShowChecked();
}

// fnFirst: what goes before, on the task too; false: it has come to nothing, and there is nothing to check.
template <class Fn> void CdlgGCode::CompileInBackground(Fn fnFirst)
{
    m_bGCodeCompiling = true;
    CProgramState::m_bCompileTask = true;
    m_CompileTask = QtConcurrent::run([this, fnFirst]() mutable {
        const auto lower = qScopeGuard([] { CProgramState::m_bCompileTask = false; });
        if (fnFirst())
            CompileGCode(this);
        else
            m_bGCodeCompiling = false;
    });
}

void CdlgGCode::on_Btn_GCodeFirstError_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_GCodeFirstError);
    if (!CProgramState::IsInTask()) m_View.GoToError(CGCodeEditor::FirstError());
}
void CdlgGCode::on_Btn_GCodePrevError_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_GCodePrevError);
    if (!CProgramState::IsInTask()) m_View.GoToError(CGCodeEditor::ErrorBefore(m_View.ErrorLine()));
}
void CdlgGCode::on_Btn_GCodeNextError_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_GCodeNextError);
    if (!CProgramState::IsInTask()) m_View.GoToError(CGCodeEditor::ErrorBehind(m_View.ErrorLine()));
}
void CdlgGCode::on_Btn_GCodeLastError_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_GCodeLastError);
    if (!CProgramState::IsInTask()) m_View.GoToError(CGCodeEditor::LastError());
}

// ---- Run ------------------------------------------------------------------------------------------------------------

bool CdlgGCode::StartGCode()
{
    if (Host().IsEmergencyStopOn()) return false;
    if (IsProgramRunning()) return PauseOrResume();
    if (Refused(Host().WhyNotFree()) || Refused(WhyNotRun(CProgramState::RUN))) return false;
    SetEditMode(false);
    ResetUI(false);
    Host().ClearToolGraphics();
    AppConfig::m_GCodeRunSettings.strFile = m_File.Name();
    return IsOrOpen(Host().Machine().StartGCode(&m_lstOfGCodeCmds));
}

// The worker may still be busy with the end of a job that was given up: it has said so, and the screen must not stay
// closed for a program that does not run.
bool CdlgGCode::IsOrOpen(bool bStarted)
{
    if (!bStarted) ResetUI(true);
    return bStarted;
}

bool CdlgGCode::PauseOrResume()
{
    const bool bPause = Host().Machine().TogglePause();
    if (!bPause && AppConfig::m_bEnlManualToolChange) Host().EnableJogPanel(false);
    Host().AddLogMsg(bPause ? QStringLiteral("G-Code execution paused") : QStringLiteral("G-Code execution resumed"),
                     MSG_INFO);
    return true;
}

void CdlgGCode::PauseGCode()
{
    Host().Machine().RequestPause();
}

void CdlgGCode::on_Btn_ExecOneGCodeLine_clicked()
{
    CPressedBtn press(Host(), m_pUi->Btn_ExecOneGCodeLine);
    if (Host().IsEmergencyStopOn() || Refused(WhyNotRun(CProgramState::RUN_LINE))) return;
    // The row in the list, whatever line it shows: wanted, only the first ten lines of a program are tried this way.
    // The operator reads in the log which one it is.
    const int iLine = std::max(0, m_pUi->LW_GcodeCommands->currentRow());
    ResetUI(false);
    m_bSingleLineRun = true;
    if (!IsOrOpen(Host().Machine().StartExecGCodeLine(&m_lstOfGCodeCmds, iLine))) return;
    Host().AddLogMsg(QStringLiteral("Single line ") + CGCodeEditor::Field(iLine), MSG_INFO);
    press.StayOn();
}

void CdlgGCode::on_Btn_GCodeExecStartLine_clicked()
{
    CPressedBtn press(Host(), m_pUi->Btn_GCodeExecStartLine);
    if (Refused(WhyNot(CProgramState::CHOOSE_START))) return;
    const qint32 iCount = CGCodeEditor::LineCount();
    auto& iStart = AppConfig::m_GCodeRunSettings.iCurLine;
    stFloatPoint range;
    range.y = iCount > 1 ? iCount - 1 : 1.0;   // a range of zeros would check nothing
    iStart = static_cast<qint32>(
        std::lround(Host().OpenKeypad(m_pUi->Btn_GCodeExecStartLine, QStringLiteral("G-Code Start Line"),
                                      QStringLiteral("Start Line"), QString::number(iStart), range, false, 0)));
}

void CdlgGCode::on_Btn_UseZProfile_clicked()
{
    CPressedBtn press(Host(), m_pUi->Btn_UseZProfile);
    auto& bUse = AppConfig::m_bUseZProfile;
    if (Host().Operation() != OP_NONE)
        LogError(MACHINE_IN_USE);
    else if (AppConfig::m_ZProfileInfo.lstPoints.empty())
        LogError(QStringLiteral("No Z-Profile data added!\nPlease add Z-Profile data from Job Settings"));
    else
        bUse = !bUse;
    press.RestAt(bUse ? BTN_BKGND_GREEN : BTN_BKGND_GRAY);
}

void CdlgGCode::on_Btn_GCodeRunSettings_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_GCodeRunSettings);
    if (RefuseMachineInUse(Host())) return;   // over the dialog there is no Stop
    dlgGCodeSettings dialog(parentWidget());
    dialog.ConfigSettings();
    dialog.exec();
}

static bool IsReadable(const QString& strPath)
{
    return QFile(strPath).open(QIODevice::ReadOnly);
}

// ---- Open -----------------------------------------------------------------------------------------------------------

void CdlgGCode::on_Btn_OpenGCode_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_OpenGCode);
    if (Refused(WhyNotChanged(CProgramState::REPLACE))) return;
    if (CGCodeEditor::LineCount() > 0 && !m_File.AskToSave()) return;
    AppConfig::m_GCodeRunSettings.iCurLine = 0;
    ShowStartLine();
    const QString strPath = m_File.AskProgram();
    if (strPath.isEmpty()) return;
    RememberProgram(strPath);
    if (!IsReadable(strPath)) return;   // wanted: nothing is said, and the old program stays
    TakeProgram(strPath);
    Host().AddLogMsg(QStringLiteral("Loading G-Code.This may take few seconds based on the G-Code File size"),
                     MSG_INFO);
    LoadInBackground(strPath);
}

void CdlgGCode::LoadInBackground(const QString& strPath)
{
    m_bGCodeLoading = true;
    m_LoadTask = QtConcurrent::run([this, strPath, freed = m_FreeTask]() mutable {
        freed.waitForFinished();
        LoadGCode(strPath, this);
    });
}

// The status file names the last program opened, even when it never runs.
void CdlgGCode::RememberProgram(const QString& strPath)
{
    AppConfig::m_strLastFolderPath = strPath.left(strPath.lastIndexOf(QLatin1Char('/')) + 1);
    if (!WriteExecStatus(GCODE_EXEC_STATUS_FILE, strPath, AppConfig::m_GCodeRunSettings.iCurLine))
        LogError(QStringLiteral("Status File not written"));
    ShowStartLine();
}

// The held program goes; the screen bears the name of the one that comes.
void CdlgGCode::TakeProgram(const QString& strPath)
{
    ClearCurGCodeData();
    m_File.Take(strPath);
    m_pUi->LE_GCodeCmnds->clear();
}

void CdlgGCode::on_GCode_Load_Complete()
{
    if (m_bGCodeLoading) return;   // of one before: another has begun, which will tell its own end
    m_View.ShowNew();
    if (m_bLoadBroke) return m_strStickFile.clear();   // it has been told, and nothing is there
    Host().AddLogMsg(QStringLiteral("G-Code Loaded"), MSG_INFO);
    if (const QString strOneLine = WhyOneLine(); !strOneLine.isEmpty()) Host().AddLogMsg(strOneLine, MSG_NOTICE);
}

bool CdlgGCode::LoadFromStick(const QString& strPath)
{
    if (Refused(WhyNotChanged(CProgramState::CHANGE))) return false;
    if (!IsReadable(strPath)) return !Refused(QStringLiteral("G-Code File not readable: ") + strPath);
    if (!m_File.SaveUnsaved()) return false;
    AppConfig::m_GCodeRunSettings.iCurLine = 0;
    RememberProgram(strPath);
    TakeProgram(strPath);
    m_strStickFile = strPath;
    m_bGCodeLoading = true;
    CompileInBackground([this, strPath, freed = m_FreeTask]() mutable {
        freed.waitForFinished();
        LoadGCode(strPath, this);
        return !m_bLoadBroke;
    });
    return true;
}

// ---- Save -----------------------------------------------------------------------------------------------------------

void CdlgGCode::on_Btn_SaveGCode_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_SaveGCode);
    if (CGCodeEditor::LineCount() == 0) return;
    m_File.Save();
}

void CdlgGCode::on_Btn_SaveAsGCode_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_SaveAsGCode);
    if (!Refused(WhyNot(CProgramState::SAVE_AS))) SaveGCode();
}

// ---- New ------------------------------------------------------------------------------------------------------------

void CdlgGCode::on_Btn_NewGCode_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_NewGCode);
    if (Refused(Host().WhyNotFree()) || CGCodeEditor::LineCount() == 0) return;
    if (Refused(WhyNotChanged(CProgramState::REPLACE)) || !m_File.AskToSave()) return;
    AppConfig::m_GCodeRunSettings.iCurLine = 0;
    TakeProgram(QString());
    ShowStartLine();
}

void CdlgGCode::ClearCurGCodeData()
{
    m_FreeTask = CGCodeEditor::Clear();
    m_View.Clear();
}

// ---- Drawing --------------------------------------------------------------------------------------------------------

// A drawing becomes the held program. It bears the drawing's name, not that of the file it was written to. A number in
// the drawing that cannot be read is thrown through here: it must not become a cut.
void CdlgGCode::on_Btn_OpenDXF_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_OpenDXF);
    if (Refused(WhyNotChanged(CProgramState::REPLACE))) return;
    if (CGCodeEditor::LineCount() > 0 && !m_File.AskToSave()) return;
    const QString strDrawing = m_File.AskDrawing();
    if (strDrawing.isEmpty()) return;
    AppConfig::m_strLastFolderPath = strDrawing.left(strDrawing.lastIndexOf(QLatin1Char('/')) + 1);
    // The run starts at the program's first line, which this button alone counts from 1.
    AppConfig::m_GCodeRunSettings.iCurLine = 0;
    m_pUi->Btn_GCodeExecStartLine->setText(QStringLiteral("1\nStart Line"));
    Host().AddLogMsg(QStringLiteral("Creating G-Code from DXF file"), MSG_INFO);

    dlgDxfToGCode dialog(parentWidget());
    dialog.m_stSettings.strDxfFile = QFile::encodeName(strDrawing).toStdString();
    dialog.exec();   // however it is closed, the conversion goes on
    const QString strProgram =
        QFile::decodeName(QByteArray::fromStdString(DxfOutputName(dialog.m_stSettings.strDxfFile)));
    QFile::remove(strProgram);
    if (CreateGcodeFromDxf(dialog.m_stSettings) != 0) return LogError(QStringLiteral("Not a valid DXF File"));

    TakeProgram(strDrawing);
    LoadInBackground(strProgram);
    Host().AddLogMsg(QStringLiteral("G-Code saved at") + m_File.Name(), MSG_INFO);
}

// ---- Editing --------------------------------------------------------------------------------------------------------

// Line editing. Errors of the last check go with their lines, or a new check is made at once.

void CdlgGCode::SetEditMode(bool bOn)
{
    if (bOn != m_bEditMode) Host().GrabKeyboard(!bOn);   // letters go to the edit field
    m_bEditMode = bOn;
    m_pUi->LE_GCodeCmnds->setEnabled(bOn);
    m_pUi->Btn_EditGCode->setStyleSheet(bOn ? BTN_BKGND_GREEN : BTN_BKGND_GRAY);
}

void CdlgGCode::on_Btn_EditGCode_clicked()
{
    CPressedBtn press(Host(), m_pUi->Btn_EditGCode);
    if (CGCodeEditor::LineCount() == 0)
        LogError(QStringLiteral("No G-Code loaded"));
    else
        SetEditMode(!m_bEditMode);
    press.RestAt(m_bEditMode ? BTN_BKGND_GREEN : BTN_BKGND_GRAY);
}

void CdlgGCode::on_Btn_UpdateGCodeLine_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_UpdateGCodeLine);
    if (m_pUi->LE_GCodeCmnds->text().isEmpty() || Refused(WhyNotChanged(CProgramState::CHANGE))) return;
    if (CGCodeEditor::LineCount() == 0) return InsertLine();
    const qint32 iLine = m_View.CurrentLine();
    if (iLine < 0) return LogError(NoLineSelected());
    if (Refused(m_View.WhyNotUpdated())) return;
    m_File.MarkEdited();
    CGCodeEditor::Update(iLine, CGCodeEditor::TextOf(m_pUi->LE_GCodeCmnds->text()));
    m_View.ShowUpdated();
}

void CdlgGCode::on_Btn_InsertNewGCodeLine_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_InsertNewGCodeLine);
    InsertLine();
}

void CdlgGCode::on_Btn_AddNewGCodeLine_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_AddNewGCodeLine);
    InsertLine();
}

void CdlgGCode::InsertLine()
{
    if (m_pUi->LE_GCodeCmnds->text().isEmpty() || Refused(WhyNotChanged(CProgramState::CHANGE))) return;
    const qint32 iLine = m_View.CurrentLine();
    if (iLine < 0 && CGCodeEditor::LineCount() > 0) return LogError(NoLineSelected());
    m_File.MarkEdited();
    CGCodeEditor::InsertBehind(iLine, CGCodeEditor::TextOf(m_pUi->LE_GCodeCmnds->text()));
    m_View.ShowChange(iLine + 1);
}

void CdlgGCode::on_Btn_DeleteGCodeLine_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_DeleteGCodeLine);
    const qint32 iLine = m_View.CurrentLine();
    if (Refused(WhyNotChanged(CProgramState::CHANGE)) || CGCodeEditor::LineCount() == 0 || iLine < 0) return;
    m_File.MarkEdited();
    CGCodeEditor::Delete(iLine);
    m_View.StepBack();
    m_View.ShowChange(std::min(iLine, CGCodeEditor::LineCount() - 1));
    m_pUi->LE_GCodeCmnds->clear();
}

void CdlgGCode::on_Btn_MoveGCodeLineUp_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_MoveGCodeLineUp);
    MoveLine(-1);
}

void CdlgGCode::on_Btn_MoveGCodeLineDown_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_MoveGCodeLineDown);
    MoveLine(1);
}

void CdlgGCode::MoveLine(qint32 iStep)
{
    const qint32 iLine = m_View.CurrentLine(), iOther = iLine + iStep;
    if (Refused(WhyNotChanged(CProgramState::CHANGE)) || iLine < 0 || iOther < 0 || iOther >= CGCodeEditor::LineCount())
        return;
    Swap_GCode_Lines(iLine, iOther);
    m_View.ShowAgain();
    m_View.SelectLine(iOther);
    m_View.ShowErrorsOf(iOther);
}

void CdlgGCode::Swap_GCode_Lines(qint32 iLine, qint32 iOther)
{
    m_File.MarkEdited();
    CGCodeEditor::Swap(iLine, iOther);
}

// The keyboard opens behind the release, when the field has done with the press.
bool CdlgGCode::eventFilter(QObject* pObject, QEvent* pEvent)
{
    if (pObject == m_pUi->LE_GCodeCmnds && pEvent->type() == QEvent::MouseButtonRelease && m_bEditMode)
        QTimer::singleShot(0, this, [this] { EditByTouch(); });
    return QDialog::eventFilter(pObject, pEvent);
}

// Only the text of the line: the number before it stays.
void CdlgGCode::EditByTouch()
{
    QLineEdit& field = *m_pUi->LE_GCodeCmnds;
    const QString strField = field.text();
    QString strText = CGCodeEditor::TextOf(strField);
    const QString strNumber = strField.left(strField.size() - strText.size());
    if (CDlgTextPad::Edit(this, QStringLiteral("G-Code Line"), strText)) field.setText(strNumber + strText);
}

// ---- Window system --------------------------------------------------------------------------------------------------

void CdlgGCode::wheelEvent(QWheelEvent* pEvent)
{
    pEvent->accept();
}

// The numeric keypad works the machine again while another screen is shown.
void CdlgGCode::showEvent(QShowEvent* pEvent)
{
    QDialog::showEvent(pEvent);
    ShowUseOfZProfile();   // it ends with the grid, on the screen of that
    if (m_bEditMode) Host().GrabKeyboard(false);
}

void CdlgGCode::hideEvent(QHideEvent* pEvent)
{
    QDialog::hideEvent(pEvent);
    if (m_bEditMode) Host().GrabKeyboard(true);
}
