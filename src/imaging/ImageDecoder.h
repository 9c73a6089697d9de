#pragma once

#include <stop_token>

#include <QImage>
#include <QRectF>
#include <QString>

namespace tarnovel {

enum class PictureFormat { Jpeg, Png, Heif, Avif, WebP, Tiff };

/// What a file says of its picture before a pixel is decoded.
struct ImageHeader {
    PictureFormat format = PictureFormat::Jpeg;
    /// Pixels as stored, before `orientation` is applied.
    QSize storedSize;
    /// EXIF orientation, 1…8; 1 where the decoder applies the file's rotation by itself.
    int orientation = 1;

    QSize uprightSize() const { return orientation >= 5 ? storedSize.transposed() : storedSize; }
};

/// Recognises the format by the first bytes, never by the name. Throws an ImageError for anything but a
/// regular file in one of the formats, for more than 400 megapixels and for a side above 65,500 pixels.
ImageHeader readImageHeader(const QString &path);

/// The picture (the first one of several), upright, in sRGB, its longer side at most `maxPixel` pixels; never
/// enlarged. The format is RGB32, or ARGB32_Premultiplied where the picture has transparency. Throws an
/// ImageError, also for a picture part of whose data is missing, and OperationCancelled.
QImage decodeImage(const QString &path, int maxPixel, const std::stop_token &stop = {});

/// The part `region` of the upright picture (in its pixels, fractions allowed; it may reach past the edges,
/// where the edge pixels go on), resampled to exactly `size`, up or down. Format and errors are those of
/// decodeImage.
QImage decodeImageRegion(const QString &path, const QRectF &region, QSize size,
                         const std::stop_token &stop = {});

} // namespace tarnovel
