#include "gcode/GCodeTokens.h"

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
    testing::Values(stTokenizerCase{"G1X10", {"G1", "X10"}, {"G1", "X10"}},
                    stTokenizerCase{"G 1 X 12 .5", {"G1", "X12.5"}, {"G", "1", "X", "12", ".5"}},
                    stTokenizerCase{"G1 X", {"G1"}, {"G1", "X"}}, stTokenizerCase{"G1 X ", {"G1", "X"}, {"G1", "X"}},
                    stTokenizerCase{"12 34 5", {"12345"}, {"12", "34", "5"}},
                    stTokenizerCase{"G1 (go)", {"G1", "(", "g", "o"}, {"G1", "(", "g", "o", ")"}},
                    stTokenizerCase{QString(QChar(0x147)) + QChar(0x661) + QChar(0xa0) + "7 ",   // Arabic digit one
                                    {"G\x61\x37"},
                                    {"G\x61", "7"}},
                    stTokenizerCase{QString(3, QChar(0)),
                                    {std::string(1, '\0'), std::string(1, '\0')},
                                    {std::string(1, '\0'), std::string(1, '\0'), std::string(1, '\0')}}));
