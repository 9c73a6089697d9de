#pragma once

#include <functional>
#include <stop_token>

#include <QHash>
#include <QImage>
#include <QObject>
#include <QSet>
#include <QStringList>

#include "editor/EditorModel.h"

namespace tarnovel {

/// The photos that a collage can be made of: the session's, then files of the disk, which are read where they
/// are and never become part of the session.
class CollagePhotos : public QObject {
    Q_OBJECT

public:
    CollagePhotos(EditorModel &model, ImagePipeline &pipeline);
    ~CollagePhotos() override;

    QList<PhotoItem> all() const { return m_model.photos() + m_files; }
    /// Null for an unknown photo. One that has left the session is still known.
    const PhotoItem *find(const QUuid &id) const;

    /// Inspects files off the interface thread, at most as many as a session holds. `done` gets the photos
    /// that could be read, in order, and how many could not.
    void open(const QStringList &paths, std::function<void(const QList<QUuid> &, qsizetype unreadable)> done);
    bool opening() const { return m_opening > 0; }

    /// A small picture for the chooser; null until it has arrived, and for a photo that cannot be read.
    QImage tile(const QUuid &id);
    /// The photo has no tile because its file cannot be read.
    bool tileFailed(const QUuid &id) const { return m_failed.contains(id); }
    /// Those that have been made.
    const QHash<QUuid, QImage> &tiles() const { return m_tiles; }
    /// Lets other work go before the pictures that have not been made yet; they are made when asked for
    /// again.
    void postponeTiles();
    /// The long side of a tile's picture: 168 points at device ratio 2, and what a 3 : 2 photo is longer.
    static constexpr int tilePixels = 504;

Q_SIGNALS:
    void changed();
    void tileChanged();

private:
    struct Batch;
    void opened(const std::shared_ptr<Batch> &batch, const PhotoItem *item);
    void learnSession();

    EditorModel &m_model;
    ImagePipeline &m_pipeline;
    QList<PhotoItem> m_files;
    QHash<QUuid, PhotoItem> m_known;
    QHash<QUuid, QImage> m_tiles;
    QSet<QUuid> m_asked;
    QSet<QUuid> m_failed;
    int m_opening = 0;
    std::stop_source m_stop;
    std::stop_source m_tileStop;
};

} // namespace tarnovel
