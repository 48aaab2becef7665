#include "support/screens/ScreenSupport.h"

#include "widgets/Look.h"

namespace {
// A screen with one fault of each kind; what is in order must not be told.
TEST(Tidy, TellsWhatIsCutOffOverlapsLiesOutsideOrIsTooSmall)
{
    QWidget screen;
    screen.resize(300, 200);
    const auto Add = [&screen](auto* pWidget, const char* szName, QRect place) {
        pWidget->setParent(&screen);
        pWidget->setObjectName(szName);
        pWidget->setGeometry(place);
    };
    Add(new QPushButton("Good\nText"), "good", {0, 0, 80, 44});
    Add(new QPushButton("Much too long a text"), "cut", {90, 0, 80, 44});
    Add(new QPushButton("Low"), "low", {180, 0, 80, 39});
    Add(new QLabel("Label"), "over", {60, 30, 50, 20});
    Add(new QLabel("x"), "outside", {290, 100, 20, 20});
    Add(new QLineEdit("1234567890"), "edit", {0, 100, 60, 40});
    auto* pCombo = new QComboBox;
    pCombo->addItems({"a", "a long row in a narrow box"});
    Add(pCombo, "combo", {70, 100, 100, 40});
    auto* pTiny = new QLabel("tiny");
    pTiny->setFont(CLook::Font(11));
    Add(pTiny, "tiny", {180, 100, 60, 20});
    auto* pHidden = new QPushButton("Hidden and much too long");
    Add(pHidden, "hidden", {0, 0, 20, 20});
    pHidden->hide();
    ShowWindow(screen);

    QStringList names;
    for (const QString& strFault : TidyFaults(screen)) names.append(strFault.section(' ', 0, 2));
    names.sort();
    EXPECT_EQ(names, QStringList({"combo: text of", "cut: overlaps over", "cut: text of", "edit: text of",
                                  "good: overlaps over", "low: a target", "outside: outside of", "tiny: text of"}));
    EXPECT_EQ(TidyFaults(screen, {{"over", "outside"}, {"low"}, {"cut", "edit", "combo", "tiny"}}), QStringList());
}
}   // namespace
