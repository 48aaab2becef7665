#include "screens/gcode/ProgramView.h"

#include "common/ShownText.h"
#include "gcode/GCodeEditor.h"
#include "gcode/GCodeStore.h"
#include "gcode/ProgramState.h"
#include "ui_DlgGCode.h"

#include <QPainter>
#include <QSignalBlocker>
#include <QStyledItemDelegate>

#include <algorithm>
#include <utility>

using Store = CGCodeStore;

static constexpr int LINE_ROLE = Qt::UserRole;
static constexpr int ROW_HEIGHT = 22, NUMBER_WIDTH = 66;   // pixels
static const QColor FAULTY(255, 150, 0);                   // as errors in the log

namespace {
// A line of the program with its number before it.
class CNumberedRow : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* pPainter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        QRect number = option.rect;
        number.setWidth(NUMBER_WIDTH - 6);
        pPainter->setPen(QColor(150, 150, 150));
        pPainter->setFont(option.font);
        pPainter->drawText(number, Qt::AlignRight | Qt::AlignVCenter, index.data(LINE_ROLE).toString());
        QStyleOptionViewItem text = option;
        text.rect.setLeft(option.rect.left() + NUMBER_WIDTH);
        QStyledItemDelegate::paint(pPainter, text, index);
    }
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override
    {
        return {option.rect.width(), ROW_HEIGHT};
    }
};
}   // namespace

CProgramView::CProgramView(Ui::CdlgGCode& form) : m_Form(form)
{
    m_Form.LW_GcodeCommands->setItemDelegate(new CNumberedRow(m_Form.LW_GcodeCommands));
}

void CProgramView::Begin()
{
    m_iFirstRow = 0;
    m_iCurErrLine = 0;
}

void CProgramView::Clear()
{
    Begin();
    m_Form.LW_GcodeCommands->clear();
    m_Form.LW_GCodeCompileErrors->clear();
    ShowErrorCount();
    SetScrollMaximum(0);
}

void CProgramView::ShowNew()
{
    SetScrollMaximum(CGCodeEditor::LineCount() - CGCodeEditor::ROWS);
    ShowFrom(0);
    m_Form.LW_GcodeCommands->setCurrentRow(0);
}

void CProgramView::ShowChecked()
{
    ShowErrorCount();
    m_Form.LW_GCodeCompileErrors->clear();
    const int iRow = m_Form.LW_GcodeCommands->currentRow();
    FillRows(m_iFirstRow);
    m_Form.LW_GcodeCommands->setCurrentRow(iRow);
    GoToError(CGCodeEditor::FirstError());
}

// ---- Lines ----------------------------------------------------------------------------------------------------------

static QString TextOfRow(qint32 iLine)
{
    return ShownText(Store::m_lstOfGCodeLines[static_cast<size_t>(iLine)]);
}

void CProgramView::FillRows(qint32 iPlace)
{
    const CGCodeEditor::stRows rows = CGCodeEditor::RowsAt(iPlace);
    m_iFirstRow = rows.iFirst;
    QListWidget& list = *m_Form.LW_GcodeCommands;
    list.clear();
    for (qint32 iLine = rows.iFirst; iLine < rows.iEnd; ++iLine) {
        auto* pItem = new QListWidgetItem(TextOfRow(iLine), &list);
        pItem->setData(LINE_ROLE, iLine);
        if (!CProgramState::IsInTask() && Store::m_CompilationErrors.contains(static_cast<quint32>(iLine)))
            pItem->setForeground(FAULTY);
    }
}

void CProgramView::ShowFrom(qint32 iPlace)
{
    FillRows(iPlace);
    const QSignalBlocker quiet(m_Form.VS_ForGCodeScrolling);
    m_Form.VS_ForGCodeScrolling->setValue(m_iFirstRow);
}

void CProgramView::SetScrollMaximum(qint32 iMaximum)
{
    const QSignalBlocker quiet(m_Form.VS_ForGCodeScrolling);
    m_Form.VS_ForGCodeScrolling->setMaximum(std::max(0, iMaximum));
}

qint32 CProgramView::CurrentLine() const
{
    const int iRow = m_Form.LW_GcodeCommands->currentRow();
    return iRow < 0 ? -1 : m_iFirstRow + iRow;
}

void CProgramView::BringIntoView(qint32 iLine)
{
    const CGCodeEditor::stRows rows = CGCodeEditor::RowsAt(m_iFirstRow);
    if (!rows.Holds(iLine)) ShowFrom(CGCodeEditor::PlaceWith(iLine, rows));
}

void CProgramView::SelectLine(qint32 iLine)
{
    BringIntoView(iLine);
    m_Form.LW_GcodeCommands->setCurrentRow(iLine - m_iFirstRow);
    ShowField(iLine);
}

void CProgramView::ShowField(qint32 iLine)
{
    m_Form.LE_GCodeCmnds->setText(ShownText(CGCodeEditor::Field(iLine)));
    m_Form.LE_GCodeCmnds->setCursorPosition(0);
}

QString CProgramView::WhyNotUpdated() const
{
    const qint32 iLine = CurrentLine();
    if (const qint32 iField = CGCodeEditor::NumberOf(m_Form.LE_GCodeCmnds->text()).value_or(iLine); iField != iLine)
        return QStringLiteral("Line %1 is in the field, and line %2 is selected: select the line first")
            .arg(iField)
            .arg(iLine);
    if (CGCodeEditor::Field(iLine).size() <= MOST_SHOWN) return {};
    return QStringLiteral("Line %1 is too long to be changed here").arg(iLine);
}

void CProgramView::ShowUpdated()
{
    m_Form.LW_GcodeCommands->currentItem()->setText(TextOfRow(CurrentLine()));
}

void CProgramView::ShowExecuted(qint32 iLine)
{
    const int iRow = m_Form.LW_GcodeCommands->currentRow();
    BringIntoView(iLine);
    m_Form.LW_GcodeCommands->setCurrentRow(iRow);
    ShowField(iLine);
}

void CProgramView::ShowChange(qint32 iLine)
{
    m_Form.LW_GCodeCompileErrors->clear();
    ShowErrorCount();
    SetScrollMaximum(CGCodeEditor::LineCount() - 1);
    ShowAgain();
    if (iLine >= 0) SelectLine(iLine);   // the next press goes on from here
}

void CProgramView::StepBack()
{
    m_iFirstRow = std::max(0, m_iFirstRow - 1);
}

// ---- Errors ---------------------------------------------------------------------------------------------------------

void CProgramView::ShowErrorsOf(qint32 iLine)
{
    m_Form.LW_GCodeCompileErrors->clear();
    if (CProgramState::IsInTask()) return;
    const QString strErrors = CGCodeEditor::ErrorText(static_cast<quint32>(iLine));
    if (!strErrors.isEmpty())
        m_Form.LW_GCodeCompileErrors->addItems({QStringLiteral("Unsupported commands:"), ShownText(strErrors)});
}

void CProgramView::ShowErrorCount()
{
    QLabel& label = *m_Form.LBL_GCodeCompileErrorCount;
    label.setText(QString::number(Store::m_CompilationErrors.size()));
    label.setStyleSheet(Store::m_CompilationErrors.empty() ? QString() : QStringLiteral("color: ") + FAULTY.name());
}

void CProgramView::GoToError(std::optional<quint32> uLine)
{
    if (!uLine) return;
    m_iCurErrLine = *uLine;
    ShowErrorsOf(static_cast<qint32>(*uLine));
    if (*uLine < static_cast<quint32>(CGCodeEditor::LineCount())) return SelectLine(static_cast<qint32>(*uLine));
    // Of a tool-change file with more lines than the program: there is none to change here.
    m_Form.LW_GcodeCommands->setCurrentRow(-1);
    m_Form.LE_GCodeCmnds->clear();
}
