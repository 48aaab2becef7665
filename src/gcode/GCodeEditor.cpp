#include "gcode/GCodeEditor.h"

#include "gcode/GCodeStore.h"

#include <QStringList>
#include <QtConcurrent>

#include <algorithm>
#include <iterator>
#include <memory>
#include <tuple>
#include <utility>

namespace {
using Store = CGCodeStore;

size_t At(qint32 iLine)
{
    return static_cast<size_t>(iLine);
}

GCodeTokens SplitAtBlanks(const QString& strText)
{
    GCodeTokens tokens;
    for (const QString& strPart : strText.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        std::string strToken;
        for (const QChar c : strPart) strToken += static_cast<char>(c.unicode() & 0xff);
        tokens.push_back(std::move(strToken));
    }
    return tokens;
}

// Takes the content of containers of the store and frees it on the pool, not where the last copy of the task dies.
template <class... T> QFuture<void> FreeOnPool(T&... content)
{
    const auto pHeld = std::make_shared<std::tuple<T...>>(std::exchange(content, T())...);
    return QtConcurrent::run([pHeld] { *pHeld = {}; });
}
}   // namespace

qint32 CGCodeEditor::LineCount()
{
    // While a load publishes its lines the store belongs to its thread.
    return Store::m_bGCodeLoading ? 0 : static_cast<qint32>(Store::m_lstOfGCodeLines.size());
}

CGCodeEditor::stRows CGCodeEditor::RowsAt(qint32 iPlace)
{
    const qint32 iCount = LineCount();
    const qint32 iFirst = std::max(0, std::min(iPlace, iCount - ROWS));
    return {iFirst, std::min(iFirst + ROWS, iCount)};
}

qint32 CGCodeEditor::PlaceWith(qint32 iLine, const stRows& rows)
{
    return rows.Holds(iLine) ? rows.iFirst : std::max(0, iLine - 1);
}

QString CGCodeEditor::Field(qint32 iLine)
{
    return QStringLiteral("[%1]").arg(iLine) + Store::m_lstOfGCodeLines[At(iLine)];
}

QString CGCodeEditor::TextOf(const QString& strField)
{
    return strField.mid(strField.indexOf(QLatin1Char(']')) + 1);
}

std::optional<qint32> CGCodeEditor::NumberOf(const QString& strField)
{
    if (!strField.startsWith(QLatin1Char('['))) return std::nullopt;
    bool bNumber = false;
    const qint32 iLine = strField.mid(1, strField.indexOf(QLatin1Char(']')) - 1).toInt(&bNumber);
    return bNumber ? std::optional(iLine) : std::nullopt;
}

void CGCodeEditor::Update(qint32 iLine, const QString& strText)
{
    Store::m_lstOfGCodeLines[At(iLine)] = strText;
    Store::m_lstOfGCodeCmds[At(iLine)] = Store::Parse_GCode_Line(strText);
}

void CGCodeEditor::InsertBehind(qint32 iLine, const QString& strText)
{
    const std::ptrdiff_t iAt = iLine + 1;
    Store::m_lstOfGCodeLines.insert(Store::m_lstOfGCodeLines.begin() + iAt, strText);
    Store::m_lstOfGCodeCmds.insert(Store::m_lstOfGCodeCmds.begin() + iAt, SplitAtBlanks(strText));
    Recompile();
}

void CGCodeEditor::Delete(qint32 iLine)
{
    Store::m_lstOfGCodeLines.erase(Store::m_lstOfGCodeLines.begin() + iLine);
    Store::m_lstOfGCodeCmds.erase(Store::m_lstOfGCodeCmds.begin() + iLine);
    Recompile();
}

void CGCodeEditor::Swap(qint32 iLine, qint32 iOther)
{
    std::swap(Store::m_lstOfGCodeLines[At(iLine)], Store::m_lstOfGCodeLines[At(iOther)]);
    std::swap(Store::m_lstOfGCodeCmds[At(iLine)], Store::m_lstOfGCodeCmds[At(iOther)]);
    auto& errors = Store::m_CompilationErrors;
    auto one = errors.extract(static_cast<quint32>(iLine)), other = errors.extract(static_cast<quint32>(iOther));
    const auto MoveTo = [&errors](auto& node, qint32 iTo) {
        if (!node) return;
        node.key() = static_cast<quint32>(iTo);
        errors.insert(std::move(node));
    };
    MoveTo(one, iOther);
    MoveTo(other, iLine);
}

std::optional<quint32> CGCodeEditor::FirstError()
{
    const auto& errors = Store::m_CompilationErrors;
    return errors.empty() ? std::nullopt : std::optional(errors.begin()->first);
}

std::optional<quint32> CGCodeEditor::LastError()
{
    const auto& errors = Store::m_CompilationErrors;
    return errors.empty() ? std::nullopt : std::optional(errors.rbegin()->first);
}

std::optional<quint32> CGCodeEditor::ErrorBefore(quint32 uLine)
{
    const auto& errors = Store::m_CompilationErrors;
    const auto here = errors.lower_bound(uLine);
    return here == errors.begin() ? FirstError() : std::prev(here)->first;
}

std::optional<quint32> CGCodeEditor::ErrorBehind(quint32 uLine)
{
    const auto& errors = Store::m_CompilationErrors;
    const auto next = errors.upper_bound(uLine);
    return next == errors.end() ? LastError() : next->first;
}

QString CGCodeEditor::ErrorText(quint32 uLine)
{
    const auto found = Store::m_CompilationErrors.find(uLine);
    if (found == Store::m_CompilationErrors.end()) return {};
    return QString::fromLatin1(found->second.data(), static_cast<qsizetype>(found->second.size()));
}

QFuture<void> CGCodeEditor::Clear()
{
    return FreeOnPool(Store::m_lstOfGCodeLines, Store::m_lstOfGCodeCmds, Store::m_CompilationErrors);
}

void CGCodeEditor::ClearErrors()
{
    if (!Store::m_CompilationErrors.empty()) FreeOnPool(Store::m_CompilationErrors);
}

void CGCodeEditor::Recompile()
{
    ClearErrors();
    Store::CompileGCode(nullptr);
}
