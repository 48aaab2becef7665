#include "dxf/DxfReader.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <locale.h>
#include <span>
#include <stdexcept>

// ---- Pairs ----------------------------------------------------------------------------------------------------------

static void StripCarriageReturn(std::string& strLine)
{
    if (!strLine.empty() && strLine.back() == '\r') strLine.pop_back();
}

bool DXFReader::readPair(int& iCode, std::string& strValue)
{
    if (m_bPushed) {
        m_bPushed = false;
        iCode = m_iPushedCode;
        strValue.swap(m_strPushedValue);
        return true;
    }
    if (!std::getline(m_Stream, m_strCode) || !std::getline(m_Stream, strValue)) return false;
    m_uLine += 2;
    StripCarriageReturn(m_strCode);
    StripCarriageReturn(strValue);
    iCode = std::atoi(m_strCode.c_str());
    return true;
}

void DXFReader::pushBack(int iCode, const std::string& strValue)
{
    m_bPushed = true;
    m_iPushedCode = iCode;
    m_strPushedValue = strValue;
}

// ---- Numbers --------------------------------------------------------------------------------------------------------

namespace {
constexpr double NOT_GIVEN = std::numeric_limits<double>::quiet_NaN();
constexpr double DXF_PI = 3.141592653589793;

template <class Failure> [[noreturn]] void Fail(const DXFReader& reader, const std::string& strValue, const char* szWhy)
{
    std::string strWhat = "line ";
    strWhat.append(std::to_string(reader.Line())).append(": \"").append(strValue, 0, 40).append("\" ").append(szWhy);
    throw Failure(strWhat);
}

// std::stod, but for the point: the window's library sets the country's locale, where "10.5" may end at the point and
// be a wrong coordinate.
double ToNumber(const DXFReader& reader, const std::string& strValue)
{
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    char* pEnd = nullptr;
    errno = 0;
    const double fNumber = strtod_l(strValue.c_str(), &pEnd, plain);
    if (pEnd == strValue.c_str()) Fail<std::invalid_argument>(reader, strValue, "is not a number");
    if (errno == ERANGE) Fail<std::out_of_range>(reader, strValue, "is out of range");
    return fNumber;
}

int ToInteger(const DXFReader& reader, const std::string& strValue)
{
    try {
        return std::stoi(strValue);
    } catch (const std::invalid_argument&) {
        Fail<std::invalid_argument>(reader, strValue, "is not a number");
    } catch (const std::out_of_range&) {
        Fail<std::out_of_range>(reader, strValue, "is out of range");
    }
}

// ---- Entities -------------------------------------------------------------------------------------------------------

// Calls fnPair for each pair of an entity. The pair of code 0 behind it is left for the next one.
template <class Function> void ForEachPair(DXFReader& reader, Function fnPair)
{
    int iCode = 0;
    std::string strValue;
    while (reader.readPair(iCode, strValue)) {
        if (iCode == 0) return reader.pushBack(iCode, strValue);
        fnPair(iCode, strValue);
    }
}

// Reads an entity of plain numbers; the last value of a code counts. False: one is missing or not finite.
struct stNumber
{
    int iCode;
    double fValue = NOT_GIVEN;
};
bool ReadNumbers(DXFReader& reader, std::span<stNumber> numbers)
{
    ForEachPair(reader, [&](int iCode, const std::string& strValue) {
        for (stNumber& number : numbers)
            if (number.iCode == iCode) number.fValue = ToNumber(reader, strValue);
    });
    for (const stNumber& number : numbers)
        if (!std::isfinite(number.fValue)) return false;
    return true;
}

RawSeg Line(const Point& from, const Point& to)
{
    RawSeg seg;
    seg.ptStart = from;
    seg.ptEnd = to;
    return seg;
}

void ReadLine(DXFReader& reader, std::vector<RawSeg>& lstSegs)
{
    stNumber n[] = {{10}, {20}, {11}, {21}};
    if (ReadNumbers(reader, n)) lstSegs.push_back(Line({n[0].fValue, n[1].fValue}, {n[2].fValue, n[3].fValue}));
}

// Angles are not normalised: an arc across 0 degrees, from 270 to 45, comes out clockwise. Wanted.
void ReadArc(DXFReader& reader, std::vector<RawSeg>& lstSegs)
{
    stNumber n[] = {{10}, {20}, {40}, {50}, {51}};
    if (!ReadNumbers(reader, n)) return;
    RawSeg seg;
    seg.eKind = SEG_ARC;
    seg.ptCentre = {n[0].fValue, n[1].fValue};
    seg.fRadius = n[2].fValue;
    const auto At = [&](double fDegrees) {
        const double fAngle = fDegrees * DXF_PI / 180.0;
        return Point{seg.ptCentre.x + seg.fRadius * std::cos(fAngle), seg.ptCentre.y + seg.fRadius * std::sin(fAngle)};
    };
    seg.ptStart = At(n[3].fValue);
    seg.ptEnd = At(n[4].fValue);
    seg.bCcw = n[4].fValue - n[3].fValue > 0.0;
    lstSegs.push_back(seg);
}

// Bulges are ignored: vertices are joined by straight lines. The vertices are those present, whatever count is given.
void ReadPolyline(DXFReader& reader, std::vector<RawSeg>& lstSegs)
{
    std::vector<Point> lstPoints;
    Point point;
    bool bClosed = false, bX = false, bY = false;
    ForEachPair(reader, [&](int iCode, const std::string& strValue) {
        if (iCode == 70) bClosed = (ToInteger(reader, strValue) & 1) != 0;
        if (iCode == 10) {
            point.x = ToNumber(reader, strValue);
            bX = true;
        } else if (iCode == 20) {
            point.y = ToNumber(reader, strValue);
            bY = true;
        }
        if (!bX || !bY) return;
        lstPoints.push_back(point);
        bX = bY = false;
    });
    if (lstPoints.size() < 2) return;
    for (size_t n = 0; n + 1 < lstPoints.size(); ++n) lstSegs.push_back(Line(lstPoints[n], lstPoints[n + 1]));
    if (bClosed) lstSegs.push_back(Line(lstPoints.back(), lstPoints.front()));
}

void ReadEntity(DXFReader& reader, const std::string& strName, std::vector<RawSeg>& lstSegs)
{
    const size_t uLine = reader.Line(), uFirst = lstSegs.size();
    if (strName == "LINE")
        ReadLine(reader, lstSegs);
    else if (strName == "ARC")
        ReadArc(reader, lstSegs);
    else if (strName == "LWPOLYLINE")
        ReadPolyline(reader, lstSegs);
    else
        ForEachPair(reader, [](int, const std::string&) {});
    for (size_t n = uFirst; n < lstSegs.size(); ++n) lstSegs[n].uLine = uLine;
}
}   // namespace

std::vector<RawSeg> parse_entities(DXFReader& reader)
{
    std::vector<RawSeg> lstSegs;
    bool bInEntities = false;
    int iCode = 0;
    std::string strValue;
    while (reader.readPair(iCode, strValue)) {
        if (iCode == 0 && strValue == "SECTION") {
            if (!reader.readPair(iCode, strValue)) break;
            bInEntities = iCode == 2 && strValue == "ENTITIES";
        } else if (bInEntities && iCode == 0) {
            if (strValue == "ENDSEC")
                bInEntities = false;
            else
                ReadEntity(reader, strValue, lstSegs);
        }
    }
    return lstSegs;
}
