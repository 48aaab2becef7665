#include "screens/gcode/DlgGCode.h"
#include "screens/host/PressedBtn.h"
#include "ui_DlgGCode.h"
#include "widgets/ButtonStyle.h"
#include "widgets/DlgTextPad.h"

#include <QEvent>
#include <QTimer>

#include <algorithm>

// Line editing. Errors of the last check go with their lines, or a new check is made at once.

static QString NoLineSelected()
{
    return QStringLiteral("Select a G-Code line first");
}

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
    if (m_pUi->LE_GCodeCmnds->text().isEmpty() || Refused(WhyBusy())) return;
    if (CGCodeEditor::LineCount() == 0) return InsertLine();
    const qint32 iLine = CurrentLine();
    if (iLine < 0) return LogError(NoLineSelected());
    m_bEdited = true;
    const QString strText = CGCodeEditor::TextOf(m_pUi->LE_GCodeCmnds->text());
    CGCodeEditor::Update(iLine, strText);
    m_pUi->LW_GcodeCommands->currentItem()->setText(strText);
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
    if (m_pUi->LE_GCodeCmnds->text().isEmpty() || Refused(WhyBusy())) return;
    const qint32 iLine = CurrentLine();
    if (iLine < 0 && CGCodeEditor::LineCount() > 0) return LogError(NoLineSelected());
    m_bEdited = true;
    CGCodeEditor::InsertBehind(iLine, CGCodeEditor::TextOf(m_pUi->LE_GCodeCmnds->text()));
    AfterLineChange(iLine + 1);
}

void CdlgGCode::on_Btn_DeleteGCodeLine_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_DeleteGCodeLine);
    const qint32 iLine = CurrentLine();
    if (Refused(WhyBusy()) || CGCodeEditor::LineCount() == 0 || iLine < 0) return;
    m_bEdited = true;
    CGCodeEditor::Delete(iLine);
    m_iFirstRow = std::max(0, m_iFirstRow - 1);
    AfterLineChange(std::min(iLine, CGCodeEditor::LineCount() - 1));
    m_pUi->LE_GCodeCmnds->clear();
}

void CdlgGCode::AfterLineChange(qint32 iLine)
{
    m_pUi->LW_GCodeCompileErrors->clear();
    ShowErrorCount();
    SetScrollMaximum(CGCodeEditor::LineCount() - 1);
    ShowFrom(m_iFirstRow);
    if (iLine >= 0) SelectLine(iLine);   // the next press goes on from here
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
    const qint32 iLine = CurrentLine(), iOther = iLine + iStep;
    if (Refused(WhyBusy()) || iLine < 0 || iOther < 0 || iOther >= CGCodeEditor::LineCount()) return;
    Swap_GCode_Lines(iLine, iOther);
    ShowFrom(m_iFirstRow);
    SelectLine(iOther);
    ShowErrorsOf(iOther);
}

void CdlgGCode::Swap_GCode_Lines(qint32 iLine, qint32 iOther)
{
    m_bEdited = true;
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
