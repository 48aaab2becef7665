#include "common/Paths.h"
#include "config/AppConfig.h"
#include "gcode/ExecStatus.h"
#include "screens/gcode/DlgGCode.h"
#include "screens/host/PressedBtn.h"
#include "ui_DlgGCode.h"
#include "widgets/Questions.h"

#include <QFile>
#include <QFileDialog>
#include <QMessageBox>
#include <QtConcurrent>

#include <algorithm>

static const QString OPEN_FILTER =
    QStringLiteral("tap files(*.tap);;text files(*.txt);;G-Code files(*.ncc);;G-Code files(*.ngc)");

static bool IsReadable(const QString& strPath)
{
    return QFile(strPath).open(QIODevice::ReadOnly);
}

// ---- Open -----------------------------------------------------------------------------------------------------------

void CdlgGCode::on_Btn_OpenGCode_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_OpenGCode);
    if (m_bGCodeLoading) return LogError(QStringLiteral("Preveious G-Code Still Loading"));
    if (IsCompiling()) return LogError(QStringLiteral("Preveious G-Code Still Compiling"));
    if (Refused(WhyBusy())) return;
    if (CGCodeEditor::LineCount() > 0 && !AskToSave()) return;
    AppConfig::m_GCodeRunSettings.iCurLine = 0;
    ShowStartLine();
    const QString strPath = AskProgram();
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

// The program to open, perhaps the one that a run was interrupted in, with its line. Empty: none.
QString CdlgGCode::AskProgram()
{
    if (CGCodeEditor::LineCount() == 0 && QFile::exists(CPaths::Map(GCODE_EXEC_STATUS_FILE)) &&
        AskYes(this, QStringLiteral("Open Previous G-Code File?"))) {
        stExecStatus status;
        if (!ReadExecStatus(GCODE_EXEC_STATUS_FILE, status))
            QMessageBox::critical(this, QStringLiteral("Critical error"), QStringLiteral("Unable to open Config File"));
        AppConfig::m_GCodeRunSettings.iCurLine = std::max(0, status.iLine);
        return status.strFile;
    }
    return QFileDialog::getOpenFileName(this, QStringLiteral("Select a file to Open..."),
                                        CPaths::Map(AppConfig::m_strLastFolderPath), OPEN_FILTER, &m_strOpenFilter,
                                        QFileDialog::DontUseNativeDialog);
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
    m_strFile = strPath;
    m_bEdited = false;
    ShowFile();
    m_pUi->LE_GCodeCmnds->clear();
}

void CdlgGCode::on_GCode_Load_Complete()
{
    if (m_bGCodeLoading) return;   // of one before: another has begun, which will tell its own end
    SetScrollMaximum(CGCodeEditor::LineCount() - CGCodeEditor::ROWS);
    ShowFrom(0);
    m_pUi->LW_GcodeCommands->setCurrentRow(0);
    Host().AddLogMsg(QStringLiteral("G-Code Loaded"), MSG_INFO);
}

bool CdlgGCode::LoadFromStick(const QString& strPath)
{
    if (Refused(WhyBusy())) return false;
    if (!IsReadable(strPath)) return !Refused(QStringLiteral("G-Code File not readable: ") + strPath);
    if (m_bEdited && CGCodeEditor::LineCount() > 0) {
        const QString strUnsaved = CPaths::Map(WORKING_FOLDER + QStringLiteral("/Unsaved.ncc"));
        if (!WriteProgram(strUnsaved)) return !Refused(QStringLiteral("G-Code File not written: ") + strUnsaved);
        Host().AddLogMsg(QStringLiteral("Changed G-Code saved as ") + strUnsaved, MSG_NOTICE);
    }
    AppConfig::m_GCodeRunSettings.iCurLine = 0;
    RememberProgram(strPath);
    TakeProgram(strPath);
    m_strStickFile = strPath;
    m_bGCodeLoading = true;
    m_bGCodeCompiling = true;
    m_CompileTask = QtConcurrent::run([this, strPath, freed = m_FreeTask]() mutable {
        freed.waitForFinished();
        LoadGCode(strPath, this);
        CompileGCode(this);
    });
    return true;
}

// ---- Save -----------------------------------------------------------------------------------------------------------

// False: the operator wants to save, and it has not come to it.
bool CdlgGCode::AskToSave()
{
    if (!m_bEdited) return true;
    if (!AskYes(this, QStringLiteral("Save current G-Code?"))) {
        m_bEdited = false;
        return true;
    }
    return SaveProgram();
}

// The name of a drawing is not the program's own: under it the program would take the place of the drawing.
bool CdlgGCode::SaveProgram()
{
    const bool bOwnName = !m_strFile.isEmpty() && !m_strFile.endsWith(QStringLiteral(".dxf"), Qt::CaseInsensitive);
    return bOwnName ? OverWriteGCodeFile() : SaveGCode();
}

void CdlgGCode::on_Btn_SaveGCode_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_SaveGCode);
    if (CGCodeEditor::LineCount() == 0) return;
    SaveProgram();
}

void CdlgGCode::on_Btn_SaveAsGCode_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_SaveAsGCode);
    if (m_bGCodeLoading) return LogError(QStringLiteral("Preveious G-Code Still Loading"));
    SaveGCode();
}

bool CdlgGCode::SaveGCode()
{
    const QString strTyped =
        QFileDialog::getSaveFileName(this, QStringLiteral("Select file tosave..."), CPaths::Map(HOME_FOLDER),
                                     QStringLiteral("G-Code Files(*.ncc)"), nullptr, QFileDialog::DontUseNativeDialog);
    if (strTyped.isEmpty()) return false;
    const QString strPath = SaveFileName(strTyped);
    if (!MayReplace(this, strTyped, strPath)) return false;
    bool bOpened = false;
    if (!WriteProgram(strPath, &bOpened)) return !Refused(WhyNotSaved(strPath, bOpened));
    m_strFile = strPath;
    m_bEdited = false;
    ShowFile();
    Host().AddLogMsg(QStringLiteral("G-Code saved: ") + strPath, MSG_INFO);
    return true;
}

QString CdlgGCode::WhyNotSaved(const QString& strPath, bool bOpened)
{
    return bOpened ? QStringLiteral("G-Code File not written, the old one is kept. Is the disk full?\n") + strPath
                   : QStringLiteral("File Not Readable");
}

bool CdlgGCode::OverWriteGCodeFile()
{
    bool bOpened = false;
    const bool bWritten = WriteProgram(m_strFile, &bOpened);
    if (bOpened && !bWritten) return !Refused(WhyNotSaved(m_strFile, bOpened));
    m_bEdited = false;   // wanted: also, and without a word, where the file cannot be opened
    if (bWritten) Host().AddLogMsg(QStringLiteral("G-Code saved: ") + m_strFile, MSG_INFO);
    return true;
}

// ---- New ------------------------------------------------------------------------------------------------------------

void CdlgGCode::on_Btn_NewGCode_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_NewGCode);
    if (!Host().IsMachineFree() || CGCodeEditor::LineCount() == 0) return;
    if (IsCompiling()) return LogError(QStringLiteral("Preveious G-Code Still Compiling"));
    if (!AskToSave()) return;
    AppConfig::m_GCodeRunSettings.iCurLine = 0;
    TakeProgram(QString());
    ShowStartLine();
}

void CdlgGCode::ClearCurGCodeData()
{
    m_FreeTask = CGCodeEditor::Clear();
    m_iFirstRow = 0;
    m_iCurErrLine = 0;
    m_pUi->LW_GcodeCommands->clear();
    m_pUi->LW_GCodeCompileErrors->clear();
    ShowErrorCount();
    SetScrollMaximum(0);
}
