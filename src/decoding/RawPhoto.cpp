#include "decoding/RawPhoto.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <new>

#include <sys/mman.h>

#include "decoding/CaptureReader.h"
#include "decoding/ExifLibrary.h"
#include "decoding/ImageFile.h"
#include "decoding/JpegSegments.h"
#include "decoding/TiffDirectory.h"
#include "imaging/ImageError.h"

namespace tarnovel {
namespace {

constexpr int shortestPicture = 1600;
/// Cameras write three or four.
constexpr int mostPreviews = 16;

// Tags and values of TIFF 6.0 and its supplement for JPEG.
constexpr int compression = 259;
constexpr int stripOffsets = 273;
constexpr int stripByteCounts = 279;
constexpr quint64 jpegInTiff = 7;

/// All of a file, of which the kernel reads what is looked at. A file that somebody cuts short meanwhile ends
/// the process, which is the decoder's: that costs this photo alone.
class Mapping {
public:
    explicit Mapping(const RegularFile &file)
        : m_size(static_cast<size_t>(file.size())),
          m_bytes(mmap(nullptr, m_size, PROT_READ, MAP_PRIVATE, file.descriptor(), 0))
    {
        if (m_bytes == MAP_FAILED) {
            throw ImageError(ImageError::Cause::TooLarge, "cannot be mapped");
        }
    }
    ~Mapping() { munmap(m_bytes, m_size); }
    Mapping(const Mapping &) = delete;
    Mapping &operator=(const Mapping &) = delete;

    const Exiv2::byte *bytes() const { return static_cast<const Exiv2::byte *>(m_bytes); }
    size_t size() const { return m_size; }

private:
    size_t m_size;
    void *m_bytes;
};

/// A TIFF file may be a raw one; the others say what they are.
bool isRaw(const RegularFile &file)
{
    const QByteArray head = file.read(0, 16);
    static const std::array marks = {QByteArray("FUJIFILMCCD-RAW"), QByteArray("IIRO"), QByteArray("IIRS"),
                                     QByteArray("MMOR"), QByteArray("IIU\0", 4)};
    const auto begins = [&head](const QByteArray &mark) { return head.startsWith(mark); };
    if (std::ranges::any_of(marks, begins) ||
        head.sliced(std::min<qsizetype>(4, head.size())).startsWith("ftypcrx ")) {
        return true;
    }
    if (!begins(QByteArray("II*\0", 4)) && !begins(QByteArray("MM\0*", 4))) {
        return false;
    }
    // The first directory of a CR2 file looks like any picture's.
    return head.mid(8, 2) == "CR" || !findTiffPicture(TiffDirectories([&file](qint64 at, qint64 count) {
                                          return file.read(at, count);
                                      })).page;
}

/// The JPEG file in a preview that is a TIFF file of one strip; empty for any other.
QByteArray jpegIn(const QByteArray &tiff)
{
    const TiffDirectories directories([&tiff](qint64 at, qint64 count) { return tiff.mid(at, count); });
    const TiffDirectories::Directory first = directories.directory(directories.first());
    const TiffField *offsets = first.find(stripOffsets);
    const TiffField *counts = first.find(stripByteCounts);
    if (directories.number(first, compression) != jpegInTiff || !offsets || !counts || offsets->count != 1) {
        return {};
    }
    constexpr quint64 beyondAll = 0x7fffffff;
    return tiff.mid(static_cast<qsizetype>(std::min(directories.numbers(*offsets).value(0), beyondAll)),
                    static_cast<qsizetype>(std::min(directories.numbers(*counts).value(0), beyondAll)));
}

/// Its longer side in pixels; 0 for what is no JPEG file.
int longEdge(const QByteArray &bytes)
{
    try {
        const ImageFile file(bytes);
        const QSize size = file.format() == PictureFormat::Jpeg ? readJpegSegments(file).size : QSize(0, 0);
        return std::max(size.width(), size.height());
    } catch (const ImageError &) {
        return 0;
    }
}

/// The largest by its own header, whatever the raw file says of its size.
QByteArray largestPicture(const Exiv2::Image &image)
{
    const Exiv2::PreviewManager manager(image);
    const Exiv2::PreviewPropertiesList previews = manager.getPreviewProperties();
    QByteArray largest;
    int longest = shortestPicture - 1;
    const auto tried = std::min<size_t>(previews.size(), mostPreviews);
    for (auto preview = previews.rbegin(); preview != previews.rbegin() + std::ptrdiff_t(tried); ++preview) {
        const Exiv2::PreviewImage found = manager.getPreviewImage(*preview);
        QByteArray bytes(reinterpret_cast<const char *>(found.pData()), static_cast<qsizetype>(found.size()));
        if (found.mimeType() == "image/tiff") {
            bytes = jpegIn(bytes);
        }
        if (const int edge = longEdge(bytes); edge > longest) {
            longest = edge;
            largest = bytes;
        }
    }
    return largest;
}

int orientationOf(const Exiv2::ExifData &data)
{
    const auto found = Exiv2::orientation(data);
    const int64_t stated = found == data.end() || found->count() == 0 ? 1 : firstWhole(found->value());
    return stated >= 1 && stated <= 8 ? static_cast<int>(stated) : 1;
}

bool saysAdobe(const Exiv2::ExifData &data)
{
    const auto index = data.findKey(Exiv2::ExifKey("Exif.Iop.InteroperabilityIndex"));
    return index != data.end() && index->toString().starts_with("R03");
}

} // namespace

std::optional<RawPhoto> readRawPhoto(const RegularFile &file)
{
    if (!isRaw(file)) {
        return std::nullopt;
    }
    prepareParser();
    const Mapping mapping(file);
    try {
        const ExifImage image = Exiv2::ImageFactory::open(
            ExifIo(new Exiv2::MemIo(mapping.bytes(), static_cast<ByteCount>(mapping.size()))));
        image->readMetadata();
        RawPhoto photo{largestPicture(*image), captureMetadata(image->exifData()),
                       orientationOf(image->exifData()), saysAdobe(image->exifData())};
        if (photo.picture.isEmpty()) {
            throw ImageError(ImageError::Cause::SmallPreview, "no large picture in the raw file");
        }
        return photo;
    } catch (const ImageError &) {
        throw;
    } catch (const std::bad_alloc &) {
        throw;
    } catch (const std::exception &error) {
        throw ImageError(ImageError::Cause::Damaged, error.what());
    }
}

} // namespace tarnovel
