// Loads and compiles a program of 1,000,000 lines (or as many as the argument says) and compares with a loop that only
// reads the lines of the same file. Run it in a fresh process, since the heap is measured too:
//   ./build/bin/gcode_load > gcode_load.json
// Bounds: seven times the reading on two cores, half of that on four; 32 bytes a token + 2 a character + 160 a line.
// "types" is what making the store's strings and vectors alone takes one core, from lines and tokens that are there.
#include "config/AppConfig.h"
#include "gcode/GCodeStore.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <time.h>

namespace {
struct stShape
{
    qint64 lCharacters = 0, lTokens = 0;
};

// A relief as a carving program would be: short feed moves, some rapids, comments and arcs between.
bool WriteJob(const QString& strPath, int iLines)
{
    QFile file(strPath);
    if (!file.open(QIODevice::WriteOnly)) return false;
    QByteArray content;
    for (int n = 0; n < iLines; ++n) {
        const double fX = (n % 2000) * 0.05, fY = (n / 2000) * 0.1, fZ = -1.0 + std::sin(n * 0.01);
        char szLine[96];
        if (n % 2000 == 0)
            std::snprintf(szLine, sizeof szLine, "G0 X%.4f Y%.4f Z5.0000 (row %d)\n", fX, fY, n / 2000);
        else if (n % 50 == 0)
            std::snprintf(szLine, sizeof szLine, "G2 X%.4f Y%.4f I0.0250 J0.0000\n", fX, fY);
        else if (n % 50 == 1)
            std::snprintf(szLine, sizeof szLine, "N%d G1 X%.4f Y%.4f Z%.4f F1500\n", n, fX, fY, fZ);
        else
            std::snprintf(szLine, sizeof szLine, "G1 X%.4f Y%.4f Z%.4f\n", fX, fY, fZ);
        content += szLine;
    }
    return file.write(content) == content.size();
}

// Wall time, and the time that all cores gave together: on a busy computer only the second says something.
struct stTimes
{
    double fWall = 0.0, fCpu = 0.0;   // ms
};
class CStopwatch
{
public:
    CStopwatch() : m_fCpu(CpuMs()) { m_Timer.start(); }
    stTimes Taken() const { return {double(m_Timer.nsecsElapsed()) / 1e6, CpuMs() - m_fCpu}; }

private:
    static double CpuMs()
    {
        timespec time{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
    }
    QElapsedTimer m_Timer;
    double m_fCpu;
};

stTimes ReadOnly(const QString& strPath)
{
    QFile file(strPath);
    if (!file.open(QIODevice::ReadOnly)) return {};
    const CStopwatch watch;
    QTextStream stream(&file);
    qint64 lRead = 0;
    while (!stream.atEnd()) lRead += stream.readLine().size();
    return lRead > 0 ? watch.Taken() : stTimes();
}

stTimes TypesAlone()
{
    const CStopwatch watch;
    std::vector<QString> lstLines;
    GCodeProgram lstCmds;
    lstLines.reserve(CGCodeStore::m_lstOfGCodeLines.size());
    lstCmds.reserve(CGCodeStore::m_lstOfGCodeCmds.size());
    for (const QString& strLine : CGCodeStore::m_lstOfGCodeLines)
        lstLines.emplace_back(strLine.constData(), strLine.size());
    for (const GCodeTokens& tokens : CGCodeStore::m_lstOfGCodeCmds) lstCmds.push_back(tokens);
    return watch.Taken();
}

size_t HeapBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

stShape Measure()
{
    stShape shape;
    for (const QString& strLine : CGCodeStore::m_lstOfGCodeLines) shape.lCharacters += strLine.size();
    for (const GCodeTokens& tokens : CGCodeStore::m_lstOfGCodeCmds) shape.lTokens += qint64(tokens.size());
    return shape;
}
}   // namespace

int main(int argc, char** argv)
{
    const int iLines = argc > 1 ? std::atoi(argv[1]) : 1'000'000;
    QTemporaryDir folder;
    const QString strPath = folder.filePath(QStringLiteral("job.ngc"));
    if (iLines < 1 || !WriteJob(strPath, iLines)) return 1;

    ReadOnly(strPath);   // the file into the cache
    const size_t uHeapBefore = HeapBytes();
    const CStopwatch loadWatch;
    CGCodeStore::LoadGCode(strPath, nullptr);
    const stTimes load = loadWatch.Taken();
    const size_t uHeap = HeapBytes() - uHeapBefore;
    const CStopwatch compileWatch;
    CGCodeStore::CompileGCode(nullptr);
    const stTimes compile = compileWatch.Taken();
    const stTimes types = TypesAlone();
    stTimes read = ReadOnly(strPath);
    for (int n = 0; n < 4; ++n) {
        const stTimes again = ReadOnly(strPath);
        read = {std::min(read.fWall, again.fWall), std::min(read.fCpu, again.fCpu)};
    }

    const stShape shape = Measure();
    const double fBound = 32.0 * double(shape.lTokens) / iLines + 2.0 * double(shape.lCharacters) / iLines + 160.0;
    std::printf("{\"lines\": %d, \"errors\": %zu, \"load_ms\": %.1f, \"compile_ms\": %.1f, \"read_line_ms\": %.1f, "
                "\"types_ms\": %.1f, "
                "\"ratio\": %.2f, \"cpu_load_ms\": %.1f, \"cpu_compile_ms\": %.1f, \"cpu_read_line_ms\": %.1f, "
                "\"cpu_types_ms\": %.1f, "
                "\"cpu_ratio\": %.2f, \"ratio_bound\": 7.0,\n \"bytes_a_line\": %.1f, \"bytes_a_line_bound\": %.1f, "
                "\"tokens_a_line\": %.2f, \"characters_a_line\": %.2f}\n",
                iLines, CGCodeStore::m_CompilationErrors.size(), load.fWall, compile.fWall, read.fWall, types.fWall,
                (load.fWall + compile.fWall) / read.fWall, load.fCpu, compile.fCpu, read.fCpu, types.fCpu,
                (load.fCpu + compile.fCpu) / read.fCpu, double(uHeap) / iLines, fBound, double(shape.lTokens) / iLines,
                double(shape.lCharacters) / iLines);
    std::fflush(stdout);
    std::_Exit(0);   // nothing of it is worth a million releases
}
