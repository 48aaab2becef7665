#pragma once
#include "common/MachineTypes.h"

#include <QDialog>

#include <memory>

class QPushButton;
namespace Ui {
class CDlgKeyPad;
}

// The keypad through which every number is entered. It takes any text, also one with two points: what becomes of it is
// decided by the caller, who runs exec and reads the two members below. Digits, point, minus, Backspace, Return and
// Escape of a real keyboard do what the keys do. Interface thread.
class CDlgKeyPad : public QDialog
{
    Q_OBJECT

public:
    explicit CDlgKeyPad(QWidget* pParent = nullptr);
    ~CDlgKeyPad() override;

    void SetCurValue(const QString& strValue);
    void EnableSign();       // off at first
    void DisableDecimal();   // the point key

    bool m_bCancelled = true;   // until OK: closing it in any other way is Cancel
    QString m_strNewValue;      // what was typed; after Cancel, and after OK on an empty field, the value given

    void reject() override { on_Btn_Cancel_clicked(); }

protected:
    void keyPressEvent(QKeyEvent* pEvent) override;

private slots:
    void on_Btn_Clear_clicked();
    void on_Btn_BackSpace_clicked();
    void on_Btn_Sign_clicked();
    void on_Btn_OK_clicked();
    void on_Btn_Cancel_clicked();

private:
    void AppendKey(const QString& strKey);
    void ShowText(const QString& strText);
    QPushButton* KeyOf(const QKeyEvent& event) const;

    QString m_strCurValue;
    stFloatPoint m_fRange;   // reserved: the caller tests the range
    std::unique_ptr<Ui::CDlgKeyPad> m_pUi;
};
