#include "screens/gcode/DlgGCode.h"

#include "common/Refusals.h"
#include "config/AppConfig.h"
#include "control/AppControl.h"
#include "screens/gcode/DlgGCodeSettings.h"
#include "screens/host/PressedBtn.h"
#include "ui_DlgGCode.h"
#include "widgets/ButtonStyle.h"
#include "widgets/Look.h"

#include <QLabel>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QThread>
#include <QWheelEvent>
#include <QtConcurrent>

#include <algorithm>
#include <cmath>

static constexpr int LINE_ROLE = Qt::UserRole;
static constexpr int ROW_HEIGHT = 22, NUMBER_WIDTH = 66;   // pixels
static const QColor FAULTY(255, 150, 0);                   // as errors in the log

static QString NothingLoaded()
{
    return QStringLiteral("No G-Code Loaded");
}

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

CdlgGCode::CdlgGCode(QWidget* pParent) : QDialog(pParent), m_pUi(std::make_unique<Ui::CdlgGCode>())
{
    m_pUi->setupUi(this);
    for (QPushButton* pButton : findChildren<QPushButton*>()) pButton->setStyleSheet(BTN_BKGND_GRAY);
    for (QLabel* pLabel : {m_pUi->Hdg_Program, m_pUi->Hdg_Lines, m_pUi->Hdg_Check, m_pUi->Hdg_Run})
        pLabel->setStyleSheet(CLook::HEADING_STYLE);
    m_pUi->LW_GcodeCommands->setItemDelegate(new CNumberedRow(m_pUi->LW_GcodeCommands));
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
    m_strFile.clear();
    m_iFirstRow = 0;
    m_iCurErrLine = 0;
    m_bEdited = m_bSingleLineRun = false;
    SetEditMode(false);
    // Directly on the worker's thread, where the slot's queue is kept at one call.
    disconnect(m_RunningLine);
    m_RunningLine = connect(
        &Host().Machine(), &AppControl::SelNxtGCodeLine, this, [this](unsigned uLine) { OnRunningLine(uLine); },
        Qt::DirectConnection);
    m_pUi->Btn_UseZProfile->setStyleSheet(AppConfig::m_bUseZProfile ? BTN_BKGND_GREEN : BTN_BKGND_GRAY);
    ShowFile();
    ShowStartLine();
}

void CdlgGCode::ResetUI(bool bEnable)
{
    if (m_bSingleLineRun) {
        m_bSingleLineRun = false;
        m_pUi->Btn_ExecOneGCodeLine->setStyleSheet(BTN_BKGND_GRAY);
    }
    for (QPushButton* pButton : findChildren<QPushButton*>()) pButton->setEnabled(bEnable);
    m_pUi->LW_GcodeCommands->setEnabled(bEnable);
}

// ---- State ----------------------------------------------------------------------------------------------------------

bool CdlgGCode::IsProgramRunning() const
{
    return Host().Operation() == OP_GCODE;
}

// The flag alone does not tell: the check of a tool-change file clears it.
bool CdlgGCode::IsCompiling() const
{
    return m_bGCodeCompiling || m_bProgramExchanged || m_CompileTask.isRunning();
}

QString CdlgGCode::WhyBusy() const
{
    return CGCodeEditor::WhyBusy(m_CompileTask.isRunning(), IsProgramRunning());
}

QString CdlgGCode::WhyNoRun(const QString& strNoProgram) const
{
    if (const QString strBusy = WhyBusy(); !strBusy.isEmpty()) return strBusy;
    if (CGCodeEditor::LineCount() == 0) return strNoProgram;
    if (!m_CompilationErrors.empty()) return QStringLiteral("Fix Compilation errors");
    return Host().WhyNotHomed();
}

// ---- View -----------------------------------------------------------------------------------------------------------

void CdlgGCode::FillRows(qint32 iPlace)
{
    const CGCodeEditor::stRows rows = CGCodeEditor::RowsAt(iPlace);
    m_iFirstRow = rows.iFirst;
    QListWidget& list = *m_pUi->LW_GcodeCommands;
    list.clear();
    for (qint32 iLine = rows.iFirst; iLine < rows.iEnd; ++iLine) {
        auto* pItem = new QListWidgetItem(m_lstOfGCodeLines[static_cast<size_t>(iLine)], &list);
        pItem->setData(LINE_ROLE, iLine);
        if (!IsCompiling() && m_CompilationErrors.contains(static_cast<quint32>(iLine))) pItem->setForeground(FAULTY);
    }
}

void CdlgGCode::on_VS_ForGCodeScrolling_valueChanged(int iValue)
{
    FillRows(iValue);
}

void CdlgGCode::ShowFrom(qint32 iPlace)
{
    FillRows(iPlace);
    const QSignalBlocker quiet(m_pUi->VS_ForGCodeScrolling);
    m_pUi->VS_ForGCodeScrolling->setValue(m_iFirstRow);
}

void CdlgGCode::SetScrollMaximum(qint32 iMaximum)
{
    const QSignalBlocker quiet(m_pUi->VS_ForGCodeScrolling);
    m_pUi->VS_ForGCodeScrolling->setMaximum(std::max(0, iMaximum));
}

qint32 CdlgGCode::CurrentLine() const
{
    const int iRow = m_pUi->LW_GcodeCommands->currentRow();
    return iRow < 0 ? -1 : m_iFirstRow + iRow;
}

void CdlgGCode::BringIntoView(qint32 iLine)
{
    const CGCodeEditor::stRows rows = CGCodeEditor::RowsAt(m_iFirstRow);
    if (!rows.Holds(iLine)) ShowFrom(CGCodeEditor::PlaceWith(iLine, rows));
}

void CdlgGCode::SelectLine(qint32 iLine)
{
    BringIntoView(iLine);
    m_pUi->LW_GcodeCommands->setCurrentRow(iLine - m_iFirstRow);
    ShowField(CGCodeEditor::Field(iLine));
}

void CdlgGCode::ShowField(const QString& strField)
{
    m_pUi->LE_GCodeCmnds->setText(strField);
    m_pUi->LE_GCodeCmnds->setCursorPosition(0);
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
    if (!m_bSingleLineRun) return SelectLine(iLine);
    // The row that the next press executes stays the operator's choice.
    const int iRow = m_pUi->LW_GcodeCommands->currentRow();
    BringIntoView(iLine);
    m_pUi->LW_GcodeCommands->setCurrentRow(iRow);
    ShowField(CGCodeEditor::Field(iLine));
}

void CdlgGCode::on_LW_GcodeCommands_itemClicked(QListWidgetItem* pItem)
{
    if (IsProgramRunning()) return;
    const qint32 iLine = CurrentLine();
    ShowField(QStringLiteral("[%1]").arg(iLine) + pItem->text());
    ShowErrorsOf(iLine);
}

void CdlgGCode::ShowErrorsOf(qint32 iLine)
{
    m_pUi->LW_GCodeCompileErrors->clear();
    if (IsCompiling()) return;
    const QString strErrors = CGCodeEditor::ErrorText(static_cast<quint32>(iLine));
    if (!strErrors.isEmpty())
        m_pUi->LW_GCodeCompileErrors->addItems({QStringLiteral("Unsupported commands:"), strErrors});
}

void CdlgGCode::ShowErrorCount()
{
    QLabel& label = *m_pUi->LBL_GCodeCompileErrorCount;
    label.setText(QString::number(m_CompilationErrors.size()));
    label.setStyleSheet(m_CompilationErrors.empty() ? QString() : QStringLiteral("color: ") + FAULTY.name());
}

void CdlgGCode::ShowFile()
{
    m_pUi->LE_GCodeFile->setText(m_strFile.isEmpty() ? QStringLiteral("Unnamed") : m_strFile);
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
    if (m_bGCodeLoading) return LogError(QStringLiteral("Preveious G-Code Still Loading"));
    if (CGCodeEditor::LineCount() == 0) return LogError(QStringLiteral("No G-Code loaded"));
    if (IsCompiling()) return LogError(QStringLiteral("Preveious G-Code Still Compiling"));
    if (Refused(WhyBusy())) return;
    Host().AddLogMsg(QStringLiteral("Compiling G-Code. This may take few seconds based on the G-Code File size"),
                     MSG_INFO);
    m_bGCodeCompiling = true;
    CGCodeEditor::ClearErrors();
    m_CompileTask = QtConcurrent::run([this] { CompileGCode(this); });
    press.StayOn();
}

void CdlgGCode::on_GCode_Compile_Complete()
{
    if (m_bGCodeCompiling) return;     // of one before: another has begun, which will tell its own end
    m_CompileTask.waitForFinished();   // it has nothing left to do but to end
    Host().AddLogMsg(QStringLiteral("G-Code Compilation Completed"), MSG_INFO);
    if (!m_strStickFile.isEmpty()) Host().AddLogMsg(QStringLiteral("G-Code loaded:") + m_strStickFile, MSG_INFO);
    m_strStickFile.clear();
    ShowErrorCount();
    m_pUi->LW_GCodeCompileErrors->clear();
    m_pUi->Btn_CompileGCode->setStyleSheet(BTN_BKGND_GRAY);
    const int iRow = m_pUi->LW_GcodeCommands->currentRow();
    FillRows(m_iFirstRow);   // marks the faulty lines
    m_pUi->LW_GcodeCommands->setCurrentRow(iRow);
    GoToError(CGCodeEditor::FirstError());
}

void CdlgGCode::GoToError(std::optional<quint32> uLine)
{
    if (!uLine) return;
    m_iCurErrLine = *uLine;
    ShowErrorsOf(static_cast<qint32>(*uLine));
    if (*uLine < static_cast<quint32>(CGCodeEditor::LineCount())) return SelectLine(static_cast<qint32>(*uLine));
    // Of a tool-change file with more lines than the program: there is none to change here.
    m_pUi->LW_GcodeCommands->setCurrentRow(-1);
    m_pUi->LE_GCodeCmnds->clear();
}

void CdlgGCode::on_Btn_GCodeFirstError_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_GCodeFirstError);
    if (!IsCompiling()) GoToError(CGCodeEditor::FirstError());
}
void CdlgGCode::on_Btn_GCodePrevError_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_GCodePrevError);
    if (!IsCompiling()) GoToError(CGCodeEditor::ErrorBefore(m_iCurErrLine));
}
void CdlgGCode::on_Btn_GCodeNextError_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_GCodeNextError);
    if (!IsCompiling()) GoToError(CGCodeEditor::ErrorBehind(m_iCurErrLine));
}
void CdlgGCode::on_Btn_GCodeLastError_clicked()
{
    const CPressedBtn press(Host(), m_pUi->Btn_GCodeLastError);
    if (!IsCompiling()) GoToError(CGCodeEditor::LastError());
}

// ---- Run ------------------------------------------------------------------------------------------------------------

bool CdlgGCode::StartGCode()
{
    if (Host().IsEmergencyStopOn()) return false;
    if (IsProgramRunning()) return PauseOrResume();
    if (Refused(Host().WhyNotFree()) || Refused(WhyNoRun(QStringLiteral("No G-Code added")))) return false;
    SetEditMode(false);
    ResetUI(false);
    Host().ClearToolGraphics();
    AppConfig::m_GCodeRunSettings.strFile = m_strFile;
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
    AppControl& machine = Host().Machine();
    const bool bPause = !machine.m_bPause;
    if (bPause)
        machine.RequestPause();
    else
        machine.Resume();
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
    if (Host().IsEmergencyStopOn() || Refused(WhyNoRun(NothingLoaded()))) return;
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
    const qint32 iCount = CGCodeEditor::LineCount();
    if (iCount == 0) return LogError(NothingLoaded());
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
    dlgGCodeSettings dialog(parentWidget());
    dialog.ConfigSettings();
    dialog.exec();
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
    if (m_bEditMode) Host().GrabKeyboard(false);
}

void CdlgGCode::hideEvent(QHideEvent* pEvent)
{
    QDialog::hideEvent(pEvent);
    if (m_bEditMode) Host().GrabKeyboard(true);
}
