#include "gcode/GCodeTokens.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <locale.h>

namespace {
// Where a token stands in its line: [iFrom, iTo).
struct stExtent
{
    qsizetype iFrom, iTo;
};

bool IsValueChar(QChar c)
{
    return c.isDigit() || c == QLatin1Char('.') || c == QLatin1Char('-');
}

struct stProgramRules
{
    static bool Continues(QChar c) { return IsValueChar(c) || c.isSpace(); }
    static constexpr bool bKeepsLast = false;
};
struct stToolRules
{
    static bool Continues(QChar c) { return IsValueChar(c); }
    static constexpr bool bKeepsLast = true;
};

// The next token from i on, which moves behind it. False: there is none.
template <class Rules> bool NextToken(QStringView line, qsizetype& i, stExtent& token)
{
    while (i < line.size() && line[i].isSpace()) ++i;
    if (i >= line.size()) return false;
    token.iFrom = i++;
    if (i == line.size() && !Rules::bKeepsLast) return false;
    while (i < line.size() && Rules::Continues(line[i])) ++i;
    token.iTo = i;
    return true;
}

void AppendToken(QStringView line, stExtent token, GCodeTokens& tokens)
{
    std::string& strToken = tokens.emplace_back();
    strToken.resize(static_cast<size_t>(token.iTo - token.iFrom));
    size_t uLength = 0;
    for (qsizetype i = token.iFrom; i < token.iTo; ++i)
        if (!line[i].isSpace()) strToken[uLength++] = static_cast<char>(line[i].unicode() & 0xff);
    strToken.resize(uLength);
}

// Counted first: a program of a million lines has no room to spare in its vectors.
template <class Rules> GCodeTokens Tokenize(QStringView line)
{
    stExtent token{};
    size_t uCount = 0;
    for (qsizetype i = 0; NextToken<Rules>(line, i, token);) ++uCount;
    GCodeTokens tokens;
    tokens.reserve(uCount);
    for (qsizetype i = 0; NextToken<Rules>(line, i, token);) AppendToken(line, token, tokens);
    return tokens;
}

const char* Value(const std::string& strToken)
{
    return strToken.c_str() + (strToken.empty() ? 0 : 1);
}
locale_t CLocale()
{
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}
}   // namespace

GCodeTokens TokenizeProgramLine(const QString& strLine)
{
    return Tokenize<stProgramRules>(strLine);
}

GCodeTokens TokenizeToolLine(const QString& strLine)
{
    return Tokenize<stToolRules>(strLine);
}

int TokenInt(const std::string& strToken)
{
    const long lValue = std::strtol(Value(strToken), nullptr, 10);   // clamps by itself
    return static_cast<int>(
        std::clamp(lValue, long(std::numeric_limits<int>::min()), long(std::numeric_limits<int>::max())));
}

double TokenFloat(const std::string& strToken)
{
    return strtod_l(Value(strToken), nullptr, CLocale());
}
