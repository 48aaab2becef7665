#include "gcode/PlainProgram.h"

#include "platform/Computer.h"

#include <QStringDecoder>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace {
// Large enough that a chunk is worth a thread, small enough for a processor's cache and for an even end.
constexpr qint64 CHUNK = 1 << 18;

class CPlainReader
{
public:
    CPlainReader(QFile& file, std::vector<QString>& lstLines, GCodeProgram& lstCmds)
        : m_iFile(file.handle()), m_lSize(file.size()), m_lstLines(lstLines), m_lstCmds(lstCmds)
    {
    }

    ePlainRead Read()
    {
        if (!SkipMark()) return m_eResult;
        const auto uChunks = static_cast<size_t>((m_lSize - m_lBegin + CHUNK - 1) / CHUNK);
        m_lstFirst.assign(uChunks + 1, 0);
        ForEachOnFreeCores(uChunks, [this](size_t n) { Count(n); });
        for (size_t n = 1; n <= uChunks; ++n) m_lstFirst[n] += m_lstFirst[n - 1];
        if (m_eResult == READ_WHOLE) {
            MakeRoom(m_lstLines, m_lstFirst.back());
            MakeRoom(m_lstCmds, m_lstFirst.back());
            ForEachOnFreeCores(uChunks, [this](size_t n) { Parse(n); });
        }
        if (m_eResult != READ_WHOLE) {
            m_lstLines = {};
            m_lstCmds = {};
        }
        return m_eResult;
    }

private:
    using Bytes = std::vector<char>;

    template <class T> static void MakeRoom(std::vector<T>& lst, size_t uCount)
    {
        lst.reserve(uCount);
        AdviseLargePages(lst.data(), uCount * sizeof(T));
        lst.resize(uCount);
    }

    // A byte-order mark: that of UTF-8 is stepped over, the others are read by those who know them.
    bool SkipMark()
    {
        Bytes head;
        if (!Load(head, 0, 4)) return false;
        const auto Starts = [&](const char* szMark) {
            const size_t uSize = std::strlen(szMark);
            return head.size() >= uSize && std::memcmp(head.data(), szMark, uSize) == 0;
        };
        if (Starts("\xef\xbb\xbf") && m_lSize > 3)
            m_lBegin = 3;
        else if (!head.empty() &&
                 (head[0] == '\0' || Starts("\xef\xbb\xbf") || Starts("\xfe\xff") || Starts("\xff\xfe")))
            m_eResult = READ_NOT_PLAIN;
        return m_eResult == READ_WHOLE;
    }

    // The bytes from lFrom to lTo behind those that are there. False: told to all by the result.
    bool Load(Bytes& bytes, qint64 lFrom, qint64 lTo)
    {
        lTo = std::min(lTo, m_lSize);
        size_t uHave = bytes.size();
        bytes.resize(uHave + static_cast<size_t>(std::max<qint64>(lTo - lFrom, 0)));
        while (uHave < bytes.size()) {
            const ssize_t lRead = pread(m_iFile, bytes.data() + uHave, bytes.size() - uHave, lFrom);
            if (lRead < 0 && errno == EINTR) continue;
            if (lRead <= 0) {
                m_eResult = READ_BROKE_OFF;
                return false;
            }
            uHave += static_cast<size_t>(lRead);
            lFrom += lRead;
        }
        return true;
    }

    // A line belongs to the chunk in which it begins: behind the file's beginning or a "\n", and before its end. So the
    // byte before a chunk is looked at too.
    qint64 Before(size_t uChunk) const { return m_lBegin + static_cast<qint64>(uChunk) * CHUNK - (uChunk > 0 ? 1 : 0); }
    qint64 To(size_t uChunk) const { return std::min(m_lBegin + static_cast<qint64>(uChunk + 1) * CHUNK, m_lSize); }

    void Count(size_t uChunk)
    {
        Bytes bytes;
        if (m_eResult != READ_WHOLE || !Load(bytes, Before(uChunk), To(uChunk) - 1)) return;
        const auto lEnds = std::count(bytes.begin(), bytes.end(), '\n');
        m_lstFirst[uChunk + 1] = static_cast<size_t>(lEnds) + (uChunk == 0 ? 1 : 0);
    }

    void Parse(size_t uChunk)
    {
        Bytes bytes;
        if (m_eResult != READ_WHOLE || !Load(bytes, Before(uChunk), To(uChunk))) return;
        size_t uBegin = 0;
        if (uChunk > 0) {
            const auto itEnd = std::find(bytes.begin(), bytes.end() - 1, '\n');
            if (itEnd == bytes.end() - 1) return;   // all of it is inside a line of another one
            uBegin = static_cast<size_t>(itEnd - bytes.begin()) + 1;
        }
        if (LoadLastLine(bytes, To(uChunk))) ParseLines(bytes, uBegin, uChunk);
    }

    // What the last line has in the chunks behind.
    bool LoadLastLine(Bytes& bytes, qint64 lEnd)
    {
        for (; lEnd < m_lSize && bytes.back() != '\n'; lEnd += CHUNK) {
            const auto lHave = static_cast<std::ptrdiff_t>(bytes.size());
            if (!Load(bytes, lEnd, lEnd + CHUNK)) return false;
            const auto it = std::find(bytes.begin() + lHave, bytes.end(), '\n');
            if (it != bytes.end()) bytes.erase(it + 1, bytes.end());
        }
        return true;
    }

    void ParseLines(const Bytes& bytes, size_t uAt, size_t uChunk)
    {
        size_t uLine = m_lstFirst[uChunk];
        for (; uAt < bytes.size() && uLine < m_lstFirst[uChunk + 1]; ++uLine) {
            const char* const szLine = bytes.data() + uAt;
            const void* pEnd = std::memchr(szLine, '\n', bytes.size() - uAt);
            const size_t uSize =
                pEnd ? static_cast<size_t>(static_cast<const char*>(pEnd) - szLine) : bytes.size() - uAt;
            if (!TakeLine({szLine, static_cast<qsizetype>(uSize)}, uLine)) {
                m_eResult = READ_NOT_PLAIN;
                return;
            }
            uAt += uSize + 1;
        }
        if (uAt < bytes.size() || uLine != m_lstFirst[uChunk + 1]) m_eResult = READ_BROKE_OFF;   // it was being written
    }

    // A line without its "\n". False: it is no UTF-8.
    bool TakeLine(QByteArrayView bytes, size_t uLine)
    {
        if (IsAscii(bytes)) {
            if (bytes.endsWith('\r')) bytes.chop(1);
            const QLatin1String line(bytes);
            m_lstLines[uLine] = line;
            m_lstCmds[uLine] = TokenizeProgramLine(line);
            return true;
        }
        // With the end of the line, which shows a character that is cut off; a mark inside the file is a character.
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
        QString strLine = decoder.decode(bytes.toByteArray() + '\n');
        if (decoder.hasError()) return false;
        strLine.chop(strLine.endsWith(QLatin1String("\r\n")) ? 2 : 1);
        m_lstCmds[uLine] = TokenizeProgramLine(strLine);
        m_lstLines[uLine] = QString(strLine.constData(), strLine.size());   // with no room to spare
        return true;
    }

    static bool IsAscii(QByteArrayView bytes)
    {
        unsigned char ucAll = 0;
        for (const char c : bytes) ucAll |= static_cast<unsigned char>(c);
        return ucAll < 0x80;
    }

    const int m_iFile;
    const qint64 m_lSize;
    qint64 m_lBegin = 0;   // behind the mark
    std::vector<QString>& m_lstLines;
    GCodeProgram& m_lstCmds;
    std::vector<size_t> m_lstFirst;   // the first line of each chunk; one more at the end
    std::atomic<ePlainRead> m_eResult = READ_WHOLE;
};
}   // namespace

ePlainRead ReadPlainProgram(QFile& file, std::vector<QString>& lstLines, GCodeProgram& lstCmds)
{
    if (file.isSequential() || file.handle() < 0 || file.size() == 0) return READ_NOT_PLAIN;
    return CPlainReader(file, lstLines, lstCmds).Read();
}
