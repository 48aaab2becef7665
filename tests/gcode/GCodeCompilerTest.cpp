#include "gcode/GCodeCompiler.h"

#include "config/AppConfig.h"
#include "support/CleanMachine.h"

#include <stdexcept>

// Every row of the dialect with the exact text that it gives, and several errors on a line.
// A program is lines parted by '\n', the expected errors are "LINE:TEXT" parted by '|'.

namespace {
constexpr char I_IN_19[] = "(G19 Plane selected. I value should not be present)";
constexpr char J_IN_18[] = "(G18 Plane selected. J value should not be present)";
constexpr char K_IN_17[] = "(G17 Plane selected. K value should not be present)";
constexpr char M66[] = "(Invalid Format. Correct Format Example: M66 Q100 (OR) M66 P1 L3 (OR) M66 P1 L3 Q100)";
constexpr char N_FIRST[] = "(Line Number, N-Code, must be at the start of G-Code Line)";
constexpr char O_FIRST[] = "(Program Number, O-Code, must be at the start of G-Code Line)";
constexpr char M30_FIRST[] = "(Sub-Program must be preceeded by M30-Code)";
constexpr char G28_FORM[] = "(G28 Must be followed with G90 or G91 and X~ Y~ Z~)\n(Ex:G28 G91 X60 Y60 Z10)";
constexpr char G28_AXES[] = "(G28 Must be followed with G90 or G91 and X~ Y~ Z~)\n(Ex: G28 G91 X60 Y60 Z10)";
constexpr char G28_MODE[] = "(G28 Must be followed with G90 or G91)";
constexpr char NO_AB[] = "(3 Axis Machine, A/B G-Codes should not be present)";
constexpr char ARC_DATA[] = "(Data Missing:X/Y/Z must be given)";
constexpr char ARC_TWO[] = "(Atleast two-axis center offset must be provided)";
constexpr char NO_OUTPUT[] = "(M-Code not supported for the selected Controller)";
constexpr char M97_FIRST[] = "(Sub-Program call, M97, must be at the start of G-Code Line)";
constexpr char M97_DATA[] = "(Data Missing. N-Code, must succeed M97)";
constexpr char M97_LETTER[] = "(Sub-Program Line Number, N-Code (Or) P-Code, Must succeed M97)";
constexpr char M97_L[] = "(Number Of repititions, L-Code, Must succeed N-Code)";
constexpr char M98_FIRST[] = "(Sub-Program call, M98, must be at the start of G-Code Line)";
constexpr char M98_DATA[] = "(Data Missing. O-Code, must succeed M98)";
constexpr char M98_LETTER[] = "(Sub-Program Number, O-Code (Or) P-Code, Must succeed M98)";
constexpr char M98_L[] = "(Number Of repititions, L-Code, Must succeed O-Code)";
constexpr char CALL_END[] = "(No Successive Codes must be mentioned after L-Code)";

struct stRow
{
    std::string strProgram;
    std::string strErrors;
    int iBoard = VTR3_CTRL;
    int iMchType = 3;
    int iPlane = 17;
};
void PrintTo(const stRow& row, std::ostream* pStream)
{
    *pStream << row.strProgram << " on board " << row.iBoard;
}

GCodeProgram Program(const std::string& strText)
{
    GCodeProgram program;
    for (const QString& strLine : QString::fromStdString(strText).split('\n'))
        program.push_back(TokenizeProgramLine(strLine + ' '));   // the blank keeps a single last character
    return program;
}

std::string Errors(const CGCodeCompiler::ErrorMap& errors)
{
    std::string strAll;
    for (const auto& [uLine, strText] : errors) {
        if (!strAll.empty()) strAll += '|';
        strAll.append(std::to_string(uLine)).append(":").append(strText);
    }
    return strAll;
}

class CompilerRow : public CCleanMachine, public testing::WithParamInterface<stRow>
{
};
}   // namespace

TEST_P(CompilerRow, GivesItsText)
{
    const stRow& row = GetParam();
    AppConfig::m_eVantorCtrl = row.iBoard;
    AppConfig::m_iMchType = row.iMchType;
    AppConfig::m_PlaneSel = static_cast<qint8>(row.iPlane);
    const GCodeProgram program = Program(row.strProgram);
    CGCodeCompiler::ErrorMap errors;
    EXPECT_TRUE(CGCodeCompiler(program, errors, nullptr).Walk());
    EXPECT_EQ(Errors(errors), row.strErrors);
}

#define ROWS(name, ...) INSTANTIATE_TEST_SUITE_P(name, CompilerRow, testing::ValuesIn(std::vector<stRow>{__VA_ARGS__}))
using S = std::string;

ROWS(Words, {"% H1\n( H1\n; H1\nX1 ;H1", ""}, {"A1 b2", S("0:A1") + NO_AB + "\nb2" + NO_AB},
     {"Ax b2", "", VTR5_CTRL, 5},
     {"F100 I1 fx i-", S("0:F100") + I_IN_19 + "\nI1" + I_IN_19 + "\nf" + I_IN_19 + "\ni-" + I_IN_19, 0, 3, 19},
     {"F100 I1", "", 0, 3, 18}, {"J1 j", S("0:J1") + J_IN_18 + "\nj" + J_IN_18, 0, 3, 18}, {"J1", "", 0, 3, 17},
     {"K1 k", S("0:K1") + K_IN_17 + "\nk" + K_IN_17}, {"K1", "", 0, 3, 19}, {"X1-2", "0:X1-2(Invalid Code)"},
     {"L1-\nR1-\nx1-\nY1-\nz1-", "0:L1-(Invalid Code)|1:R1-(Invalid Code)|2:x1-(Invalid Code)|3:Y1-(Invalid Code)|"
                                 "4:z1-(Invalid Code)"},
     {"X-1-2 Y-1.2.3 Z1..2 L R", ""}, {"S100 s", ""}, {"S-1 S1.5", "0:S-1(Invalid S-Code)\nS1.5(Invalid S-Code)"},
     {"N10 G0 X1\nn", ""}, {"N1.5", "0:N1.5(Invalid Code)"}, {"X1 N-5", S("0:N-5") + N_FIRST + "\nN-5(Invalid Code)"},
     {"O100\nM30\nO200\nm30\no300", ""}, {"M30\n\nO1", S("2:O1") + M30_FIRST}, {"M99\nO1", S("1:O1") + M30_FIRST},
     {"M030\nO1", S("1:O1") + M30_FIRST},
     {"M99\nX1 O1.5", S("1:O1.5") + O_FIRST + "\nO1.5" + M30_FIRST + "\nO1.5(Invalid Code)"},
     {"P5\nQ1 D2 *3", "0:P5(Invalid)|1:Q1(Invalid)\nD2(Invalid)\n*3(Invalid)"});

ROWS(GWords, {"G00\nG1 X1 Y1 Z1\nG\ng21 G30 G40 G90 G91 G94 G20", ""},
     {"G1.5 G-1", "0:G1.5(Invalid G-Code)\nG-1(Invalid G-Code)"}, {"G4 P100", "0:G4(Invalid)\nP100(Invalid)"},
     {"G4294967297 G95 G16 G22", "0:G4294967297(Invalid)\nG95(Invalid)\nG16(Invalid)\nG22(Invalid)"},
     {"G0 X1 x2 X3 y1 Y2 Z1 Z2", "0:x2(Repitition)\nX3(Repitition)\nY2(Repitition)\nZ2(Repitition)"},
     {"X1 G1 X2 (X3", ""}, {"G1 X1 ;X2 ", "0:X2(Repitition)"}, {"G0 A1 A2", S("0:A1") + NO_AB + "\nA2" + NO_AB},
     {"G0 A1 a2 B1 B2", "0:a2(Repitition)\nB2(Repitition)", VTR5_CTRL, 5},
     {"G2\nG3 X1", S("0:G2") + ARC_DATA + "|1:G3" + ARC_DATA}, {"G2 (a", S("0:G2") + ARC_TWO},
     {"G2 X1 I1 J1\ng03 i1 j1\nG2 X1 I1 K1 J1", S("2:K1") + K_IN_17}, {"G2 X1 Y1 R5", S("0:G2") + ARC_TWO},
     {"G3 X1 J1 J2", S("0:J2(Repitition)\nG3") + ARC_TWO}, {"G2 I1 J1 i2 K3", S("0:i2(Repitition)\nK3") + K_IN_17},
     {"G17 K1", S("0:G17") + K_IN_17 + "\nK1" + K_IN_17}, {"G15 (k", S("0:G15") + K_IN_17, 0, 3, 19},
     {"G18 J1 J2\nK1", S("0:G18") + J_IN_18 + "\nJ1" + J_IN_18 + "\nJ2" + J_IN_18},
     {"I1 G19 F1\nK1 J1\nG19 I1", S("0:F1") + I_IN_19 + "|2:G19" + I_IN_19 + "\nI1" + I_IN_19},
     {"G28\ng28 g91 x1 y1 z1\nG28 G90 X-1 Y Z", ""}, {"X1 G28", "0:G28(No other code must preceed G28)"},
     {"G28 X1", S("0:G28") + G28_FORM}, {"G28 G91 X1 Y1 Z1 F1", S("0:G28") + G28_FORM},
     {"G28 G090 X1 Y1 Z1", S("0:G28") + G28_MODE}, {"G28 X1 Z1 Y1 G1", S("0:G28") + G28_MODE},
     {"G28 G91 X1 Z1 Y1", S("0:G28") + G28_AXES}, {"G28 G90 Y1 Y1 Z1", S("0:G28") + G28_AXES},
     {"G28 G90 X1 Y1 A1", S("0:G28") + G28_AXES + "\nA1" + NO_AB});

ROWS(MWords, {"M0 M1 m02 M3 M4 M5 M6 M7 M8 M9 M30 M80 M81 M99 M\nM3 S1000\nM30 X1", ""},
     {"M1.5 M-3", "0:M1.5(Invalid M-Code)\nM-3(Invalid M-Code)"},
     {"M10 M29 M31 M65 M96 M100 M199 M232 M4294967299",
      "0:M10(Invalid)\nM29(Invalid)\nM31(Invalid)\nM65(Invalid)\nM96(Invalid)\nM100(Invalid)\nM199(Invalid)\n"
      "M232(Invalid)\nM4294967299(Invalid)"},
     {"M66 Q100\nm66 p1 l3\nM66 P4 L4 q\nM66 P257 L1.9", ""},
     {"M66\nM66 P1 L1 Q1 X1", S("0:M66") + M66 + "|1:M66" + M66}, {"M66 P1", S("0:P1") + M66},
     {"M66 P5 L1\nM66 P0 L5", S("0:P5") + M66 + "|1:P0" + M66 + "\nL5" + M66},
     {"M66 X9 Y-1 Z1", S("0:X9") + M66 + "\nY-1" + M66 + "\nX9" + M66 + "\nY-1" + M66 + "\nZ1" + M66},
     {"M66 P99999999999999999999 L-255", S("0:P99999999999999999999") + M66},
     {"G1 M66 Q1", S("0:M66") + M66 + "\nQ1" + M66 + "\nM66" + M66}, {"M97 N5\nM97 P5\nm97 n5 L2\nM97 N", ""},
     {"X1 M97 N-5 Y L", S("0:M97") + M97_FIRST}, {"M97", S("0:M97") + M97_DATA}, {"M97 O1", S("0:O1") + M97_LETTER},
     {"M97 X1.5 Y-1 Z",
      S("0:X1.5") + M97_LETTER + "\nX1.5(Invalid Code)\nY-1" + M97_L + "\nY-1(Invalid Code)\nZ" + CALL_END},
     {"M98 O5\nM98 P5 L3\nm98 o5", ""}, {"X1 M98 O1", S("0:M98") + M98_FIRST}, {"M98", S("0:M98") + M98_DATA},
     {"M98 P5 L-2", "0:L-2(Invalid Code)"},
     {"M98 N1-1 X1.5 L1 L1",
      S("0:N1-1") + M98_LETTER + "\nN1-1(Invalid Code)\nX1.5" + M98_L + "\nX1.5(Invalid Code)\nL1" + CALL_END},
     {"M200\nM211\nM212\nM231", S("2:M212") + NO_OUTPUT + "|3:M231" + NO_OUTPUT},
     {"M200\nM231", S("0:M200") + NO_OUTPUT + "|1:M231" + NO_OUTPUT, VTR5_CTRL},
     {"M200\nM231\nM232", "2:M232(Invalid)", SPI_CTRL_16}, {"M212\nM231", "", SPI_CTRL_24},
     {"X1 M212", S("0:X1") + NO_OUTPUT + "\nM212(No Successive Codes must be mentioned after X1  Code)"},
     {"M200 (a", "0:((No Successive Codes must be mentioned after M200  Code)"});

class GCodeCompiler : public CCleanMachine
{
};

TEST_F(GCodeCompiler, WhatIsThrownEndsTheWalkAndIsNotedWhereItStood)
{
    const GCodeProgram program = Program("X1-\nX1 T1 H1\nH2");
    CGCodeCompiler::ErrorMap errors;
    CGCodeCompiler compiler(program, errors, [](CGCodeCompiler&) { throw std::runtime_error("memory"); });
    EXPECT_FALSE(compiler.Walk());
    EXPECT_EQ(Errors(errors), "0:X1-(Invalid Code)|1:T1(Invalid:Compilation Failed)");
}

TEST_F(GCodeCompiler, EmptyTokensOfAnEditedLineAreSkipped)
{
    const GCodeProgram program = {{"", "X1"}, {"M97", "", "L1"}, {"M66", "", ""}, {""}, {"O1"}};
    CGCodeCompiler::ErrorMap errors;
    EXPECT_TRUE(CGCodeCompiler(program, errors, nullptr).Walk());
    EXPECT_EQ(Errors(errors),
              S("1:") + M97_LETTER + "|2:" + M66 + "\n" + M66 + "\n" + M66 + "\n" + M66 + "|4:O1" + M30_FIRST);
}
