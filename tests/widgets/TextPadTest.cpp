#include "support/screens/ScreenSupport.h"
#include "widgets/DlgTextPad.h"

namespace {
// Presses keys by what they show, and the named ones in brackets.
CAnswer::Fn Typing(const QStringList& lstKeys, const QString& strEnd)
{
    return [=](QWidget& modal) {
        for (const QString& strKey : lstKeys) {
            QPushButton* pKey = modal.findChild<QPushButton*>("Btn_" + strKey);
            for (QPushButton* pAny : modal.findChildren<QPushButton*>())
                if (!pKey && pAny->text().right(1) == strKey && pAny->text().size() < 3) pKey = pAny;
            ASSERT_TRUE(pKey) << strKey.toStdString();
            Click(*pKey);
        }
        Click(modal, strEnd);
    };
}

TEST(TextPad, WritesWhatItsKeysShow)
{
    QString strText = "N10 ";
    CAnswer program(
        Typing({"G",     "1",     "Space", "X",       "-", "2", ".",       "5", "y",     "Left", "BackSpace",
                "Right", "Shift", "Q",     "Symbols", "(", "&", "Symbols", "W", "Shift", "w"},
               "Btn_OK"));
    EXPECT_TRUE(CDlgTextPad::Edit(nullptr, "Line", strText));
    EXPECT_EQ(strText, "N10 G1 X-2.yQ(&Ww");
    EXPECT_EQ(program.Title(), "Line");

    CAnswer cancelled(Typing({"Clear", "z"}, "Btn_Cancel"));
    EXPECT_FALSE(CDlgTextPad::Edit(nullptr, "Line", strText));
    EXPECT_EQ(strText, "N10 G1 X-2.yQ(&Ww");
}

TEST(TextPad, EveryKeyIsThereAndReadable)
{
    CDlgTextPad pad;
    pad.SetText("N10 G1 X20.5 Y-3 (pocket)");
    ShowWindow(pad);
    for (const char* szState : {"", "Btn_Shift", "Btn_Symbols"}) {
        if (*szState) Click(pad, szState);
        EXPECT_TIDY(pad);
        SaveScreen(pad, QString("text-pad") + (*szState ? "-" + QString(szState).mid(4).toLower() : ""));
    }
    QSet<QString> keys;
    for (const QPushButton* pKey : pad.findChildren<QPushButton*>()) keys.insert(pKey->text());
    Click(pad, "Btn_Symbols");
    Click(pad, "Btn_Shift");
    for (const QPushButton* pKey : pad.findChildren<QPushButton*>()) keys.insert(pKey->text());
    // All that a line of a program or a file name may need.
    for (const QChar c : QString("abcdefghijklmnopqrstuvwxyz0123456789 .,-_+*/()[]{}<>=!?\"'#$%:;@^~|\\"))
        EXPECT_TRUE(c == ' ' || keys.contains(c)) << c.toLatin1();
    EXPECT_TRUE(keys.contains("&&"));
}

TEST(TextPad, WritesTheNameInAFileDialog)
{
    QTemporaryDir folder;
    CAnswer dialog([&](QWidget& modal) {
        Child<QLineEdit>(modal, "fileNameEdit").setText(folder.path() + "/par");
        Touch(Child<QLineEdit>(modal, "fileNameEdit"));
    });
    CAnswer pad([&](QWidget& modal) {
        QPointer<QWidget> pDialog = modal.parentWidget();
        Typing({"t", ".", "n", "c", "c"}, "Btn_OK")(modal);
        QTimer::singleShot(0, pDialog, [pDialog] {
            Click(*Child<QDialogButtonBox>(*pDialog, "buttonBox").button(QDialogButtonBox::Save));
        });
    });
    EXPECT_EQ(QFileDialog::getSaveFileName(nullptr, "Save", folder.path(), "programs(*.ncc)", nullptr,
                                           QFileDialog::DontUseNativeDialog),
              folder.path() + "/part.ncc");
}
}   // namespace
