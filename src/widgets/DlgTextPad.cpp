#include "widgets/DlgTextPad.h"

#include "ui_DlgTextPad.h"
#include "widgets/Look.h"

#include <QApplication>
#include <QFileDialog>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QTimer>

static const QString GCODE_KEYS = QStringLiteral("GMXYZIJKRFSTP");
static const QStringList LETTERS = {QStringLiteral("qwertyuiop"), QStringLiteral("asdfghjkl_"),
                                    QStringLiteral("zxcvbnm,")};
static const QStringList SYMBOLS = {QStringLiteral("!\"#$%&'()*"), QStringLiteral("+;:<=>?@[]"),
                                    QStringLiteral("/\\|{}~^,")};
static const QStringList DIGITS = {QStringLiteral("789"), QStringLiteral("456"), QStringLiteral("123"),
                                   QStringLiteral("0.-")};
static constexpr QChar NEW_LINE(0x23CE);   // stands for a line feed in the field of one line
static constexpr int DIGIT_COLUMN = 10, KEY_WIDTH = 64, KEY_HEIGHT = 52;   // pixels

CDlgTextPad::CDlgTextPad(QWidget* pParent) : QDialog(pParent), m_pUi(new Ui::CDlgTextPad)
{
    m_pUi->setupUi(this);
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    AddRow(GCODE_KEYS, 0, 0);
    for (int row = 0; row < LETTERS.size(); ++row)
        for (int n = 0; n < LETTERS[row].size(); ++n) {
            // The last row leaves a place for Shift before it and one for Backspace behind it.
            QPushButton* pKey =
                AddKey(QStringLiteral("Btn_Letter_") + LETTERS[row][n], QString(), row + 1, n + row / 2);
            m_lstLetters.push_back(pKey);
        }
    for (int row = 0; row < DIGITS.size(); ++row) AddRow(DIGITS[row], row + 1, DIGIT_COLUMN);
    const auto Place = [this](QPushButton* pKey, int iRow, int iColumn, int iColumns) {
        pKey->setMinimumSize(iColumns * KEY_WIDTH, KEY_HEIGHT);
        m_pUi->Grid_Keys->addWidget(pKey, iRow, iColumn, 1, iColumns);
    };
    Place(m_pUi->Btn_Shift, 3, 0, 1);
    Place(m_pUi->Btn_BackSpace, 3, 9, 1);
    Place(m_pUi->Btn_Symbols, 4, 0, 2);
    Place(m_pUi->Btn_Space, 4, 2, 4);
    Place(m_pUi->Btn_Left, 4, 6, 2);
    Place(m_pUi->Btn_Right, 4, 8, 2);
    Place(m_pUi->Btn_Clear, 5, 0, 2);
    Place(m_pUi->Btn_Cancel, 5, 6, 4);
    Place(m_pUi->Btn_OK, 5, 10, 3);
    LabelKeys();

    QLineEdit* pEdit = m_pUi->LE_Text;
    connect(m_pUi->Btn_Space, &QPushButton::clicked, this, [this] { Write(QStringLiteral(" ")); });
    connect(m_pUi->Btn_BackSpace, &QPushButton::clicked, pEdit, &QLineEdit::backspace);
    connect(m_pUi->Btn_Left, &QPushButton::clicked, pEdit, [pEdit] { pEdit->cursorBackward(false); });
    connect(m_pUi->Btn_Right, &QPushButton::clicked, pEdit, [pEdit] { pEdit->cursorForward(false); });
    connect(m_pUi->Btn_Clear, &QPushButton::clicked, pEdit, &QLineEdit::clear);
    connect(m_pUi->Btn_OK, &QPushButton::clicked, this, &QDialog::accept);
    connect(m_pUi->Btn_Cancel, &QPushButton::clicked, this, &QDialog::reject);
}

CDlgTextPad::~CDlgTextPad() = default;

bool CDlgTextPad::Edit(QWidget* pParent, const QString& strTitle, QString& strText, bool bLines)
{
    CDlgTextPad pad(pParent);
    pad.setWindowTitle(strTitle);
    if (bLines) pad.EnableLines();
    pad.SetText(bLines ? QString(strText).replace(QLatin1Char('\n'), NEW_LINE) : strText);
    if (pad.exec() != QDialog::Accepted) return false;
    strText = bLines ? pad.Text().replace(NEW_LINE, QLatin1Char('\n')) : pad.Text();
    return true;
}

// Between Clear and Cancel.
void CDlgTextPad::EnableLines()
{
    QPushButton* pKey = AddKey(QStringLiteral("Btn_NewLine"), NEW_LINE, 5, 2);
    m_pUi->Grid_Keys->addWidget(pKey, 5, 2, 1, 4);
    pKey->setText(QStringLiteral("New line ") + NEW_LINE);
    pKey->setFont(CLook::Font(16, true));
}

void CDlgTextPad::SetText(const QString& strText)
{
    m_pUi->LE_Text->setText(strText);
}
QString CDlgTextPad::Text() const
{
    return m_pUi->LE_Text->text();
}
void CDlgTextPad::Write(const QString& strText)
{
    m_pUi->LE_Text->insert(strText);
}

QPushButton* CDlgTextPad::AddKey(const QString& strName, const QString& strText, int iRow, int iColumn)
{
    auto* pKey = new QPushButton(strText, this);
    pKey->setObjectName(strName);
    pKey->setMinimumSize(KEY_WIDTH, KEY_HEIGHT);
    pKey->setFont(CLook::Font(20, true));
    pKey->setFocusPolicy(Qt::NoFocus);
    pKey->setAutoDefault(false);
    m_pUi->Grid_Keys->addWidget(pKey, iRow, iColumn);
    // An ampersand on a button is written twice.
    connect(pKey, &QPushButton::clicked, this, [this, pKey] { Write(pKey->text().right(1)); });
    return pKey;
}

void CDlgTextPad::AddRow(const QString& strKeys, int iRow, int iColumn)
{
    for (const QChar key : strKeys) AddKey(QStringLiteral("Btn_Key_") + key, key, iRow, iColumn++);
}

void CDlgTextPad::LabelKeys()
{
    const QString strKeys = (m_pUi->Btn_Symbols->isChecked() ? SYMBOLS : LETTERS).join(QString());
    const bool bUpper = m_pUi->Btn_Shift->isChecked();
    for (size_t n = 0; n < m_lstLetters.size(); ++n) {
        const QChar key = strKeys[static_cast<int>(n)];
        m_lstLetters[n]->setText(key == '&' ? QStringLiteral("&&") : QString(bUpper ? key.toUpper() : key));
    }
}

void CDlgTextPad::on_Btn_Shift_toggled(bool)
{
    LabelKeys();
}

void CDlgTextPad::on_Btn_Symbols_toggled(bool bOn)
{
    m_pUi->Btn_Shift->setEnabled(!bOn);
    LabelKeys();
}

CTextPadOpener::CTextPadOpener(QLineEdit* pEdit, const QString& strTitle)
    : QObject(pEdit), m_pEdit(pEdit), m_pField(pEdit), m_strTitle(strTitle)
{
    pEdit->installEventFilter(this);
}

CTextPadOpener::CTextPadOpener(QPlainTextEdit* pEdit, const QString& strTitle)
    : QObject(pEdit), m_pLines(pEdit), m_pField(pEdit->viewport()), m_strTitle(strTitle)
{
    m_pField->installEventFilter(this);
}

// The keyboard opens on the release, after the field has done with the press.
bool CTextPadOpener::eventFilter(QObject* pObject, QEvent* pEvent)
{
    if (pObject != m_pField) return false;
    if (pEvent->type() == QEvent::MouseButtonPress) m_bTouched = true;
    if (pEvent->type() != QEvent::MouseButtonRelease || !m_bTouched) return false;
    m_bTouched = false;
    const bool bReadOnly = m_pEdit ? m_pEdit->isReadOnly() : m_pLines->isReadOnly();
    if (!m_pField->isEnabled() || bReadOnly ||
        !m_pField->rect().contains(static_cast<QMouseEvent*>(pEvent)->position().toPoint()))
        return false;
    QTimer::singleShot(0, this, &CTextPadOpener::Open);
    return false;
}

void CTextPadOpener::Open()
{
    QString strText = m_pEdit ? m_pEdit->text() : m_pLines->toPlainText();
    const QPointer<CTextPadOpener> alive(this);
    if (!CDlgTextPad::Edit(m_pField->window(), m_strTitle, strText, m_pLines != nullptr) || !alive) return;
    if (m_pLines) return m_pLines->setPlainText(strText);
    m_pEdit->selectAll();
    m_pEdit->insert(strText);   // as typed: the field's own limits and signals hold
    emit m_pEdit->editingFinished();
}

namespace {
class CFileDialogWatch : public QObject
{
public:
    using QObject::QObject;
    bool eventFilter(QObject* pObject, QEvent* pEvent) override
    {
        if (pEvent->type() != QEvent::Show) return false;
        auto* pDialog = qobject_cast<QFileDialog*>(pObject);
        auto* pName = pDialog ? pDialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit")) : nullptr;
        if (pName && !pName->findChild<CTextPadOpener*>()) new CTextPadOpener(pName, QObject::tr("File name"));
        return false;
    }
};
}   // namespace

void CTextPadOpener::WatchFileDialogs(QApplication& app)
{
    app.installEventFilter(new CFileDialogWatch(&app));
}
