#pragma once

#include <compare>

#include <QByteArray>
#include <QString>

namespace tarnovel {

/// What tells one state of one file from another: the file's place on its device, its size, and the times of
/// its last changes in nanoseconds.
struct FileIdentity {
    quint64 device = 0;
    quint64 inode = 0;
    qint64 size = 0;
    qint64 modified = 0;
    qint64 changed = 0;
    auto operator<=>(const FileIdentity &) const = default;
};

/// A regular file opened for reading. Opening never waits: a pipe or a device is refused rather than read.
class RegularFile {
public:
    /// Throws an ImageError (Missing) when the file cannot be opened or is not a regular file.
    explicit RegularFile(const QString &path);
    /// Takes an open descriptor over, and closes it where it throws.
    explicit RegularFile(int descriptor);
    ~RegularFile();
    RegularFile(RegularFile &&other) noexcept;
    RegularFile &operator=(RegularFile &&other) noexcept;

    int descriptor() const { return m_descriptor; }
    qint64 size() const { return m_identity.size; }
    /// As it was when the file was opened.
    const FileIdentity &identity() const { return m_identity; }

    /// Up to `count` bytes from `offset`; fewer where the file ends or cannot be read.
    QByteArray read(qint64 offset, qint64 count) const;

private:
    int m_descriptor = -1;
    FileIdentity m_identity;
};

} // namespace tarnovel
