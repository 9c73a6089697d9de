#pragma once

#include <memory>
#include <optional>
#include <stop_token>

#include <QColorSpace>
#include <QImage>
#include <QList>

#include "decoding/FormatLibrary.h"
#include "decoding/ImageFile.h"
#include "decoding/JpegSegments.h"
#include "decoding/PngChunks.h"
#include "decoding/RawPhoto.h"
#include "imaging/CaptureMetadata.h"

namespace tarnovel {

/// A photo, opened once: whatever is read of it is read when it is first asked for, and kept. It belongs to
/// one thread at a time.
class PhotoFile {
public:
    /// Recognises the format by the first bytes, never by the name. A raw file's picture is the camera's own
    /// JPEG in it. Throws an ImageError for any other, and for a raw file with nothing but small previews.
    explicit PhotoFile(RegularFile file);

    const FileIdentity &identity() const { return m_identity; }

    /// Throws an ImageError, also for more than 400 megapixels and for a side above 65,500 pixels.
    const ImageHeader &header();

    /// What the camera wrote. Never throws: what cannot be read is absent.
    const CaptureMetadata &metadata();

    /// Parts of the upright picture (the first one of several), in sRGB, from one decoding. The format of
    /// each is RGB32, or ARGB32_Premultiplied where the picture has transparency. Throws an ImageError, also
    /// for a picture part of whose data is missing, and OperationCancelled.
    QList<QImage> decode(const QList<PicturePart> &parts, const std::stop_token &stop = {});

private:
    const JpegSegments &segments();
    const PngChunks &chunks();
    std::unique_ptr<OpenedPicture> takePicture(const std::stop_token &stop);
    CaptureMetadata readMetadata();
    std::optional<QColorSpace::NamedColorSpace> statedColors();
    QImage inSrgb(QImage image, const QByteArray &profile);

    FileIdentity m_identity;
    /// What stands for the photo where its file is a raw one.
    std::optional<RawPhoto> m_raw;
    ImageFile m_file;
    std::optional<JpegSegments> m_segments;
    std::optional<PngChunks> m_chunks;
    std::optional<ImageHeader> m_header;
    std::optional<CaptureMetadata> m_metadata;
    /// Opened for its header, and not decoded yet.
    std::unique_ptr<OpenedPicture> m_picture;
};

} // namespace tarnovel
