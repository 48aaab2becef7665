#include "zprofile/ZProfileFile.h"

#include "common/FileWriter.h"
#include "config/AppConfig.h"

#include <QFile>
#include <QTextStream>

#include <algorithm>

static auto& Grid()
{
    return AppConfig::m_ZProfileInfo.lstPoints;
}

bool HasZProfile()
{
    return !Grid().empty() && Grid().front().size() > 1;
}

bool EndUseOfNoZProfile()
{
    return Grid().empty() && AppConfig::m_bUseZProfile.Exchange(false);
}

QString ZProfileFileName(const QString& strName)
{
    const QString strEnding = QStringLiteral(".txt");
    return strName.endsWith(strEnding) ? strName : strName + strEnding;
}

bool SaveZProfile(const QString& strPath)
{
    QByteArray content;
    QTextStream out(&content);
    size_t uNodes = 0;
    for (const auto& row : Grid()) uNodes = std::max(uNodes, row.size());
    out << Grid().size() << '\n' << uNodes << '\n';
    for (const auto& row : Grid())
        for (size_t n = 0; n < uNodes; ++n) {
            const stFloatPoint node = row.empty() ? stFloatPoint{} : row[std::min(n, row.size() - 1)];
            out << node.x << ',' << node.y << ',' << node.z << '\n';
        }
    out.flush();
    return ReplaceFile(strPath, content);
}

static stFloatPoint ReadNode(QTextStream& in)
{
    QString strWord;
    in >> strWord;
    stFloatPoint node;
    const qsizetype iFirst = strWord.indexOf(QLatin1Char(','));
    if (iFirst < 0) return node;
    node.x = strWord.left(iFirst).toDouble();
    const qsizetype iSecond = strWord.indexOf(QLatin1Char(','), iFirst + 1);
    if (iSecond < 0) return node;
    node.y = strWord.mid(iFirst + 1, iSecond - iFirst - 1).toDouble();
    node.z = strWord.mid(iSecond + 1).toDouble();
    return node;
}

bool LoadZProfile(const QString& strPath)
{
    Grid() = {};
    QFile file(strPath);
    if (!file.open(QIODevice::ReadOnly)) return false;
    // A node takes a character at least: counts beyond the file's size are rubbish and must not eat the memory. The
    // floor keeps the zeros of a file that was cut off behind its counts.
    static constexpr qint64 LEAST_BUDGET = 65536;
    qint64 lBudget = std::max(LEAST_BUDGET, file.size());

    QTextStream in(&file);
    int iRows = 0, iNodes = 0;
    in >> iRows >> iNodes;
    for (int iRow = 0; iRow < iRows && lBudget > 0; ++iRow, --lBudget) {
        std::vector<stFloatPoint> row;
        for (int iNode = 0; iNode < iNodes && lBudget > 0; ++iNode, --lBudget) row.push_back(ReadNode(in));
        Grid().push_back(std::move(row));
    }
    return !Grid().empty();
}
