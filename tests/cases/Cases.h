#pragma once
#include "common/MachineTypes.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

// Reference cases under tests/data/<kind>: worked out apart from the system, one file or a group of files each.
class CCases
{
public:
    static QString Folder(const QString& strKind);
    // The names of a folder's files that end in strEnding, without it, in order.
    static std::vector<std::string> Names(const QString& strKind, const QString& strEnding);
    static QByteArray Bytes(const QString& strKind, const QString& strFile);
};

// One case as its kind sees it.
struct stCase
{
    QString strKind, strName;
    QString strHome;   // a folder of the test's own

    QString Path(const QString& strEnding) const { return CCases::Folder(strKind) + '/' + strName + strEnding; }
    QByteArray Bytes(const QString& strEnding) const { return CCases::Bytes(strKind, strName + strEnding); }
    QJsonValue Json(const QString& strEnding) const;
};

// What each kind does with a case of its own. Every static is as when the program starts.
using KindFn = void(const stCase&);
KindFn RunCurve, RunAxis, RunAutoMode, RunPlanning, RunArc, RunSurface, RunProgram, RunShapes, RunCarving, RunConfig,
    RunCompiler, RunDxf, RunZFile, RunTracing;

// The fields of an object of a case. Reading takes one away; what is left at the end nobody has looked at, and that
// fails the test.
class CFields
{
public:
    CFields(const QJsonValue& object, const QString& strWhere);
    ~CFields();
    CFields(const CFields&) = delete;
    CFields& operator=(const CFields&) = delete;

    bool Has(const char* szName) const { return m_Fields.contains(QLatin1String(szName)); }
    QJsonValue operator[](const char* szName) { return m_Fields.take(QLatin1String(szName)); }
    // For the reader of the case, or held by another of its fields.
    void PassOver(std::initializer_list<const char*> lstNames);
    QJsonObject Rest() { return std::exchange(m_Fields, {}); }

private:
    QJsonObject m_Fields;
    const QString m_strWhere;
};

// Members by their names in a case, to be read from it and shown as it shows them.
class CRecord
{
public:
    template <class T> CRecord& operator()(const char* szName, T& member)
    {
        m_lstMembers.push_back({szName, [&](const QJsonValue& value) { Read(value, member); },
                                [&]() -> QJsonValue {
                                    if constexpr (std::is_same_v<T, stFloatPoint>)
                                        return QJsonArray{member.x, member.y};
                                    else if constexpr (std::is_arithmetic_v<T> && !std::is_same_v<T, bool>)
                                        return double(member);
                                    else
                                        return member;
                                }});
        return *this;
    }
    void Take(CFields&& fields) const
    {
        for (const auto& member : m_lstMembers) member.fnRead(fields[member.szName]);
    }
    QJsonObject Seen() const
    {
        QJsonObject seen;
        for (const auto& member : m_lstMembers) seen[QLatin1String(member.szName)] = member.fnShow();
        return seen;
    }

private:
    static void Read(const QJsonValue& value, stFloatPoint& pos) { pos = {value[0].toDouble(), value[1].toDouble()}; }
    static void Read(const QJsonValue& value, QString& str) { str = value.toString(); }
    static void Read(const QJsonValue& value, bool& b) { b = value.toBool(); }
    template <class T> static void Read(const QJsonValue& value, T& number)
    {
        number = static_cast<T>(value.toDouble());
    }
    struct stMember
    {
        const char* szName;
        std::function<void(const QJsonValue&)> fnRead;
        std::function<QJsonValue()> fnShow;
    };
    std::vector<stMember> m_lstMembers;
};

// The tool-change files that a configuration gives: name to text; and names of some that nobody can read.
void WriteToolFiles(CFields& config);
// The settings that a case gives: members of AppConfig by their names, or the short ones of programs; one value for an
// array stands for all its elements. The pins of the board are applied.
void Configure(QJsonObject settings);

// All that is expected, in what is: prints the first difference with its path. Numbers within fTolerance, relative from
// 1 on. Where an array is held against an object, that is its summary: {"count", "all"}, or {"count", "first", "last",
// "every_100th", "fnv1a64"}, the hash over one line an item.
void ExpectSame(const QJsonValue& expected, const QJsonValue& actual, double fTolerance,
                const QString& strWhere = QString());
// Each step in turn, with what fnDo sees of it, against those expected.
void ExpectSteps(const QJsonValue& steps, const QJsonValue& expected, double fTolerance,
                 const std::function<QJsonObject(CFields& step)>& fnDo);
// An array whose numbers have three decimals in the lines of the hash.
QJsonObject Floats(const QJsonArray& array);

template <class List, class Fn> QJsonArray ArrayOf(const List& lst, Fn&& fnItem)
{
    QJsonArray array;
    for (const auto& item : lst) array.append(fnItem(item));
    return array;
}
QJsonArray PointArray(const stFloatPoint& pos, int iAxes = 3);
QJsonArray PointsArray(const std::vector<stFloatPoint>& path, int iAxes);
QJsonArray GridArray(const std::vector<std::vector<stFloatPoint>>& grid, int iAxes);
stFloatPoint PointFrom(const QJsonValue& values);
std::vector<stFloatPoint> PointsFrom(const QJsonValue& path);
std::vector<std::vector<stFloatPoint>> GridFrom(const QJsonValue& rows);
