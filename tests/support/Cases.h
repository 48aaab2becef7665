#pragma once
#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <gtest/gtest.h>
#include <string>

// Reference cases under tests/data/<kind>: worked out apart from the system, one file or pair of files each.
class CCases
{
public:
    static QString Folder(const QString& strKind);
    // The names of a folder's files that end in strEnding, without it, in order.
    static std::vector<std::string> Names(const QString& strKind, const QString& strEnding);
    static QByteArray Bytes(const QString& strKind, const QString& strFile);
    static QJsonObject Json(const QString& strKind, const QString& strFile);
};

// For INSTANTIATE_TEST_SUITE_P over Names.
std::string CaseName(const testing::TestParamInfo<std::string>& param);

// Members of AppConfig by name, as a case gives those that differ from the defaults before loading; one number for an
// array of five stands for all five. Fails the test on a name that it does not know.
void ApplyConfig(const QJsonObject& cfg);

// A list of a case: {"count", "all"}, or {"count", "first", "last", "every_100th", "fnv1a64"}, the hash over one line
// an item. fnItem gives item n as the case shows it; floats in the hashed lines have three decimals.
void ExpectList(const QJsonObject& expected, size_t uCount, const std::function<QJsonValue(size_t)>& fnItem,
                const std::function<std::string(size_t)>& fnHashLine, double fTolerance, const char* szWhat);

// Numbers within fTolerance, relative from 1 on; anything else exactly. Of an object the members expected.
void ExpectNear(const QJsonValue& expected, const QJsonValue& actual, double fTolerance, const std::string& strWhere);

QJsonArray PointArray(const struct stFloatPoint& pos, int iAxes = 3);
struct stFloatPoint PointFrom(const QJsonArray& values);
