#pragma once

#include <algorithm>
#include <cmath>

#include <QRectF>
#include <QSize>

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

/// A part of an upright picture, in its pixels, and the pixels that it becomes. Fractions are allowed, and so
/// is reaching past the edges, where the edge pixels go on.
struct PicturePart {
    QRectF region;
    QSize size;

    /// The whole picture, its longer side at most `maxPixel` pixels; never enlarged.
    static PicturePart whole(QSize picture, int maxPixel)
    {
        const int longer = std::max(picture.width(), picture.height());
        const double scale = std::min(1.0, std::max(maxPixel, 1) / double(longer));
        const auto scaled = [scale](int side) {
            return std::max(1, static_cast<int>(std::lround(side * scale)));
        };
        return {QRectF(QPointF(), QSizeF(picture)), {scaled(picture.width()), scaled(picture.height())}};
    }
};

} // namespace tarnovel
