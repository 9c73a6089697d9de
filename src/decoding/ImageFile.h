#pragma once

#include <QByteArray>

#include "imaging/ImageHeader.h"
#include "imaging/RegularFile.h"

namespace tarnovel {

/// A file whose first bytes say that it is a picture of a known format; the name says nothing.
class ImageFile {
public:
    /// Throws an ImageError (Unsupported) when the first bytes belong to no known format.
    explicit ImageFile(RegularFile file);

    PictureFormat format() const { return m_format; }
    int descriptor() const { return m_file.descriptor(); }
    qint64 size() const { return m_file.size(); }
    const FileIdentity &identity() const { return m_file.identity(); }

    /// Up to `count` bytes from `offset`; fewer where the file ends or cannot be read.
    QByteArray read(qint64 offset, qint64 count) const { return m_file.read(offset, count); }

    /// All of it, read once and kept: for formats that the libraries take as a whole. They would map a file,
    /// and a mapped file that somebody cuts short meanwhile ends the program. Throws an ImageError, TooLarge
    /// above 256 million bytes.
    const QByteArray &bytes() const;

private:
    RegularFile m_file;
    PictureFormat m_format = PictureFormat::Jpeg;
    mutable QByteArray m_bytes;
};

} // namespace tarnovel
