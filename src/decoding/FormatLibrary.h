#pragma once

#include <memory>
#include <stop_token>

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QSize>

#include "decoding/ImageFile.h"

namespace tarnovel {

/// A picture that a library has opened and read the header of. Its file must outlive it.
class OpenedPicture {
public:
    virtual ~OpenedPicture() = default;

    virtual QSize size() const = 0;
    /// 1…8; 1 for the formats whose decoder turns the picture itself.
    virtual int orientation() const = 0;
    /// The EXIF block, a TIFF header and its directories; empty when there is none.
    virtual QByteArray exif() const = 0;

    struct Pixels {
        /// In 16 bits a channel where the file has them and a profile: that one must come before they are
        /// cut.
        QList<QImage> images;
        /// The RGB profile that the pixels are still in; empty for sRGB.
        QByteArray profile;
    };
    /// Resamples parts of the stored picture (in its pixels, edges going on outside it) from one decoding,
    /// which uses this up: it reads from front to back. Throws an ImageError and OperationCancelled.
    virtual Pixels decode(const QList<PicturePart> &parts, const std::stop_token &stop) = 0;
};

/// Pixels in rows without padding, in a form that colour libraries take.
struct PlainPixels {
    enum class Kind { Grey, Rgb };
    QByteArray bytes;
    QSize size;
    int bands = 3;
    bool deep = false;
    Kind kind = Kind::Rgb;
};

/// What reads all that JPEG's own library does not: it takes a hundred libraries, which cost four times as
/// much to load as a small photo to decode. A decoder that has none of it says so, and the program asks one
/// that has.
class FormatLibrary {
public:
    virtual ~FormatLibrary() = default;

    /// Throws an ImageError, also for a picture whose decoder would need it whole in memory and which is too
    /// large for that; and OperationCancelled.
    virtual std::unique_ptr<OpenedPicture> open(const ImageFile &file, const std::stop_token &stop) const = 0;
    /// The pixels in sRGB, three or four samples each of the same depth; empty for a failure.
    virtual QByteArray inSrgb(const PlainPixels &pixels, const QByteArray &profile) const = 0;
};

/// To be called before anything is read; `library` lives on.
void setFormatLibrary(const FormatLibrary &library);
bool hasFormatLibrary();
/// Throws an ImageError (NoDecoder) where there is none.
const FormatLibrary &formatLibrary();

} // namespace tarnovel
