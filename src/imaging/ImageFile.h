#pragma once

#include <QByteArray>
#include <QString>

#include "imaging/ImageDecoder.h"

namespace tarnovel {

/// A regular file opened for reading whose first bytes say that it is a picture of a known format. Opening
/// never waits: a pipe or device is refused rather than read.
class ImageFile {
public:
    /// Throws an ImageError: Missing when the file cannot be opened or is not a regular file, Unsupported
    /// when its first bytes belong to no known format.
    explicit ImageFile(const QString &path);
    ~ImageFile();
    ImageFile(const ImageFile &) = delete;
    ImageFile &operator=(const ImageFile &) = delete;

    PictureFormat format() const { return m_format; }
    int descriptor() const { return m_descriptor; }
    qint64 size() const { return m_size; }

    /// Up to `count` bytes from `offset`; fewer where the file ends or cannot be read.
    QByteArray read(qint64 offset, qint64 count) const;

private:
    int m_descriptor = -1;
    qint64 m_size = 0;
    PictureFormat m_format = PictureFormat::Jpeg;
};

} // namespace tarnovel
