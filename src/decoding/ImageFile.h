#pragma once

#include <optional>

#include <QByteArray>

#include "imaging/ImageHeader.h"
#include "imaging/RegularFile.h"

namespace tarnovel {

/// A file whose first bytes say that it is a picture of a known format; the name says nothing.
class ImageFile {
public:
    /// Throws an ImageError (Unsupported) when the first bytes belong to no known format.
    explicit ImageFile(RegularFile file);
    /// A file that another one holds; throws as for one of its own.
    explicit ImageFile(const QByteArray &bytes);

    PictureFormat format() const { return m_format; }
    bool isInMemory() const { return !m_file; }
    /// Of a file that is not in memory.
    int descriptor() const { return m_file->descriptor(); }
    qint64 size() const { return m_file ? m_file->size() : m_bytes.size(); }

    /// Up to `count` bytes from `offset`; fewer where the file ends or cannot be read.
    QByteArray read(qint64 offset, qint64 count) const
    {
        return m_file ? m_file->read(offset, count) : m_bytes.mid(offset, count);
    }

    /// All of it, read once and kept: for formats that the libraries take as a whole. They would map a file,
    /// and a mapped file that somebody cuts short meanwhile ends the program. Throws an ImageError, TooLarge
    /// above 256 million bytes.
    const QByteArray &bytes() const;

private:
    void recognise();

    std::optional<RegularFile> m_file;
    PictureFormat m_format = PictureFormat::Jpeg;
    mutable QByteArray m_bytes;
};

} // namespace tarnovel
