#include "widgets/DlgKeyPad.h"

#include "ui_DlgKeyPad.h"

#include <QKeyEvent>

static QFont KeyFont(int iPixelSize)
{
    QFont font(QStringLiteral("MyFont"));
    font.setPixelSize(iPixelSize);
    font.setWeight(QFont::Black);
    return font;
}

CDlgKeyPad::CDlgKeyPad(QWidget* pParent) : QDialog(pParent), m_pUi(new Ui::CDlgKeyPad)
{
    m_pUi->setupUi(this);
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    for (QPushButton* pKey : {m_pUi->Btn_0, m_pUi->Btn_1, m_pUi->Btn_2, m_pUi->Btn_3, m_pUi->Btn_4, m_pUi->Btn_5,
                              m_pUi->Btn_6, m_pUi->Btn_7, m_pUi->Btn_8, m_pUi->Btn_9, m_pUi->Btn_Point}) {
        pKey->setFont(KeyFont(16));
        connect(pKey, &QPushButton::clicked, this, [this, pKey] { AppendKey(pKey->text()); });
    }
    m_pUi->Btn_Sign->setFont(KeyFont(16));
    m_pUi->LE_NewValue->setFont(KeyFont(16));
    for (QPushButton* pKey : {m_pUi->Btn_OK, m_pUi->Btn_Cancel, m_pUi->Btn_Clear}) pKey->setFont(KeyFont(15));
    m_pUi->Btn_BackSpace->setFont(KeyFont(22));
    m_pUi->Btn_Sign->setEnabled(false);
}

CDlgKeyPad::~CDlgKeyPad() = default;

void CDlgKeyPad::SetCurValue(const QString& strValue)
{
    m_strCurValue = strValue;
    ShowText(strValue);
}

void CDlgKeyPad::EnableSign()
{
    m_pUi->Btn_Sign->setEnabled(true);
}
void CDlgKeyPad::DisableDecimal()
{
    m_pUi->Btn_Point->setEnabled(false);
}

void CDlgKeyPad::ShowText(const QString& strText)
{
    m_strNewValue = strText;
    m_pUi->LE_NewValue->setText(strText);
}

void CDlgKeyPad::AppendKey(const QString& strKey)
{
    ShowText(m_strNewValue + strKey);
}
void CDlgKeyPad::on_Btn_Clear_clicked()
{
    ShowText(QString());
}
void CDlgKeyPad::on_Btn_BackSpace_clicked()
{
    ShowText(m_strNewValue.left(m_strNewValue.size() - 1));
}

void CDlgKeyPad::on_Btn_Sign_clicked()
{
    if (m_strNewValue.startsWith('-'))
        ShowText(m_strNewValue.mid(1));
    else if (!m_strNewValue.isEmpty())
        ShowText('-' + m_strNewValue);
}

void CDlgKeyPad::on_Btn_OK_clicked()
{
    m_bCancelled = false;
    if (m_strNewValue.isEmpty()) m_strNewValue = m_strCurValue;
    QDialog::accept();
}

void CDlgKeyPad::on_Btn_Cancel_clicked()
{
    m_bCancelled = true;
    m_strNewValue = m_strCurValue;
    QDialog::reject();
}

QPushButton* CDlgKeyPad::KeyOf(const QKeyEvent& event) const
{
    switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: return m_pUi->Btn_OK;
    case Qt::Key_Escape: return m_pUi->Btn_Cancel;
    case Qt::Key_Backspace: return m_pUi->Btn_BackSpace;
    case Qt::Key_Delete: return m_pUi->Btn_Clear;
    case Qt::Key_Minus: return m_pUi->Btn_Sign;
    case Qt::Key_Comma:
    case Qt::Key_Period: return m_pUi->Btn_Point;
    default: break;
    }
    if (event.key() < Qt::Key_0 || event.key() > Qt::Key_9) return nullptr;
    return findChild<QPushButton*>(QStringLiteral("Btn_%1").arg(event.key() - Qt::Key_0));
}

void CDlgKeyPad::keyPressEvent(QKeyEvent* pEvent)
{
    if (QPushButton* pKey = KeyOf(*pEvent))
        pKey->click();   // which a disabled key ignores
    else
        QDialog::keyPressEvent(pEvent);
}
