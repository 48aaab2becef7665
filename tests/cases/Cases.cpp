#include "cases/Cases.h"

#include "common/Paths.h"
#include "config/AppConfig.h"
#include "config/SettingsTable.h"
#include "support/Files.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QMap>

#include <algorithm>
#include <cmath>

// ---- Files ----------------------------------------------------------------------------------------------------------

QString CCases::Folder(const QString& strKind)
{
    return QStringLiteral(TEST_DATA_DIR "/") + strKind;
}

std::vector<std::string> CCases::Names(const QString& strKind, const QString& strEnding)
{
    std::vector<std::string> names;
    for (const QString& strFile : QDir(Folder(strKind)).entryList({'*' + strEnding}, QDir::Files, QDir::Name))
        names.push_back(strFile.chopped(strEnding.size()).toStdString());
    return names;
}

QByteArray CCases::Bytes(const QString& strKind, const QString& strFile)
{
    QFile file(Folder(strKind) + '/' + strFile);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
    return file.readAll();
}

QJsonValue stCase::Json(const QString& strEnding) const
{
    const QJsonDocument doc = QJsonDocument::fromJson(Bytes(strEnding));
    EXPECT_FALSE(doc.isNull()) << (strName + strEnding).toStdString();
    return doc.isArray() ? QJsonValue(doc.array()) : QJsonValue(doc.object());
}

CFields::CFields(const QJsonValue& object, const QString& strWhere) : m_Fields(object.toObject()), m_strWhere(strWhere)
{
    m_Fields.remove(QStringLiteral("about"));
}

CFields::~CFields()
{
    for (const QString& strKey : m_Fields.keys())
        ADD_FAILURE() << m_strWhere.toStdString() << ": nobody reads " << strKey.toStdString();
}

void CFields::PassOver(std::initializer_list<const char*> lstNames)
{
    for (const char* szName : lstNames) m_Fields.remove(QLatin1String(szName));
}

// ---- Settings -------------------------------------------------------------------------------------------------------

namespace {
QString SettingText(const QJsonValue& value)
{
    if (value.isBool()) return QString::number(int(value.toBool()));
    return value.isString() ? value.toString() : QString::number(value.toDouble(), 'g', 17);
}

void Set(const QString& strName, const QJsonValue& value)
{
    if (value.isArray()) {
        for (int n = 0; n < value.toArray().size(); ++n) Set(QStringLiteral("%1[%2]").arg(strName).arg(n), value[n]);
        return;
    }
    QString strWhy;
    EXPECT_TRUE(CSettingsTable::Set(strName + '=' + SettingText(value), strWhy)) << strWhy.toStdString();
}
}   // namespace

void WriteToolFiles(CFields& config)
{
    const QString strFolder = CPaths::Map(WORKING_FOLDER) + '/';
    const QJsonObject files = config["atc"].toObject();
    for (auto it = files.begin(); it != files.end(); ++it) WriteAll(strFolder + it.key(), it->toString().toUtf8());
    for (const QJsonValue& file : config["unreadable"].toArray())   // a folder: not even root reads it
        EXPECT_TRUE(QDir().mkpath(strFolder + file.toString()));
}

void Configure(QJsonObject settings)
{
    static const QMap<QString, QString> SHORT = {{"board", "m_eVantorCtrl"},
                                                 {"mch_type", "m_iMchType"},
                                                 {"plane", "m_PlaneSel"},
                                                 {"pulse", "m_fAxisMovPerPulse"},
                                                 {"home_sensors", "m_bHomeSensorsUsed"},
                                                 {"units", "m_eSelUnits"},
                                                 {"simulation", "m_bSimulationMode"},
                                                 {"abs_rel", "m_GCodeRunSettings.sAbsRel"},
                                                 {"state", "m_GCodeRunSettings.iState"},
                                                 {"start_line", "m_GCodeRunSettings.iCurLine"},
                                                 {"use_prgm_feed", "m_GCodeRunSettings.bUsePrgmFeed"},
                                                 {"use_prgm_spindle", "m_GCodeRunSettings.bUsePrgmSpindleSpeed"},
                                                 {"save_status", "m_GCodeRunSettings.bSaveExecStatus"},
                                                 {"manual_tool", "m_bEnlManualToolChange"},
                                                 {"auto_tool", "m_bEnlAutoToolChange"}};
    for (const QString& strName : settings.keys())
        if (SHORT.contains(strName)) settings[SHORT[strName]] = settings.take(strName);

    // Two that the board and the feeds rule: a case has them as they are when its job begins.
    const int iAxes = settings.take("m_iMchType").toInt(0);
    const QJsonValue plunge = settings.take("m_fPlungeFeed");
    const QJsonValue feedType = settings.take("m_eAxisFeedtype");   // a wrong one is a case too
    const QJsonValue board = settings.take("m_eVantorCtrl");
    Set("m_eVantorCtrl", board.isUndefined() ? int(iAxes == 5 ? VTR5_CTRL : VTR3_CTRL) : board);
    for (auto it = settings.begin(); it != settings.end(); ++it) Set(it.key(), *it);
    AppConfig::ApplyBoardPins();
    if (iAxes != 0) AppConfig::m_iMchType = iAxes;
    AppConfig::m_eAxisFeedtype = feedType.toInt(AppConfig::m_eAxisFeedtype);
    if (!plunge.isUndefined()) AppConfig::m_fPlungeFeed = plunge.toDouble();
}

// ---- Comparison -----------------------------------------------------------------------------------------------------

namespace {
// The first difference, empty: none.
class CComparison
{
public:
    explicit CComparison(double fTolerance) : m_fTolerance(fTolerance) {}

    QString Find(const QJsonValue& expected, const QJsonValue& actual, const QString& strAt) const
    {
        const bool bFloats = actual["floats"].isArray();
        const QJsonValue list = bFloats ? actual["floats"] : actual;
        QString str;
        if (expected.isObject() && list.isArray()) return InSummary(expected, list.toArray(), bFloats, strAt);
        if (expected.isArray() && list.isArray()) {
            const qsizetype iSize = std::max(expected.toArray().size(), list.toArray().size());
            for (qsizetype n = 0; n < iSize && str.isEmpty(); ++n) str = Find(expected[n], list[n], At(strAt, n));
            return str;
        }
        if (!expected.isObject() || !actual.isObject())
            return IsSame(expected, actual) ? str : Told(expected, actual, strAt);
        for (const QString& strKey : expected.toObject().keys()) {
            str = Find(expected[strKey], actual[strKey], strAt + '.' + strKey);
            if (!str.isEmpty()) return str + "\nwithin " + Text(actual).left(1000);
        }
        return str;
    }

private:
    bool IsSame(const QJsonValue& expected, const QJsonValue& actual) const
    {
        if (!expected.isDouble() || !actual.isDouble()) return expected == actual;
        const double e = expected.toDouble();
        return std::abs(e - actual.toDouble()) <= m_fTolerance * std::max(1.0, std::abs(e));
    }
    QString InSummary(const QJsonValue& expected, const QJsonArray& actual, bool bFloats, const QString& strAt) const
    {
        const qsizetype iCount = expected["count"].toInteger(-1), iLast = iCount - expected["last"].toArray().size();
        const struct
        {
            const char* szPart;
            qsizetype iFrom, iStep;
        } PARTS[] = {{"all", 0, 1}, {"first", 0, 1}, {"every_100th", 0, 100}, {"last", iLast, 1}};
        for (const auto& part : PARTS) {
            const QJsonArray items = expected[QLatin1String(part.szPart)].toArray();
            for (qsizetype n = 0, m = part.iFrom; n < items.size(); ++n, m += part.iStep)
                if (const QString str = Find(items[n], actual.at(m), At(strAt, m)); !str.isEmpty()) return str;
        }
        if (iCount != actual.size()) return Told(iCount, actual.size(), strAt + ".count");
        const QJsonValue hash = expected["fnv1a64"], is = Hash(actual, bFloats);
        return hash.isUndefined() && expected["all"].isArray() ? QString() : Find(hash, is, strAt + ".fnv1a64");
    }
    static QString Hash(const QJsonArray& list, bool bFloats)
    {
        quint64 uHash = 0xcbf29ce484222325u;
        for (const QJsonValue& item : list) {
            QStringList parts;   // by the C library: half-way cases go to the even digit, as they do in the cases
            for (const QJsonValue& part : item.isArray() ? item.toArray() : QJsonArray{item})
                parts += QString::asprintf("%.*f", bFloats ? 3 : 0, part.toDouble());
            for (const char c : parts.join(' ').toLatin1() + '\n')
                uHash = (uHash ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
        }
        return QString::number(uHash, 16).rightJustified(16, '0');
    }
    static QString At(const QString& strAt, qsizetype n) { return QStringLiteral("%1[%2]").arg(strAt).arg(n); }
    static QString Told(const QJsonValue& expected, const QJsonValue& actual, const QString& strAt)
    {
        return QStringLiteral("%1: expected %2, is %3").arg(strAt, Text(expected), Text(actual));
    }
    static QString Text(const QJsonValue& value)
    {
        const QByteArray text = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
        return value.isUndefined() ? QStringLiteral("nothing") : QString::fromUtf8(text.mid(1, text.size() - 2));
    }

    const double m_fTolerance;
};
}   // namespace

void ExpectSame(const QJsonValue& expected, const QJsonValue& actual, double fTolerance, const QString& strWhere)
{
    const QString strDifference = CComparison(fTolerance).Find(expected, actual, strWhere);
    EXPECT_TRUE(strDifference.isEmpty()) << strDifference.toStdString();
}

void ExpectSteps(const QJsonValue& steps, const QJsonValue& expected, double fTolerance,
                 const std::function<QJsonObject(CFields& step)>& fnDo)
{
    QJsonArray done;
    for (const QJsonValue& step : steps.toArray()) {
        CFields fields(step, QStringLiteral("step %1").arg(done.size()));
        QJsonObject seen = fnDo(fields);
        seen["do"] = step["do"];
        done.append(seen);
    }
    ExpectSame(expected, done, fTolerance, "step ");
}

QJsonObject Floats(const QJsonArray& array)
{
    return {{"floats", array}};
}

// ---- Points ---------------------------------------------------------------------------------------------------------

QJsonArray PointArray(const stFloatPoint& pos, int iAxes)
{
    QJsonArray values;
    for (int axis = 0; axis < iAxes; ++axis) values.append(AxisOf(pos, axis));
    return values;
}
QJsonArray PointsArray(const std::vector<stFloatPoint>& path, int iAxes)
{
    return ArrayOf(path, [iAxes](const stFloatPoint& pos) { return PointArray(pos, iAxes); });
}
QJsonArray GridArray(const std::vector<std::vector<stFloatPoint>>& grid, int iAxes)
{
    return ArrayOf(grid, [iAxes](const auto& row) { return PointsArray(row, iAxes); });
}

stFloatPoint PointFrom(const QJsonValue& values)
{
    stFloatPoint pos;
    for (int axis = 0; axis < MAX_AXES; ++axis) AxisOf(pos, axis) = values[axis].toDouble();
    return pos;
}
std::vector<stFloatPoint> PointsFrom(const QJsonValue& path)
{
    std::vector<stFloatPoint> points;
    for (const QJsonValue& point : path.toArray()) points.push_back(PointFrom(point));
    return points;
}
std::vector<std::vector<stFloatPoint>> GridFrom(const QJsonValue& rows)
{
    std::vector<std::vector<stFloatPoint>> grid;
    for (const QJsonValue& row : rows.toArray()) grid.push_back(PointsFrom(row));
    return grid;
}
