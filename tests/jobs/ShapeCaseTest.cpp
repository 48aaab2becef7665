#include "jobs/ShapeSpy.h"
#include "shapes/EllipsePath.h"
#include "shapes/ShapesToGCode.h"
#include "shapes/WorkAreaFile.h"
#include "support/Cases.h"
#include "support/Files.h"

// Shape jobs against the reference cases: the file, what reading it leaves, the cut and the G-code.

namespace {
const QString KIND = QStringLiteral("shapes");

stEngShape ShapeFrom(const QJsonObject& in)
{
    const bool bEllipse = in["type"].toString() == "ellipse";
    const stEngShape shape = bEllipse ? stEngShape::NewEllipse() : stEngShape::NewPolygon();
    shape.Common().strShapeName = in["name"].toString();
    shape.Common().fDepth = in["depth"].toDouble();
    if (!bEllipse) {
        shape.pPolygon->bHole = in["hole"].toBool();
        for (const QJsonValue& vertex : in["vertices"].toArray())
            shape.pPolygon->lstVertices.push_back(PointFrom(vertex.toArray()));
        return shape;
    }
    stEllipse& ellipse = *shape.pEllipse;
    ellipse.stCenter = PointFrom(in["centre"].toArray());
    ellipse.fMajorAxisDia = in["major"].toDouble();
    ellipse.fMinorAxisDia = in["minor"].toDouble();
    ellipse.fOrientation = in["orientation"].toDouble();
    ellipse.fXAxisStep = in["x_step"].toDouble();
    ellipse.fArcStartAngle = in["arc_start"].toDouble();
    ellipse.fArcEndAngle = in["arc_end"].toDouble();
    ellipse.bHole = in["hole"].toBool();
    EXPECT_EQ(CreateEllipsePoints(ellipse), QString());
    return shape;
}

QJsonObject ToJson(const stEngShape& shape)
{
    QJsonArray path;
    for (const stFloatPoint& point : shape.Path()) path.append(PointArray(point, 2));
    QJsonObject out{{"name", shape.Common().strShapeName}, {"depth", shape.Common().fDepth}};
    if (shape.eType == SHAPE_POLYGON) {
        out["type"] = "polygon";
        out["hole"] = shape.pPolygon->bHole;
        out["vertices"] = path;
        return out;
    }
    const stEllipse& ellipse = *shape.pEllipse;
    out["type"] = "ellipse";
    out["centre"] = PointArray(ellipse.stCenter, 2);
    out["major"] = ellipse.fMajorAxisDia;
    out["minor"] = ellipse.fMinorAxisDia;
    out["orientation"] = ellipse.fOrientation;
    out["x_step"] = ellipse.fXAxisStep;
    out["arc_start"] = ellipse.fArcStartAngle;
    out["arc_end"] = ellipse.fArcEndAngle;
    out["hole"] = ellipse.bHole;
    out["points"] = path;
    return out;
}

void ExpectShapes(const QJsonArray& expected, const std::vector<stEngShape>& lstShapes)
{
    QJsonArray shapes;
    for (const stEngShape& shape : lstShapes) shapes.append(ToJson(shape));
    ExpectNear(expected, shapes, 1e-9, "shapes");
}

class ShapeCase : public CShapeTest, public testing::WithParamInterface<std::string>
{
protected:
    QString Name(const char* szEnding) const { return QString::fromStdString(GetParam()) + QLatin1String(szEnding); }
    void SetUp() override
    {
        m_In = CCases::Json(KIND, Name(".json"));
        ApplyConfig(m_In["config"].toObject());
    }
    void ExpectGCode(const stShapeCuttingInfo& info, const QString& strExpected)
    {
        QStringList notices;
        EXPECT_TRUE(WriteShapesAsGCode(
            m_Home.filePath("job.txt"), info, AppControl::SafeHeight(), [] { return true; }, notices));
        QList<QByteArray> lines = ReadAll(m_Home.filePath("job.txt")).split('\n');
        EXPECT_TRUE(lines[1].startsWith('(') && lines[1].endsWith(')')) << lines[1].toStdString();
        lines[1] = "(@FREE COMMENT@)";
        EXPECT_EQ(lines.join('\n').toStdString(), CCases::Bytes(KIND, strExpected).toStdString());
    }
    QJsonObject m_In;
};
using ShapeJobCase = ShapeCase;
using ShapeReadCase = ShapeCase;

bool IsJob(const std::string& strName)
{
    return strName.rfind("read_", 0) != 0 && strName.find('.') == std::string::npos;
}
std::vector<std::string> Names(bool bJobs)
{
    std::vector<std::string> names;
    for (const std::string& strName : CCases::Names(KIND, ".json"))
        if (bJobs ? IsJob(strName) : strName.rfind("read_", 0) == 0) names.push_back(strName);
    return names;
}
}   // namespace

TEST_P(ShapeJobCase, IsSavedLoadedCutAndWrittenAsWorkedOut)
{
    stShapeCuttingInfo info;
    info.fZStep = m_In["z_step"].toDouble();
    info.stWorkArea = PointFrom(m_In["work_area"].toArray());
    for (const QJsonValue& shape : m_In["shapes"].toArray()) info.lstShapes.push_back(ShapeFrom(shape.toObject()));
    ExpectShapes(m_In["shapes"].toArray(), info.lstShapes);
    ExpectGCode(info, Name(".txt"));

    const QString strFile = m_Home.filePath("area.xml");
    ASSERT_TRUE(SaveWorkArea(strFile, info));
    EXPECT_EQ(ReadAll(strFile).toStdString(), CCases::Bytes(KIND, Name(".xml")).toStdString());

    stShapeCuttingInfo loaded;
    loaded.fZStep = info.fZStep;
    QStringList notices;
    ASSERT_TRUE(LoadWorkArea(strFile, loaded, notices));
    EXPECT_EQ(notices, QStringList());
    const QJsonObject back = m_In["loaded_from_xml"].toObject();
    ExpectNear(back["work_area"], PointArray(loaded.stWorkArea, 2), 0.0, "work area");
    ExpectShapes(back["shapes"].toArray(), loaded.lstShapes);
    if (m_In.contains("expected_gcode_of_the_loaded_file")) ExpectGCode(loaded, Name(".fromxml.txt"));

    Begin();
    m_App.m_pShapeCuttingInfo = &info;
    m_App.CutShapes();
    const QJsonArray moves = QJsonDocument::fromJson(CCases::Bytes(KIND, Name(".moves.json"))).array();
    ExpectNear(moves, m_App.Calls(), 1e-7, "call");
    EXPECT_EQ(m_App.TakeErrors(), QStringList());
}
INSTANTIATE_TEST_SUITE_P(All, ShapeJobCase, testing::ValuesIn(Names(true)), CaseName);

TEST_P(ShapeReadCase, LeavesWhatWasWorkedOut)
{
    stShapeCuttingInfo info;
    QStringList notices;
    for (int n = m_In["shapes_before"].toInt(); n > 0; --n) info.lstShapes.push_back(stEngShape::NewPolygon());
    const auto lBefore = static_cast<std::ptrdiff_t>(info.lstShapes.size());
    info.stWorkArea = {300.0, 200.0};
    ASSERT_TRUE(LoadWorkArea(CCases::Folder(KIND) + '/' + Name(".xml"), info, notices));
    ExpectNear(m_In["work_area"], PointArray(info.stWorkArea, 2), 0.0, "work area");
    ExpectShapes(m_In["shapes_added"].toArray(), {info.lstShapes.begin() + lBefore, info.lstShapes.end()});
}
INSTANTIATE_TEST_SUITE_P(All, ShapeReadCase, testing::ValuesIn(Names(false)), CaseName);
