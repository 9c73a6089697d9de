#include "imaging/ImageFile.h"

#include <algorithm>
#include <array>
#include <optional>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>

#include "imaging/ImageError.h"

namespace tarnovel {
namespace {

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

ImageFile::ImageFile(const QString &path)
{
    m_descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (m_descriptor < 0) {
        throw ImageError(ImageError::Cause::Missing, "cannot be opened");
    }
    struct stat status {};
    const bool regular = fstat(m_descriptor, &status) == 0 && S_ISREG(status.st_mode);
    m_size = status.st_size;
    const std::optional<PictureFormat> format = regular ? formatOf(read(0, 256)) : std::nullopt;
    if (!format) {
        ::close(m_descriptor);
        throw regular ? ImageError(ImageError::Cause::Unsupported, "no known picture format")
                      : ImageError(ImageError::Cause::Missing, "not a regular file");
    }
    m_format = *format;
}

ImageFile::~ImageFile()
{
    ::close(m_descriptor);
}

QByteArray ImageFile::read(qint64 offset, qint64 count) const
{
    if (offset < 0 || offset >= m_size || count <= 0) {
        return {};
    }
    QByteArray bytes(std::min(count, m_size - offset), Qt::Uninitialized);
    qint64 done = 0;
    while (done < bytes.size()) {
        const ssize_t got =
            pread(m_descriptor, bytes.data() + done, static_cast<size_t>(bytes.size() - done), offset + done);
        if (got <= 0) {
            break;
        }
        done += got;
    }
    bytes.truncate(done);
    return bytes;
}

} // namespace tarnovel
