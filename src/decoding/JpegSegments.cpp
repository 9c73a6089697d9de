#include "decoding/JpegSegments.h"

#include <map>

#include <QtEndian>

#include "imaging/ImageError.h"

namespace tarnovel {
namespace {

// No camera writes nearly as many; a file made of empty segments alone is given up here.
constexpr int mostSegments = 10'000;

constexpr int startOfScan = 0xda;
constexpr int endOfImage = 0xd9;

bool isFrameHeader(int marker)
{
    return marker >= 0xc0 && marker <= 0xcf && marker != 0xc4 && marker != 0xc8 && marker != 0xcc;
}

bool standsAlone(int marker)
{
    return marker == 0x01 || (marker >= 0xd0 && marker <= 0xd8);
}

quint16 bigEndian16(const QByteArray &bytes, qsizetype at)
{
    return qFromBigEndian<quint16>(bytes.constData() + at);
}

QByteArray joined(const std::map<int, QByteArray> &chunks, int count)
{
    QByteArray profile;
    for (int number = 1; number <= count; ++number) {
        const auto found = chunks.find(number);
        if (found == chunks.end()) {
            return {};
        }
        profile += found->second;
    }
    return profile;
}

class SegmentReader {
public:
    explicit SegmentReader(const ImageFile &file) : m_file(file) {}

    JpegSegments run()
    {
        qint64 at = 2;
        for (int i = 0; i < mostSegments; ++i) {
            const QByteArray head = m_file.read(at, 4);
            if (head.size() < 4) {
                break;
            }
            const int marker = static_cast<uchar>(head[1]);
            if (static_cast<uchar>(head[0]) != 0xff || marker == 0xff) {
                ++at; // fill bytes, or stray ones that the decoder skips as well
                continue;
            }
            if (marker == startOfScan || marker == endOfImage) {
                break;
            }
            if (standsAlone(marker)) {
                at += 2;
                continue;
            }
            const int length = bigEndian16(head, 2);
            segment(marker, at + 4, length - 2);
            at += 2 + std::max(length, 2);
        }
        if (m_found.size.isEmpty()) {
            throw ImageError(ImageError::Cause::Damaged, "no JPEG frame header");
        }
        m_found.profile = joined(m_profileChunks, m_profileCount);
        return m_found;
    }

private:
    void segment(int marker, qint64 at, int length)
    {
        if (isFrameHeader(marker) && m_found.size.isEmpty()) {
            const QByteArray frame = m_file.read(at, 6);
            if (frame.size() == 6) {
                m_found.size = QSize(bigEndian16(frame, 3), bigEndian16(frame, 1));
            }
        } else if (marker == 0xe1 && m_found.exif.isEmpty()) {
            const QByteArray bytes = m_file.read(at, length);
            if (bytes.startsWith(QByteArray("Exif\0\0", 6))) {
                m_found.exif = bytes.mid(6);
            }
        } else if (marker == 0xe2) {
            const QByteArray bytes = m_file.read(at, length);
            if (bytes.size() > 14 && bytes.startsWith(QByteArray("ICC_PROFILE\0", 12))) {
                m_profileChunks.emplace(static_cast<uchar>(bytes[12]), bytes.mid(14));
                m_profileCount = static_cast<uchar>(bytes[13]);
            }
        }
    }

    const ImageFile &m_file;
    JpegSegments m_found;
    std::map<int, QByteArray> m_profileChunks;
    int m_profileCount = 0;
};

} // namespace

JpegSegments readJpegSegments(const ImageFile &file)
{
    return SegmentReader(file).run();
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
