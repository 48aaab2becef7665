#include "common/PictureFile.h"

#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QPixelFormat>
#include <QtEndian>

#include <algorithm>
#include <cstdlib>

namespace {
constexpr int BITMAP_HEADS = 14 + 40;                   // of the file and, as far as is read here, of the picture
constexpr quint32 OLD_HEAD = 12;                        // its width and height have 16 bits
constexpr qint64 MOST_SIDE = 1 << 24, MOST_BITS = 64;   // whatever a damaged header says, the product fits
constexpr quint32 RUNS_8 = 1, RUNS_4 = 2;
constexpr qint64 READER_BYTES = 4;   // a pixel takes these at least, whatever is in the file

template <class T> T At(const QByteArray& data, int iPlace)
{
    return qFromLittleEndian<T>(data.constData() + iPlace);
}

// What the header promises: its own count, and lines of whole groups of four bytes where they are not packed.
qint64 BitmapLength(const QByteArray& heads)
{
    const bool bOld = At<quint32>(heads, 14) == OLD_HEAD;
    const qint64 lWidth = bOld ? At<quint16>(heads, 18) : std::clamp<qint64>(At<qint32>(heads, 18), 0, MOST_SIDE);
    const qint64 lHeight = bOld ? At<quint16>(heads, 20) : std::min(std::llabs(At<qint32>(heads, 22)), MOST_SIDE);
    const qint64 lBits = std::min<qint64>(bOld ? At<quint16>(heads, 24) : At<quint16>(heads, 28), MOST_BITS);
    const quint32 uPacking = bOld ? 0 : At<quint32>(heads, 30);
    const qint64 lCount = At<quint32>(heads, 2), lPixels = At<quint32>(heads, 10);
    if (uPacking == RUNS_8 || uPacking == RUNS_4) return std::max(lCount, lPixels + At<quint32>(heads, 34));
    return std::max(lCount, lPixels + (lWidth * lBits + 31) / 32 * 4 * lHeight);
}

// The bytes of a JPEG by its own marks: the end of a small picture within the headers is not the end of it.
class CJpegMarks
{
public:
    explicit CJpegMarks(QFile& file) : m_File(file) {}
    bool FindEnd()
    {
        for (int iMark = NextMark(); iMark >= 0; iMark = NextMark()) {
            if (iMark == END) return true;
            if (HasLength(iMark) && !SkipSegment()) return false;
        }
        return false;
    }

private:
    static constexpr int END = 0xD9, START = 0xD8, FIRST_RESTART = 0xD0, ALONE = 0x01;

    static bool HasLength(int iMark) { return iMark > ALONE && (iMark < FIRST_RESTART || iMark > END); }
    // The next one that is none of the data's own: 0 behind it is a byte of the picture. Negative: the file is over.
    int NextMark()
    {
        for (char c = 0; m_File.getChar(&c);) {
            if (static_cast<uchar>(c) != 0xFF) continue;
            do {
                if (!m_File.getChar(&c)) return -1;
            } while (static_cast<uchar>(c) == 0xFF);
            const int iMark = static_cast<uchar>(c);
            if (iMark != 0 && (iMark < FIRST_RESTART || iMark >= START)) return iMark;
        }
        return -1;
    }
    bool SkipSegment()
    {
        const QByteArray length = m_File.read(2);
        const qint64 lLength = length.size() == 2 ? qFromBigEndian<quint16>(length.constData()) : 0;
        return lLength >= 2 && m_File.skip(lLength - 2) == lLength - 2;
    }

    QFile& m_File;
};
}   // namespace

QString WhyNotWhole(const QString& strPath)
{
    QFile file(strPath);
    if (!file.open(QIODevice::ReadOnly)) return {};   // the reader says why
    const QByteArray heads = file.peek(BITMAP_HEADS);
    if (heads.startsWith("BM") && heads.size() == BITMAP_HEADS && file.size() < BitmapLength(heads))
        return QStringLiteral("the file has %1 bytes of %2").arg(file.size()).arg(BitmapLength(heads));
    if (heads.startsWith("\xFF\xD8\xFF") && !CJpegMarks(file).FindEnd())
        return QStringLiteral("the file has no end: only a part of it is there");
    return {};
}

qint64 MostPixels()
{
    return (static_cast<qint64>(QImageReader::allocationLimit()) << 20) / READER_BYTES;
}

QString WhyTooLarge(const QString& strPath)
{
    QImageReader reader(strPath);
    reader.setDecideFormatFromContent(true);
    const QSize size = reader.size();
    const qint64 lBytes =
        std::max<qint64>(READER_BYTES, QImage::toPixelFormat(reader.imageFormat()).bitsPerPixel() / 8);
    const qint64 lMost = MostPixels() * READER_BYTES / lBytes;
    if (lMost == 0 || qint64{size.width()} * size.height() <= lMost) return {};   // 0: no limit is set
    return QStringLiteral("Image must not have more than %1 pixels: it has %2 by %3")
        .arg(lMost)
        .arg(size.width())
        .arg(size.height());
}
