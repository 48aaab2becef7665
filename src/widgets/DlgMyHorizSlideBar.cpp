#include "widgets/DlgMyHorizSlideBar.h"

#include "ui_DlgMyHorizSlideBar.h"
#include "widgets/ButtonStyle.h"

#include <QTimer>

// The edges stand outside of any rule, so that the gray is all that shows of it; the style's text is laid down so.
static const QString STEP_EDGES =
    QStringLiteral("border-top-color: rgb(243, 243, 243);\nborder-left-color: rgb(243, 243, 243);");

CdlgMyHorizSlideBar::CdlgMyHorizSlideBar(QWidget* pParent) : QDialog(pParent), m_pUi(new Ui::CdlgMyHorizSlideBar)
{
    setWindowFlags(Qt::Widget);
    m_pUi->setupUi(this);
    for (QPushButton* pButton : {m_pUi->Btn_Decrease, m_pUi->Btn_Increase}) pButton->setStyleSheet(BTN_BKGND_GRAY);
    connect(this, &CdlgMyHorizSlideBar::ValueChanged, this, &CdlgMyHorizSlideBar::on_Slider_ValueChanged);
    UpdateControl();
}

CdlgMyHorizSlideBar::~CdlgMyHorizSlideBar() = default;

void CdlgMyHorizSlideBar::setValue(double fValue)
{
    Set(fValue);
    UpdateControl();
}

void CdlgMyHorizSlideBar::UpdateControl()
{
    const QString strValue = QString::number(m_sValue);
    m_pUi->LE_Value->setText(strValue);
    m_pUi->Lbl_Knob->setText(strValue);   // the field runs under the increase button near the upper end
    m_pUi->Lbl_Track->setGeometry(PART, 0, m_sKnobPos, PART);
    m_pUi->Lbl_Knob->setGeometry(m_sKnobPos + PART, 0, PART, PART);
    m_pUi->LE_Value->setGeometry(m_sKnobPos + 2 * PART, 0, m_sBarLength - PART, PART);
}

bool CdlgMyHorizSlideBar::AcceptClick()
{
    const qint64 lSince = MsSinceClick();
    if (lSince >= 0 && lSince < CLICK_GUARD) return false;
    m_ClickTimer.start();
    return true;
}

void CdlgMyHorizSlideBar::on_Btn_Decrease_pressed()
{
    if (!AcceptClick()) return;
    StepDown();
    ShowStep(m_pUi->Btn_Decrease);
}

void CdlgMyHorizSlideBar::on_Btn_Increase_pressed()
{
    if (!AcceptClick()) return;
    StepUp();
    ShowStep(m_pUi->Btn_Increase);
}

void CdlgMyHorizSlideBar::ShowStep(QPushButton* pButton)
{
    m_pPressed = pButton;
    pButton->setStyleSheet(BTN_BKGND_BLUE);
    UpdateControl();
    ResetBtnBkGnd();
}

void CdlgMyHorizSlideBar::ResetBtnBkGnd()
{
    QTimer::singleShot(TELL_DELAY, this, [this] { emit ValueChanged(m_sValue); });
}

void CdlgMyHorizSlideBar::on_Slider_ValueChanged(short)
{
    QPushButton* pButton = m_sLastKnobPos <= m_sKnobPos ? m_pUi->Btn_Increase : m_pUi->Btn_Decrease;
    pButton->setStyleSheet(BTN_BKGND_GRAY + STEP_EDGES);
    // At an end of the range and after setValue that is the other one; the pressed one must not stay blue for it.
    if (m_pPressed && m_pPressed != pButton) m_pPressed->setStyleSheet(BTN_BKGND_GRAY + STEP_EDGES);
    m_pPressed = nullptr;
    m_sLastKnobPos = m_sKnobPos;
}
