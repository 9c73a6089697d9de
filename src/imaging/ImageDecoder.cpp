#include "imaging/ImageDecoder.h"

#include <algorithm>
#include <cmath>
#include <new>

#include <QTransform>

#include "base/Cancellation.h"
#include "imaging/ColorProfile.h"
#include "imaging/ImageError.h"
#include "imaging/ImageFile.h"
#include "imaging/ImageLimits.h"
#include "imaging/JpegPlanes.h"
#include "imaging/JpegSegments.h"
#include "imaging/PngChunks.h"
#include "imaging/VipsDecoder.h"

namespace tarnovel {
namespace {

constexpr int longestTargetSide = 32'000;

/// A header, and the profile that a JPEG file keeps beside it.
struct Opened {
    ImageHeader header;
    QByteArray profile;
};

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
    } else {
        const VipsHeader header = readVipsHeader(file);
        opened.header.storedSize = header.size;
        opened.header.orientation = file.format() == PictureFormat::Png
                                        ? exifOrientation(readPngChunks(file).exif)
                                        : header.orientation;
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

QImage decode(const ImageFile &file, const Opened &opened, const QRectF &region, QSize size,
              const std::stop_token &stop)
{
    const int orientation = opened.header.orientation;
    const QRectF stored = storedRegion(region, opened.header.storedSize, orientation);
    const QSize storedTarget = orientation >= 5 ? size.transposed() : size;
    QImage image;
    if (file.format() == PictureFormat::Jpeg && inspectJpeg(file) == JpegLayout::Planes) {
        image = decodeJpegPlanes(file, stored, storedTarget, stop);
        image = convertedToSrgb(std::move(image), opened.profile);
    } else {
        checkData(file, stop);
        VipsPixels pixels = decodeWithVips(file, stored, storedTarget, stop);
        image = convertedToSrgb(std::move(pixels.image), pixels.profile);
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
