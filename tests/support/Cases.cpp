#include "support/Cases.h"

#include "config/AppConfig.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <map>

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

QJsonObject CCases::Json(const QString& strKind, const QString& strFile)
{
    const QJsonDocument doc = QJsonDocument::fromJson(Bytes(strKind, strFile));
    EXPECT_TRUE(doc.isObject()) << strFile.toStdString();
    return doc.object();
}

std::string CaseName(const testing::TestParamInfo<std::string>& param)
{
    std::string strName = "Case" + param.param;
    std::replace_if(
        strName.begin(), strName.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
    return strName;
}

namespace {
using Setter = std::function<void(const QJsonValue&)>;

template <class T> T PlainType(const CShared<T>&);
template <class T> T PlainType(const T&);

template <class T> Setter To(T& member)
{
    return [&member](const QJsonValue& v) {
        member = static_cast<decltype(PlainType(member))>(v.isBool() ? double(v.toBool()) : v.toDouble());
    };
}
template <class T, size_t N> Setter To(T (&member)[N])
{
    return [&member](const QJsonValue& v) {
        for (size_t n = 0; n < N; ++n) {
            const QJsonValue one = v.isArray() ? v.toArray().at(static_cast<int>(n)) : v;
            member[n] =
                static_cast<decltype(PlainType(member[n]))>(one.isBool() ? double(one.toBool()) : one.toDouble());
        }
    };
}

const std::map<QString, Setter>& Setters()
{
    using A = AppConfig;
#define MEMBER(name)                                                                                                   \
    {                                                                                                                  \
        QStringLiteral(#name), To(A::name)                                                                             \
    }
    static const std::map<QString, Setter> map = {MEMBER(m_iMchType),
                                                  MEMBER(m_eVantorCtrl),
                                                  MEMBER(m_bHomeSensorsUsed),
                                                  MEMBER(m_fAxisMovPerPulse),
                                                  MEMBER(m_fUserAxisFeed),
                                                  MEMBER(m_fEndMillDia),
                                                  MEMBER(m_bMultipassImgCarving),
                                                  MEMBER(m_eAxisPosDir),
                                                  MEMBER(m_fAxisAcc),
                                                  MEMBER(m_fPlungeFeed),
                                                  MEMBER(m_fAxisPosDirLimit),
                                                  MEMBER(m_fZSafePos),
                                                  MEMBER(m_fAxisWorkZero),
                                                  MEMBER(m_eSelUnits),
                                                  MEMBER(m_eAxisFeedtype),
                                                  MEMBER(m_PlaneSel),
                                                  MEMBER(m_GCodeRunSettings.sAbsRel),
                                                  MEMBER(m_GCodeRunSettings.bUsePrgmFeed),
                                                  MEMBER(m_GCodeRunSettings.fAxisStep)};
#undef MEMBER
    return map;
}

}   // namespace

void ExpectNear(const QJsonValue& expected, const QJsonValue& actual, double fTolerance, const std::string& strWhere)
{
    if (expected.isArray()) {
        const QJsonArray e = expected.toArray(), a = actual.toArray();
        ASSERT_EQ(e.size(), a.size()) << strWhere;
        for (int n = 0; n < e.size(); ++n) ExpectNear(e[n], a[n], fTolerance, strWhere);
    } else if (expected.isObject()) {
        const QJsonObject e = expected.toObject();
        for (auto it = e.begin(); it != e.end(); ++it)
            ExpectNear(it.value(), actual[it.key()], fTolerance, strWhere + " " + it.key().toStdString());
    } else if (expected.isDouble()) {
        EXPECT_NEAR(expected.toDouble(), actual.toDouble(), fTolerance * std::max(1.0, std::abs(expected.toDouble())))
            << strWhere;
    } else {
        EXPECT_EQ(expected, actual) << strWhere;
    }
}

void ApplyConfig(const QJsonObject& cfg)
{
    for (auto it = cfg.begin(); it != cfg.end(); ++it) {
        const auto found = Setters().find(it.key());
        if (found == Setters().end()) {
            ADD_FAILURE() << "unknown setting " << it.key().toStdString();
            continue;
        }
        found->second(it.value());
    }
}

void ExpectList(const QJsonObject& expected, size_t uCount, const std::function<QJsonValue(size_t)>& fnItem,
                const std::function<std::string(size_t)>& fnHashLine, double fTolerance, const char* szWhat)
{
    ASSERT_EQ(static_cast<size_t>(expected["count"].toInteger()), uCount) << szWhat;
    const auto Compare = [&](const char* szPart, const std::function<size_t(size_t)>& fnIndex) {
        const QJsonArray part = expected[QLatin1String(szPart)].toArray();
        for (int n = 0; n < part.size(); ++n) {
            const size_t uIndex = fnIndex(static_cast<size_t>(n));
            ASSERT_LT(uIndex, uCount) << szWhat;
            ExpectNear(part[n], fnItem(uIndex), fTolerance, std::string(szWhat) + " " + std::to_string(uIndex));
            if (testing::Test::HasFailure()) return;
        }
    };
    Compare("all", [](size_t n) { return n; });
    Compare("first", [](size_t n) { return n; });
    const size_t uLast = static_cast<size_t>(expected["last"].toArray().size());
    Compare("last", [&](size_t n) { return uCount - uLast + n; });
    Compare("every_100th", [](size_t n) { return 100 * n; });
    if (expected.contains("fnv1a64")) {
        quint64 uHash = 0xcbf29ce484222325u;
        for (size_t n = 0; n < uCount; ++n)
            for (const char c : fnHashLine(n) + "\n") uHash = (uHash ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
        EXPECT_EQ(expected["fnv1a64"].toString(), QString::number(uHash, 16).rightJustified(16, '0')) << szWhat;
    }
}

QJsonArray PointArray(const stFloatPoint& pos, int iAxes)
{
    QJsonArray values;
    for (int axis = 0; axis < iAxes; ++axis) values.append(AxisOf(pos, axis));
    return values;
}

stFloatPoint PointFrom(const QJsonArray& values)
{
    stFloatPoint pos;
    for (int axis = 0; axis < values.size() && axis < MAX_AXES; ++axis) AxisOf(pos, axis) = values[axis].toDouble();
    return pos;
}
