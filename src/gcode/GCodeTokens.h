#pragma once
#include <QString>

#include <string>
#include <vector>

// A line of G-code as words. A token is 8-bit text: its first character is the word's letter (or a mark), the rest its
// value, which becomes a number each time it is used. Characters are stored by the low byte of their code.
// No state; any thread.
using GCodeTokens = std::vector<std::string>;   // of one line
using GCodeProgram = std::vector<GCodeTokens>;

// For everything that the compiler and the screens see. White space inside a token is dropped, so that "X 12 .5" is one
// token; a single character at the very end of the line is dropped too. Both are wanted: programs rely on the first,
// and the second lets a lone "%" pass.
GCodeTokens TokenizeProgramLine(const QString& strLine);
GCodeTokens TokenizeProgramLine(QLatin1String line);   // the same of ASCII

// For the lines of a tool-change file at run time. It differs on purpose: white space ends a token ("X 12" is two), and
// a single last character is a token of its own.
GCodeTokens TokenizeToolLine(const QString& strLine);

// Number of a token's value, like atoi and atof on the text behind the letter, but the same in every locale (the window
// system's start-up may bring a decimal comma into force). An integer out of range gives the nearest end of the range.
int TokenInt(const std::string& strToken);
double TokenFloat(const std::string& strToken);

// The letter of a token in upper case; 0 for an empty one.
inline char TokenLetter(const std::string& strToken)
{
    const char c = strToken.empty() ? '\0' : strToken.front();
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
