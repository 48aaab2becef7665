#include "gcode/GCodeCompiler.h"

#include "config/AppConfig.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {
// What one line may cost beyond the walk itself, in tokens. Each G word looks at the rest of its line, so that a line
// of a megabyte could take hours, and its error texts all memory. Reached by lines of more than 3000 words only.
constexpr size_t LINE_BUDGET = 10'000'000;
constexpr size_t ERROR_COST = 20;   // about what its text takes

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}
bool isInteger(std::string_view str)
{
    return std::all_of(str.begin(), str.end(), IsDigit);
}
// A sign lets everything behind it pass: wanted, as programs hold such values.
bool isDecimalNumber(std::string_view str)
{
    return (!str.empty() && str.front() == '-') ||
           std::all_of(str.begin(), str.end(), [](char c) { return IsDigit(c) || c == '.'; });
}
// The low eight bits of a number, its fraction cut off; 0 for one that has no whole part in 64 bits.
quint8 LowByte(double fValue)
{
    return std::abs(fValue) < 9e18 ? static_cast<quint8>(static_cast<qint64>(fValue)) : quint8(0);
}

constexpr char FORMAT_M66[] = "Invalid Format. Correct Format Example: M66 Q100 (OR) M66 P1 L3 (OR) M66 P1 L3 Q100";
constexpr char MSG_NO_I[] = "G19 Plane selected. I value should not be present";
constexpr char MSG_NO_J[] = "G18 Plane selected. J value should not be present";
constexpr char MSG_NO_K[] = "G17 Plane selected. K value should not be present";
}   // namespace

const CGCodeCompiler::stCall CGCodeCompiler::m_CallLine = {
    'N', "Sub-Program call, M97, must be at the start of G-Code Line", "Data Missing. N-Code, must succeed M97",
    "Sub-Program Line Number, N-Code (Or) P-Code, Must succeed M97",
    "Number Of repititions, L-Code, Must succeed N-Code"};
const CGCodeCompiler::stCall CGCodeCompiler::m_CallProgram = {
    'O', "Sub-Program call, M98, must be at the start of G-Code Line", "Data Missing. O-Code, must succeed M98",
    "Sub-Program Number, O-Code (Or) P-Code, Must succeed M98", "Number Of repititions, L-Code, Must succeed O-Code"};

struct stCompilerTables
{
    using C = CGCodeCompiler;
    std::array<C::Handler, 256> Words;   // by first character
    std::array<C::Handler, 95> GWords;   // by number
    std::array<C::Handler, 232> MWords;

    constexpr stCompilerTables() : Words(), GWords(), MWords()
    {
        Words.fill(&C::Invalid);
        GWords.fill(&C::Invalid);
        MWords.fill(&C::Invalid);
        Words[0] = &C::Skip;
        for (const char c : {'%', '(', ';'}) Words[size_t(c)] = &C::Comment;
        FillLetters();
        for (const int iNumber : {20, 21, 30, 40, 90, 91, 94}) GWords[size_t(iNumber)] = &C::Skip;
        GWords[0] = GWords[1] = &C::LinearMove;
        GWords[2] = GWords[3] = &C::ArcMove;
        GWords[15] = GWords[17] = &C::PlaneXY;   // G15 acts here only: wanted, the executor does not know it
        GWords[18] = &C::PlaneXZ;
        GWords[19] = &C::PlaneYZ;
        GWords[28] = &C::ReturnToZero;
        for (size_t n = 0; n <= 9; ++n) MWords[n] = &C::Skip;
        for (const int iNumber : {30, 80, 81, 99}) MWords[size_t(iNumber)] = &C::Skip;
        MWords[66] = &C::WaitWord;
        MWords[97] = &C::CallLine;
        MWords[98] = &C::CallProgram;
        for (size_t n = 200; n <= 231; ++n) MWords[n] = &C::OutputWord;
    }

private:
    constexpr void Letter(char c, C::Handler handler) { Words[size_t(c)] = Words[size_t(c - 'A' + 'a')] = handler; }
    constexpr void FillLetters()
    {
        for (const char c : {'A', 'B'}) Letter(c, &C::RotaryWord);
        for (const char c : {'F', 'I'}) Letter(c, &C::PlaneWordI);   // F shares the rule of I: wanted
        Letter('J', &C::PlaneWordJ);
        Letter('K', &C::PlaneWordK);
        for (const char c : {'L', 'R', 'X', 'Y', 'Z'}) Letter(c, &C::DecimalWord);
        Letter('S', &C::SpindleWord);
        Letter('N', &C::LineNumber);
        Letter('O', &C::ProgramNumber);
        Letter('T', &C::ToolWord);
        Letter('G', &C::GWord);
        Letter('M', &C::MWord);
    }
};
static constexpr stCompilerTables TABLES;

CGCodeCompiler::CGCodeCompiler(const GCodeProgram& program, ErrorMap& errors, ToolWordFn fnToolWord)
    : m_Program(program), m_Errors(errors), m_fnToolWord(std::move(fnToolWord))
{
}

bool CGCodeCompiler::Walk()
{
    try {
        for (m_uLine = 0; m_uLine < m_Program.size(); ++m_uLine) WalkLine();
    } catch (...) {
        Error("Invalid:Compilation Failed");
        return false;
    }
    return true;
}

void CGCodeCompiler::WalkLine()
{
    m_pLine = &m_Program[m_uLine];
    m_uSpent = 0;
    for (m_uToken = 0; m_uToken < Count(); ++m_uToken) {
        const std::string& strToken = Token();
        const auto cFirst = static_cast<unsigned char>(strToken.empty() ? '\0' : strToken.front());
        (this->*TABLES.Words[cFirst])();
    }
}

void CGCodeCompiler::RegisterError(unsigned int uLine, unsigned short uToken, std::string strMessage)
{
    std::string& strText = m_Errors[uLine];
    if (!strText.empty()) strText += '\n';
    strText += m_Program[uLine][uToken] + '(' + strMessage + ')';
}

void CGCodeCompiler::ErrorAt(size_t uToken, const std::string& strMessage)
{
    RegisterError(m_uLine, static_cast<unsigned short>(uToken), strMessage);
}

// False: the line has used up what it may cost, and is done.
bool CGCodeCompiler::Spend(size_t uTokens)
{
    m_uSpent += uTokens;
    if (m_uSpent <= LINE_BUDGET) return true;
    Error("Line too long to be checked");
    EndLine();
    return false;
}

// ---- Words ----

void CGCodeCompiler::RotaryWord()
{
    if (AppConfig::m_iMchType == 3) Error("3 Axis Machine, A/B G-Codes should not be present");
}

void CGCodeCompiler::PlaneWordI()
{
    if (AppConfig::m_PlaneSel == 19) Error(MSG_NO_I);
}

void CGCodeCompiler::PlaneWordJ()
{
    if (AppConfig::m_PlaneSel == 18) Error(MSG_NO_J);
}

void CGCodeCompiler::PlaneWordK()
{
    if (AppConfig::m_PlaneSel == 17) Error(MSG_NO_K);
}

void CGCodeCompiler::DecimalWord()
{
    if (!isDecimalNumber(Value())) Error("Invalid Code");
}

void CGCodeCompiler::SpindleWord()
{
    if (!isInteger(Value())) Error("Invalid S-Code");
}

void CGCodeCompiler::LineNumber()
{
    if (m_uToken > 0 && TokenAt(m_uToken - 1) != "M97")
        Error("Line Number, N-Code, must be at the start of G-Code Line");
    if (!isInteger(Value())) Error("Invalid Code");
}

void CGCodeCompiler::ProgramNumber()
{
    if (m_uToken > 0 && TokenAt(m_uToken - 1) != "M98")
        Error("Program Number, O-Code, must be at the start of G-Code Line");
    if (m_uLine > 0) {
        const GCodeTokens& before = m_Program[m_uLine - 1];
        const bool bEndBefore = !before.empty() && (before.front() == "M30" || before.front() == "m30");
        if (!bEndBefore) Error("Sub-Program must be preceeded by M30-Code");
    }
    if (!isInteger(Value())) Error("Invalid Code");
}

void CGCodeCompiler::ToolWord()
{
    if (m_fnToolWord) m_fnToolWord(*this);
}

// ---- G words ----

void CGCodeCompiler::GWord()
{
    if (!isInteger(Value())) return Error("Invalid G-Code");
    const auto uNumber = static_cast<size_t>(TokenInt(Token()));
    if (uNumber >= TABLES.GWords.size()) return Invalid();
    (this->*TABLES.GWords[uNumber])();
}

// Looks for repeated letters to the right, up to a comment in parentheses. The result has a bit for each letter seen.
unsigned CGCodeCompiler::NoteRepetitions(std::string_view strLetters)
{
    unsigned uSeen = 0;
    size_t n = m_uToken + 1, uCost = 0;
    for (; n < Count() && LetterAt(n) != '('; ++n) {
        const size_t uLetter = strLetters.find(LetterAt(n));
        if (uLetter == std::string_view::npos) continue;
        if (uSeen >> uLetter & 1u) {
            ErrorAt(n, "Repitition");
            uCost += ERROR_COST;
        }
        uSeen |= 1u << uLetter;
    }
    Spend(n - m_uToken + uCost);
    return uSeen;
}

void CGCodeCompiler::LinearMove()
{
    NoteRepetitions(AppConfig::m_iMchType == 5 ? "XYZAB" : "XYZ");
}

void CGCodeCompiler::ArcMove()
{
    if (Count() - m_uToken < 3) return Error("Data Missing:X/Y/Z must be given");
    const size_t uArc = m_uToken;
    const unsigned uSeen = NoteRepetitions("IJK");
    if ((uSeen & (uSeen - 1)) == 0) ErrorAt(uArc, "Atleast two-axis center offset must be provided");
}

void CGCodeCompiler::SelectPlane(int iPlane, char cLetter, const char* szMessage)
{
    AppConfig::m_PlaneSel = static_cast<qint8>(iPlane);   // at once: what follows is checked against it
    const auto HasLetter = [cLetter](const std::string& strToken) { return TokenLetter(strToken) == cLetter; };
    const auto from = Line().begin() + static_cast<std::ptrdiff_t>(m_uToken);
    if (std::any_of(from, Line().end(), HasLetter)) Error(szMessage);   // through comments too: wanted
    Spend(Count() - m_uToken);
}

void CGCodeCompiler::PlaneXY()
{
    SelectPlane(17, 'K', MSG_NO_K);
}

void CGCodeCompiler::PlaneXZ()
{
    SelectPlane(18, 'J', MSG_NO_J);
}

void CGCodeCompiler::PlaneYZ()
{
    SelectPlane(19, 'I', MSG_NO_I);
}

void CGCodeCompiler::ReturnToZero()
{
    if (m_uToken > 0) return Error("No other code must preceed G28");
    if (Count() == 1) return;
    if (Count() != 5) return Error("G28 Must be followed with G90 or G91 and X~ Y~ Z~)\n(Ex:G28 G91 X60 Y60 Z10");
    const std::string& strMode = TokenAt(1);
    if (strMode != "G90" && strMode != "g90" && strMode != "G91" && strMode != "g91")
        return Error("G28 Must be followed with G90 or G91");
    if (LetterAt(2) != 'X' || LetterAt(3) != 'Y' || LetterAt(4) != 'Z')
        Error("G28 Must be followed with G90 or G91 and X~ Y~ Z~)\n(Ex: G28 G91 X60 Y60 Z10");
}

// ---- M words ----

void CGCodeCompiler::MWord()
{
    if (!isInteger(Value())) return Error("Invalid M-Code");
    const auto uNumber = static_cast<size_t>(TokenInt(Token()));
    if (uNumber >= TABLES.MWords.size()) return Invalid();
    (this->*TABLES.MWords[uNumber])();
}

// Positions are those of the line: M66 is expected as its first token.
void CGCodeCompiler::WaitWord()
{
    const auto IsFrom1To4 = [this](size_t uToken) {
        const quint8 ucValue = LowByte(TokenFloat(TokenAt(uToken)));
        return ucValue >= 1 && ucValue <= 4;
    };
    if (Count() < 2 || Count() > 4) {
        Error(FORMAT_M66);
    } else if (Count() == 2) {
        if (LetterAt(1) != 'Q') ErrorAt(1, FORMAT_M66);
    } else {
        if (LetterAt(1) != 'P') ErrorAt(1, FORMAT_M66);
        if (LetterAt(2) != 'L') ErrorAt(2, FORMAT_M66);
        if (!IsFrom1To4(1)) ErrorAt(1, FORMAT_M66);
        if (!IsFrom1To4(2)) ErrorAt(2, FORMAT_M66);
        if (Count() == 4 && LetterAt(3) != 'Q') ErrorAt(3, FORMAT_M66);
    }
    EndLine();
}

void CGCodeCompiler::Call(const stCall& call)
{
    if (m_uToken > 0) {
        Error(call.szNotFirst);
    } else if (Count() < 2) {
        Error(call.szNothingBehind);
    } else {
        if (LetterAt(1) != call.cLetter && LetterAt(1) != 'P') ErrorAt(1, call.szWrongLetter);
        if (!isInteger(Value(TokenAt(1)))) ErrorAt(1, "Invalid Code");
        if (Count() > 2 && LetterAt(2) != 'L') ErrorAt(2, call.szNoRepeats);
        if (Count() > 2 && !isInteger(Value(TokenAt(2)))) ErrorAt(2, "Invalid Code");
        if (Count() > 3) ErrorAt(3, "No Successive Codes must be mentioned after L-Code");
    }
    EndLine();
}

void CGCodeCompiler::OutputWord()
{
    const bool bRefused =
        AppConfig::m_eVantorCtrl == VTR5_CTRL || (AppConfig::m_eVantorCtrl == VTR3_CTRL && TokenInt(Token()) >= 212);
    if (bRefused) ErrorAt(0, "M-Code not supported for the selected Controller");
    if (Count() > 1) ErrorAt(1, "No Successive Codes must be mentioned after " + TokenAt(0) + "  Code");
}
