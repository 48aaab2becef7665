#include "carving/ImgCarving.h"
#include "cases/Cases.h"
#include "config/AppConfig.h"
#include "machine/MoveSpy.h"
#include "shapes/EllipsePath.h"
#include "shapes/ShapesToGCode.h"
#include "shapes/WorkAreaFile.h"
#include "support/Files.h"

#include <QDir>

// Shape jobs and carvings: what is cut, the same as G-code, the file of a work area.

namespace {
// The program that was written to strFile: as expected but for the text of one comment, and nothing else beside it.
void ExpectProgram(const QString& strFile, const QByteArray& expected, int iFreeLine)
{
    QList<QByteArray> lines = ReadAll(strFile).split('\n');
    ASSERT_GE(lines.size(), iFreeLine);
    QByteArray& free = lines[iFreeLine - 1];
    EXPECT_TRUE(free.startsWith("(Visit ") && free.endsWith(" for more information)")) << free.toStdString();
    free = "(@FREE COMMENT@)";
    EXPECT_EQ(lines.join('\n').toStdString(), expected.toStdString());
    EXPECT_EQ(QFileInfo(strFile).dir().entryList({"job*"}), QStringList(QFileInfo(strFile).fileName()));
}

// ---- Shapes ----

CRecord Members(const stEngShape& shape)
{
    CRecord record;
    record("name", shape.Common().strShapeName)("depth", shape.Common().fDepth);
    if (shape.eType == SHAPE_POLYGON) return record("hole", shape.pPolygon->bHole);
    stEllipse& e = *shape.pEllipse;
    record("hole", e.bHole)("centre", e.stCenter)("major", e.fMajorAxisDia)("minor", e.fMinorAxisDia);
    record("orientation", e.fOrientation)("x_step", e.fXAxisStep);
    return record("arc_start", e.fArcStartAngle)("arc_end", e.fArcEndAngle);
}
stEngShape ShapeFrom(const QJsonValue& in)
{
    CFields fields(in, "shape");
    const bool bEllipse = fields["type"] == "ellipse";
    const stEngShape shape = bEllipse ? stEngShape::NewEllipse() : stEngShape::NewPolygon();
    if (!bEllipse) shape.pPolygon->lstVertices = PointsFrom(fields["vertices"]);
    fields.PassOver({"points"});   // follow, and are compared
    Members(shape).Take(std::move(fields));
    EXPECT_TRUE(!bEllipse || CreateEllipsePoints(*shape.pEllipse).isEmpty());
    return shape;
}
QJsonObject ToJson(const stEngShape& shape)
{
    const bool bPolygon = shape.eType == SHAPE_POLYGON;
    QJsonObject seen = Members(shape).Seen();
    seen["type"] = bPolygon ? "polygon" : "ellipse";
    seen[bPolygon ? "vertices" : "points"] = PointsArray(shape.Path(), 2);
    return seen;
}
void ExpectShapes(const QJsonValue& expected, const stShapeCuttingInfo& info, qsizetype iFrom = 0)
{
    const std::vector<stEngShape> lst(info.lstShapes.begin() + iFrom, info.lstShapes.end());
    ExpectSame(expected, ArrayOf(lst, ToJson), 1e-9, "shapes");
}

void ExpectShapeProgram(const stCase& c, const stShapeCuttingInfo& info, int iFreeLine, const QString& strEnding)
{
    QStringList notices;
    const QString strFile = c.strHome + "/job.txt";
    EXPECT_TRUE(WriteShapesAsGCode(
        strFile, info, AppControl::SafeHeight(), [] { return true; }, notices));
    ExpectProgram(strFile, c.Bytes(strEnding), iFreeLine);
}

void ReadWorkArea(const stCase& c, CFields& in)
{
    stShapeCuttingInfo info;
    QStringList notices;
    const int iBefore = in["shapes_before"].toInt();
    for (int n = 0; n < iBefore; ++n) info.lstShapes.push_back(stEngShape::NewPolygon());
    info.stWorkArea = {300.0, 200.0};
    ASSERT_TRUE(LoadWorkArea(c.Path(".xml"), info, notices));
    ExpectSame(in["work_area"], PointArray(info.stWorkArea, 2), 0.0, "work area");
    ExpectShapes(in["shapes_added"], info, iBefore);
    in.PassOver({"button_texts"});   // the window's
}

void SaveAndLoadWorkArea(const stCase& c, CFields& in, const stShapeCuttingInfo& info, int iFreeLine)
{
    const QString strFile = c.strHome + "/area.xml";
    ASSERT_TRUE(SaveWorkArea(strFile, info));
    EXPECT_EQ(ReadAll(strFile).toStdString(), c.Bytes(".xml").toStdString());
    stShapeCuttingInfo loaded;
    loaded.fZStep = info.fZStep;
    QStringList notices;
    ASSERT_TRUE(LoadWorkArea(strFile, loaded, notices));
    EXPECT_TRUE(notices.isEmpty());
    CFields back(in["loaded_from_xml"], "loaded_from_xml");
    back.PassOver({"button_texts"});
    ExpectSame(back["work_area"], PointArray(loaded.stWorkArea, 2), 0.0, "work area");
    ExpectShapes(back["shapes"], loaded);
    if (in.Has("expected_gcode_of_the_loaded_file")) ExpectShapeProgram(c, loaded, iFreeLine, ".fromxml.txt");
}
}   // namespace

void RunShapes(const stCase& c)
{
    CFields in(c.Json(".json"), "case");
    Configure(in["config"].toObject());
    if (c.strName.startsWith("read_")) return ReadWorkArea(c, in);
    stShapeCuttingInfo info;
    info.fZStep = in["z_step"].toDouble();
    info.stWorkArea = PointFrom(in["work_area"]);
    const QJsonValue shapes = in["shapes"];
    for (const QJsonValue& shape : shapes.toArray()) info.lstShapes.push_back(ShapeFrom(shape));
    ExpectShapes(shapes, info);
    const int iFreeLine = in["gcode_free_line"].toInt();
    ExpectShapeProgram(c, info, iFreeLine, ".txt");
    SaveAndLoadWorkArea(c, in, info, iFreeLine);

    CVirtualTime time;
    CMoveSpy app;
    app.BeginMotion({});
    app.m_pShapeCuttingInfo = &info;
    app.CutShapes();
    ExpectSame(c.Json(".moves.json"), app.Calls(), 1e-7, "moves");
    EXPECT_EQ(app.TakeErrors().join('|').toStdString(), "");
    in.PassOver({"expected_gcode", "expected_moves", "expected_moves_of_ideal_axes",
                 "expected_gcode_of_the_loaded_file"});   // names of its files
}

// ---- Carvings -------------------------------------------------------------------------------------------------------

namespace {
CRecord Members(stImgCarvingInfo& info)
{
    CRecord record;
    record("fLength", info.fLength)("fWidth", info.fWidth)("fDepth", info.fDepth)("iCarvingType", info.iCarvingType);
    record("iStartRow", info.iStartRow)("fXStep", info.fXStep)("fYStep", info.fYStep)("fZStep", info.fZStep);
    record("iRows", info.iRows)("iCols", info.iCols)("iToolPixels", info.iToolPixels);
    return record("iXStepPixels", info.iXStepPixels)("iYStepPixels", info.iYStepPixels);
}
QJsonArray GridSeen(const stImgCarvingInfo& info)
{
    QJsonArray grid;
    for (int row = 0; row < info.iRows; ++row) {
        QJsonArray values;
        for (int col = 0; col < info.iCols; ++col) values.append(info.ppZMap[row][col]);
        grid.append(values);
    }
    return grid;
}
}   // namespace

void RunCarving(const stCase& c)
{
    CFields in(c.Json(".json"), "case");
    Configure(in["config"].toObject());
    AppConfig::m_strLastFolderPath = in["folder"].toString();
    const QString strPicture = CCases::Folder(c.strKind) + '/' + in["image"].toString();
    const QJsonValue size = in["size"], before = in["job_before"], after = in["job_after"];
    const QJsonValue grid = in["grid_of_last_pass"];
    // Cut, and written as a program: both from the same job.
    for (const bool bCut : {true, false}) {
        CVirtualTime time;
        CMoveSpy app;
        QString strWhy, strNotice;
        app.m_stImgCarvingData.pImage = LoadCarvingImage(strPicture, strWhy, strNotice);
        ASSERT_TRUE(app.m_stImgCarvingData.pImage) << strWhy.toStdString();
        const QImage& image = *app.m_stImgCarvingData.pImage;
        EXPECT_EQ(size, (QJsonArray{image.width(), image.height()}));
        stImgCarvingInfo& info = *app.m_stImgCarvingData.pInfo;
        Members(info).Take({before, "job_before"});
        const QString strFile = c.strHome + "/job.txt";
        if (bCut) {
            app.BeginMotion({});
            app.RunImgCarving();
            ExpectSame(c.Json(".moves.json"), app.Calls(), 1e-7, "moves");
            EXPECT_EQ(app.TakeErrors().join('|').toStdString(), "");
        } else {
            WriteAll(strFile, QByteArray(100000, 'x'));
            EXPECT_TRUE(app.CreateGCodeFromImage(strFile));
            ExpectProgram(strFile, c.Bytes(".txt"), in["gcode_free_line"].toInt());
        }
        ExpectSame(after, Members(info).Seen(), 0.0, "job_after");
        ExpectSame(grid, GridSeen(info), 1e-12, "grid_of_last_pass");
    }
    in.PassOver({"expected_gcode", "expected_moves", "expected_moves_of_ideal_axes"});
}
