#pragma once

#include <QString>

namespace tarnovel {

/// A photo that was dropped or picked, as a copy inside the library folder.
struct ImportedFile {
    /// Name in the library folder: a new UUID and the source's extension.
    QString file;

    /// Copies the contents of `source` (never a link to it) into the library folder, sharing blocks where the
    /// file system can. Throws a FileError, and leaves nothing behind, when that fails.
    static ImportedFile receive(const QString &source, const QString &libraryFolder);
};

} // namespace tarnovel
