#include "imaging/PngChunks.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <QtEndian>

#include "base/Cancellation.h"
#include "imaging/ImageError.h"

namespace tarnovel {
namespace {

constexpr qint64 signatureBytes = 8;
constexpr quint32 largestExif = 16 << 20;
constexpr quint32 largestText = 64 << 10;
// The libraries take every chunk but the pixels into memory as a whole.
constexpr quint32 largestOther = 64 << 20;
// A file of 400 megapixels in pieces of 8 KiB has fewer; one made of empty chunks is given up here.
constexpr int mostChunks = 200'000;
constexpr qint64 pieceBytes = 256 << 10;

/// The checksum's remainders of every byte; those of table n for a byte that n others follow.
using ChecksumTables = std::array<std::array<quint32, 256>, 8>;

constexpr ChecksumTables makeChecksumTables()
{
    ChecksumTables tables{};
    for (quint32 byte = 0; byte < 256; ++byte) {
        quint32 remainder = byte;
        for (int bit = 0; bit < 8; ++bit) {
            remainder = (remainder >> 1) ^ ((remainder & 1) != 0 ? 0xedb88320 : 0);
        }
        tables[0][byte] = remainder;
    }
    for (size_t table = 1; table < tables.size(); ++table) {
        for (size_t byte = 0; byte < 256; ++byte) {
            const quint32 before = tables[table - 1][byte];
            tables[table][byte] = (before >> 8) ^ tables[0][before & 0xff];
        }
    }
    return tables;
}

constexpr ChecksumTables checksumTables = makeChecksumTables();

/// The CRC-32 of a chunk, eight bytes at a time.
class Checksum {
public:
    void add(std::string_view bytes)
    {
        const auto &tables = checksumTables;
        for (; bytes.size() >= 8; bytes.remove_prefix(8)) {
            const quint32 low = m_remainder ^ qFromLittleEndian<quint32>(bytes.data());
            const auto high = qFromLittleEndian<quint32>(bytes.data() + 4);
            m_remainder = tables[7][low & 0xff] ^ tables[6][(low >> 8) & 0xff] ^
                          tables[5][(low >> 16) & 0xff] ^ tables[4][low >> 24] ^ tables[3][high & 0xff] ^
                          tables[2][(high >> 8) & 0xff] ^ tables[1][(high >> 16) & 0xff] ^
                          tables[0][high >> 24];
        }
        for (const char byte : bytes) {
            m_remainder = (m_remainder >> 8) ^ tables[0][(m_remainder ^ static_cast<uchar>(byte)) & 0xff];
        }
    }

    quint32 value() const { return ~m_remainder; }

private:
    quint32 m_remainder = 0xffffffff;
};

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
    qint64 at = signatureBytes;
    for (int i = 0; i < mostChunks; ++i) {
        const QByteArray head = file.read(at, 8);
        if (head.size() < 8) {
            return found;
        }
        const auto length = qFromBigEndian<quint32>(head.constData());
        const QByteArray type = head.mid(4);
        if (type == "eXIf" && length <= largestExif) {
            found.exif = file.read(at + 8, length);
            return found;
        }
        const bool text = type == "zTXt" || type == "iTXt" || type == "iCCP" || type == "tEXt";
        const bool large = length > (text ? largestText : largestExif);
        found.textIsSmall = found.textIsSmall && (type == "IDAT" || !large);
        at += 12 + qint64(length);
    }
    found.textIsSmall = false;
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
        Checksum checksum;
        checksum.add({type.constData(), 4});
        while (left > 0) {
            const std::string_view part = reader.next(left);
            checksum.add(part);
            left -= static_cast<qint64>(part.size());
        }
        if (qFromBigEndian<quint32>(reader.take(4).constData()) != checksum.value()) {
            throw ImageError(ImageError::Cause::Damaged, "wrong checksum in " + type);
        }
        hasData = hasData || type == "IDAT";
    }
    if (!hasData) {
        throw ImageError(ImageError::Cause::Damaged, "no picture data");
    }
}

} // namespace tarnovel
