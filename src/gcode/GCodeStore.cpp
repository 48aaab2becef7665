#include "gcode/GCodeStore.h"

#include "common/FileWriter.h"
#include "common/OperatorScreen.h"
#include "common/Paths.h"
#include "gcode/GCodeCompiler.h"
#include "gcode/PlainProgram.h"

#include <QFile>
#include <QObject>
#include <QTextStream>

#include <algorithm>
#include <iterator>
#include <utility>

std::vector<QString> CGCodeStore::m_lstOfGCodeLines;
GCodeProgram CGCodeStore::m_lstOfGCodeCmds;
std::map<quint32, std::string> CGCodeStore::m_CompilationErrors;
CShared<bool> CGCodeStore::m_bGCodeLoading = false;
CShared<bool> CGCodeStore::m_bGCodeCompiling = false;
CShared<bool> CGCodeStore::m_bToolChgCompiling = false;
CShared<bool> CGCodeStore::m_bProgramExchanged = false;
CShared<bool> CGCodeStore::m_bLoadBroke = false;

namespace {
// How many lines a file will have at most; 0 where it cannot be read twice. Half of the time of a load is the computer
// finding memory, and vectors that grow by doubling take a third more of it. False: it could not be read to its end.
bool CountLines(QFile& file, size_t& uCount)
{
    uCount = 0;
    if (file.isSequential()) return true;
    std::vector<char> buffer(1 << 16);
    qint64 lRead = 0;
    for (uCount = 1; (lRead = file.read(buffer.data(), qint64(buffer.size()))) > 0;)
        uCount += static_cast<size_t>(std::count(buffer.begin(), buffer.begin() + lRead, '\n'));
    return file.seek(0) && lRead == 0;
}

// Each line of a text file, as QTextStream::readLine gives it until atEnd. False: the file could not be read to its
// end, which atEnd alone would wait for without end.
template <class Fn> bool ReadLines(QFile& file, Fn&& fnLine)
{
    QTextStream stream(&file);
    QString strLine;   // one buffer for all: readLine's own strings have twice the room that they need
    while (!stream.atEnd()) {
        if (!stream.readLineInto(&strLine) && file.error() != QFileDevice::NoError) return false;
        fnLine(strLine);
    }
    return file.error() == QFileDevice::NoError;
}

template <class T> void AppendAll(std::vector<T>& lst, std::vector<T>& more)
{
    if (lst.empty()) return lst.swap(more);
    lst.insert(lst.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}
}   // namespace

// Behind what the store holds. Room first: once the first line is in, nothing fails, and text and tokens stay in step.
static void Append(std::vector<QString>& lstLines, GCodeProgram& lstCmds)
{
    if (!CGCodeStore::m_lstOfGCodeLines.empty()) {
        CGCodeStore::m_lstOfGCodeLines.reserve(CGCodeStore::m_lstOfGCodeLines.size() + lstLines.size());
        CGCodeStore::m_lstOfGCodeCmds.reserve(CGCodeStore::m_lstOfGCodeCmds.size() + lstCmds.size());
    }
    AppendAll(CGCodeStore::m_lstOfGCodeLines, lstLines);
    AppendAll(CGCodeStore::m_lstOfGCodeCmds, lstCmds);
}

CProgramExchange::CProgramExchange(GCodeProgram& other) : m_Other(other)
{
    CGCodeStore::m_bProgramExchanged = true;
    CGCodeStore::m_lstOfGCodeCmds.swap(m_Other);
    CGCodeStore::m_bToolChgCompiling = true;
}

CProgramExchange::~CProgramExchange()
{
    CGCodeStore::m_bToolChgCompiling = false;
    CGCodeStore::m_lstOfGCodeCmds.swap(m_Other);
    CGCodeStore::m_bProgramExchanged = false;
}

void CGCodeStore::LoadGCode(QString strFile, QObject* notify)
{
    m_bLoadBroke = true;
    QFile file(strFile);
    if (!file.open(QIODevice::ReadOnly)) return;   // with the flag up: wanted, no further load is started
    std::vector<QString> lstLines;
    GCodeProgram lstCmds;
    const ePlainRead eRead = ReadPlainProgram(file, lstLines, lstCmds);
    bool bWhole = eRead == READ_WHOLE;
    if (eRead == READ_NOT_PLAIN) {
        size_t uLines = 0;
        bWhole = CountLines(file, uLines);
        lstLines.reserve(uLines);
        lstCmds.reserve(uLines);
        bWhole = bWhole && ReadLines(file, [&](const QString& strLine) {
                     lstLines.emplace_back(strLine.constData(), strLine.size());
                     lstCmds.push_back(Parse_GCode_Line(strLine));
                 });
    }
    file.close();
    if (bWhole)
        Append(lstLines, lstCmds);
    else   // half a program must not run
        COperatorScreen::Get().AddLogMsg(QStringLiteral("G-Code File not readable to its end: %1").arg(strFile),
                                         MSG_ERROR);
    m_bLoadBroke = !bWhole;
    m_bGCodeLoading = false;
    if (notify) QMetaObject::invokeMethod(notify, "GCodeLoadComplete");
}

void CGCodeStore::CompileGCode(QObject* notify)
{
    CGCodeCompiler compiler(m_lstOfGCodeCmds, m_CompilationErrors, CompileToolFile);
    if (!compiler.Walk()) return;   // with the flag up: wanted, the failure is no completed compilation
    m_bGCodeCompiling = false;
    if (notify) QMetaObject::invokeMethod(notify, "GCodeCompilationComplete");
}

QString CGCodeStore::ToolFile(const std::string& strTool)
{
    return WORKING_FOLDER + QLatin1Char('/') + QString::fromLatin1(strTool.data(), qsizetype(strTool.size())) +
           QStringLiteral(".txt");
}

CGCodeStore::eToolFile CGCodeStore::ReadToolFile(const QString& strPath, GCodeTokens (*fnTokenize)(const QString&),
                                                 GCodeProgram& program)
{
    program.clear();
    QFile file(CPaths::Map(strPath));
    if (!file.exists()) return eToolFile::MISSING;
    GCodeProgram lines;
    size_t uLines = 0;   // counting them sees a file that cannot be read at all, which looks like an empty one
    if (!file.open(QIODevice::ReadOnly) || !CountLines(file, uLines) ||
        !ReadLines(file, [&](const QString& strLine) { lines.push_back(fnTokenize(strLine)); }))
        return eToolFile::UNREADABLE;
    program.swap(lines);
    return eToolFile::READ;
}

void CGCodeStore::CompileToolFile(CGCodeCompiler& compiler)
{
    if (m_bToolChgCompiling) return compiler.Error("Tool Select, 'T', Command must not exist in ATC file,");
    const QString strPath = ToolFile(compiler.Token());
    GCodeProgram toolProgram;
    switch (ReadToolFile(strPath, Parse_GCode_Line, toolProgram)) {
    case eToolFile::READ: break;
    case eToolFile::MISSING:
        return compiler.Error("No ATC commands found. Please check the file, " + strPath.toStdString() + ", exists?");
    case eToolFile::UNREADABLE: return compiler.Error("Unable to open ATC File," + strPath.toStdString());
    }
    const CProgramExchange exchange(toolProgram);
    CompileGCode(nullptr);   // its errors go under its own line numbers into the same map, and the flag falls: wanted
}

QString CGCodeStore::WhyOneLine()
{
    if (m_lstOfGCodeLines.size() != 1 || !m_lstOfGCodeLines[0].contains(QLatin1Char('\r'))) return {};
    return QStringLiteral("The file has no line ends, only carriage returns: it is one line");
}

QString CGCodeStore::SaveFileName(const QString& strName)
{
    const qsizetype iFirst = strName.lastIndexOf(QLatin1Char('/')) + 1;
    // A point at the start of the name opens no extension.
    return strName.indexOf(QLatin1Char('.'), iFirst + 1) < 0 ? strName + QStringLiteral(".ncc") : strName;
}

bool CGCodeStore::WriteProgram(const QString& strPath, bool* pOpened)
{
    CFileWriter file(strPath);
    const bool bOpened = file.Open();
    if (pOpened) *pOpened = bOpened;
    if (!bOpened) return false;
    for (const QString& strLine : m_lstOfGCodeLines) {
        const QByteArray line = strLine.toUtf8() + '\n';
        if (file.write(line) != line.size()) return false;
    }
    return file.Commit();
}
