#include "screens/jog/DlgManual.h"

#include "common/Operation.h"
#include "common/Refusals.h"
#include "machine/Machine.h"
#include "screens/host/ScreenHost.h"
#include "ui_DlgManual.h"
#include "widgets/ButtonStyle.h"

#include <QMouseEvent>

#include <algorithm>

CDlgManual::CDlgManual(QWidget* pParent) : QDialog(pParent), m_pUi(new Ui::CDlgManual)
{
    m_pUi->setupUi(this);
    setWindowFlags(Qt::Widget);
    setAutoFillBackground(true);   // plain buttons of the window lie under the panel

    AddJog(m_pUi->Btn_JogNorth, {{Y_AXIS, true}});
    AddJog(m_pUi->Btn_JogSouth, {{Y_AXIS, false}});
    AddJog(m_pUi->Btn_JogEast, {{X_AXIS, true}});
    AddJog(m_pUi->Btn_JogWest, {{X_AXIS, false}});
    AddJog(m_pUi->Btn_JogNorthEast, {{Y_AXIS, true}, {X_AXIS, true}});
    AddJog(m_pUi->Btn_JogSouthEast, {{Y_AXIS, false}, {X_AXIS, true}});
    AddJog(m_pUi->Btn_JogSouthWest, {{Y_AXIS, false}, {X_AXIS, false}});
    AddJog(m_pUi->Btn_JogNorthWest, {{Y_AXIS, true}, {X_AXIS, false}});
    AddJog(m_pUi->Btn_JogZUp, {{Z_AXIS, true}});
    AddJog(m_pUi->Btn_JogZDown, {{Z_AXIS, false}});
    AddJog(m_pUi->Btn_JogCW_A, {{A_AXIS, true}});
    AddJog(m_pUi->Btn_JogACW_A, {{A_AXIS, false}});
    AddJog(m_pUi->Btn_JogCW_B, {{B_AXIS, true}});
    AddJog(m_pUi->Btn_JogACW_B, {{B_AXIS, false}});
}

CDlgManual::~CDlgManual() = default;

void CDlgManual::AddJog(QPushButton* pButton, std::vector<stMove> moves)
{
    const size_t uJog = m_lstJogs.size();
    m_lstJogs.push_back({pButton, std::move(moves)});
    pButton->setStyleSheet(BTN_BKGND_GRAY);
    pButton->installEventFilter(this);
    connect(pButton, &QPushButton::pressed, this, [this, uJog] { OnPressed(uJog); });
    connect(pButton, &QPushButton::released, this, [this, uJog] { OnReleased(uJog); });
}

void CDlgManual::ConfigSettings()
{
    m_iStartAxes = AppConfig::m_iMchType;
    if (m_iStartAxes != 5) return;
    for (QWidget* pWidget : std::initializer_list<QWidget*>{m_pUi->Btn_JogCW_A, m_pUi->Btn_JogACW_A, m_pUi->Btn_JogCW_B,
                                                            m_pUi->Btn_JogACW_B, m_pUi->Lbl_A, m_pUi->Lbl_B})
        pWidget->setEnabled(true);
}

// An operation has the axes, also those that stand just now; only the pause of a tool change gives them away.
static bool IsTaken(const CMachine& machine)
{
    return (machine.m_eOperation != OP_NONE || machine.IsWorkerBusy()) &&
           !(machine.m_eOperation == OP_GCODE && machine.m_bPause);
}

// False: refused, and told unless the emergency stop says enough.
bool CDlgManual::MayJog(const stJog& jog)
{
    CScreenHost& host = HostOf(*this);
    if (host.IsEmergencyStopOn()) return false;
    for (const stMove& move : jog.moves) {
        // Another board has been chosen, and the pins of the old one are still those of the axes.
        if (move.axis > Z_AXIS && AppConfig::m_iMchType != m_iStartAxes) {
            host.AddLogMsg(QStringLiteral("Please Save and Restart application for the changes to take affect"),
                           MSG_ERROR);
            return false;
        }
    }
    const CMachine& machine = host.MachineParts();
    const bool bTaken = IsTaken(machine);
    const bool bMoves = machine.m_AxisCommands.IsAutoModeMoving() ||
                        std::any_of(jog.moves.begin(), jog.moves.end(),
                                    [&](const stMove& move) { return machine.m_AxisCtrl[move.axis].GetAxisState(); });
    if ((bTaken || bMoves) && !host.IsEmergencyStopOn()) host.AddLogMsg(AXIS_IN_USE, MSG_ERROR);
    return !bTaken && !bMoves;
}

void CDlgManual::OnPressed(size_t uJog)
{
    const stJog& jog = m_lstJogs[uJog];
    m_uHeld = uJog;
    jog.pButton->setStyleSheet(BTN_BKGND_BLUE);
    if (!MayJog(jog)) return HostOf(*this).ResetBtnBkGnd(jog.pButton, BTN_BKGND_GRAY);

    CMachine& machine = HostOf(*this).MachineParts();
    for (const stMove& move : jog.moves)
        machine.m_AxisCtrl[move.axis].SetVelocityAcc(AppConfig::m_fAxisJogFeed[move.axis],
                                                     AppConfig::m_fAxisAcc[move.axis]);
    for (const stMove& move : jog.moves) {
        if (move.bPositive)
            machine.m_AxisCommands.JogPos(move.axis);
        else
            machine.m_AxisCommands.JogNeg(move.axis);
    }
    m_bJogging = true;
}

// One flag for all buttons: a refused second button, let go, ends the jog of the first for the panel while its axis
// goes on. Wanted: the panel is made for one finger.
void CDlgManual::OnReleased(size_t uJog)
{
    const stJog& jog = m_lstJogs[uJog];
    m_uHeld.reset();
    m_pSpent = jog.pButton;
    if (!m_bJogging) return;
    m_bJogging = false;
    jog.pButton->setStyleSheet(BTN_BKGND_GRAY);
    // A jog that has met its limit left the machine free, and the axes may be an operation's by now.
    if (IsTaken(HostOf(*this).MachineParts())) return;
    CAxisCommands& axes = HostOf(*this).MachineParts().m_AxisCommands;
    for (auto it = jog.moves.rbegin(); it != jog.moves.rend(); ++it) axes.DeccelerateAxis(it->axis);   // X first
}

void CDlgManual::EndHeldJog()
{
    if (!m_uHeld) return;
    const size_t uJog = *m_uHeld;
    m_lstJogs[uJog].pButton->setDown(false);
    OnReleased(uJog);
}

void CDlgManual::changeEvent(QEvent* pEvent)
{
    QDialog::changeEvent(pEvent);
    if (pEvent->type() == QEvent::EnabledChange && !isEnabled()) EndHeldJog();
}

void CDlgManual::showEvent(QShowEvent* pEvent)
{
    QDialog::showEvent(pEvent);
    if (m_pWatched == window()) return;
    m_pWatched = window();
    m_pWatched->installEventFilter(this);
}

void CDlgManual::hideEvent(QHideEvent* pEvent)
{
    EndHeldJog();
    QDialog::hideEvent(pEvent);
}

bool CDlgManual::eventFilter(QObject* pObject, QEvent* pEvent)
{
    if (pObject != m_pWatched) return FilterButton(static_cast<QPushButton*>(pObject), *pEvent);
    if (pEvent->type() == QEvent::WindowBlocked || pEvent->type() == QEvent::WindowDeactivate) EndHeldJog();
    return false;
}

// True: the button must not see the event. A plain button would press itself again when the finger slides back.
bool CDlgManual::FilterButton(QPushButton* pButton, const QEvent& event)
{
    if (event.type() == QEvent::MouseButtonPress) m_pSpent = nullptr;
    if (event.type() != QEvent::MouseMove) return false;
    if (!pButton->rect().contains(static_cast<const QMouseEvent&>(event).position().toPoint())) EndHeldJog();
    return m_pSpent == pButton;
}
