#include "carving/CarvingToGCode.h"

#include "carving/CarvingWalk.h"
#include "common/FileWriter.h"

#include <QFileInfo>
#include <QTextStream>

#include <new>
#include <utility>

namespace {
QString Number(double fValue)
{
    return QString::number(fValue, 'f', PRECISION);
}

// Writes what the walk says. A line without a G word repeats the last one: the X and Y of the opening are rapids, and
// all behind the first G01 is a feed move.
class CCarvingWriter
{
public:
    CCarvingWriter(QFileDevice& file, double fSafeHeight, const std::function<void(quint16)>& fnOnRow)
        : m_Stream(&file), m_fSafeHeight(fSafeHeight), m_fnOnRow(fnOnRow)
    {
    }

    bool Open(double fX, double fY)
    {
        m_Stream << "G00 Z" << Number(m_fSafeHeight) << '\n';
        return AlongX(fX) && GoToY(fY) && Plunge(0.0);
    }
    void BeginRow(quint16 uImageRow) { m_fnOnRow(uImageRow); }
    double Height() const { return m_Last.z; }
    void BeginLevel() {}
    bool Plunge(double fZ)
    {
        m_Stream << "G01 ";
        return AlongZ(fZ);
    }
    bool MayGoOn() { return IsGood(); }
    double LastX() const { return m_Last.x; }
    bool AlongX(double fX)
    {
        m_Stream << 'X' << Number(m_Last.x = fX) << '\n';
        return IsGood();
    }
    bool AlongZ(double fZ)
    {
        m_Stream << 'Z' << Number(m_Last.z = fZ) << '\n';
        return IsGood();
    }
    bool Slope(double fX, double fZ)
    {
        m_Stream << 'X' << Number(m_Last.x = fX) << ' ';
        return AlongZ(fZ);
    }
    bool EndRow() { return AlongZ(0.0); }
    bool StepY(double fStep) { return GoToY(SumOnUnits(m_Last.y, -fStep)); }
    bool GoToY(double fY)
    {
        m_Stream << 'Y' << Number(m_Last.y = fY) << '\n';
        return IsGood();
    }
    void End() { m_Stream.flush(); }
    bool IsGood() const { return m_Stream.status() == QTextStream::Ok; }

private:
    QTextStream m_Stream;
    const double m_fSafeHeight;
    const std::function<void(quint16)>& m_fnOnRow;
    stFloatPoint m_Last;
};

// A line end in a folder's name must not begin a line of the program.
QString OneLine(QString strText)
{
    return strText.replace(QLatin1Char('\n'), QLatin1Char(' ')).replace(QLatin1Char('\r'), QLatin1Char(' '));
}

// Of the record as the operator has set it.
bool WriteHeader(QFileDevice& file, const stImgCarvingInfo& info)
{
    QTextStream stream(&file);
    stream << GCODE_ORIGIN << "(Image Path:" << OneLine(AppConfig::m_strLastFolderPath) << ")\n";
    const std::pair<const char*, double> lengths[] = {{"Length", info.fLength}, {"Width", info.fWidth},
                                                      {"Depth", info.fDepth},   {"X-Step", info.fXStep},
                                                      {"Y-Step", info.fYStep},  {"Z-Step", info.fZStep}};
    for (const auto& [szName, fValue] : lengths) stream << "(Carving " << szName << ':' << Number(fValue) << ")\n";
    stream << "(Carving Type:" << (info.iCarvingType == CARVING_3D ? "3D" : "2.5D") << " Carving)\n"
           << "(End-Mill Diameter:" << Number(AppConfig::m_fEndMillDia) << ")\n\nG21 G90\n";
    stream.flush();
    return stream.status() == QTextStream::Ok;
}
}   // namespace

bool WriteCarvingPass(QFileDevice& file, const stImgCarvingInfo& info, double fSafeHeight,
                      const std::function<void(quint16)>& fnOnRow)
{
    CCarvingWriter writer(file, fSafeHeight, fnOnRow);
    return CCarvingWalk(info, writer).Run() && writer.IsGood() && file.flush();
}

static bool WriteWhole(const QString& strFile, stImgCarvingData& data, double fSafeHeight,
                       const std::function<void(quint16)>& fnOnRow, QString& strWhy)
{
    CFileWriter file(strFile);
    const auto WritePass = [&] {
        stImgZProfileInfo map;
        MakeDepthMap(*data.pImage, data.pInfo->fDepth, map);
        MakeCarvingGrid(map, *data.pInfo);
        return WriteCarvingPass(file, *data.pInfo, fSafeHeight, fnOnRow);
    };
    bool bWhole = file.Open();
    if (!bWhole && !QFileInfo::exists(strFile)) return false;
    bWhole = bWhole && WriteHeader(file, *data.pInfo);
    if (bWhole) RunCarvingPasses(*data.pInfo, AppConfig::m_bMultipassImgCarving, [&] { return bWhole = WritePass(); });
    if (bWhole && file.Commit()) return true;
    if (!bWhole && file.isOpen()) (void)file.flush();   // asks the disk once more why not: the stream's end forgets it
    strWhy = QStringLiteral("%1 was not written: %2").arg(strFile, file.errorString());
    return false;
}

bool ExportCarving(const QString& strFile, stImgCarvingData& data, double fSafeHeight,
                   const std::function<void(quint16)>& fnOnRow, QString& strWhy)
{
    strWhy = WhyNotCarved(data);
    if (!strWhy.isEmpty()) return false;
    try {
        return WriteWhole(strFile, data, fSafeHeight, fnOnRow, strWhy);
    } catch (const std::bad_alloc&) {
        strWhy = QStringLiteral("Image is too large for the memory of this computer");
        return false;
    }
}
