#include "decoding/ImageFile.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "imaging/ImageError.h"

namespace tarnovel {
namespace {

constexpr qint64 largestWholeFile = 256'000'000;

/// The brands of a file that begins with an `ftyp` box: the major brand first, then the compatible ones.
std::optional<PictureFormat> stillImageFormat(const QByteArray &head)
{
    static constexpr std::array still = {"heic", "heix", "heim", "heis", "mif1",
                                         "msf1", "hevc", "avif", "avis"};
    const auto boxSize = static_cast<quint32>(static_cast<uchar>(head[2]) << 8 | static_cast<uchar>(head[3]));
    if (head[0] != 0 || head[1] != 0 || boxSize < 16) {
        return std::nullopt;
    }
    const QByteArray major = head.mid(8, 4);
    if (std::none_of(still.begin(), still.end(), [&](const char *brand) { return major == brand; })) {
        return std::nullopt;
    }
    bool heif = major.startsWith("hei");
    bool avif = major == "avif";
    for (qsizetype at = 16; at + 4 <= std::min<qsizetype>(boxSize, head.size()); at += 4) {
        const QByteArray brand = head.mid(at, 4);
        avif = avif || brand == "avif";
        heif = heif || brand == "heic" || brand == "heix" || brand == "heim" || brand == "heis";
    }
    if (avif && !major.startsWith("hei")) {
        return PictureFormat::Avif;
    }
    return heif ? std::optional(PictureFormat::Heif) : std::nullopt;
}

std::optional<PictureFormat> formatOf(const QByteArray &head)
{
    if (head.startsWith("\xff\xd8\xff")) {
        return PictureFormat::Jpeg;
    }
    if (head.startsWith("\x89PNG\r\n\x1a\n")) {
        return PictureFormat::Png;
    }
    if (head.startsWith("RIFF") && head.mid(8, 4) == "WEBP") {
        return PictureFormat::WebP;
    }
    const QByteArray four = head.left(4);
    if (four == QByteArray("II*\0", 4) || four == QByteArray("MM\0*", 4) || four == QByteArray("II+\0", 4) ||
        four == QByteArray("MM\0+", 4)) {
        return PictureFormat::Tiff;
    }
    return head.size() >= 16 && head.mid(4, 4) == "ftyp" ? stillImageFormat(head) : std::nullopt;
}

} // namespace

ImageFile::ImageFile(RegularFile file) : m_file(std::move(file))
{
    recognise();
}

ImageFile::ImageFile(const QByteArray &bytes) : m_bytes(bytes)
{
    recognise();
}

void ImageFile::recognise()
{
    const std::optional<PictureFormat> format = formatOf(read(0, 256));
    if (!format) {
        throw ImageError(ImageError::Cause::Unsupported, "no known picture format");
    }
    m_format = *format;
}

const QByteArray &ImageFile::bytes() const
{
    if (m_bytes.isEmpty()) {
        if (size() > largestWholeFile) {
            throw ImageError(ImageError::Cause::TooLarge, "too large to be decoded as a whole");
        }
        QByteArray all = read(0, size());
        if (all.size() < size()) {
            throw ImageError(ImageError::Cause::Damaged, "the file was cut short while it was read");
        }
        m_bytes = std::move(all);
    }
    return m_bytes;
}

} // namespace tarnovel
