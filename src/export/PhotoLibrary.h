#pragma once

#include <optional>

#include <QString>
#include <QStringList>

#include "base/FileError.h"

namespace tarnovel {

/// Whether the user's photo library takes photos.
enum class PhotoLibraryAccess { Authorised, Restricted, Denied };

/// The photo library of a system. Whole batches go in, or nothing.
class PhotoLibrary {
public:
    virtual ~PhotoLibrary() = default;

    /// Asks for leave to add photos; may wait for the disk, or for the user.
    virtual PhotoLibraryAccess requestAccess() = 0;
    /// What was in the way when access was denied; asked for after `requestAccess`, on the same thread.
    virtual std::optional<FileError> refusal() const { return std::nullopt; }

    /// A finished file and the name it is to have, without "-2" and the like.
    struct Addition {
        QString file;
        QString photoName;
    };

    /// Adds all files or none, and returns where they are now, in the same order. The originals stay where
    /// they are. Throws a FileError.
    virtual QStringList add(const QList<Addition> &additions) = 0;
};

/// The user's pictures folder, where the album "Tarnovel" is a folder.
class PicturesFolder : public PhotoLibrary {
public:
    /// The pictures folder that the desktop names.
    PicturesFolder();
    explicit PicturesFolder(const QString &picturesFolder);

    /// Makes the folders that are missing. Denied when that fails, or when the album cannot be written.
    PhotoLibraryAccess requestAccess() override;

    /// Everything is written and synced beside the album first; then the names appear one after another, and
    /// are taken back if one of them cannot.
    QStringList add(const QList<Addition> &additions) override;

    std::optional<FileError> refusal() const override { return m_refusal; }

private:
    std::optional<FileError> m_refusal;
    QString m_album;
};

} // namespace tarnovel
