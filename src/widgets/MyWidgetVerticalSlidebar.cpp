#include "widgets/MyWidgetVerticalSlidebar.h"

#include "ui_MyWidgetVerticalSlidebar.h"
#include "widgets/ButtonStyle.h"

#include <QMouseEvent>
#include <QTimer>

CMyWidgetVerticalSlidebar::CMyWidgetVerticalSlidebar(QWidget* pParent)
    : QWidget(pParent), m_pUi(new Ui::CMyWidgetVerticalSlidebar)
{
    m_pUi->setupUi(this);
    for (QPushButton* pButton : {m_pUi->Btn_Decrease, m_pUi->Btn_Increase}) pButton->setStyleSheet(BTN_BKGND_GRAY);
    UpdateControl();
}

CMyWidgetVerticalSlidebar::~CMyWidgetVerticalSlidebar() = default;

void CMyWidgetVerticalSlidebar::setValue(double fValue)
{
    Set(fValue);
    UpdateControl();
}

void CMyWidgetVerticalSlidebar::UpdateControl()
{
    const QString strValue = QString::number(m_sValue);
    const int iBottom = m_sBarLength - PART - m_sKnobPos;   // lower edge of the knob
    m_pUi->LE_Value->setText(strValue);
    m_pUi->Lbl_Knob->setText(strValue);
    m_pUi->Lbl_Track->setGeometry(0, iBottom, PART, m_sKnobPos);
    m_pUi->Lbl_Knob->setGeometry(0, iBottom - PART, PART, PART);
    m_pUi->LE_Value->setGeometry(0, iBottom - 2 * PART, PART, PART);
}

void CMyWidgetVerticalSlidebar::Tell(QPushButton* pButton)
{
    pButton->setStyleSheet(BTN_BKGND_BLUE);
    UpdateControl();
    QTimer::singleShot(100, pButton, [pButton] { pButton->setStyleSheet(BTN_BKGND_GRAY); });
    m_sLastKnobPos = m_sKnobPos;
    emit ValueChanged(m_sValue);
}

void CMyWidgetVerticalSlidebar::on_Btn_Decrease_pressed()
{
    StepDown();
    Tell(m_pUi->Btn_Decrease);
}

void CMyWidgetVerticalSlidebar::on_Btn_Increase_pressed()
{
    StepUp();
    Tell(m_pUi->Btn_Increase);
}

// Labels let the mouse through, so a press on the knob arrives here.
void CMyWidgetVerticalSlidebar::mousePressEvent(QMouseEvent* pEvent)
{
    m_bDragging = pEvent->button() == Qt::LeftButton && m_pUi->Lbl_Knob->geometry().contains(pEvent->pos());
    m_iDragY = pEvent->pos().y();
}

void CMyWidgetVerticalSlidebar::mouseMoveEvent(QMouseEvent* pEvent)
{
    const int iMoved = m_bDragging ? DragKnob(m_iDragY - pEvent->pos().y()) : 0;
    if (iMoved == 0) return;
    m_iDragY -= iMoved;
    m_sLastKnobPos = m_sKnobPos;
    UpdateControl();
    emit ValueChanged(m_sValue);
}

void CMyWidgetVerticalSlidebar::mouseReleaseEvent(QMouseEvent*)
{
    m_bDragging = false;
}
