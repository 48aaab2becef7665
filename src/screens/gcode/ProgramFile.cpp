#include "screens/gcode/ProgramFile.h"

#include "common/Paths.h"
#include "config/AppConfig.h"
#include "gcode/ExecStatus.h"
#include "gcode/GCodeEditor.h"
#include "gcode/GCodeStore.h"
#include "widgets/Questions.h"

#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>

#include <algorithm>

static const QString OPEN_FILTER =
    QStringLiteral("tap files(*.tap);;text files(*.txt);;G-Code files(*.ncc);;G-Code files(*.ngc)");

CScreenHost& CProgramFile::Host() const
{
    return HostOf(m_Screen);
}

void CProgramFile::Take(const QString& strPath)
{
    m_strFile = strPath;
    m_bEdited = false;
    m_Shown.setText(m_strFile.isEmpty() ? QStringLiteral("Unnamed") : m_strFile);
}

// ---- Which one ------------------------------------------------------------------------------------------------------

QString CProgramFile::AskProgram()
{
    if (CGCodeEditor::LineCount() == 0 && QFile::exists(CPaths::Map(GCODE_EXEC_STATUS_FILE)) &&
        AskYes(&m_Screen, QStringLiteral("Open Previous G-Code File?"))) {
        stExecStatus status;
        if (!ReadExecStatus(GCODE_EXEC_STATUS_FILE, status))
            QMessageBox::critical(&m_Screen, QStringLiteral("Critical error"),
                                  QStringLiteral("Unable to open Config File"));
        if (!status.strFile.isEmpty()) AppConfig::m_GCodeRunSettings.iCurLine = std::max(0, status.iLine);
        return status.strFile;
    }
    return QFileDialog::getOpenFileName(&m_Screen, QStringLiteral("Select a file to Open..."),
                                        CPaths::Map(AppConfig::m_strLastFolderPath), OPEN_FILTER, &m_strOpenFilter,
                                        QFileDialog::DontUseNativeDialog);
}

QString CProgramFile::AskDrawing()
{
    return QFileDialog::getOpenFileName(&m_Screen, QStringLiteral("Select a file to Open..."),
                                        CPaths::Map(AppConfig::m_strLastFolderPath), QStringLiteral("DXF Files(*.dxf)"),
                                        nullptr, QFileDialog::DontUseNativeDialog);
}

// ---- Saving ---------------------------------------------------------------------------------------------------------

bool CProgramFile::AskToSave()
{
    if (!m_bEdited) return true;
    if (!AskYes(&m_Screen, QStringLiteral("Save current G-Code?"))) {
        m_bEdited = false;
        return true;
    }
    return Save();
}

// The name of a drawing is not the program's own: under it the program would take the place of the drawing.
bool CProgramFile::Save()
{
    const bool bOwnName = !m_strFile.isEmpty() && !m_strFile.endsWith(QStringLiteral(".dxf"), Qt::CaseInsensitive);
    return bOwnName ? OverWrite() : SaveAs();
}

static QString WhyNotSaved(const QString& strPath, bool bOpened)
{
    return bOpened ? QStringLiteral("G-Code File not written, the old one is kept. Is the disk full?\n") + strPath
                   : QStringLiteral("File Not Readable");
}

bool CProgramFile::SaveAs()
{
    const QString strTyped =
        QFileDialog::getSaveFileName(&m_Screen, QStringLiteral("Select file tosave..."), CPaths::Map(HOME_FOLDER),
                                     QStringLiteral("G-Code Files(*.ncc)"), nullptr, QFileDialog::DontUseNativeDialog);
    if (strTyped.isEmpty()) return false;
    const QString strPath = CGCodeStore::SaveFileName(strTyped);
    if (!MayReplace(&m_Screen, strTyped, strPath)) return false;
    bool bOpened = false;
    if (!CGCodeStore::WriteProgram(strPath, &bOpened)) return !Host().Refused(WhyNotSaved(strPath, bOpened));
    Take(strPath);
    Host().AddLogMsg(QStringLiteral("G-Code saved: ") + strPath, MSG_INFO);
    return true;
}

bool CProgramFile::OverWrite()
{
    bool bOpened = false;
    const bool bWritten = CGCodeStore::WriteProgram(m_strFile, &bOpened);
    if (bOpened && !bWritten) return !Host().Refused(WhyNotSaved(m_strFile, bOpened));
    m_bEdited = false;   // wanted: also, and without a word, where the file cannot be opened
    if (bWritten) Host().AddLogMsg(QStringLiteral("G-Code saved: ") + m_strFile, MSG_INFO);
    return true;
}

bool CProgramFile::SaveUnsaved()
{
    if (!m_bEdited || CGCodeEditor::LineCount() == 0) return true;
    const QString strUnsaved = CPaths::Map(WORKING_FOLDER + QStringLiteral("/Unsaved.ncc"));
    if (!CGCodeStore::WriteProgram(strUnsaved))
        return !Host().Refused(QStringLiteral("G-Code File not written: ") + strUnsaved);
    Host().AddLogMsg(QStringLiteral("Changed G-Code saved as ") + strUnsaved, MSG_NOTICE);
    return true;
}
