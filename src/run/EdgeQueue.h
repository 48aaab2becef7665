#pragma once
#include <QTemporaryFile>

#include <memory>
#include <vector>

// One edge on a pin of an axis.
struct stRecordedEdge
{
    qint64 lTime;       // ns since the run began
    qint64 lCarriage;   // pulses
    qint32 lPos;        // the system's counter, position units
    quint8 ucAxis, ucRole, ucLevel;
};

// First in, first out, in bounded memory: what does not fit waits in a temporary file. One thread at a time.
class CEdgeQueue
{
public:
    void Push(const stRecordedEdge& edge)
    {
        m_lstBack.push_back(edge);
        if (m_lstBack.size() >= CHUNK) Spill();
    }
    // The first one, or null.
    const stRecordedEdge* Front()
    {
        if (m_uFront == m_lstFront.size()) Refill();
        return m_uFront < m_lstFront.size() ? &m_lstFront[m_uFront] : nullptr;
    }
    void Pop() { ++m_uFront; }
    // False: the disk has refused, and edges are lost.
    bool IsGood() const { return m_bGood; }

private:
    static constexpr size_t CHUNK = 32768;
    static constexpr qint64 CHUNK_BYTES = CHUNK * sizeof(stRecordedEdge);

    void Spill()
    {
        if (!m_pFile) {
            m_pFile = std::make_unique<QTemporaryFile>();
            m_bGood &= m_pFile->open();
        }
        m_bGood &= m_pFile->seek(m_lWritten * CHUNK_BYTES) &&
                   m_pFile->write(reinterpret_cast<const char*>(m_lstBack.data()), CHUNK_BYTES) == CHUNK_BYTES;
        if (m_bGood) ++m_lWritten;
        m_lstBack.clear();
    }
    void Refill()
    {
        m_uFront = 0;
        m_lstFront.clear();
        if (m_lRead == m_lWritten) {
            m_lRead = m_lWritten = 0;   // the file begins anew
            m_lstFront.swap(m_lstBack);
            return;
        }
        m_lstFront.resize(CHUNK);
        m_bGood &= m_pFile->seek(m_lRead * CHUNK_BYTES) &&
                   m_pFile->read(reinterpret_cast<char*>(m_lstFront.data()), CHUNK_BYTES) == CHUNK_BYTES;
        ++m_lRead;
    }

    std::vector<stRecordedEdge> m_lstFront, m_lstBack;
    size_t m_uFront = 0;
    std::unique_ptr<QTemporaryFile> m_pFile;
    qint64 m_lWritten = 0, m_lRead = 0;   // chunks
    bool m_bGood = true;
};
