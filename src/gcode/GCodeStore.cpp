#include "gcode/GCodeStore.h"

#include "common/OperatorScreen.h"
#include "common/Paths.h"
#include "gcode/GCodeCompiler.h"

#include <QFile>
#include <QObject>
#include <QSaveFile>
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

namespace {
// How many lines a file will have, at least one; 0 where it cannot be read twice. Half of the time of a load is the
// computer finding memory, and vectors that grow by doubling take a third more of it.
size_t CountLines(QFile& file)
{
    if (file.isSequential()) return 0;
    size_t uCount = 1;
    std::vector<char> buffer(1 << 16);
    for (qint64 lRead; (lRead = file.read(buffer.data(), qint64(buffer.size()))) > 0;)
        uCount += static_cast<size_t>(std::count(buffer.begin(), buffer.begin() + lRead, '\n'));
    file.seek(0);
    return uCount;
}

template <class T> void AppendAll(std::vector<T>& lst, std::vector<T>& more)
{
    if (lst.empty()) return lst.swap(more);
    lst.insert(lst.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
}

// Puts the lines of a tool-change file in the program's place while it lives.
class CProgramExchange
{
public:
    explicit CProgramExchange(GCodeProgram& other) : m_Other(other)
    {
        CGCodeStore::m_bProgramExchanged = true;
        CGCodeStore::m_lstOfGCodeCmds.swap(m_Other);
        CGCodeStore::m_bToolChgCompiling = true;
    }
    ~CProgramExchange()
    {
        CGCodeStore::m_bToolChgCompiling = false;
        CGCodeStore::m_lstOfGCodeCmds.swap(m_Other);
        CGCodeStore::m_bProgramExchanged = false;
    }
    CProgramExchange(const CProgramExchange&) = delete;
    CProgramExchange& operator=(const CProgramExchange&) = delete;

private:
    GCodeProgram& m_Other;
};
}   // namespace

void CGCodeStore::LoadGCode(QString strFile, QObject* notify)
{
    QFile file(strFile);
    if (!file.open(QIODevice::ReadOnly)) return;   // with the flag up: wanted, no further load is started
    std::vector<QString> lstLines;
    GCodeProgram lstCmds;
    QTextStream stream(&file);
    const size_t uLines = CountLines(file);
    lstLines.reserve(uLines);
    lstCmds.reserve(uLines);
    QString strLine;   // read into one buffer and copied: readLine's own strings have twice the room that they need
    while (stream.readLineInto(&strLine)) {
        lstLines.emplace_back(strLine.constData(), strLine.size());
        lstCmds.push_back(Parse_GCode_Line(strLine));
    }
    if (file.error() != QFileDevice::NoError) {   // half a program must not run
        COperatorScreen::Get().AddLogMsg(QStringLiteral("G-Code File not readable to its end: %1").arg(strFile),
                                         MSG_ERROR);
        lstLines.clear();
        lstCmds.clear();
    }
    file.close();
    if (!m_lstOfGCodeLines.empty()) {
        m_lstOfGCodeLines.reserve(m_lstOfGCodeLines.size() + lstLines.size());
        m_lstOfGCodeCmds.reserve(m_lstOfGCodeCmds.size() + lstCmds.size());
    }
    AppendAll(m_lstOfGCodeLines, lstLines);   // from here on nothing fails: text and tokens stay in step
    AppendAll(m_lstOfGCodeCmds, lstCmds);
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

void CGCodeStore::CompileToolFile(CGCodeCompiler& compiler)
{
    if (m_bToolChgCompiling) return compiler.Error("Tool Select, 'T', Command must not exist in ATC file,");
    const QString strPath = WORKING_FOLDER + QLatin1Char('/') +
                            QString::fromLatin1(compiler.Token().data(), qsizetype(compiler.Token().size())) +
                            QStringLiteral(".txt");
    QFile file(CPaths::Map(strPath));
    if (!file.exists())
        return compiler.Error("No ATC commands found. Please check the file, " + strPath.toStdString() + ", exists?");
    if (!file.open(QIODevice::ReadOnly)) return compiler.Error("Unable to open ATC File," + strPath.toStdString());
    GCodeProgram toolProgram;
    QTextStream stream(&file);
    while (!stream.atEnd()) toolProgram.push_back(Parse_GCode_Line(stream.readLine()));

    const CProgramExchange exchange(toolProgram);
    CompileGCode(nullptr);   // its errors go under its own line numbers into the same map, and the flag falls: wanted
}

QString CGCodeStore::SaveFileName(const QString& strName)
{
    const qsizetype iFirst = strName.lastIndexOf(QLatin1Char('/')) + 1;
    // A point at the start of the name opens no extension.
    return strName.indexOf(QLatin1Char('.'), iFirst + 1) < 0 ? strName + QStringLiteral(".ncc") : strName;
}

bool CGCodeStore::WriteProgram(const QString& strPath, bool* pOpened)
{
    QSaveFile file(strPath);
    const bool bOpened = file.open(QIODevice::WriteOnly);
    if (pOpened) *pOpened = bOpened;
    if (!bOpened) return false;
    for (const QString& strLine : m_lstOfGCodeLines) {
        const QByteArray line = strLine.toUtf8() + '\n';
        if (file.write(line) != line.size()) return false;
    }
    // A commit does not notice that the buffer could not be emptied.
    return file.flush() && file.commit();
}

void CGCodeStore::ClearProgram()
{
    m_lstOfGCodeLines = {};
    m_lstOfGCodeCmds = {};
    m_CompilationErrors.clear();
}
