#pragma once
#include "support/screens/ScreenSupport.h"

#include <deque>

// Presses a button whose boxes and dialogs are answered in this order; every answer must be asked for. The result is
// "title: text" of each, parted by "|".
template <class... A> QString PressAndAnswer(QWidget& button, const A&... answers)
{
    std::deque<CAnswer> list;
    (list.emplace_back(answers), ...);
    Click(button);
    QStringList asked;
    for (const CAnswer& answer : list) asked.append(answer.Title() + ": " + answer.Text());
    return asked.join('|');
}
