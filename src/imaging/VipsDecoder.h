#pragma once

#include <stop_token>

#include <QByteArray>
#include <QImage>
#include <QRectF>

#include "imaging/ImageFile.h"

namespace tarnovel {

struct VipsHeader {
    QSize size;
    /// 1 for the formats whose decoder turns the picture itself.
    int orientation = 1;
};

/// Reads the header of a file in any of the formats. Throws an ImageError, also for a picture whose decoder
/// would need it whole in memory and which is too large for that.
VipsHeader readVipsHeader(const ImageFile &file);

/// The EXIF block that the decoder finds, a TIFF header and its directories; empty when there is none.
QByteArray readVipsExif(const ImageFile &file);

struct VipsPixels {
    /// In 16 bits a channel where the file has them and a profile: that one must come before they are cut.
    QImage image;
    /// The RGB profile that the pixels are still in; empty for sRGB.
    QByteArray profile;
};

/// Resamples `region` of the stored picture (in its pixels, edges going on outside it) to `size`. Throws an
/// ImageError and OperationCancelled.
VipsPixels decodeWithVips(const ImageFile &file, const QRectF &region, QSize size,
                          const std::stop_token &stop);

} // namespace tarnovel
