#pragma once

#include <QImage>
#include <QString>

#include "imaging/RegularFile.h"

namespace tarnovel {

/// Small pictures of photos on the disk, so that the next start need not decode them: as the desktop's own
/// thumbnails they are PNG files for their owner alone, named by a sum, in the size that is called x-large.
/// They lie in a folder of their own, because the photos that they show are private copies: a thumbnail goes
/// soon after its photo.
class ThumbnailStore {
public:
    /// An empty folder means that nothing is kept.
    explicit ThumbnailStore(QString folder);

    /// The longer side of a thumbnail: "x-large" of the thumbnail standard.
    static constexpr int pixels = 512;

    bool isKept() const { return !m_folder.isEmpty(); }
    /// Where the thumbnail of a photo lies, or would lie: another one for each state of its file.
    QString path(const QString &photo, const FileIdentity &state) const;
    /// Failures are no matter: the thumbnail is made again.
    void write(const QString &path, const QImage &thumbnail) const;
    /// Removes the thumbnails of all photos that are not in this folder any more.
    void prune(const QString &photoFolder) const;

private:
    const QString m_folder;
};

} // namespace tarnovel
