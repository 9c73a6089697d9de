#include "imaging/ImageDecoder.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <optional>
#include <utility>

#include <QTransform>

#include "base/Cancellation.h"
#include "imaging/ColorProfile.h"
#include "imaging/HeifColor.h"
#include "imaging/ImageError.h"
#include "imaging/ImageFile.h"
#include "imaging/ImageLimits.h"
#include "imaging/JpegPlanes.h"
#include "imaging/JpegSegments.h"
#include "imaging/PngChunks.h"
#include "imaging/TiffDirectory.h"
#include "imaging/VipsDecoder.h"

namespace tarnovel {
namespace {

constexpr int longestTargetSide = 32'000;

/// A header, the profile that a JPEG file keeps beside it, and the colours that a file states otherwise,
/// which hold where it has no profile.
struct Opened {
    ImageHeader header;
    QByteArray profile;
    std::optional<QColorSpace::NamedColorSpace> stated;
};

/// The colours of a picture in code points, where they are others than sRGB and no wider than a screen's.
std::optional<QColorSpace::NamedColorSpace> statedColors(const ImageFile &file)
{
    // Of ITU-T H.273: the primaries of Display P3; the transfer of sRGB, or one left open.
    constexpr int displayP3 = 12;
    constexpr int srgbTransfer = 13;
    constexpr int unspecified = 2;
    const CodedColor coded = readCodedColor(file).value_or(CodedColor());
    const bool isP3 =
        coded.primaries == displayP3 && (coded.transfer == srgbTransfer || coded.transfer == unspecified);
    return isP3 ? std::optional(QColorSpace::DisplayP3) : std::nullopt;
}

Opened inspect(const ImageFile &file)
{
    Opened opened;
    opened.header.format = file.format();
    if (file.format() == PictureFormat::Jpeg) {
        const JpegSegments segments = readJpegSegments(file);
        checkPictureSize(segments.size);
        opened.header.storedSize = segments.size;
        opened.header.orientation = exifOrientation(segments.exif);
        opened.profile = segments.profile;
        if (saysAdobeRgb(segments.exif)) {
            opened.stated = QColorSpace::AdobeRgb;
        }
    } else {
        const VipsHeader header = readVipsHeader(file);
        opened.header.storedSize = header.size;
        opened.header.orientation = file.format() == PictureFormat::Png
                                        ? exifOrientation(readPngChunks(file).exif)
                                        : header.orientation;
        if (file.format() == PictureFormat::Heif || file.format() == PictureFormat::Avif) {
            opened.stated = statedColors(file);
        }
    }
    return opened;
}

/// Where a rectangle of the upright picture lies in the stored one.
QRectF storedRegion(const QRectF &upright, QSize stored, int orientation)
{
    const QRectF swapped(upright.y(), upright.x(), upright.height(), upright.width());
    const QRectF turned = orientation >= 5 ? swapped : upright;
    const bool fromRight = orientation == 2 || orientation == 3 || orientation == 7 || orientation == 8;
    const bool fromBottom = orientation == 3 || orientation == 4 || orientation == 6 || orientation == 7;
    return QRectF(fromRight ? stored.width() - turned.x() - turned.width() : turned.x(),
                  fromBottom ? stored.height() - turned.y() - turned.height() : turned.y(), turned.width(),
                  turned.height());
}

QImage upright(const QImage &stored, int orientation)
{
    switch (orientation) {
    case 2:
        return stored.mirrored(true, false);
    case 3:
        return stored.mirrored(true, true);
    case 4:
        return stored.mirrored(false, true);
    case 5:
        return stored.transformed(QTransform().rotate(90)).mirrored(true, false);
    case 6:
        return stored.transformed(QTransform().rotate(90));
    case 7:
        return stored.transformed(QTransform().rotate(90)).mirrored(false, true);
    case 8:
        return stored.transformed(QTransform().rotate(270));
    default:
        return stored;
    }
}

/// Refuses damage that the decoding itself would not notice.
void checkData(const ImageFile &file, const std::stop_token &stop)
{
    if (file.format() == PictureFormat::Jpeg) {
        checkJpegData(file, stop);
    } else if (file.format() == PictureFormat::Png) {
        checkPngData(file, stop);
    }
}

QImage inSrgb(QImage image, const QByteArray &profile, const Opened &opened)
{
    return profile.isEmpty() && opened.profile.isEmpty() && opened.stated
               ? convertedToSrgb(std::move(image), *opened.stated)
               : convertedToSrgb(std::move(image), profile);
}

QImage decode(const ImageFile &file, const Opened &opened, const QRectF &region, QSize size,
              const std::stop_token &stop)
{
    const int orientation = opened.header.orientation;
    const QRectF stored = storedRegion(region, opened.header.storedSize, orientation);
    const QSize storedTarget = orientation >= 5 ? size.transposed() : size;
    QImage image;
    if (file.format() == PictureFormat::Jpeg && inspectJpeg(file) == JpegLayout::Planes) {
        image = decodeJpegPlanes(file, stored, storedTarget, stop);
        image = inSrgb(std::move(image), opened.profile, opened);
    } else {
        checkData(file, stop);
        VipsPixels pixels = decodeWithVips(file, stored, storedTarget, stop);
        image = inSrgb(std::move(pixels.image), pixels.profile, opened);
    }
    throwIfCancelled(stop);
    return upright(image, orientation);
}

/// Runs the work with the shortage of memory, which a hostile file may bring about, as an error of the file.
template<typename Work>
auto guarded(Work work)
{
    try {
        return work();
    } catch (const std::bad_alloc &) {
        throw ImageError(ImageError::Cause::TooLarge, "not enough memory");
    }
}

} // namespace

ImageHeader readImageHeader(const QString &path)
{
    return guarded([&] { return inspect(ImageFile(path)).header; });
}

QImage decodeImage(const QString &path, int maxPixel, const std::stop_token &stop)
{
    throwIfCancelled(stop);
    return guarded([&] {
        const ImageFile file(path);
        const Opened opened = inspect(file);
        const QSize whole = opened.header.uprightSize();
        const int longer = std::max(whole.width(), whole.height());
        const double scale = std::min(1.0, std::max(maxPixel, 1) / double(longer));
        const QSize size(std::max(1, static_cast<int>(std::lround(whole.width() * scale))),
                         std::max(1, static_cast<int>(std::lround(whole.height() * scale))));
        return decode(file, opened, QRectF(QPointF(), QSizeF(whole)), size, stop);
    });
}

QImage decodeImageRegion(const QString &path, const QRectF &region, QSize size, const std::stop_token &stop)
{
    throwIfCancelled(stop);
    const bool finite = std::isfinite(region.x()) && std::isfinite(region.y()) && region.width() > 0 &&
                        region.height() > 0 && std::isfinite(region.width()) &&
                        std::isfinite(region.height());
    if (!finite || size.isEmpty() || std::max(size.width(), size.height()) > longestTargetSide) {
        throw ImageError(ImageError::Cause::TooLarge, "no such part of a picture");
    }
    return guarded([&] {
        const ImageFile file(path);
        return decode(file, inspect(file), region, size, stop);
    });
}

} // namespace tarnovel
