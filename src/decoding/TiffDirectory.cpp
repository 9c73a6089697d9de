#include "decoding/TiffDirectory.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <span>
#include <utility>

namespace tarnovel {

namespace {

constexpr quint64 mostFields = 4096;
constexpr quint64 mostValues = 100;
constexpr int mostDirectories = 64;

// Of TIFF 6.0, of its supplements for raw files, and of EXIF.
constexpr int newSubfileType = 254;
constexpr int oldSubfileType = 255;
constexpr int reducedVersion = 2;
constexpr int imageWidth = 256;
constexpr int imageHeight = 257;
constexpr int subDirectories = 330;
constexpr int exifDirectory = 0x8769;
constexpr int colorSpace = 0xA001;
constexpr int interoperabilityDirectory = 0xA005;
constexpr int interoperabilityIndex = 1;
constexpr int srgb = 1;
constexpr auto cameraTags = std::to_array({0x010F, 0x0110}); // make and model
/// Exposure, aperture, both sensitivities, date and focal length.
constexpr auto captureTags = std::to_array({0x829A, 0x829D, 0x8827, 0x8832, 0x9003, 0x920A});

/// No file is that long: sums of such places do not overflow.
constexpr quint64 farthest = quint64(1) << 60U;

/// 0, where nothing is read, for a place beyond every file.
qint64 placeOf(quint64 stated)
{
    return stated < farthest ? static_cast<qint64>(stated) : 0;
}

int typeBytes(int type)
{
    switch (type) {
    case 1: // bytes, text, undefined
    case 2:
    case 6:
    case 7:
        return 1;
    case 3:
    case 8:
        return 2;
    case 4:
    case 9:
    case 11:
    case 13:
        return 4;
    case 5:
    case 10:
    case 12:
    case 16:
    case 17:
    case 18:
        return 8;
    default:
        return 0;
    }
}

} // namespace

TiffDirectories::TiffDirectories(Read read) : m_read(std::move(read))
{
    const QByteArray head = m_read(0, 16);
    m_little = head.startsWith("II");
    if (head.size() < 8 || (!m_little && !head.startsWith("MM"))) {
        return;
    }
    m_large = value(2, 2) == 43;
    m_first = placeOf(m_large ? value(8, 8) : value(4, 4));
}

const TiffField *TiffDirectories::Directory::find(int tag) const
{
    const auto found = std::ranges::find(fields, tag, &TiffField::tag);
    return found == fields.end() ? nullptr : &*found;
}

quint64 TiffDirectories::number(QByteArrayView bytes) const
{
    quint64 made = 0;
    const qsizetype size = bytes.size();
    for (qsizetype i = 0; i < size; ++i) {
        made = made << 8U | static_cast<uchar>(bytes[m_little ? size - 1 - i : i]);
    }
    return made;
}

quint64 TiffDirectories::value(qint64 at, int size) const
{
    const QByteArray bytes = m_read(at, size);
    return bytes.size() == size ? number(bytes) : 0;
}

TiffDirectories::Directory TiffDirectories::directory(qint64 at) const
{
    Directory made;
    const int countBytes = m_large ? 8 : 2;
    const int offsetBytes = m_large ? 8 : 4;
    const int fieldBytes = 4 + 2 * offsetBytes;
    if (at <= 0 || m_fieldsLeft == 0) {
        return made;
    }
    const quint64 count = std::min({value(at, countBytes), mostFields, m_fieldsLeft});
    m_fieldsLeft -= std::max<quint64>(count, 1);
    const qint64 begin = at + countBytes;
    const qint64 end = begin + static_cast<qint64>(count) * fieldBytes;
    const QByteArray block = m_read(begin, end - begin);
    for (qsizetype place = 0; place + fieldBytes <= block.size(); place += fieldBytes) {
        const QByteArrayView entry = QByteArrayView(block).sliced(place, fieldBytes);
        TiffField read{static_cast<int>(number(entry.first(2))), static_cast<int>(number(entry.sliced(2, 2))),
                       number(entry.sliced(4, offsetBytes)), begin + place + 4 + offsetBytes};
        const auto bytes = static_cast<quint64>(typeBytes(read.type));
        if (read.tag == 0 || bytes == 0) {
            continue;
        }
        if (read.count > static_cast<quint64>(offsetBytes) / bytes) {
            read.at = placeOf(number(entry.last(offsetBytes)));
        }
        made.fields.append(read);
    }
    made.next = placeOf(value(end, offsetBytes));
    return made;
}

QList<quint64> TiffDirectories::numbers(const TiffField &field) const
{
    QList<quint64> made;
    const int size = typeBytes(field.type);
    for (quint64 i = 0; i < std::min(field.count, mostValues); ++i) {
        made.append(value(field.at + static_cast<qint64>(i) * size, size));
    }
    return made;
}

std::optional<quint64> TiffDirectories::number(const Directory &directory, int tag) const
{
    const TiffField *field = directory.find(tag);
    const QList<quint64> values = field ? numbers(*field) : QList<quint64>();
    return values.isEmpty() ? std::nullopt : std::optional(values.first());
}

QByteArray TiffDirectories::bytes(const TiffField &field, qint64 most) const
{
    const auto each = static_cast<quint64>(typeBytes(field.type));
    const quint64 whole = field.count < farthest ? field.count * each : farthest;
    return m_read(field.at, static_cast<qint64>(std::min(whole, static_cast<quint64>(most))));
}

bool saysAdobeRgb(const QByteArray &exif)
{
    const TiffDirectories block([&exif](qint64 offset, qint64 count) {
        return offset < 0 || offset > exif.size() ? QByteArray() : exif.mid(offset, count);
    });
    const auto below = [&block](const TiffDirectories::Directory &directory, int tag) {
        return block.directory(placeOf(block.number(directory, tag).value_or(0)));
    };
    const TiffDirectories::Directory photo = below(block.directory(block.first()), exifDirectory);
    const TiffDirectories::Directory rules = below(photo, interoperabilityDirectory);
    const TiffField *index = rules.find(interoperabilityIndex);
    return index && block.bytes(*index).startsWith("R03") &&
           block.number(photo, colorSpace).value_or(0) != srgb;
}

namespace {

/// Writes a block with the numbers of the one that it is taken from.
class BlockWriter {
public:
    explicit BlockWriter(const TiffDirectories &from) : m_from(from)
    {
        m_block = from.isLittleEndian() ? QByteArray("II*\0", 4) : QByteArray("MM\0*", 4);
        put(8, 4);
    }

    /// The wanted fields of a directory; `below` is the tag of another directory that follows right after.
    void directory(const TiffDirectories::Directory &directory, std::span<const int> wanted,
                   std::optional<int> below = {})
    {
        QList<TiffField> fields;
        std::ranges::copy_if(directory.fields, std::back_inserter(fields), [&wanted](const TiffField &field) {
            return std::ranges::find(wanted, field.tag) != wanted.end();
        });
        const qsizetype count = fields.size() + (below ? 1 : 0);
        qsizetype valuesAt = m_block.size() + 2 + count * 12 + 4;
        QByteArray values;
        put(static_cast<quint64>(count), 2);
        for (const TiffField &field : std::as_const(fields)) {
            const int each = typeBytes(field.type);
            const QByteArray value = m_from.bytes(field, longestValue / each * each);
            put(static_cast<quint64>(field.tag), 2);
            put(static_cast<quint64>(field.type), 2);
            put(static_cast<quint64>(value.size() / each), 4);
            if (value.size() <= 4) {
                m_block.append(value.leftJustified(4, '\0'));
            } else {
                put(static_cast<quint64>(valuesAt + values.size()), 4);
                values.append(value.size() % 2 == 0 ? value : value + '\0');
            }
        }
        if (below) {
            put(static_cast<quint64>(*below), 2);
            put(4, 2); // a number of four bytes
            put(1, 4);
            put(static_cast<quint64>(valuesAt + values.size()), 4);
        }
        put(0, 4);
        m_block.append(values);
    }

    const QByteArray &block() const { return m_block; }

private:
    static constexpr qint64 longestValue = 4096;

    void put(quint64 value, int size)
    {
        for (int i = 0; i < size; ++i) {
            const int shift = 8 * (m_from.isLittleEndian() ? i : size - 1 - i);
            m_block.append(static_cast<char>(value >> static_cast<unsigned>(shift) & 0xffU));
        }
    }

    const TiffDirectories &m_from;
    QByteArray m_block;
};

} // namespace

QByteArray captureBlock(const TiffDirectories &file)
{
    const TiffDirectories::Directory first = file.directory(file.first());
    BlockWriter writer(file);
    writer.directory(first, cameraTags, exifDirectory);
    writer.directory(file.directory(placeOf(file.number(first, exifDirectory).value_or(0))), captureTags);
    return writer.block();
}

TiffPicture findTiffPicture(const TiffDirectories &file)
{
    const auto side = [&file](const TiffDirectories::Directory &directory, int tag) {
        constexpr quint64 longest = 0xffffffff;
        return std::min(file.number(directory, tag).value_or(0), longest);
    };
    const auto pixels = [&side](const TiffDirectories::Directory &directory) {
        return side(directory, imageWidth) * side(directory, imageHeight);
    };
    // A smaller version of a picture that stands elsewhere in the file.
    const auto isPreview = [&](const TiffDirectories::Directory &directory) {
        if ((file.number(directory, newSubfileType).value_or(0) & 1U) ||
            file.number(directory, oldSubfileType).value_or(0) == reducedVersion) {
            return true;
        }
        const TiffField *below = directory.find(subDirectories);
        const QList<quint64> places = below ? file.numbers(*below) : QList<quint64>();
        return std::ranges::any_of(
            places, [&](quint64 at) { return pixels(file.directory(placeOf(at))) > pixels(directory); });
    };
    qint64 at = file.first();
    for (int page = 0; at > 0 && page < mostDirectories; ++page) {
        const TiffDirectories::Directory directory = file.directory(at);
        if (!isPreview(directory)) {
            return {page};
        }
        at = directory.next;
    }
    return {};
}

} // namespace tarnovel
