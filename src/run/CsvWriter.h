#pragma once
#include <QFile>
#include <QString>

#include <charconv>
#include <cstdlib>
#include <string>

// Streams rows of comma-separated numbers to a file. Cells are put one after the other; EndRow ends a line.
// One thread at a time. A failed write is kept, and told by Close.
class CCsvWriter
{
public:
    // False: the file cannot be written.
    bool Open(const QString& strPath, const std::string& strHeader)
    {
        m_File.setFileName(strPath);
        if (!m_File.open(QIODevice::WriteOnly | QIODevice::Truncate)) return false;
        m_strBuffer.reserve(FLUSH_AT + 4096);
        m_strBuffer = strHeader + '\n';
        return true;
    }
    bool IsOpen() const { return m_File.isOpen(); }

    void Text(const char* szText)
    {
        Separate();
        m_strBuffer += szText;
    }
    void Empty() { Separate(); }
    void Number(qint64 lValue)
    {
        Separate();
        Digits(lValue);
    }
    // Position units as mm with four decimals.
    void Mm(qint64 lUnits)
    {
        Separate();
        if (lUnits < 0) m_strBuffer += '-';
        const qint64 lSize = std::llabs(lUnits);
        Digits(lSize / 10000);
        m_strBuffer += '.';
        for (qint64 lPlace = 1000; lPlace > 0; lPlace /= 10)
            m_strBuffer += static_cast<char>('0' + lSize / lPlace % 10);
    }
    void EndRow()
    {
        m_strBuffer += '\n';
        m_bRowBegun = false;
        if (m_strBuffer.size() >= FLUSH_AT) Flush();
    }
    // False: not all could be written.
    bool Close()
    {
        if (!m_File.isOpen()) return m_bGood;
        Flush();
        m_bGood &= m_File.flush();
        m_File.close();
        return m_bGood;
    }

private:
    static constexpr size_t FLUSH_AT = 1 << 16;

    void Separate()
    {
        if (m_bRowBegun) m_strBuffer += ',';
        m_bRowBegun = true;
    }
    void Digits(qint64 lValue)
    {
        char text[24];
        const auto result = std::to_chars(text, text + sizeof text, lValue);
        m_strBuffer.append(text, result.ptr);
    }
    void Flush()
    {
        const auto lSize = static_cast<qint64>(m_strBuffer.size());
        m_bGood &= m_File.write(m_strBuffer.data(), lSize) == lSize;
        m_strBuffer.clear();
    }

    QFile m_File;
    std::string m_strBuffer;
    bool m_bRowBegun = false, m_bGood = true;
};
