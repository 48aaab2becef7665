#include "gcode/GCodeTokens.h"

#include <limits>

namespace {
struct stTokenizerCase
{
    QString strLine;
    GCodeTokens program, tool;   // of the two tokenizers
};
class Tokenizers : public testing::TestWithParam<stTokenizerCase>
{
};
}   // namespace

TEST_P(Tokenizers, CutALine)
{
    EXPECT_EQ(TokenizeProgramLine(GetParam().strLine), GetParam().program);
    EXPECT_EQ(TokenizeToolLine(GetParam().strLine), GetParam().tool);
}
INSTANTIATE_TEST_SUITE_P(
    Lines, Tokenizers,
    testing::Values(stTokenizerCase{QString("X1 ").repeated(40), GCodeTokens(40, "X1"), GCodeTokens(40, "X1")},
                    stTokenizerCase{QString("Y2").repeated(16), GCodeTokens(16, "Y2"), GCodeTokens(16, "Y2")},
                    stTokenizerCase{QString("Z").repeated(18), GCodeTokens(17, "Z"), GCodeTokens(18, "Z")},
                    stTokenizerCase{"", {}, {}}, stTokenizerCase{" \t ", {}, {}},
                    stTokenizerCase{"G1X10", {"G1", "X10"}, {"G1", "X10"}},
                    stTokenizerCase{"G 1 X 12 .5", {"G1", "X12.5"}, {"G", "1", "X", "12", ".5"}},
                    stTokenizerCase{"X-1.5Y2", {"X-1.5", "Y2"}, {"X-1.5", "Y2"}},
                    stTokenizerCase{"G1 X", {"G1"}, {"G1", "X"}}, stTokenizerCase{"G1 X ", {"G1", "X"}, {"G1", "X"}},
                    stTokenizerCase{"%", {}, {"%"}}, stTokenizerCase{"% ", {"%"}, {"%"}},
                    stTokenizerCase{"12 34 5", {"12345"}, {"12", "34", "5"}},
                    stTokenizerCase{"G1 (go)", {"G1", "(", "g", "o"}, {"G1", "(", "g", "o", ")"}},
                    stTokenizerCase{QString(QChar(0x147)) + QChar(0x661) + QChar(0xa0) + "7 ",   // Arabic digit one
                                    {"G\x61\x37"},
                                    {"G\x61", "7"}},
                    stTokenizerCase{QString(3, QChar(0)),
                                    {std::string(1, '\0'), std::string(1, '\0')},
                                    {std::string(1, '\0'), std::string(1, '\0'), std::string(1, '\0')}}));

TEST(TokenNumbers, AreThoseOfTheTextBehindTheLetter)
{
    constexpr int MAX = std::numeric_limits<int>::max(), MIN = std::numeric_limits<int>::min();
    for (const auto& [szToken, iValue] : {std::pair{"G01", 1},
                                          {"G", 0},
                                          {"", 0},
                                          {"G1.9", 1},
                                          {"G-2-3", -2},
                                          {"Gx", 0},
                                          {"G4294967297", MAX},
                                          {"G-4294967297", MIN},
                                          {"G99999999999999999999", MAX}})
        EXPECT_EQ(TokenInt(szToken), iValue) << szToken;
    for (const auto& [szToken, fValue] : {std::pair{"X1.5", 1.5},
                                          {"X", 0.0},
                                          {"", 0.0},
                                          {"X-.25", -0.25},
                                          {"X.", 0.0},
                                          {"X1.2.3", 1.2},
                                          {"X-1-2", -1.0},
                                          {"X1,5", 1.0}})
        EXPECT_EQ(TokenFloat(szToken), fValue) << szToken;
}
