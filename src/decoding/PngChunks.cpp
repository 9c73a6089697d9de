#include "decoding/PngChunks.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include <zlib.h>

#include <QtEndian>

#include "base/Cancellation.h"
#include "imaging/ImageError.h"

namespace tarnovel {
namespace {

constexpr qint64 signatureBytes = 8;
constexpr quint32 largestExif = 16 << 20;
constexpr quint32 largestText = 64 << 10;
constexpr qsizetype mostTexts = 4 << 20;
// The libraries take every chunk but the pixels into memory as a whole.
constexpr quint32 largestOther = 64 << 20;
// A file of 400 megapixels in pieces of 8 KiB has fewer; one made of empty chunks is given up here.
constexpr int mostChunks = 200'000;
constexpr qint64 pieceBytes = 256 << 10;

/// Reads a file from front to back through one piece of it.
class PieceReader {
public:
    PieceReader(const ImageFile &file, qint64 at, const std::stop_token &stop)
        : m_file(file), m_stop(stop), m_at(at)
    {
    }

    /// The next bytes, at most `most` and at least one. Throws an ImageError where the file has ended.
    std::string_view next(qint64 most)
    {
        const qint64 end = m_begin + m_piece.size();
        if (m_at < m_begin || m_at >= end) {
            throwIfCancelled(m_stop);
            m_begin = m_at;
            m_piece = m_file.read(m_begin, pieceBytes);
            if (m_piece.isEmpty()) {
                throw ImageError(ImageError::Cause::Damaged, "the file ends within its picture");
            }
        }
        const qint64 count = std::min(most, m_begin + m_piece.size() - m_at);
        const char *bytes = m_piece.constData() + (m_at - m_begin);
        m_at += count;
        return {bytes, static_cast<size_t>(count)};
    }

    QByteArray take(qint64 count)
    {
        QByteArray bytes;
        while (bytes.size() < count) {
            const std::string_view part = next(count - bytes.size());
            bytes.append(part.data(), static_cast<qsizetype>(part.size()));
        }
        return bytes;
    }

    void skip(qint64 count) { m_at += count; }

private:
    const ImageFile &m_file;
    const std::stop_token &m_stop;
    qint64 m_at;
    qint64 m_begin = 0;
    QByteArray m_piece;
};

/// Only an upper-case first letter makes a chunk one that the picture cannot do without.
bool isCritical(const QByteArray &type)
{
    return (type[0] & 0x20) == 0;
}

} // namespace

PngChunks readPngChunks(const ImageFile &file)
{
    PngChunks found;
    QByteArray texts = file.read(0, signatureBytes);
    qint64 at = signatureBytes;
    for (int i = 0; i < mostChunks; ++i) {
        const QByteArray head = file.read(at, 8);
        const QByteArray type = head.mid(4);
        if (head.size() < 8) {
            texts += QByteArray::fromHex("0000000049454e44ae426082"); // the chunk that ends a file
            found.texts = std::move(texts);
            return found;
        }
        const auto length = qFromBigEndian<quint32>(head.constData());
        if (type == "eXIf" && length <= largestExif) {
            found.exif = file.read(at + 8, length);
            return found;
        }
        const bool text = type == "zTXt" || type == "iTXt" || type == "tEXt";
        if (text && (length > largestText || texts.size() > mostTexts)) {
            return found;
        }
        if (text || type == "IHDR") {
            texts += file.read(at, 12 + qint64(std::min(length, largestText)));
        }
        at += 12 + qint64(length);
    }
    return found;
}

void checkPngChunkSizes(const ImageFile &file)
{
    qint64 at = signatureBytes;
    for (int i = 0; i < mostChunks; ++i) {
        const QByteArray head = file.read(at, 8);
        const QByteArray type = head.mid(4);
        if (head.size() < 8 || type == "IEND") {
            return;
        }
        const auto length = qFromBigEndian<quint32>(head.constData());
        if (type != "IDAT" && length > largestOther) {
            // One that ends beyond the file is a length that was changed.
            const bool isThere = at + 12 + qint64(length) <= file.size();
            throw ImageError(isThere ? ImageError::Cause::TooLarge : ImageError::Cause::Damaged,
                             "a giant chunk " + type);
        }
        at += 12 + qint64(length);
    }
}

void checkPngData(const ImageFile &file, const std::stop_token &stop)
{
    PieceReader reader(file, signatureBytes, stop);
    bool hasData = false;
    QByteArray type;
    while (type != "IEND") {
        qint64 left = qFromBigEndian<quint32>(reader.take(4).constData());
        type = reader.take(4);
        if (!isCritical(type)) {
            reader.skip(left + 4);
            continue;
        }
        uLong checksum = crc32(0, reinterpret_cast<const Bytef *>(type.constData()), 4);
        while (left > 0) {
            const std::string_view part = reader.next(left);
            checksum = crc32_z(checksum, reinterpret_cast<const Bytef *>(part.data()), part.size());
            left -= static_cast<qint64>(part.size());
        }
        if (qFromBigEndian<quint32>(reader.take(4).constData()) != checksum) {
            throw ImageError(ImageError::Cause::Damaged, "wrong checksum in " + type);
        }
        hasData = hasData || type == "IDAT";
    }
    if (!hasData) {
        throw ImageError(ImageError::Cause::Damaged, "no picture data");
    }
}

} // namespace tarnovel
