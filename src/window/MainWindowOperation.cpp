#include "config/AppConfig.h"
#include "widgets/ButtonStyle.h"
#include "window/MainWindowUi.h"

namespace {
constexpr unsigned Bit(qint32 iOperation)
{
    return 1u << iOperation;
}
constexpr unsigned SHAPES = Bit(OP_SHAPES), CARVING = Bit(OP_IMG_CARVING), GCODE = Bit(OP_GCODE),
                   Z_PROFILE = Bit(OP_Z_PROFILE);
constexpr unsigned CUTTING = SHAPES | CARVING | GCODE;
// These take buttons away and give them back; the others leave the window as it is.
constexpr unsigned JOBS = CUTTING | Z_PROFILE;
}   // namespace

// A widget and the operations during which it is off.
struct MainWindow::stStateRow
{
    QWidget* (*fnWidget)(MainWindow&);
    unsigned uOff;
};

#define ROW(name, off)                                                                                                 \
    {                                                                                                                  \
        [](MainWindow& w) -> QWidget* { return w.m_pUi->name; }, off                                                   \
    }
const MainWindow::stStateRow MainWindow::m_lstStateTable[] = {
    ROW(Btn_JobSettings, CUTTING),
    ROW(Btn_GCode, SHAPES | CARVING | Z_PROFILE),
    ROW(Btn_ShapeCarving, CARVING | GCODE | Z_PROFILE),
    ROW(Btn_ImageCarving, SHAPES | GCODE | Z_PROFILE),
    ROW(Btn_UserSettings, JOBS),
    ROW(Btn_MachineSettings, JOBS),
    ROW(Btn_MoveWorkZero, CUTTING),
    ROW(Btn_SetZ0WithZProbe, CUTTING),
    ROW(Btn_SetWorkZero, CUTTING),
    ROW(Btn_SimulationMode, CUTTING),
    ROW(Btn_SetWorkPieceLength, CUTTING),
    ROW(Btn_SetWorkPieceWidth, CUTTING),
    ROW(Btn_SetWorkPieceHeight, CUTTING),
    ROW(Btn_MoveZSafePos, CUTTING),
    ROW(Btn_MoveWorkHome_X, CUTTING),
    ROW(Btn_MoveWorkHome_Y, CUTTING),
    ROW(Btn_MoveWorkHome_Z, CUTTING),
    ROW(Btn_MoveWorkHome_A, CUTTING),
    ROW(Btn_MoveWorkHome_B, CUTTING),
    {[](MainWindow& w) -> QWidget* { return &w.m_dlgManual; }, CUTTING},
};
#undef ROW

// ---- Start of an operation ------------------------------------------------------------------------------------------

void MainWindow::EnableDisableWindows()
{
    if (PostToInterface([this] { EnableDisableWindows(); })) return;
    m_uOperations = m_uOperations + 1;
    const qint32 iOperation = m_AppControl.m_eOperation;
    AddLogMsg(StartMessage(iOperation), MSG_INFO);
    for (const stStateRow& row : m_lstStateTable)
        if (row.uOff & Bit(iOperation)) row.fnWidget(*this)->setEnabled(false);
    if (iOperation == OP_GCODE && AppConfig::m_GCodeRunSettings.bUsePrgmSpindleSpeed)
        m_SpindleSpeedBar.setEnabled(false);
    if (CUTTING & Bit(iOperation)) ShowAutoSpindle();
}

void MainWindow::ShowSpindle(QPushButton* pButton, bool bEnabled, const QString& strStyle, const QString& strText)
{
    pButton->setEnabled(bEnabled);
    pButton->setStyleSheet(strStyle);
    pButton->setText(strText);
}

void MainWindow::ShowAutoSpindle()
{
    QPushButton *pCW = m_pUi->Btn_SpindleCWOnOff, *pCCW = m_pUi->Btn_SpindleCCWOnOff;
    if (AppConfig::m_bAutoSpindleOnCW) {
        ShowSpindle(pCW, true, BTN_BKGND_GREEN, SPINDLE_CW + QStringLiteral("ON"));
        ShowSpindle(pCCW, false, BTN_BKGND_GRAY, pCCW->text());
    } else if (AppConfig::m_bAutoSpindleOnCCW) {
        ShowSpindle(pCCW, true, BTN_BKGND_GREEN, SPINDLE_CCW + QStringLiteral("ON"));
        ShowSpindle(pCW, false, BTN_BKGND_GRAY, pCW->text());
    }
}

void MainWindow::ShowSpindleOff()
{
    ShowSpindle(m_pUi->Btn_SpindleCWOnOff, true, BTN_BKGND_GRAY, SPINDLE_CW + QStringLiteral("OFF"));
    ShowSpindle(m_pUi->Btn_SpindleCCWOnOff, true, BTN_BKGND_GRAY, SPINDLE_CCW + QStringLiteral("OFF"));
}

// ---- End of an operation --------------------------------------------------------------------------------------------

void MainWindow::OnOperationFinish()
{
    // Posted by a worker that was refused; by the time it is read here the next operation may have begun.
    const quint32 uOperation = m_uOperations;
    if (PostToInterface([this, uOperation] {
            if (m_uOperations == uOperation) OnOperationFinish();
        }))
        return;

    ShowOperationEnd(m_Supervision.EndOperation());
}

void MainWindow::ShowOperationEnd(const stOperationEnd& end)
{
    ShowScreenOfEnd(end.iOperation);
    AddLogMsg(end.strMsg, MSG_INFO);
    if (IsJob(end.iOperation)) ShowJobEnd(end);
    for (CMyRndBtn* pButton : {&m_BtnStart, &m_BtnPause}) {
        pButton->setEnabled(true);
        pButton->SetReleased();
    }
    if (m_bJogPanelTaken) EnableJogPanel(true);
    m_bJogPanelTaken = false;
    OnG01FeedChange(m_G01FeedBar.GetValue());   // the operator's override, back on the axes
}

void MainWindow::ShowScreenOfEnd(qint32 iOperation)
{
    switch (iOperation) {
    case OP_WORK_HOME: return m_pUi->Btn_MoveWorkZero->setStyleSheet(BTN_BKGND_GRAY);
    case OP_MCH_HOME: return m_dlgUserSettings.ResetUI();
    case OP_Z_PROBE: return m_pUi->Btn_SetZ0WithZProbe->setStyleSheet(BTN_BKGND_GRAY);
    case OP_GCODE: return m_SpindleSpeedBar.setEnabled(AppConfig::m_bPWMCtrlUsed);
    case OP_Z_PROFILE: return m_dlgJobSettings.ResetUI();
    default: break;
    }
}

bool MainWindow::MayBeEnabled(const QWidget* pWidget) const
{
    if (m_bSelectorsOff && IsScreenSelector(pWidget)) return false;
    if (pWidget == m_pUi->Btn_MoveWorkHome_A || pWidget == m_pUi->Btn_MoveWorkHome_B) return m_bFiveAxes;
    return pWidget != m_pUi->Btn_SetZ0WithZProbe || Pin(AppConfig::m_iZProbeInput) < 255;
}

bool MainWindow::IsScreenSelector(const QWidget* pWidget) const
{
    return pWidget == m_pUi->Btn_JobSettings || pWidget == m_pUi->Btn_GCode || pWidget == m_pUi->Btn_ShapeCarving ||
           pWidget == m_pUi->Btn_ImageCarving || pWidget == m_pUi->Btn_UserSettings ||
           pWidget == m_pUi->Btn_MachineSettings;
}

void MainWindow::EnableScreenSelectors(bool bEnable)
{
    m_bSelectorsOff = !bEnable;
    const unsigned uRunning = Bit(m_AppControl.m_eOperation);
    for (const stStateRow& row : m_lstStateTable)
        if (QWidget* pWidget = row.fnWidget(*this); IsScreenSelector(pWidget))
            pWidget->setEnabled(MayBeEnabled(pWidget) && !(row.uOff & uRunning));
}

void MainWindow::ShowJobEnd(const stOperationEnd& end)
{
    if (end.bSpindleOff) ShowSpindleOff();
    for (const stStateRow& row : m_lstStateTable)
        if (QWidget* pWidget = row.fnWidget(*this); row.uOff & Bit(end.iOperation))
            pWidget->setEnabled(MayBeEnabled(pWidget));
    m_dlgImageCarving.ResetUI(true);
    m_dlgShapes.ResetUI(true);
    m_dlgGCode.ResetUI(true);
}
