#include "gcode/GCodeTokens.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>
#include <locale.h>

namespace {
// Where a token stands in its line: [iFrom, iTo).
struct stExtent
{
    qsizetype iFrom, iTo;
    bool bSpaced;   // there is white space in it
};

enum eCharKind : quint8
{
    CHAR_OTHER,
    CHAR_VALUE,   // a digit, a point or a minus continues a token
    CHAR_SPACE
};
eCharKind FindKind(QChar c)
{
    if (c.isSpace()) return CHAR_SPACE;
    return c.isDigit() || c == QLatin1Char('.') || c == QLatin1Char('-') ? CHAR_VALUE : CHAR_OTHER;
}
// Programs are long, and nearly all of them ASCII.
const std::array<eCharKind, 128> ASCII_KINDS = [] {
    std::array<eCharKind, 128> kinds{};
    for (size_t n = 0; n < kinds.size(); ++n) kinds[n] = FindKind(QChar(static_cast<char16_t>(n)));
    return kinds;
}();
eCharKind Kind(QChar c)
{
    return c.unicode() < ASCII_KINDS.size() ? ASCII_KINDS[c.unicode()] : FindKind(c);
}

struct stProgramRules
{
    static bool Continues(QChar c) { return Kind(c) != CHAR_OTHER; }
    static constexpr bool bKeepsLast = false;
};
struct stToolRules
{
    static bool Continues(QChar c) { return Kind(c) == CHAR_VALUE; }
    static constexpr bool bKeepsLast = true;
};

// The next token from i on, which moves behind it. False: there is none.
template <class Rules, class Text> bool NextToken(Text line, qsizetype& i, stExtent& token)
{
    while (i < line.size() && Kind(line[i]) == CHAR_SPACE) ++i;
    if (i >= line.size()) return false;
    token.iFrom = i++;
    if (i == line.size() && !Rules::bKeepsLast) return false;
    token.bSpaced = false;
    for (; i < line.size() && Rules::Continues(line[i]); ++i) token.bSpaced |= Kind(line[i]) == CHAR_SPACE;
    token.iTo = i;
    return true;
}

template <class Text> void AppendToken(Text line, stExtent token, GCodeTokens& tokens)
{
    if constexpr (std::is_same_v<Text, QLatin1String>)
        if (!token.bSpaced) {
            tokens.emplace_back(line.data() + token.iFrom, static_cast<size_t>(token.iTo - token.iFrom));
            return;
        }
    // Made at its length: growing would leave a long one with twice the room.
    std::string& strToken = tokens.emplace_back(static_cast<size_t>(token.iTo - token.iFrom), '\0');
    char* pTo = strToken.data();
    for (qsizetype i = token.iFrom; i < token.iTo; ++i)
        if (Kind(line[i]) != CHAR_SPACE) *pTo++ = static_cast<char>(line[i].unicode() & 0xff);
    strToken.resize(static_cast<size_t>(pTo - strToken.data()));
}

// Counted first: a program of a million lines has no room to spare in its vectors.
template <class Rules, class Text> GCodeTokens Tokenize(Text line)
{
    std::array<stExtent, 16> few;   // most lines have no more words, and are not looked through twice
    stExtent token{};
    size_t uCount = 0;
    for (qsizetype i = 0; NextToken<Rules>(line, i, token); ++uCount)
        if (uCount < few.size()) few[uCount] = token;
    GCodeTokens tokens;
    tokens.reserve(uCount);
    qsizetype iNext = 0;
    for (size_t n = 0; n < std::min(uCount, few.size()); ++n) {
        AppendToken(line, few[n], tokens);
        iNext = few[n].iTo;
    }
    while (tokens.size() < uCount && NextToken<Rules>(line, iNext, token)) AppendToken(line, token, tokens);
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
    return Tokenize<stProgramRules>(QStringView(strLine));
}

GCodeTokens TokenizeProgramLine(QLatin1String line)
{
    return Tokenize<stProgramRules>(line);
}

GCodeTokens TokenizeToolLine(const QString& strLine)
{
    return Tokenize<stToolRules>(QStringView(strLine));
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
