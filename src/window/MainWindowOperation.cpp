#include "config/AppConfig.h"
#include "widgets/ButtonStyle.h"
#include "window/MainWindowUi.h"

#include <algorithm>
#include <cmath>
#include <iterator>

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

constexpr double AT_ZERO = 9e-5;   // mm

const char* StartMessage(qint32 iOperation)
{
    static constexpr const char* MESSAGES[] = {"",
                                               "Moving to Work Home",
                                               "Moving to Machine Home",
                                               "Shapes cutting started",
                                               "3D relief Carving started",
                                               "G-Code execution Started",
                                               "Setting Z0 using Z-Probe",
                                               "Z profiling Started"};
    const bool bKnown = iOperation >= 0 && iOperation < static_cast<qint32>(std::size(MESSAGES));
    return MESSAGES[bKnown ? iOperation : 0];
}
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

// What the end of an operation shows, and its message; none where it has not reached what it was for.
struct MainWindow::stEndRow
{
    qint32 iOperation;
    QString (*fnEnd)(MainWindow&);
};
const MainWindow::stEndRow MainWindow::m_lstEndTable[] = {
    {OP_WORK_HOME, [](MainWindow& w) { return w.EndWorkHoming(); }},
    {OP_MCH_HOME, [](MainWindow& w) { return w.EndMchHoming(); }},
    {OP_Z_PROBE, [](MainWindow& w) { return w.EndZProbe(); }},
    {OP_SHAPES, [](MainWindow&) { return QStringLiteral("Shapes cutting completed"); }},
    {OP_IMG_CARVING, [](MainWindow&) { return QStringLiteral("3D Relief carving completed"); }},
    {OP_GCODE, [](MainWindow& w) { return w.EndGCode(); }},
    {OP_Z_PROFILE, [](MainWindow& w) { return w.EndZProfile(); }},
};

// ---- Start of an operation ------------------------------------------------------------------------------------------

void MainWindow::EnableDisableWindows()
{
    if (PostToInterface([this] { EnableDisableWindows(); })) return;
    m_uOperations = m_uOperations + 1;
    const qint32 iOperation = m_AppControl.m_eOperation;
    AddLogMsg(QString::fromLatin1(StartMessage(iOperation)), MSG_INFO);
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

    const qint32 iOperation = m_AppControl.m_eOperation;
    const auto end = std::find_if(std::begin(m_lstEndTable), std::end(m_lstEndTable),
                                  [iOperation](const stEndRow& row) { return row.iOperation == iOperation; });
    const QString strMsg = end == std::end(m_lstEndTable) ? QString() : end->fnEnd(*this);
    if (!AppConfig::m_bEmergencyStopON) AddLogMsg(strMsg, MSG_INFO);
    if (JOBS & Bit(iOperation)) EndJob(iOperation);

    m_AppControl.m_eOperation = OP_NONE;
    m_AppControl.m_bPause = false;
    for (CMyRndBtn* pButton : {&m_BtnStart, &m_BtnPause}) {
        pButton->setEnabled(true);
        pButton->SetReleased();
    }
    if (m_bJogPanelTaken) EnableJogPanel(true);
    m_bJogPanelTaken = false;
    OnG01FeedChange(m_G01FeedBar.GetValue());   // the operator's override, back on the axes
}

QString MainWindow::EndWorkHoming()
{
    m_pUi->Btn_MoveWorkZero->setStyleSheet(BTN_BKGND_GRAY);
    for (int axis = 0; axis < MAX_AXES; ++axis)
        if (!(std::fabs(m_AppControl.GetCurPos(static_cast<eAxis>(axis))) <= AT_ZERO)) return QString();
    return QStringLiteral("Work home postion reached");
}

QString MainWindow::EndMchHoming()
{
    m_dlgUserSettings.ResetUI();
    return m_AppControl.GetHomeDone() ? QStringLiteral("Machine Homing finished") : QString();
}

QString MainWindow::EndZProbe()
{
    m_pUi->Btn_SetZ0WithZProbe->setStyleSheet(BTN_BKGND_GRAY);
    return QString();
}

QString MainWindow::EndGCode()
{
    m_SpindleSpeedBar.setEnabled(AppConfig::m_bPWMCtrlUsed);
    return QStringLiteral("G-Code execution finished");
}

QString MainWindow::EndZProfile()
{
    m_dlgJobSettings.ResetUI();
    return QStringLiteral("Z profiling completed");
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

void MainWindow::EndJob(qint32 iOperation)
{
    if (!AppConfig::m_bSimulationMode && AppConfig::m_bAutoSpindleOff) {
        m_AppControl.TurnOnOffSpindle(false, DIR_CW);
        ShowSpindleOff();
    }
    for (const stStateRow& row : m_lstStateTable)
        if (QWidget* pWidget = row.fnWidget(*this); row.uOff & Bit(iOperation))
            pWidget->setEnabled(MayBeEnabled(pWidget));
    m_dlgImageCarving.ResetUI(true);
    m_dlgShapes.ResetUI(true);
    m_dlgGCode.ResetUI(true);
    m_AppControl.ResetAccVel();
}
