#pragma once

#include <stop_token>

#include <QByteArray>
#include <QImage>
#include <QList>

#include "decoding/ImageFile.h"
#include "decoding/VipsRuntime.h"

namespace tarnovel {

/// A picture that the library has opened and read the header of. Its file must outlive it.
class VipsPicture {
public:
    /// Throws an ImageError, also for a picture whose decoder would need it whole in memory and which is too
    /// large for that; and OperationCancelled.
    explicit VipsPicture(const ImageFile &file, const std::stop_token &stop = {});

    QSize size() const;
    /// 1…8; 1 for the formats whose decoder turns the picture itself.
    int orientation() const;
    /// The EXIF block, a TIFF header and its directories; empty when there is none.
    QByteArray exif() const;

    struct Pixels {
        /// In 16 bits a channel where the file has them and a profile: that one must come before they are
        /// cut.
        QList<QImage> images;
        /// The RGB profile that the pixels are still in; empty for sRGB.
        QByteArray profile;
    };
    /// Resamples parts of the stored picture (in its pixels, edges going on outside it) from one decoding,
    /// which uses this up: it reads from front to back. Throws an ImageError and OperationCancelled.
    Pixels decode(const QList<PicturePart> &parts, const std::stop_token &stop) &&;

private:
    const ImageFile &m_file;
    VipsImagePtr m_image;
};

} // namespace tarnovel
