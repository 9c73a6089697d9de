#include "decoding/JpegSegments.h"

#include <cstdlib>
#include <memory>
#include <stop_token>

#include <QtEndian>

#include "decoding/JpegReader.h"

namespace tarnovel {
namespace {

constexpr int exifMarker = JPEG_APP0 + 1;
constexpr int profileMarker = JPEG_APP0 + 2;
constexpr QByteArrayView exifHeading("Exif\0\0", 6);

quint16 bigEndian16(const QByteArray &bytes, qsizetype at)
{
    return qFromBigEndian<quint16>(bytes.constData() + at);
}

} // namespace

JpegSegments readJpegSegments(const ImageFile &file)
{
    const std::stop_token never;
    JpegReader reader(file, never, {exifMarker, profileMarker});
    jpeg_decompress_struct &info = reader.info();
    JpegSegments found;
    found.size = QSize(static_cast<int>(info.image_width), static_cast<int>(info.image_height));
    for (const jpeg_marker_struct *marker = info.marker_list; marker; marker = marker->next) {
        const QByteArrayView bytes(marker->data, marker->data_length);
        if (marker->marker == exifMarker && bytes.startsWith(exifHeading)) {
            found.exif = bytes.sliced(exifHeading.size()).toByteArray();
            break;
        }
    }
    JOCTET *profile = nullptr;
    unsigned int length = 0;
    reader.run([&] { jpeg_read_icc_profile(&info, &profile, &length); });
    const std::unique_ptr<JOCTET, decltype(&std::free)> owned(profile, &std::free);
    found.profile = QByteArray(reinterpret_cast<const char *>(profile), length);
    return found;
}

int exifOrientation(const QByteArray &exif)
{
    const bool little = exif.startsWith("II");
    if (exif.size() < 8 || (!little && !exif.startsWith("MM"))) {
        return 1;
    }
    const auto number16 = [&](qsizetype at) {
        return little ? qFromLittleEndian<quint16>(exif.constData() + at) : bigEndian16(exif, at);
    };
    const quint32 directory = little ? qFromLittleEndian<quint32>(exif.constData() + 4)
                                     : qFromBigEndian<quint32>(exif.constData() + 4);
    if (qint64(directory) + 2 > exif.size()) {
        return 1;
    }
    const int entries = number16(directory);
    for (int i = 0; i < entries; ++i) {
        const qsizetype at = qsizetype(directory) + 2 + qsizetype(i) * 12;
        if (at + 12 > exif.size()) {
            break;
        }
        if (number16(at) == 0x0112) {
            const int value = number16(at + 8);
            return value >= 1 && value <= 8 ? value : 1;
        }
    }
    return 1;
}

} // namespace tarnovel
