#include "decoding/PhotoFile.h"

#include <new>
#include <utility>

#include <QTransform>

#include "base/Cancellation.h"
#include "decoding/CaptureReader.h"
#include "decoding/ColorProfile.h"
#include "decoding/HeifColor.h"
#include "decoding/JpegPlanes.h"
#include "decoding/TiffDirectory.h"
#include "imaging/ImageError.h"
#include "imaging/ImageLimits.h"

namespace tarnovel {
namespace {

/// Whether code points state colours that are others than sRGB and no wider than a screen's.
bool saysDisplayP3(const CodedColor &coded)
{
    // Of ITU-T H.273: the primaries of Display P3; the transfer of sRGB, or one left open.
    constexpr int displayP3 = 12;
    constexpr int srgbTransfer = 13;
    constexpr int unspecified = 2;
    return coded.primaries == displayP3 && (coded.transfer == srgbTransfer || coded.transfer == unspecified);
}

bool isCodedStill(PictureFormat format)
{
    return format == PictureFormat::Heif || format == PictureFormat::Avif;
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

PhotoFile::PhotoFile(RegularFile file)
    : m_identity(file.identity()),
      m_raw(guarded([&file] { return readRawPhoto(file); })),
      m_file(m_raw ? ImageFile(m_raw->picture) : ImageFile(std::move(file)))
{
    if (m_raw) {
        m_metadata = m_raw->metadata;
    }
}

const JpegSegments &PhotoFile::segments()
{
    if (!m_segments) {
        m_segments = readJpegSegments(m_file);
    }
    return *m_segments;
}

const PngChunks &PhotoFile::chunks()
{
    if (!m_chunks) {
        m_chunks = readPngChunks(m_file);
    }
    return *m_chunks;
}

std::unique_ptr<OpenedPicture> PhotoFile::takePicture(const std::stop_token &stop)
{
    return m_picture ? std::exchange(m_picture, nullptr) : formatLibrary().open(m_file, stop);
}

const ImageHeader &PhotoFile::header()
{
    if (m_header) {
        return *m_header;
    }
    guarded([this] {
        ImageHeader header;
        header.format = m_file.format();
        if (header.format == PictureFormat::Jpeg) {
            header.storedSize = segments().size;
            checkPictureSize(header.storedSize);
            header.orientation = m_raw ? m_raw->orientation : exifOrientation(segments().exif);
        } else {
            m_picture = formatLibrary().open(m_file, {});
            header.storedSize = m_picture->size();
            header.orientation = header.format == PictureFormat::Png ? exifOrientation(chunks().exif)
                                                                     : m_picture->orientation();
        }
        m_header = header;
    });
    return *m_header;
}

const CaptureMetadata &PhotoFile::metadata()
{
    if (!m_metadata) {
        try {
            m_metadata = readMetadata();
        } catch (const std::exception &) {
            m_metadata.emplace();
        }
    }
    return *m_metadata;
}

CaptureMetadata PhotoFile::readMetadata()
{
    switch (m_file.format()) {
    case PictureFormat::Jpeg:
        return captureMetadata(segments().exif);
    case PictureFormat::Tiff:
        // The parser would take the whole file for a few hundred bytes of it.
        return captureMetadata(captureBlock(
            TiffDirectories([this](qint64 offset, qint64 count) { return m_file.read(offset, count); })));
    case PictureFormat::Png:
        return chunks().exif.isEmpty()
                   ? captureMetadataByParser(PictureFormat::Png, chunks().texts).value_or(CaptureMetadata())
                   : captureMetadata(chunks().exif);
    case PictureFormat::WebP:
        return captureMetadataByParser(PictureFormat::WebP, m_file.bytes()).value_or(CaptureMetadata());
    case PictureFormat::Heif:
    case PictureFormat::Avif:
        break;
    }
    // The parser misses the block where a file keeps it in some of the ways that the decoder knows.
    if (const auto found = captureMetadataByParser(m_file.format(), m_file.bytes())) {
        return *found;
    }
    if (!m_picture) {
        m_picture = formatLibrary().open(m_file, {});
    }
    return captureMetadata(m_picture->exif());
}

/// What the file says of its colours otherwise than by a profile; none for sRGB.
std::optional<QColorSpace::NamedColorSpace> PhotoFile::statedColors()
{
    const bool rawSays = m_raw && m_raw->isAdobeRgb && segments().exif.isEmpty();
    if (m_file.format() == PictureFormat::Jpeg && (rawSays || saysAdobeRgb(segments().exif))) {
        return QColorSpace::AdobeRgb;
    }
    if (isCodedStill(m_file.format()) && saysDisplayP3(readCodedColor(m_file).value_or(CodedColor()))) {
        return QColorSpace::DisplayP3;
    }
    return std::nullopt;
}

/// A profile comes before all that a file states otherwise.
QImage PhotoFile::inSrgb(QImage image, const QByteArray &profile)
{
    const bool hasOwn = m_file.format() == PictureFormat::Jpeg && !segments().profile.isEmpty();
    if (profile.isEmpty() && !hasOwn) {
        if (const auto stated = statedColors()) {
            return convertedToSrgb(std::move(image), *stated);
        }
    }
    return convertedToSrgb(std::move(image), profile);
}

QList<QImage> PhotoFile::decode(const QList<PicturePart> &parts, const std::stop_token &stop)
{
    throwIfCancelled(stop);
    for (const PicturePart &part : parts) {
        checkPicturePart(part);
    }
    return guarded([&] {
        const int orientation = header().orientation;
        QList<PicturePart> stored;
        for (const PicturePart &part : parts) {
            stored.append({storedRegion(part.region, header().storedSize, orientation),
                           orientation >= 5 ? part.size.transposed() : part.size});
        }
        QList<QImage> images;
        QByteArray profile;
        if (m_file.format() == PictureFormat::Jpeg) {
            images = decodeJpegPlanes(m_file, stored, stop).value_or(QList<QImage>());
            profile = segments().profile;
        }
        if (images.isEmpty()) {
            formatLibrary(); // who has none need not begin
            // Damage that the library would not tell.
            if (m_file.format() == PictureFormat::Jpeg) {
                checkJpegData(m_file, stop);
            } else if (m_file.format() == PictureFormat::Png) {
                checkPngData(m_file, stop);
            }
            OpenedPicture::Pixels pixels = takePicture(stop)->decode(stored, stop);
            images = std::move(pixels.images);
            profile = pixels.profile;
        }
        for (QImage &image : images) {
            image = upright(inSrgb(std::move(image), profile), orientation);
            throwIfCancelled(stop);
        }
        return images;
    });
}

} // namespace tarnovel
