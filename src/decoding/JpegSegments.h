#pragma once

#include <QByteArray>
#include <QSize>

#include "decoding/ImageFile.h"

namespace tarnovel {

/// What stands in the marker segments before the picture data of a JPEG file.
struct JpegSegments {
    QSize size;
    /// The EXIF block without its "Exif" heading: a TIFF header and its directories.
    QByteArray exif;
    /// The ICC profile, put together from its segments; empty when one of them is missing.
    QByteArray profile;
};

/// Never reads the picture data. Throws an ImageError: Damaged, or Unsupported for kinds that nothing here
/// decodes.
JpegSegments readJpegSegments(const ImageFile &file);

/// The orientation, 1…8, that the first directory of an EXIF block states; 1 when it states none.
int exifOrientation(const QByteArray &exif);

} // namespace tarnovel
