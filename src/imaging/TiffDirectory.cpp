#include "imaging/TiffDirectory.h"

#include <algorithm>
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
    m_first = static_cast<qint64>(m_large ? value(8, 8) : value(4, 4));
}

const TiffField *TiffDirectories::Directory::find(int tag) const
{
    const auto found = std::ranges::find(fields, tag, &TiffField::tag);
    return found == fields.end() ? nullptr : &*found;
}

quint64 TiffDirectories::value(qint64 at, int size) const
{
    const QByteArray bytes = m_read(at, size);
    if (bytes.size() != size) {
        return 0;
    }
    quint64 made = 0;
    for (int i = 0; i < size; ++i) {
        made = made << 8U | static_cast<uchar>(bytes[m_little ? size - 1 - i : i]);
    }
    return made;
}

TiffDirectories::Directory TiffDirectories::directory(qint64 at) const
{
    Directory made;
    const int countBytes = m_large ? 8 : 2;
    const int offsetBytes = m_large ? 8 : 4;
    const int fieldBytes = 4 + 2 * offsetBytes;
    if (at <= 0) {
        return made;
    }
    const quint64 count = std::min(value(at, countBytes), mostFields);
    qint64 field = at + countBytes;
    for (quint64 i = 0; i < count; ++i, field += fieldBytes) {
        TiffField read{static_cast<int>(value(field, 2)), static_cast<int>(value(field + 2, 2)),
                       value(field + 4, offsetBytes), field + 4 + offsetBytes};
        const auto bytes = static_cast<quint64>(typeBytes(read.type));
        if (read.tag == 0 || bytes == 0) {
            continue;
        }
        if (read.count > static_cast<quint64>(offsetBytes) / bytes) {
            read.at = static_cast<qint64>(value(read.at, offsetBytes));
        }
        made.fields.append(read);
    }
    made.next = static_cast<qint64>(value(field, offsetBytes));
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

QByteArray TiffDirectories::bytes(const TiffField &field) const
{
    return m_read(field.at, static_cast<qint64>(std::min(field.count, mostValues)));
}

bool saysAdobeRgb(const QByteArray &exif)
{
    const TiffDirectories block([&exif](qint64 offset, qint64 count) {
        return offset < 0 || offset > exif.size() ? QByteArray() : exif.mid(offset, count);
    });
    const auto below = [&block](const TiffDirectories::Directory &directory, int tag) {
        return block.directory(static_cast<qint64>(block.number(directory, tag).value_or(0)));
    };
    const TiffDirectories::Directory photo = below(block.directory(block.first()), exifDirectory);
    const TiffDirectories::Directory rules = below(photo, interoperabilityDirectory);
    const TiffField *index = rules.find(interoperabilityIndex);
    return index && block.bytes(*index).startsWith("R03") &&
           block.number(photo, colorSpace).value_or(0) != srgb;
}

TiffPicture findTiffPicture(const TiffDirectories &file)
{
    const auto pixels = [&file](const TiffDirectories::Directory &directory) {
        return file.number(directory, imageWidth).value_or(0) *
               file.number(directory, imageHeight).value_or(0);
    };
    // A smaller version of a picture that stands elsewhere in the file.
    const auto isPreview = [&](const TiffDirectories::Directory &directory) {
        if ((file.number(directory, newSubfileType).value_or(0) & 1U) ||
            file.number(directory, oldSubfileType).value_or(0) == reducedVersion) {
            return true;
        }
        const TiffField *below = directory.find(subDirectories);
        const QList<quint64> places = below ? file.numbers(*below) : QList<quint64>();
        return std::ranges::any_of(places, [&](quint64 at) {
            return pixels(file.directory(static_cast<qint64>(at))) > pixels(directory);
        });
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
