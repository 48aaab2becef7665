#include "shapes/WorkAreaFile.h"

#include "common/FileWriter.h"
#include "shapes/EllipsePath.h"

#include <QFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>

namespace {
// ---- Writing ----

QString General(double fValue)
{
    return QString::number(fValue, 'g', 6);
}

void WriteEllipse(QXmlStreamWriter& xml, const stEllipse& ellipse)
{
    xml.writeStartElement(QStringLiteral("Ellipse"));
    xml.writeTextElement(QStringLiteral("ShapeName"), ellipse.strShapeName);
    xml.writeTextElement(QStringLiteral("Depth"), General(ellipse.fDepth));
    xml.writeTextElement(QStringLiteral("CenterX"), General(ellipse.stCenter.x));
    xml.writeTextElement(QStringLiteral("CenterY"), General(ellipse.stCenter.y));
    xml.writeTextElement(QStringLiteral("MajorAxis"), General(ellipse.fMajorAxisDia));
    xml.writeTextElement(QStringLiteral("MinorAxis"), General(ellipse.fMinorAxisDia));
    xml.writeTextElement(QStringLiteral("Orientation"), General(ellipse.fOrientation));
    xml.writeTextElement(QStringLiteral("XAxisStep"), General(ellipse.fXAxisStep));
    xml.writeTextElement(QStringLiteral("XArcStartAngle"), General(ellipse.fArcStartAngle));
    xml.writeTextElement(QStringLiteral("XArcEndAngle"), General(ellipse.fArcEndAngle));
    xml.writeEndElement();
}

void WritePolygon(QXmlStreamWriter& xml, const stPolygon& polygon)
{
    xml.writeStartElement(QStringLiteral("Shape"));
    xml.writeTextElement(QStringLiteral("ShapeName"), polygon.strShapeName);
    xml.writeTextElement(QStringLiteral("Hole"), QString::number(polygon.bHole ? 1 : 0));
    xml.writeTextElement(QStringLiteral("Depth"), General(polygon.fDepth));
    xml.writeTextElement(QStringLiteral("Count"), QString::number(polygon.lstVertices.size()));
    for (size_t n = 0; n < polygon.lstVertices.size(); ++n) {
        const stFloatPoint& vertex = polygon.lstVertices[n];
        xml.writeTextElement(QStringLiteral("Vertex_") + QString::number(n),
                             QString::number(vertex.x, 'f', PRECISION) + QLatin1Char(',') +
                                 QString::number(vertex.y, 'f', PRECISION));
    }
    xml.writeEndElement();
}

// Empty: a name holds what no such file can.
QByteArray Document(const stShapeCuttingInfo& info)
{
    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("Project"));
    xml.writeStartElement(QStringLiteral("WorkArea"));
    xml.writeTextElement(QStringLiteral("Length"), General(info.stWorkArea.x));
    xml.writeTextElement(QStringLiteral("Width"), General(info.stWorkArea.y));
    xml.writeEndElement();
    for (const stEngShape& shape : info.lstShapes) {
        if (shape.eType == SHAPE_ELLIPSE)
            WriteEllipse(xml, *shape.pEllipse);
        else
            WritePolygon(xml, *shape.pPolygon);
    }
    xml.writeEndElement();
    xml.writeEndDocument();
    return xml.hasError() ? QByteArray() : bytes;
}

// ---- Reading ----

// The format is made for machines: children are taken by their place and not by their names, and the closing tag of an
// element follows directly on that of its last child. Anything between the two ends the reading, as told to operators
// who edit files by hand.
class CWorkAreaReader
{
public:
    CWorkAreaReader(QFile& file, stShapeCuttingInfo& info, QStringList& lstNotices)
        : m_Xml(&file), m_lSize(file.size()), m_Info(info), m_lstNotices(lstNotices)
    {
    }

    void Read()
    {
        m_Xml.readNextStartElement();   // the root, whatever its name
        while (m_Xml.readNextStartElement()) {
            if (m_Xml.name() == QLatin1String("Ellipse"))
                ReadEllipse();
            else if (m_Xml.name() == QLatin1String("WorkArea"))
                m_Info.stWorkArea = {Number(), Number()};   // braces: from left to right
            else if (m_Xml.name() == QLatin1String("Shape"))
                ReadPolygon();
            m_Xml.readNext();   // over the closing tag
        }
    }

private:
    // The next child's text. A child that is missing reads as an empty one.
    QString Text()
    {
        m_Xml.readNextStartElement();
        return m_Xml.readElementText();
    }
    double Number() { return Text().toDouble(); }   // 0 where there is none

    void ReadEllipse()
    {
        const stEngShape shape = stEngShape::NewEllipse();
        stEllipse& ellipse = *shape.pEllipse;
        ellipse.strShapeName = Text();
        for (double* pField :
             {&ellipse.fDepth, &ellipse.stCenter.x, &ellipse.stCenter.y, &ellipse.fMajorAxisDia, &ellipse.fMinorAxisDia,
              &ellipse.fOrientation, &ellipse.fXAxisStep, &ellipse.fArcStartAngle, &ellipse.fArcEndAngle})
            *pField = Number();
        m_Info.lstShapes.push_back(shape);
        m_fEllipsePoints += CountEllipsePoints(ellipse);
        const QString strWhy =
            m_fEllipsePoints <= MAX_ELLIPSE_POINTS
                ? CreateEllipsePoints(ellipse)
                : QStringLiteral("%1 has no points: the ellipses of this file have too many").arg(ellipse.strShapeName);
        if (!strWhy.isEmpty()) m_lstNotices += strWhy;
    }

    void ReadPolygon()
    {
        const stEngShape shape = stEngShape::NewPolygon();
        stPolygon& polygon = *shape.pPolygon;
        polygon.strShapeName = Text();
        polygon.bHole = Text().toShort() == 1;
        polygon.fDepth = Number();
        const int iCount = Text().toInt();
        for (int n = 0; n < iCount; ++n) {
            if (n >= m_lSize) {   // more than the file can hold, at a byte each
                m_lstNotices += QStringLiteral("%1: the file tells of %2 points, %3 are taken")
                                    .arg(polygon.strShapeName)
                                    .arg(iCount)
                                    .arg(n);
                break;
            }
            if (m_Xml.atEnd() || m_Xml.hasError()) {   // what is missing reads as nothing
                polygon.lstVertices.resize(static_cast<size_t>(std::min<qint64>(iCount, m_lSize)));
                n = static_cast<int>(polygon.lstVertices.size()) - 1;
                continue;
            }
            const QString strVertex = Text();
            const qsizetype iComma = strVertex.indexOf(QLatin1Char(','));
            // Without a comma both are the whole text: wanted.
            polygon.lstVertices.push_back({strVertex.left(iComma).toDouble(), strVertex.mid(iComma + 1).toDouble()});
        }
        m_Info.lstShapes.push_back(shape);
    }

    // All ellipses of a file: points are made from a few numbers, so a small file could ask for any amount of memory.
    static constexpr double MAX_ELLIPSE_POINTS = 20'000'000.0;
    QXmlStreamReader m_Xml;
    const qint64 m_lSize;   // bytes
    stShapeCuttingInfo& m_Info;
    QStringList& m_lstNotices;
    double m_fEllipsePoints = 0.0;
};
}   // namespace

QString WorkAreaFileName(const QString& strFile)
{
    const QString strName = strFile.mid(strFile.lastIndexOf(QLatin1Char('/')) + 1);
    return strName.lastIndexOf(QLatin1Char('.')) >= 1 ? strFile : strFile + QStringLiteral(".xml");
}

bool SaveWorkArea(const QString& strFile, const stShapeCuttingInfo& info)
{
    const QByteArray document = Document(info);
    if (document.isEmpty()) return false;
    QByteArray tail;
    if (QFile old(strFile); old.exists()) {
        if (!old.open(QIODevice::ReadWrite)) return false;
        if (old.seek(document.size())) tail = old.readAll();
    }
    return ReplaceFile(strFile, document + tail);
}

bool LoadWorkArea(const QString& strFile, stShapeCuttingInfo& info, QStringList& lstNotices)
{
    QFile file(strFile);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) return false;
    CWorkAreaReader(file, info, lstNotices).Read();
    return true;
}
