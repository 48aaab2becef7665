#include "common/Paths.h"
#include "config/AppConfig.h"
#include "screens/dxf/DlgDxfToGCode.h"
#include "screens/gcode/DlgGCode.h"
#include "screens/host/PressedBtn.h"
#include "ui_DlgGCode.h"

#include <QFile>
#include <QFileDialog>

// A drawing becomes the held program. It bears the drawing's name, not that of the file it was written to. A number in
// the drawing that cannot be read is thrown through here: it must not become a cut.
void CdlgGCode::on_Btn_OpenDXF_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_OpenDXF);
    if (m_bGCodeLoading) return LogError(QStringLiteral("Preveious G-Code Still Loading"));
    if (IsCompiling()) return LogError(QStringLiteral("Preveious G-Code Still Compiling"));
    if (Refused(WhyBusy())) return;
    if (CGCodeEditor::LineCount() > 0 && !AskToSave()) return;
    const QString strDrawing = QFileDialog::getOpenFileName(
        this, QStringLiteral("Select a file to Open..."), CPaths::Map(AppConfig::m_strLastFolderPath),
        QStringLiteral("DXF Files(*.dxf)"), nullptr, QFileDialog::DontUseNativeDialog);
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
    Host().AddLogMsg(QStringLiteral("G-Code saved at") + m_strFile, MSG_INFO);
}
