#include <algorithm>
#include <cstring>
#include <new>

#include <QtEndian>

#include "base/Cancellation.h"
#include "imaging/Deflater.h"
#include "imaging/ImageEncoder.h"

namespace tarnovel {
namespace {

// Of the PNG specification (ISO/IEC 15948).
constexpr char truecolour = 2;
constexpr char truecolourWithAlpha = 6;
constexpr char subFilter = 1;
// The rendering intent that an sRGB chunk names for photographs.
constexpr char perceptualIntent = 0;

/// Rows filtered at once: what stays in the processor's cache.
constexpr int bandRows = 16;
/// The data is cut into chunks, so that a reader needs no more memory than one.
constexpr qsizetype chunkBytes = 256 * 1024;
constexpr qsizetype chunkHead = 8;

QByteArray big(qsizetype value)
{
    const quint32 ordered = qToBigEndian(static_cast<quint32>(value));
    return QByteArray(reinterpret_cast<const char *>(&ordered), sizeof(ordered));
}

/// A file that grows by chunks.
class PngFile {
public:
    PngFile(QSize size, bool alpha)
    {
        m_bytes = QByteArray("\x89PNG\r\n\x1a\n", 8);
        const char kind = alpha ? truecolourWithAlpha : truecolour;
        append("IHDR", big(size.width()) + big(size.height()) + QByteArray("\x08", 1) + QByteArray(1, kind) +
                           QByteArray(3, '\0'));
        append("sRGB", QByteArray(1, perceptualIntent));
    }

    void append(const char *type, const QByteArray &content)
    {
        begin(type);
        m_bytes.append(content);
        end(content.size());
    }

    /// Takes from the stream until it wants more.
    void append(Deflater &deflater)
    {
        for (;;) {
            if (m_filled == chunkBytes || m_filled < 0) {
                endData();
                begin("IDAT");
                m_filled = 0;
                m_bytes.resize(m_bytes.size() + chunkBytes);
            }
            const qsizetype room = chunkBytes - m_filled;
            auto *goal = reinterpret_cast<uint8_t *>(m_bytes.data() + m_bytes.size() - room);
            const auto made = static_cast<qsizetype>(deflater.take(goal, static_cast<size_t>(room)));
            m_filled += made;
            if (made < room) {
                return;
            }
        }
    }

    QByteArray finished()
    {
        endData();
        append("IEND", {});
        return std::move(m_bytes);
    }

private:
    void begin(const char *type) { m_bytes.append(QByteArray(4, '\0')).append(type, 4); }

    /// The last bytes are a chunk's content: its length and check are known now.
    void end(qsizetype length)
    {
        const qsizetype start = m_bytes.size() - length - chunkHead;
        m_bytes.replace(start, 4, big(length));
        m_bytes.append(big(crc32Of(QByteArrayView(m_bytes).sliced(start + 4))));
    }

    void endData()
    {
        if (m_filled > 0) {
            m_bytes.chop(chunkBytes - m_filled);
            end(m_filled);
        } else if (m_filled == 0) {
            m_bytes.chop(chunkBytes + chunkHead);
        }
        m_filled = -1;
    }

    QByteArray m_bytes;
    /// How much of the data's open chunk is there; negative while none is open.
    qsizetype m_filled = -1;
};

/// Each byte of the first less that of the second.
quint32 eachLess(quint32 first, quint32 second)
{
    constexpr quint32 tops = 0x80808080;
    return ((first | tops) - (second & ~tops)) ^ ((first ^ ~second) & tops);
}

/// A row of opaque pixels as red, green and blue, each less its neighbour on the left.
char *filterOpaque(const QRgb *row, int width, char *goal)
{
    *goal++ = subFilter;
    QRgb left = 0;
    for (int x = 0; x < width; ++x) {
        const quint32 step = eachLess(row[x], left);
        left = row[x];
        *goal++ = static_cast<char>(step >> 16U);
        *goal++ = static_cast<char>(step >> 8U);
        *goal++ = static_cast<char>(step);
    }
    return goal;
}

/// The same with alpha, of bytes that stand in the file's order.
char *filterTransparent(const uchar *row, int width, char *goal)
{
    constexpr int pixel = 4;
    *goal++ = subFilter;
    for (int i = 0; i < width * pixel; ++i) {
        *goal++ = static_cast<char>(i < pixel ? row[i] : row[i] - row[i - pixel]);
    }
    return goal;
}

bool isBlueFirst(QImage::Format format)
{
    return format == QImage::Format_RGB32;
}

} // namespace

QByteArray encodePng(const QImage &image, const std::stop_token &stop)
{
    if (image.isNull()) {
        throw std::bad_alloc();
    }
    const bool alpha = image.hasAlphaChannel();
    PngFile file(image.size(), alpha);
    Deflater deflater;
    QByteArray filtered((qsizetype(image.width()) * (alpha ? 4 : 3) + 1) * bandRows, Qt::Uninitialized);
    for (int top = 0; top < image.height(); top += bandRows) {
        throwIfCancelled(stop);
        const int rows = std::min(bandRows, image.height() - top);
        // One band at a time: a second picture in another format would only be memory to fill.
        const QImage whole(image.constScanLine(top), image.width(), rows, image.bytesPerLine(),
                           image.format());
        const QImage band =
            isBlueFirst(image.format())
                ? whole
                : whole.convertToFormat(alpha ? QImage::Format_RGBA8888 : QImage::Format_RGB32);
        char *goal = filtered.data();
        for (int y = 0; y < rows; ++y) {
            const uchar *row = band.constScanLine(y);
            goal = alpha ? filterTransparent(row, image.width(), goal)
                         : filterOpaque(reinterpret_cast<const QRgb *>(row), image.width(), goal);
        }
        const bool isLast = top + rows == image.height();
        deflater.give(QByteArrayView(filtered.constData(), goal - filtered.constData()),
                      isLast ? Deflater::Part::Last : Deflater::Part::More);
        file.append(deflater);
    }
    return file.finished();
}

} // namespace tarnovel
