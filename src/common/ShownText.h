#pragma once
#include <QString>

// What a widget is given of a text of any length. A whole program in one line, or its errors, has megabytes, which Qt
// lays out however little of them is in view: for seconds, in which nothing else is done.
inline constexpr qsizetype MOST_SHOWN = 2000;

inline QString ShownText(const QString& strText)
{
    if (strText.size() <= MOST_SHOWN) return strText;
    return strText.left(MOST_SHOWN) + QStringLiteral("... (cut, %1 characters in all)").arg(strText.size());
}
