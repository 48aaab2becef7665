#include "carving/CarvingToGCode.h"

#include "carving/CarvingWalk.h"

#include <QFile>
#include <QFileInfo>
#include <QTextStream>

#include <filesystem>
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
    CCarvingWriter(QFile& file, double fSafeHeight, const std::function<void(quint16)>& fnOnRow)
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

// Whether all that was written is in the file.
bool IsWhole(QFile& file, bool bTaken, QString& strWhy)
{
    if (file.flush() && bTaken) return true;
    strWhy = file.errorString();
    return false;
}
}   // namespace

// A line end in a folder's name must not begin a line of the program.
static QString OneLine(QString strText)
{
    return strText.replace(QLatin1Char('\n'), QLatin1Char(' ')).replace(QLatin1Char('\r'), QLatin1Char(' '));
}

bool WriteCarvingHeader(const QString& strFile, const stImgCarvingInfo& info, QString& strWhy)
{
    QFile file(strFile);
    file.remove();
    if (!file.open(QIODevice::ReadWrite)) return false;
    QTextStream stream(&file);
    stream << GCODE_ORIGIN << "(Image Path:" << OneLine(AppConfig::m_strLastFolderPath) << ")\n";
    const std::pair<const char*, double> lengths[] = {{"Length", info.fLength}, {"Width", info.fWidth},
                                                      {"Depth", info.fDepth},   {"X-Step", info.fXStep},
                                                      {"Y-Step", info.fYStep},  {"Z-Step", info.fZStep}};
    for (const auto& [szName, fValue] : lengths) stream << "(Carving " << szName << ':' << Number(fValue) << ")\n";
    stream << "(Carving Type:" << (info.iCarvingType == CARVING_3D ? "3D" : "2.5D") << " Carving)\n"
           << "(End-Mill Diameter:" << Number(AppConfig::m_fEndMillDia) << ")\n\nG21 G90\n";
    stream.flush();
    return IsWhole(file, stream.status() == QTextStream::Ok, strWhy);
}

bool AppendCarvingPass(const QString& strFile, const stImgCarvingInfo& info, double fSafeHeight,
                       const std::function<void(quint16)>& fnOnRow, QString& strWhy)
{
    QFile file(strFile);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) return false;
    CCarvingWriter writer(file, fSafeHeight, fnOnRow);
    const bool bTaken = CCarvingWalk(info, writer).Run() && writer.IsGood();
    return IsWhole(file, bTaken, strWhy);
}

bool PutInPlace(const QString& strWhole, const QString& strFile, QString& strWhy)
{
    const QFileInfo target(strFile);
    const QString strTarget = target.exists() ? target.canonicalFilePath() : strFile;   // a link stays one
    std::error_code error;
    if (!target.exists() || target.isFile())
        std::filesystem::rename(strWhole.toStdString(), strTarget.toStdString(), error);
    else
        error = std::make_error_code(std::errc::not_supported);   // a folder or a device must not go
    if (!error) return true;
    QFile::remove(strWhole);
    strWhy = QString::fromStdString(error.message());
    return false;
}
