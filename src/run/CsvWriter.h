#pragma once
#include "common/FileWriter.h"

#include <QFileInfo>
#include <QString>

#include <charconv>
#include <cstdlib>
#include <memory>
#include <string>

// Streams rows of comma-separated numbers to a file, which gets its name by Close, or to a pipe or another device.
// Cells are put one after the other; EndRow ends a line. One thread at a time. A failed write is kept, and told by
// Close.
class CCsvWriter
{
public:
    // False: the file cannot be written.
    bool Open(const QString& strPath, const std::string& strHeader)
    {
        const QFileInfo target(strPath);
        m_pFile = target.exists() && !target.isFile() ? std::unique_ptr<QFileDevice>(new QFile(strPath))
                                                      : std::make_unique<CFileWriter>(strPath);
        if (!m_pFile->open(QIODevice::WriteOnly)) m_pFile.reset();
        if (!m_pFile) return false;
        m_strBuffer.reserve(FLUSH_AT + 4096);
        m_strBuffer = strHeader + '\n';
        return true;
    }
    bool IsOpen() const { return m_pFile != nullptr; }

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
        if (!m_pFile) return m_bGood;
        Flush();
        auto* pWriter = dynamic_cast<CFileWriter*>(m_pFile.get());
        m_bGood = m_bGood && (pWriter ? pWriter->Commit() : m_pFile->flush());
        m_pFile.reset();
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
        m_bGood &= m_pFile->write(m_strBuffer.data(), lSize) == lSize;
        m_strBuffer.clear();
    }

    std::unique_ptr<QFileDevice> m_pFile;
    std::string m_strBuffer;
    bool m_bRowBegun = false, m_bGood = true;
};
