#pragma once
#include <QDialog>
#include <QPointer>

#include <memory>
#include <vector>

class QApplication;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
namespace Ui {
class CDlgTextPad;
}

// Letters by touch: a keyboard for a line of text, with the words of G-code in a row of their own and the digits in a
// block. A real keyboard writes into the same field. Interface thread.
class CDlgTextPad : public QDialog
{
    Q_OBJECT

public:
    explicit CDlgTextPad(QWidget* pParent = nullptr);
    ~CDlgTextPad() override;

    // Lets the operator change the text. False: cancelled, and strText as it was. With bLines there is a key for a
    // new line, which the field shows as a sign.
    static bool Edit(QWidget* pParent, const QString& strTitle, QString& strText, bool bLines = false);

    void SetText(const QString& strText);
    QString Text() const;

private slots:
    void on_Btn_Shift_toggled(bool bOn);
    void on_Btn_Symbols_toggled(bool bOn);

private:
    void EnableLines();
    QPushButton* AddKey(const QString& strName, const QString& strText, int iRow, int iColumn);
    void AddRow(const QString& strKeys, int iRow, int iColumn);
    void Write(const QString& strText);
    void LabelKeys();

    std::vector<QPushButton*> m_lstLetters;   // in the order of the tables of letters and symbols
    std::unique_ptr<Ui::CDlgTextPad> m_pUi;
};

// Opens the keyboard when a finger touches a text field. It belongs to the field and goes with it.
class CTextPadOpener : public QObject
{
    Q_OBJECT

public:
    CTextPadOpener(QLineEdit* pEdit, const QString& strTitle);
    CTextPadOpener(QPlainTextEdit* pEdit, const QString& strTitle);   // with line feeds
    // The name field of every file dialog to come. Once.
    static void WatchFileDialogs(QApplication& app);

protected:
    bool eventFilter(QObject* pObject, QEvent* pEvent) override;

private:
    void Open();

    QLineEdit* m_pEdit = nullptr;   // one of the two
    QPlainTextEdit* m_pLines = nullptr;
    QWidget* const m_pField;   // what the finger touches; also while the edit goes, when it can no longer be asked
    QString m_strTitle;
    bool m_bTouched = false;
};
