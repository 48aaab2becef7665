#include "dxf/DxfToGCode.h"

#include "common/ArcReading.h"
#include "common/FileWriter.h"
#include "common/OperatorScreen.h"
#include "config/AppConfig.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <limits>
#include <streambuf>

static constexpr double JOIN_TOLERANCE = 1e-05;   // mm
static constexpr double NO_VALUE = 1e300;         // no coordinate yet
static constexpr int LINES_OF_HEAD = 6;           // up to the feed
static constexpr double MAX_LINES = 2e7;          // of a program: a step mistyped must not fill the disk

std::string DxfOutputName(const std::string& strDxfFile)
{
    return strDxfFile.substr(0, strDxfFile.rfind('.') + 1) + ".ncc";
}

int PassesOf(double fStepDown, double fTotalDepth)
{
    const double fPasses = std::ceil(fTotalDepth / fStepDown);
    return fPasses > 0.0 && fPasses < std::numeric_limits<int>::max() ? static_cast<int>(fPasses) : 0;
}

// ---- The program's text ---------------------------------------------------------------------------------------------

static void EmitPath(std::ostream& out, const Path& path, double z, double zSafe, const Point& off)
{
    const auto Shifted = [&](const Point& pt) { return Point{pt.x - off.x, pt.y - off.y}; };
    Point current = Shifted(path.lstSegs.front().ptStart);
    out << "G0 Z" << zSafe << "\nG0 X" << current.x << " Y" << current.y << "\nG1 Z" << z << "\n";
    for (const Segment& seg : path.lstSegs) {
        const Point end = Shifted(seg.ptEnd);
        out << (seg.eKind == SEG_LINE ? "G1 X" : seg.bCcw ? "G3 X" : "G2 X") << end.x << " Y" << end.y;
        if (seg.eKind == SEG_ARC) {
            // From where the arc begins in the chain, which is a tolerance beside its own start.
            const Point centre = Shifted(seg.ptCentre);
            out << " I" << centre.x - current.x << " J" << centre.y - current.y;
        }
        out << "\n";
        current = end;
    }
    out << "G0 Z" << zSafe << "\n";
}

// Eight parameters: wanted, its callers give the figures of a drawing one by one.
// NOLINTNEXTLINE(readability-function-size)
void emit_paths(std::ostream& out, const std::vector<Path>& lstPaths, double stepDown, double totalDepth, double feed,
                double zSafe, double offX, double offY)
{
    out << std::fixed << std::setprecision(4) << " F" << feed << "\n";
    const int iPasses = PassesOf(stepDown, totalDepth);
    for (int pass = 1; out && pass <= iPasses; ++pass) {
        const double z = -std::min(pass * stepDown, totalDepth);
        for (const Path& path : lstPaths)
            if (!path.lstSegs.empty()) EmitPath(out, path, z, zSafe, {offX, offY});
    }
}

static void EmitProgram(std::ostream& out, const std::vector<Path>& lstPaths, const stDXF2GCode& settings,
                        const Point& lowest)
{
    out << std::fixed << std::setprecision(4);
    out << "; dxf2gcode\n"
        << "; tool_dia=" << settings.fToolDia << ", stepdown=" << settings.fStepDown
        << ", totalDepth=" << settings.fTotalDepth << ", feed=" << settings.fFeed << ", zSafe=" << settings.fZSafe
        << "\nG90 G94 G17 G21\nG0 Z" << settings.fZSafe << "\n\n";
    emit_paths(out, lstPaths, settings.fStepDown, settings.fTotalDepth, settings.fFeed, settings.fZSafe, lowest.x,
               lowest.y);
    out << "M30\n";
}

// ---- Arcs -----------------------------------------------------------------------------------------------------------

// Those of the first pass, which the others repeat, by the words as they are printed.
static void CheckArcs(const std::vector<Path>& lstPaths, const Point& off, QStringList& lstNotices)
{
    CArcCheck check({AppConfig::m_fAxisMovPerPulse[X_AXIS], AppConfig::m_fAxisMovPerPulse[Y_AXIS],
                     AppConfig::m_GCodeRunSettings.fAxisStep},
                    lstNotices);
    const auto At = [](const Point& pt) { return stArcPoint{pt.x, pt.y}; };
    const auto Printed = [](const Point& pt, const Point& from) {
        return stArcPoint{Round4(pt.x - from.x), Round4(pt.y - from.y)};
    };
    qint64 lLine = LINES_OF_HEAD;
    for (const Path& path : lstPaths) {
        if (path.lstSegs.empty()) continue;
        lLine += 3;
        Point current = path.lstSegs.front().ptStart;
        for (const Segment& seg : path.lstSegs) {
            ++lLine;
            const eDirection eDir = seg.bCcw ? DIR_CCW : DIR_CW;
            if (seg.eKind == SEG_ARC)
                check.Check(QStringLiteral("ARC on line %1 of the drawing").arg(seg.uLine), lLine,
                            {.start = Printed(current, off),
                             .end = Printed(seg.ptEnd, off),
                             .offset = Printed(seg.ptCentre, current),
                             .eDir = eDir,
                             .fSweep = ArcSweep(At(seg.ptStart), At(seg.ptEnd), At(seg.ptCentre), eDir)});
            current = seg.ptEnd;
        }
        ++lLine;
    }
}

// ---- Conversion -----------------------------------------------------------------------------------------------------

namespace {
// What a stream writes goes to a device, in large pieces.
class CDeviceBuffer : public std::streambuf
{
public:
    explicit CDeviceBuffer(QIODevice& device) : m_Device(device) { setp(m_lst.data(), m_lst.data() + m_lst.size()); }

protected:
    int_type overflow(int_type c) override
    {
        if (sync() != 0) return traits_type::eof();
        return traits_type::eq_int_type(c, traits_type::eof()) ? 0 : sputc(traits_type::to_char_type(c));
    }
    int sync() override
    {
        const qint64 lSize = pptr() - pbase();
        setp(m_lst.data(), m_lst.data() + m_lst.size());
        return m_Device.write(m_lst.data(), lSize) == lSize ? 0 : -1;
    }

private:
    QIODevice& m_Device;
    std::array<char, 1 << 14> m_lst;
};
}   // namespace

// The lower left corner. An arc counts with its whole circle, which may shift the drawing further than it needs:
// wanted.
static Point LowestOf(const std::vector<RawSeg>& lstSegs)
{
    Point lowest{NO_VALUE, NO_VALUE};
    const auto Count = [&](const Point& pt) {
        lowest.x = std::min(lowest.x, pt.x);
        lowest.y = std::min(lowest.y, pt.y);
    };
    for (const RawSeg& seg : lstSegs) {
        Count(seg.ptStart);
        Count(seg.ptEnd);
        if (seg.eKind == SEG_ARC) Count({seg.ptCentre.x - seg.fRadius, seg.ptCentre.y - seg.fRadius});
    }
    if (lowest.x == NO_VALUE || lowest.y == NO_VALUE) lowest = {};
    return lowest;
}

std::string ConvertDxf(const stDXF2GCode& settings, const std::string& strOutput, size_t& uPaths)
{
    if (!(settings.fToolDia > 0.0 && settings.fStepDown > 0.0 && settings.fTotalDepth > 0.0 && settings.fFeed > 0.0) ||
        PassesOf(settings.fStepDown, settings.fTotalDepth) == 0)
        return "Invalid numeric parameters.";
    std::ifstream input(settings.strDxfFile);
    if (!input) return "Cannot open input DXF: " + settings.strDxfFile;
    DXFReader reader(input);
    const std::vector<RawSeg> lstSegs = parse_entities(reader);
    if (lstSegs.empty()) return "No supported entities (LINE/LWPOLYLINE/ARC) found.";
    const std::vector<Path> lstPaths = group_paths(lstSegs, JOIN_TOLERANCE);
    uPaths = lstPaths.size();
    const double fLines = static_cast<double>(lstSegs.size()) + 4.0 * static_cast<double>(uPaths);
    if (fLines * PassesOf(settings.fStepDown, settings.fTotalDepth) > MAX_LINES)
        return "Too many passes for this drawing.";

    CFileWriter file(QFile::decodeName(strOutput.c_str()));
    if (!file.Open()) return "Cannot open output file: " + strOutput;
    CDeviceBuffer buffer(file);
    std::ostream output(&buffer);
    const Point lowest = LowestOf(lstSegs);
    EmitProgram(output, lstPaths, settings, lowest);
    if (!output.flush() || !file.Commit()) return "Cannot write output file: " + strOutput;
    QStringList lstNotices;
    CheckArcs(lstPaths, lowest, lstNotices);
    for (const QString& strNotice : lstNotices) TellNotice(strNotice);
    return {};
}

int CreateGcodeFromDxf(stDXF2GCode settings)
{
    const std::string strOutput = DxfOutputName(settings.strDxfFile);
    size_t uPaths = 0;
    const std::string strWhyNot = ConvertDxf(settings, strOutput, uPaths);
    if (strWhyNot.empty())
        std::cerr << "Converted " << uPaths << " path(s). Output: " << strOutput << "\n";
    else
        std::cerr << strWhyNot << "\n";
    return strWhyNot.empty() ? 0 : 1;
}
