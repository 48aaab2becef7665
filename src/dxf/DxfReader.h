#pragma once
#include <istream>
#include <string>
#include <vector>

// Reads the ASCII form of DXF drawings into a flat list of 2-D segments: LINE, ARC and LWPOLYLINE of the ENTITIES
// section, nothing else of the file. Drawing units are taken as mm. No shared state; any thread.

struct Point
{
    double x = 0.0, y = 0.0;
};

inline constexpr int SEG_LINE = 0, SEG_ARC = 1;

struct Segment
{
    int eKind = SEG_LINE;
    Point ptStart, ptEnd;
    Point ptCentre;      // of an arc
    bool bCcw = false;   // of an arc, from ptStart to ptEnd
    size_t uLine = 0;    // of the drawing, from 1, where its entity begins
};

struct RawSeg : Segment
{
    double fRadius = 0.0;   // of an arc
};

// Group codes and values in pairs of lines, with one pair of push-back. Lines may end as on Windows.
class DXFReader
{
public:
    explicit DXFReader(std::istream& stream) : m_Stream(stream) {}

    // False: the end of the input. A last line without its pair is lost.
    bool readPair(int& iCode, std::string& strValue);
    void pushBack(int iCode, const std::string& strValue);
    // Where the value read last stands, from 1.
    size_t Line() const { return m_uLine; }

private:
    std::istream& m_Stream;
    bool m_bPushed = false;
    int m_iPushedCode = 0;
    std::string m_strPushedValue;
    std::string m_strCode;
    size_t m_uLine = 0;
};

// Reads to the end of the input. An entity whose numbers are incomplete or not finite is dropped. Throws what std::stod
// and std::stoi throw for a number that cannot be read, with its line in the text: a corrupt number must not become a
// cut.
std::vector<RawSeg> parse_entities(DXFReader& reader);
