#include "support/screens/ScreenSupport.h"

#include <deque>

// ---- Widgets and waiting ----

void ShowWindow(QWidget& window)
{
    window.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
}

bool WaitFor(const std::function<bool()>& fnCondition, int iLimitMs)
{
    return QTest::qWaitFor(fnCondition, iLimitMs);
}

// ---- Fingers ----

static void ExpectPressable(const QWidget& widget)
{
    EXPECT_TRUE(widget.isVisible()) << widget.objectName().toStdString() << " is hidden";
    EXPECT_TRUE(widget.isEnabled()) << widget.objectName().toStdString() << " is disabled";
}

void Click(QWidget& widget)
{
    ExpectPressable(widget);
    QTest::mouseClick(&widget, Qt::LeftButton);
}
void Press(QWidget& widget)
{
    ExpectPressable(widget);
    QTest::mousePress(&widget, Qt::LeftButton);
}
void Release(QWidget& widget)
{
    QTest::mouseRelease(&widget, Qt::LeftButton);
}

void Touch(QWidget& widget)
{
    TouchDown(widget, widget.rect().center());
    TouchUp(widget, widget.rect().center());
}
void TouchDown(QWidget& widget, QPoint at)
{
    QWidget* pWindow = widget.window();
    QTest::mousePress(pWindow->windowHandle(), Qt::LeftButton, {}, widget.mapTo(pWindow, at));
}
void TouchMove(QWidget& widget, QPoint at)
{
    QWidget* pWindow = widget.window();
    QTest::mouseMove(pWindow->windowHandle(), widget.mapTo(pWindow, at));
}
void TouchUp(QWidget& widget, QPoint at)
{
    QWidget* pWindow = widget.window();
    QTest::mouseRelease(pWindow->windowHandle(), Qt::LeftButton, {}, widget.mapTo(pWindow, at));
}

// ---- Boxes, keypads and file dialogs ----

static QString TextOf(const QWidget& modal)
{
    const auto* pBox = qobject_cast<const QMessageBox*>(&modal);
    return pBox ? pBox->text() : QString();
}

// Looks for modal widgets from within their own event loops.
class CModalWatch : public QObject
{
public:
    static CModalWatch& Get()
    {
        static CModalWatch* pWatch = new CModalWatch;   // lives as long as the application
        return *pWatch;
    }
    std::deque<CAnswer*> m_lstAnswers;

private:
    CModalWatch()
    {
        connect(&m_Timer, &QTimer::timeout, this, [this] { Look(); });
        m_Timer.start(5);
    }
    void Look()
    {
        QWidget* pModal = QApplication::activeModalWidget();
        if (pModal != m_pSeen) {
            m_pSeen = pModal;
            m_Since.start();
            // The same dialog may come again without a pause in between.
            if (auto* pDialog = qobject_cast<QDialog*>(pModal))
                connect(pDialog, &QDialog::finished, this, [this, pModal] {
                    m_pSeen = nullptr;
                    m_Answered.remove(pModal);
                });
        }
        if (!pModal) return;
        if (!m_Answered.contains(pModal) && !m_lstAnswers.empty()) {
            m_Answered.insert(pModal);
            CAnswer* pAnswer = m_lstAnswers.front();
            m_lstAnswers.pop_front();
            // Posted, so that a box which the answer itself brings up is seen too.
            QTimer::singleShot(0, pModal, [pAnswer, pModal] { Give(*pAnswer, *pModal); });
        } else if (m_Since.elapsed() > GIVE_UP_MS) {
            ADD_FAILURE() << (m_Answered.contains(pModal) ? "left open: " : "nobody answers: ")
                          << pModal->windowTitle().toStdString() << ": " << TextOf(*pModal).toStdString();
            m_Since.start();
            if (auto* pDialog = qobject_cast<QDialog*>(pModal))
                pDialog->done(QDialog::Rejected);
            else
                pModal->close();
        }
    }
    static void Give(CAnswer& answer, QWidget& modal)
    {
        answer.m_bCame = true;
        answer.m_strTitle = modal.windowTitle();
        answer.m_strText = TextOf(modal);
        answer.m_fnAnswer(modal);
    }

    static constexpr int GIVE_UP_MS = 5000;
    QTimer m_Timer;
    QPointer<QWidget> m_pSeen;
    QSet<QWidget*> m_Answered;   // and still open: a box may come on top of them and go again
    QElapsedTimer m_Since;
};

void CAnswer::Watch()
{
    CModalWatch::Get();
}

CAnswer::CAnswer(Fn fnAnswer) : m_fnAnswer(std::move(fnAnswer))
{
    CModalWatch::Get().m_lstAnswers.push_back(this);
}

CAnswer::CAnswer(QMessageBox::StandardButton eButton)
    : CAnswer([eButton](QWidget& modal) {
          auto* pBox = qobject_cast<QMessageBox*>(&modal);
          ASSERT_TRUE(pBox) << modal.metaObject()->className() << " is no message box";
          ASSERT_TRUE(pBox->button(eButton)) << pBox->text().toStdString() << ": has no such button";
          Click(*pBox->button(eButton));
      })
{
}

CAnswer::~CAnswer()
{
    EXPECT_TRUE(m_bCame) << "no box came";
    std::erase(CModalWatch::Get().m_lstAnswers, this);
}

CAnswer::Fn CAnswer::Keys(const QString& strKeys, bool bOk)
{
    return [strKeys, bOk](QWidget& modal) {
        const QMap<QChar, QString> names = {
            {'.', "Btn_Point"}, {'-', "Btn_Sign"}, {'C', "Btn_Clear"}, {'<', "Btn_BackSpace"}};
        for (const QChar key : strKeys) Click(modal, names.value(key, QStringLiteral("Btn_") + key));
        Click(modal, bOk ? QStringLiteral("Btn_OK") : QStringLiteral("Btn_Cancel"));
    };
}

CAnswer::Fn CAnswer::File(const QString& strPath)
{
    return [strPath](QWidget& modal) {
        auto* pDialog = qobject_cast<QFileDialog*>(&modal);
        ASSERT_TRUE(pDialog) << modal.metaObject()->className() << " is no file dialog";
        auto& box = Child<QDialogButtonBox>(modal, "buttonBox");
        if (strPath.isEmpty()) return Click(*box.button(QDialogButtonBox::Cancel));
        Child<QLineEdit>(modal, "fileNameEdit").setText(strPath);
        const bool bSave = pDialog->acceptMode() == QFileDialog::AcceptSave;
        Click(*box.button(bSave ? QDialogButtonBox::Save : QDialogButtonBox::Open));
    };
}

// ---- Looks ----

namespace {
constexpr int LEAST_TEXT = 12, LEAST_TARGET = 40;   // pixels

class CTidy
{
public:
    CTidy(const QWidget& screen, const stTidy& exempt) : m_Screen(screen), m_Exempt(exempt) { Walk(screen); }
    QStringList m_lstFaults;

private:
    static QString Name(const QWidget& w)
    {
        const QString strName = w.objectName();
        return strName.isEmpty() ? QString::fromLatin1(w.metaObject()->className()) : strName;
    }
    void Fault(const QWidget& w, const QString& strWhat) { m_lstFaults.append(Name(w) + ": " + strWhat); }

    QList<QWidget*> VisibleChildren(const QWidget& parent) const
    {
        QList<QWidget*> list;
        for (QWidget* pChild : parent.findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            if (!pChild->isWindow() && pChild->isVisibleTo(&m_Screen) && !pChild->inherits("QSizeGrip") &&
                !m_Exempt.lstAny.contains(pChild->objectName()))
                list.append(pChild);
        return list;
    }

    void Walk(const QWidget& w)
    {
        CheckText(w);
        CheckTarget(w);
        if (const auto* pArea = qobject_cast<const QScrollArea*>(&w)) {
            if (pArea->widget()) Walk(*pArea->widget());
            return;
        }
        // What these hold is laid out by Qt.
        for (const char* szClass : {"QAbstractScrollArea", "QComboBox", "QLineEdit", "QAbstractSpinBox", "QTabBar"})
            if (w.inherits(szClass)) return;
        const QList<QWidget*> children = VisibleChildren(w);
        for (qsizetype n = 0; n < children.size(); ++n) {
            CheckPlace(w, *children[n], children.mid(n + 1));
            Walk(*children[n]);
        }
    }

    void CheckPlace(const QWidget& parent, const QWidget& child, const QList<QWidget*>& others)
    {
        if (m_Exempt.lstOverlap.contains(child.objectName())) return;
        if (!parent.rect().contains(child.geometry())) Fault(child, "outside of " + Name(parent));
        for (const QWidget* pOther : others)
            if (child.geometry().intersects(pOther->geometry()) && !m_Exempt.lstOverlap.contains(pOther->objectName()))
                Fault(child, "overlaps " + Name(*pOther));
    }

    void CheckTarget(const QWidget& w)
    {
        const auto* pEdit = qobject_cast<const QLineEdit*>(&w);
        const bool bTarget = w.inherits("QAbstractButton") || w.inherits("QComboBox") || w.inherits("QSlider") ||
                             (pEdit && !pEdit->isReadOnly() && pEdit->focusPolicy() != Qt::NoFocus);
        if (bTarget && std::min(w.width(), w.height()) < LEAST_TARGET && !m_Exempt.lstSmall.contains(w.objectName()))
            Fault(w, QString("a target of %1 by %2").arg(w.width()).arg(w.height()));
    }

    void ExpectFits(const QWidget& w, QSize text, QSize room)
    {
        if (text.isEmpty()) return;
        if (QFontInfo(w.font()).pixelSize() < LEAST_TEXT)
            Fault(w, QString("text of %1 pixels").arg(QFontInfo(w.font()).pixelSize()));
        if (text.width() > room.width() || text.height() > room.height())
            Fault(w, QString("text of %1 by %2 in %3 by %4")
                         .arg(text.width())
                         .arg(text.height())
                         .arg(room.width())
                         .arg(room.height()));
    }
    static QSize TextSize(const QWidget& w, const QString& strText)
    {
        return strText.isEmpty() ? QSize() : w.fontMetrics().size(Qt::TextShowMnemonic, strText);
    }

    void CheckText(const QWidget& w)
    {
        if (const auto* pButton = qobject_cast<const QAbstractButton*>(&w))
            CheckButton(*pButton);
        else if (const auto* pLabel = qobject_cast<const QLabel*>(&w))
            CheckLabel(*pLabel);
        else if (const auto* pEdit = qobject_cast<const QLineEdit*>(&w))
            CheckEdit(*pEdit);
        else if (const auto* pCombo = qobject_cast<const QComboBox*>(&w))
            CheckCombo(*pCombo);
        else if (const auto* pBox = qobject_cast<const QGroupBox*>(&w))
            ExpectFits(w, TextSize(w, pBox->title()), w.size() - QSize(20, 0));
        else if (const auto* pView = qobject_cast<const QListView*>(&w))
            CheckList(*pView);
    }
    void CheckButton(const QAbstractButton& button)
    {
        QSize text = TextSize(button, button.text());
        if (qobject_cast<const QPushButton*>(&button) && !button.text().isEmpty()) {
            QStyleOptionButton option;
            option.initFrom(&button);
            if (!button.icon().isNull()) text.rwidth() += button.iconSize().width() + 4;
            const QRect room = button.style()->subElementRect(QStyle::SE_PushButtonContents, &option, &button);
            ExpectFits(button, text, room.size());
        } else if (!text.isEmpty()) {   // boxes with an indicator, tool buttons
            ExpectFits(button, button.minimumSizeHint().expandedTo(text), button.size());
        }
    }
    void CheckLabel(const QLabel& label)
    {
        if (label.text().isEmpty()) return;
        const QSize text =
            label.wordWrap() ? QSize(1, label.heightForWidth(label.width())) : label.QLabel::minimumSizeHint();
        ExpectFits(label, text, label.size());
    }
    void CheckEdit(const QLineEdit& edit)
    {
        QStyleOptionFrame option;
        option.initFrom(&edit);
        option.lineWidth = edit.style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, &edit);
        const QRect room = edit.style()->subElementRect(QStyle::SE_LineEditContents, &option, &edit);
        ExpectFits(edit, TextSize(edit, edit.displayText()), room.size() - QSize(4, 0));
    }
    void CheckCombo(const QComboBox& combo)
    {
        QStyleOptionComboBox option;
        option.initFrom(&combo);
        const QRect room =
            combo.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &combo);
        for (int n = 0; n < combo.count(); ++n) ExpectFits(combo, TextSize(combo, combo.itemText(n)), room.size());
    }
    void CheckList(const QListView& view)
    {
        if (!view.model() || view.model()->rowCount() == 0) return;
        const bool bScrolls = view.horizontalScrollBarPolicy() != Qt::ScrollBarAlwaysOff || view.wordWrap();
        ExpectFits(view, QSize(bScrolls ? 1 : view.sizeHintForColumn(0), view.fontMetrics().height()),
                   QSize(view.viewport()->width(), view.sizeHintForRow(0)));
    }

    const QWidget& m_Screen;
    const stTidy& m_Exempt;
};
}   // namespace

QStringList TidyFaults(const QWidget& screen, const stTidy& exempt)
{
    return CTidy(screen, exempt).m_lstFaults;
}

void SaveScreen(QWidget& widget, const QString& strName)
{
    const QString strFolder = qEnvironmentVariable("VANTOR_SCREENS");
    if (strFolder.isEmpty()) return;
    EXPECT_TRUE(QDir().mkpath(strFolder));
    EXPECT_TRUE(widget.grab().save(strFolder + '/' + strName + ".png"));
}
