#include "collage/CollagePhotos.h"

#include <algorithm>
#include <utility>

#include <QFileInfo>

#include "pipeline/ImagePipeline.h"
#include "pipeline/WhenFinished.h"

namespace tarnovel {

/// Files that were opened together.
struct CollagePhotos::Batch {
    QList<QUuid> photos;
    qsizetype unreadable = 0;
    qsizetype left = 0;
    std::function<void(const QList<QUuid> &, qsizetype)> done;
};

CollagePhotos::CollagePhotos(EditorModel &model, ImagePipeline &pipeline)
    : m_model(model), m_pipeline(pipeline)
{
    learnSession();
    connect(&model, &EditorModel::changed, this, [this](EditorModel::Changes changes) {
        if (changes & EditorModel::PhotosChanged) {
            learnSession();
            Q_EMIT changed();
        }
    });
}

CollagePhotos::~CollagePhotos()
{
    m_stop.request_stop();
    m_tileStop.request_stop();
}

void CollagePhotos::learnSession()
{
    for (const PhotoItem &item : m_model.photos()) {
        m_known.insert(item.id, item);
    }
}

const PhotoItem *CollagePhotos::find(const QUuid &id) const
{
    const auto found = m_known.constFind(id);
    return found == m_known.constEnd() ? nullptr : &*found;
}

void CollagePhotos::open(const QStringList &paths, std::function<void(const QList<QUuid> &, qsizetype)> done)
{
    const auto batch = std::make_shared<Batch>();
    batch->left = std::min(paths.size(), EditorModel::mostPhotos);
    batch->done = std::move(done);
    for (const QString &path : paths.first(batch->left)) {
        ++m_opening;
        whenArrived<PhotoItem>(
            m_pipeline.inspect({QFileInfo(path).absoluteFilePath()}, ImagePipeline::TestDecode::Yes,
                               m_stop.get_token()),
            this, m_stop.get_token(), [this, batch](const PhotoItem &item) { opened(batch, &item); },
            [this, batch] { opened(batch, nullptr); });
    }
    Q_EMIT changed();
}

void CollagePhotos::opened(const std::shared_ptr<Batch> &batch, const PhotoItem *item)
{
    --m_opening;
    if (item) {
        // A file that has been opened before is the same photo.
        auto same = std::ranges::find(m_files, item->file, &PhotoItem::file);
        if (same == m_files.end()) {
            m_known.insert(item->id, *item);
            m_files.append(*item);
            same = std::prev(m_files.end());
        }
        batch->photos.append(same->id);
    } else {
        ++batch->unreadable;
    }
    if (--batch->left == 0) {
        batch->done(batch->photos, batch->unreadable);
        Q_EMIT changed();
    }
}

QImage CollagePhotos::tile(const QUuid &id)
{
    const PhotoItem *item = find(id);
    if (item && !m_asked.contains(id)) {
        m_asked.insert(id);
        whenArrived<QImage>(
            m_pipeline.read(item->file, tilePixels, m_tileStop.get_token()), this, m_tileStop.get_token(),
            [this, id](const QImage &image) {
                m_tiles.insert(id, image);
                Q_EMIT tileChanged();
            },
            [this, id] {
                m_failed.insert(id);
                Q_EMIT tileChanged();
            });
    }
    return m_tiles.value(id);
}

void CollagePhotos::postponeTiles()
{
    m_tileStop.request_stop();
    m_tileStop = {};
    m_asked = {m_tiles.keyBegin(), m_tiles.keyEnd()};
}

} // namespace tarnovel
