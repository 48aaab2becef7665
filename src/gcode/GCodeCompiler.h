#pragma once
#include "gcode/GCodeTokens.h"

#include <functional>
#include <map>
#include <string>
#include <string_view>

// The checker that defines the dialect of G-code. It produces no code: it notes for each faulty line what is wrong with
// it. A table of small handlers by the first character of a token, and one each for the numbers of G and M words.
// One walk an object, any thread. Reads AppConfig's machine type and board, reads and changes the plane.
class CGCodeCompiler
{
public:
    using ErrorMap = std::map<quint32, std::string>;   // zero-based line to the texts of its errors, one a row
    using ToolWordFn = std::function<void(CGCodeCompiler&)>;

    // The program may be exchanged and restored while fnToolWord checks the file of a T word.
    CGCodeCompiler(const GCodeProgram& program, ErrorMap& errors, ToolWordFn fnToolWord);

    // Checks the whole program. False: something was thrown; the walk ended there, and the error is noted.
    bool Walk();

    // The token that is being checked.
    const std::string& Token() const { return TokenAt(m_uToken); }
    // Notes an error at the token that is being checked.
    void Error(const std::string& strMessage) { ErrorAt(m_uToken, strMessage); }

    // Adds an error to a line's text. The token's number has 16 bits: in a line of more tokens it wraps.
    void RegisterError(unsigned int uLine, unsigned short uToken, std::string strMessage);

private:
    friend struct stCompilerTables;
    using Handler = void (CGCodeCompiler::*)();

    const GCodeTokens& Line() const { return *m_pLine; }
    size_t Count() const { return m_pLine->size(); }
    const std::string& TokenAt(size_t uToken) const { return (*m_pLine)[uToken]; }
    char LetterAt(size_t uToken) const { return TokenLetter(TokenAt(uToken)); }
    static std::string_view Value(const std::string& strToken)
    {
        return std::string_view(strToken).substr(strToken.empty() ? 0 : 1);
    }
    std::string_view Value() const { return Value(Token()); }
    void ErrorAt(size_t uToken, const std::string& strMessage);
    void EndLine() { m_uToken = Count(); }
    bool Spend(size_t uTokens);

    void WalkLine();
    void Skip() {}
    void Comment() { EndLine(); }
    void Invalid() { Error("Invalid"); }
    void RotaryWord();
    void PlaneWordI();
    void PlaneWordJ();
    void PlaneWordK();
    void DecimalWord();
    void SpindleWord();
    void LineNumber();
    void ProgramNumber();
    void ToolWord();

    void GWord();
    void LinearMove();
    void ArcMove();
    void PlaneXY();
    void PlaneXZ();
    void PlaneYZ();
    void ReturnToZero();
    void SelectPlane(int iPlane, char cLetter, const char* szMessage);
    unsigned NoteRepetitions(std::string_view strLetters);

    void MWord();
    void WaitWord();
    void CallLine() { Call(m_CallLine); }
    void CallProgram() { Call(m_CallProgram); }
    void OutputWord();
    struct stCall
    {
        char cLetter;
        const char *szNotFirst, *szNothingBehind, *szWrongLetter, *szNoRepeats;
    };
    static const stCall m_CallLine, m_CallProgram;
    void Call(const stCall& call);

    const GCodeProgram& m_Program;
    ErrorMap& m_Errors;
    ToolWordFn m_fnToolWord;
    const GCodeTokens* m_pLine = nullptr;
    quint32 m_uLine = 0;
    size_t m_uToken = 0;
    size_t m_uSpent = 0;
};
