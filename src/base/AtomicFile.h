#pragma once

#include <functional>

#include <QByteArray>
#include <QString>

namespace tarnovel {

enum class Durability {
    /// The bytes and the folder's entry have reached the disk on return.
    Synced,
    /// Whole for every reader, but a power cut may lose it: for files that live only for moments.
    Unsynced,
};

/// Replaces the file by `bytes`, whole or not at all. On a failure the old file is untouched and a FileError
/// is thrown.
void replaceFile(const QString &path, const QByteArray &bytes, Durability durability = Durability::Synced);

/// Copies `source` into `folder` under the first of nameFor(0), nameFor(1), … that no entry has, and returns
/// the path it got. The file appears whole or not at all, and never takes the place of another one, not even
/// of one that another process makes at the same moment. Throws a FileError, and leaves nothing behind, when
/// the disk refuses.
QString publishFile(const QString &source, const QString &folder, const std::function<QString(int)> &nameFor);

/// Removes the temporary files that writes of these functions left in `folder` when their process was killed.
/// A write that another process is still making is left alone.
void sweepTemporaryFiles(const QString &folder);

} // namespace tarnovel
