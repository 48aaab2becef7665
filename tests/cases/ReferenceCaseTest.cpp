#include "cases/Cases.h"
#include "support/CleanMachine.h"

#include <algorithm>
#include <cctype>

namespace {
const struct stKind
{
    const char* szFolder;
    const char* szEnding;
    void (*fnRun)(const stCase&);
} KINDS[] = {{"curves", ".in.json", RunCurve},
             {"axis", ".in.json", RunAxis},
             {"automode", ".in.json", RunAutoMode},
             {"planning", ".in.json", RunPlanning},
             {"arcs", ".in.json", RunArc},
             {"zmoves", ".in.json", RunSurface},
             {"gcode_run", ".json", RunProgram},
             {"shapes", ".json", RunShapes},
             {"carving", ".json", RunCarving},
             {"config", ".json", RunConfig},
             {"gcode_compile", ".json", RunCompiler},
             {"dxf", ".json", RunDxf},
             {"zfile", ".json", RunZFile},
             {"traced", ".json", RunTracing}};

struct stParameter
{
    const stKind* pKind;
    std::string strName;
};
void PrintTo(const stParameter& one, std::ostream* pOut)
{
    *pOut << one.pKind->szFolder << '/' << one.strName;
}

std::vector<stParameter> AllCases()
{
    std::vector<stParameter> lst;
    for (const stKind& kind : KINDS)
        for (const std::string& strName : CCases::Names(kind.szFolder, kind.szEnding))
            if (strName.find('.') == std::string::npos) lst.push_back({&kind, strName});
    return lst;
}
std::string NameOf(const testing::TestParamInfo<stParameter>& one)
{
    std::string strName = std::string(one.param.pKind->szFolder) + '_' + one.param.strName;
    std::replace_if(
        strName.begin(), strName.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
    return strName;
}

class ReferenceCase : public CCleanMachine, public testing::WithParamInterface<stParameter>
{
};
}   // namespace

TEST_P(ReferenceCase, ComesOutAsWorkedOut)
{
    const stParameter& one = GetParam();
    one.pKind->fnRun({one.pKind->szFolder, QString::fromStdString(one.strName), m_Home.path()});
}
INSTANTIATE_TEST_SUITE_P(All, ReferenceCase, testing::ValuesIn(AllCases()), NameOf);
