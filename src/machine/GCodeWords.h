#pragma once
#include <cctype>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <locale.h>
#include <string>

// Reading the words of a tokenized program: a letter and its value as text. A value becomes a number each time that it
// is used; text that is no number counts as 0, as much as is one counts.

// The word letter in upper case, or the punctuation mark that opens the token.
inline char WordLetter(const std::string& strToken)
{
    return strToken.empty() ? '\0' : static_cast<char>(std::toupper(static_cast<unsigned char>(strToken[0])));
}

inline const char* WordValue(const std::string& strToken)
{
    return strToken.empty() ? "" : strToken.c_str() + 1;
}

// A comment runs to the end of its line.
inline bool IsComment(const std::string& strToken)
{
    const char cFirst = WordLetter(strToken);
    return cFirst == '%' || cFirst == '(' || cFirst == ';';
}

// With the point as decimal mark, whatever the language of the computer.
inline double WordDouble(const std::string& strToken)
{
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(WordValue(strToken), nullptr, plain);
}

inline int WordInt(const std::string& strToken)
{
    const long long lValue = std::strtoll(WordValue(strToken), nullptr, 10);
    if (lValue > std::numeric_limits<int>::max()) return std::numeric_limits<int>::max();
    if (lValue < std::numeric_limits<int>::min()) return std::numeric_limits<int>::min();
    return static_cast<int>(lValue);
}

// Truncated, the nearest end of the range beyond it.
template <class T> T CutTo(double fValue)
{
    if (!(fValue > static_cast<double>(std::numeric_limits<T>::min()))) return std::numeric_limits<T>::min();
    if (fValue >= static_cast<double>(std::numeric_limits<T>::max())) return std::numeric_limits<T>::max();
    return static_cast<T>(fValue);
}
