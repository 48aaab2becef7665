#include "config/AppConfig.h"
#include "fuzz/FuzzEntries.h"
#include "gcode/GCodeCompiler.h"

#include <QTextStream>

#include <cstdlib>

// The first byte selects board, axes and plane; the rest is a program.
int FuzzGCode(const uint8_t* pData, size_t uSize)
{
    if (uSize == 0) return 0;
    AppConfig::m_eVantorCtrl = *pData & 3;
    AppConfig::m_iMchType = *pData & 4 ? 5 : 3;
    AppConfig::m_PlaneSel = static_cast<qint8>(17 + (*pData >> 3) % 3);

    QTextStream stream(QByteArray(reinterpret_cast<const char*>(pData) + 1, qsizetype(uSize) - 1));
    GCodeProgram program;
    for (QString strLine; stream.readLineInto(&strLine);) {
        program.push_back(TokenizeProgramLine(strLine));
        for (const std::string& strToken : TokenizeToolLine(strLine)) {
            if (strToken.empty()) std::abort();
            (void)TokenInt(strToken);
            (void)TokenFloat(strToken);
        }
    }
    CGCodeCompiler::ErrorMap errors;
    const auto RefuseTool = [](CGCodeCompiler& compiler) { compiler.Error("tool"); };
    if (!CGCodeCompiler(program, errors, RefuseTool).Walk()) std::abort();   // nothing is thrown but for memory
    return 0;
}
