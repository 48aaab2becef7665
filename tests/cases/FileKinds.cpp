#include "cases/Cases.h"
#include "common/Paths.h"
#include "config/AppConfig.h"
#include "config/SettingsTable.h"
#include "dxf/DxfReader.h"
#include "dxf/DxfToGCode.h"
#include "gcode/GCodeStore.h"
#include "shapes/PictureTrace.h"
#include "shapes/Pocket.h"
#include "shapes/ShapeJob.h"
#include "support/Files.h"
#include "zprofile/ZProfileFile.h"

#include <QDir>
#include <QImage>
#include <QJsonDocument>

#include <iostream>
#include <sstream>
#include <stdexcept>

// What is read from files and written to them: configurations, programs, drawings, Z-profiles, pictures.

// ---- Configuration --------------------------------------------------------------------------------------------------

namespace {
// One member of AppConfig as its settings list it: "name", or elements by their index.
QJsonValue Member(const QMap<QString, QString>& settings, const QString& strName, const QJsonValue& like)
{
    if (like.isArray()) {
        QJsonArray array;
        for (qsizetype n = 0; settings.contains(QStringLiteral("%1[%2]").arg(strName).arg(n)); ++n)
            array.append(Member(settings, QStringLiteral("%1[%2]").arg(strName).arg(n), like[n]));
        return array;
    }
    if (like.isObject()) {
        QJsonObject map;
        for (const QString& strKey : like.toObject().keys())
            map[strKey] = Member(settings, QStringLiteral("%1[%2]").arg(strName, strKey), like[strKey]);
        EXPECT_EQ(settings.keys().filter(strName + '[').size(), map.size()) << strName.toStdString();
        return map;
    }
    const auto found = settings.find(strName);
    if (found == settings.end()) return QJsonValue::Undefined;
    if (like.isBool()) return *found == "1";
    return like.isString() ? QJsonValue(*found) : QJsonValue(found->toDouble());
}
}   // namespace

void RunConfig(const stCase& c)
{
    CFields in(c.Json(".json"), "case");
    const QString strPlace = CPaths::Map(CONFIG_FILE);
    QByteArray left;
    if (!in["file"].isNull()) WriteAll(strPlace, left = c.Bytes(".dat"));
    EXPECT_EQ(QJsonValue(AppConfig::LoadConfig(CONFIG_FILE)), in["returns"]);
    QMap<QString, QString> settings;
    for (const QString& strLine : CSettingsTable::List())
        settings[strLine.section('=', 0, 0)] = strLine.section('=', 1);
    const QJsonObject members = in["members"].toObject();
    QJsonObject seen;
    for (const QString& strName : members.keys()) seen[strName] = Member(settings, strName, members[strName]);
    ExpectSame(members, seen, 0.0, "members");
    for (const char* szKey : {"created_at_path", "config_file_after"})
        if (in.Has(szKey)) left = CCases::Bytes(c.strKind, in[szKey].toString());
    EXPECT_EQ(ReadAll(strPlace).toHex(), left.toHex());
}

// ---- Programs -------------------------------------------------------------------------------------------------------

namespace {
QString Latin1(const std::string& str)
{
    return QString::fromLatin1(str.data(), qsizetype(str.size()));
}
}   // namespace

void RunCompiler(const stCase& c)
{
    if (c.strName == "save_names") {
        for (const QJsonValue& pair : c.Json(".json").toArray())
            EXPECT_EQ(CGCodeStore::SaveFileName(pair[0].toString()).toStdString(), pair[1].toString().toStdString());
        return;
    }
    CFields in(c.Json(".json"), "case");
    CFields config(in["config"], "config");
    WriteToolFiles(config);
    Configure(config.Rest());
    QByteArray saved = c.Bytes(".ngc");
    CGCodeStore::LoadGCode(c.Path(".ngc"), nullptr);
    CGCodeStore::CompileGCode(nullptr);

    if (in.Has("saved")) saved = CCases::Bytes(c.strKind, in["saved"].toString());
    if (!saved.isEmpty() && !saved.endsWith('\n')) saved += '\n';
    EXPECT_TRUE(CGCodeStore::WriteProgram(c.strHome + "/saved.ngc"));
    EXPECT_EQ(ReadAll(c.strHome + "/saved.ngc").toStdString(), saved.toStdString());
    QJsonObject errors;
    for (const auto& [uLine, strText] : CGCodeStore::m_CompilationErrors)
        errors[QString::number(uLine)] = Latin1(strText).replace(WORKING_FOLDER, "{WORKING_FOLDER}");
    EXPECT_EQ(CGCodeStore::m_lstOfGCodeLines.size(), CGCodeStore::m_lstOfGCodeCmds.size());
    ExpectSame(in.Rest(),
               QJsonObject{{"tokens", ArrayOf(CGCodeStore::m_lstOfGCodeCmds,
                                              [](const GCodeTokens& line) { return ArrayOf(line, Latin1); })},
                           {"errors", errors},
                           {"error_count", errors.size()},
                           {"plane_after", int(AppConfig::m_PlaneSel)}},
               0.0);
}

// ---- Drawings -------------------------------------------------------------------------------------------------------

namespace {
// What is said on the error stream while it lives.
struct stToldErrors
{
    std::ostringstream told;
    std::streambuf* const pBefore = std::cerr.rdbuf(told.rdbuf());
    ~stToldErrors() { std::cerr.rdbuf(pBefore); }
};
QJsonValue Converted(const stDXF2GCode& settings)
{
    try {
        return CreateGcodeFromDxf(settings);
    } catch (const std::invalid_argument&) {
        return "invalid_argument";
    } catch (const std::out_of_range&) {
        return "out_of_range";
    }
}
}   // namespace

void RunDxf(const stCase& c)
{
    CFields in(c.Json(".json"), "case"), values(in["settings"], "settings");
    const QString strBefore = QDir::currentPath(), strFile = values["strDxfFile"].toString();
    ASSERT_TRUE(QDir().mkpath(c.strHome + "/drawings") && QDir::setCurrent(c.strHome + "/drawings"));
    WriteAll(strFile, c.Bytes(".dxf"));
    stDXF2GCode settings{.strDxfFile = strFile.toStdString()};
    CRecord()("fToolDia", settings.fToolDia)("fStepDown", settings.fStepDown)("fTotalDepth", settings.fTotalDepth)(
        "fFeed", settings.fFeed)("fZSafe", settings.fZSafe)
        .Take(std::move(values));

    stToldErrors errors;
    QJsonObject seen{{"returns", Converted(settings)}, {"stderr", QString::fromStdString(errors.told.str())}};
    QStringList lstFiles{strFile};
    const QString strOutput = in["output_name"].toString();
    if (const QJsonValue file = in["expected_file"]; !file.isNull()) {
        EXPECT_EQ(ReadAll(strOutput).toStdString(), CCases::Bytes(c.strKind, file.toString()).toStdString());
        lstFiles.append(strOutput);
    }
    lstFiles.sort();
    EXPECT_EQ(QDir().entryList(QDir::Files | QDir::Hidden, QDir::Name), lstFiles) << "and nothing else is left";
    if (in.Has("throws")) {
        seen["throws"] = "std::" + seen["returns"].toString();
    } else {
        std::istringstream stream(c.Bytes(".dxf").toStdString());
        DXFReader reader(stream);
        const std::vector<RawSeg> lstSegs = parse_entities(reader);
        seen["segments"] = qint64(lstSegs.size());
        seen["paths"] = ArrayOf(group_paths(lstSegs, 1e-05), [](const Path& path) {
            return QJsonObject{{"segments", qint64(path.lstSegs.size())}, {"closed", path.bClosed}};
        });
    }
    ExpectSame(in.Rest(), seen, 0.0);
    QDir::setCurrent(strBefore);
}

// ---- Z-profiles -----------------------------------------------------------------------------------------------------

void RunZFile(const stCase& c)
{
    CFields in(c.Json(".json"), "case");
    const QJsonValue grid = in["grid"], back = in["reads_back_as"];
    auto& lstPoints = AppConfig::m_ZProfileInfo.lstPoints;
    if (!back.isUndefined()) {
        lstPoints = GridFrom(grid);
        ASSERT_TRUE(SaveZProfile(c.strHome + "/saved.txt"));
        EXPECT_EQ(ReadAll(c.strHome + "/saved.txt").toStdString(), c.Bytes(".txt").toStdString());
    }
    lstPoints = {{{9, 9, 9}}};
    EXPECT_EQ(LoadZProfile(c.Path(".txt")), !grid.isNull());
    const QJsonValue expected = back.isUndefined() ? grid : back;
    ExpectSame(expected.isNull() ? QJsonArray() : expected, GridArray(lstPoints, 3), 0.0, "grid");
}

// ---- Pictures -------------------------------------------------------------------------------------------------------

namespace {
void MakePocket(CFields& in)
{
    const ShapePath outline = PointsFrom(in["outline"]);
    const QJsonValue size = in["image"];
    const stDisplayScale scale{QSize(size[0].toInt(), size[1].toInt()), in["margin"].toInt(), in["scale"].toDouble()};
    const QJsonArray rings = GridArray(MakePocketRings(outline, scale, in["end_mill"].toDouble()), 2);
    in.PassOver({"vertices"});   // of the screen, in the outline once more
    ExpectSame(in.Rest(), QJsonObject{{"rings", rings}, {"ring_count", rings.size()}}, 0.0);
}
}   // namespace

void RunTracing(const stCase& c)
{
    CFields in(c.Json(".json"), "case");
    in.PassOver({"found"});   // a text of the screen
    if (c.strName.startsWith("pocket")) return MakePocket(in);
    QImage image(c.Path(".png"));
    ASSERT_EQ(image.format(), QImage::Format_Grayscale8);
    stPictureToTrace picture;
    picture.img = cv::Mat(image.height(), image.width(), CV_8UC1, image.bits(), size_t(image.bytesPerLine()));
    double fDepth = 0.0;
    CRecord()("offset", picture.stImgOffset)("threshold", picture.uThreshold)("min_vertices", picture.uMinVertices)(
        "max_vertices", picture.uMaxVertices)("length", picture.fShapeLength)("width", picture.fShapeWidth)("depth",
                                                                                                            fDepth)
        .Take({in["settings"], "settings"});
    CShapeJob job;
    job.BeginAdding();
    for (ShapePath& path : TracePicture(picture))
        job.AddPolygon(c.strName + QStringLiteral("_%1").arg(job.Count()), std::move(path));
    job.SetAddedDepth(fDepth);
    const QJsonArray polygons = ArrayOf(job.Added(), [](const stEngShape& shape) {
        stPolygon& polygon = *shape.pPolygon;
        QJsonObject seen =
            CRecord()("name", polygon.strShapeName)("depth", polygon.fDepth)("hole", polygon.bHole).Seen();
        seen["vertices"] = PointsArray(polygon.lstVertices, 2);
        return seen;
    });
    ExpectSame(in["polygons"], polygons, 0.0, "polygons");
}
