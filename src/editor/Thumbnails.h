#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <tuple>
#include <vector>

#include <QCache>
#include <QHash>
#include <QObject>
#include <QTimer>

#include "base/Worker.h"
#include "pipeline/ImagePipeline.h"
#include "render/CompositionRenderer.h"

namespace tarnovel {

/// What a small picture shows: a photo of the set in its own settings, or in those of a card.
struct ThumbnailKey {
    enum class Of { Photo, Template, Style, SetAside, Problem };
    Of of = Of::Photo;
    /// The photo's, the template's or the style's.
    QString id;
    bool operator==(const ThumbnailKey &) const = default;
    bool operator<(const ThumbnailKey &other) const
    {
        return std::tie(of, id) < std::tie(other.of, other.id);
    }

    static ThumbnailKey photo(const PhotoItem &item) { return {Of::Photo, item.id.toString()}; }
};

/// Small pictures of framed photos, drawn in the background: those asked for last, which are those that can
/// be seen, come first, and one whose settings have not changed is not drawn again. One that has changed is
/// drawn again when no more changes follow for a moment: not at each step of a drag. Photos are kept decoded
/// at a small size, so that a change of style costs no decoding.
class Thumbnails : public QObject {
    Q_OBJECT

public:
    explicit Thumbnails(ImagePipeline &pipeline);
    ~Thumbnails() override;

    /// The picture `key` of a photo with its settings, fitted into `box` device pixels. Until it has
    /// been drawn this is an older one, or null; `ready` tells when it is there. The same key may be asked
    /// for in several sizes.
    QImage image(const ThumbnailKey &key, const PhotoItem &item, QSize box);
    /// The file has been tried and cannot be read.
    bool unreadable(const QString &file) const { return m_unreadable.contains(file); }
    /// The photo is shown without one of the pictures that its frame names.
    bool incomplete(const PhotoItem &item) const;
    bool idle() const { return !m_job && m_queue.empty() && m_resting.empty(); }

    /// The canvas that fits into a box.
    static QSize canvasIn(QSize box, const PhotoItem &item);

Q_SIGNALS:
    void ready(const tarnovel::ThumbnailKey &key);

private:
    using Key = std::pair<ThumbnailKey, int>;
    struct Entry {
        PhotoItem item;
        QSize canvas;
        QImage image;
        bool failed = false;
        /// When it was last asked for.
        quint64 used = 0;
    };
    struct Job {
        Key key;
        PhotoItem item;
        QSize canvas;
        QImage photo;
        CompositionImages images;
    };
    struct Source {
        QString key;
        QString file;
        int pixels = 0;
        bool blurred = false;
    };

    void next();
    /// Forgets the pictures that have not been asked for for long.
    void prune();
    void load(size_t index, const std::shared_ptr<const std::vector<Source>> &sources);
    void loaded(size_t index, const std::shared_ptr<const std::vector<Source>> &sources, const QImage &image);
    void draw();
    void finish(const QImage &image);
    std::vector<Source> sourcesOf(const PhotoItem &item, QSize canvas) const;

    ImagePipeline &m_pipeline;
    std::map<Key, Entry> m_entries;
    quint64 m_uses = 0;
    std::vector<Key> m_queue;
    /// Drawn before, and changed since; drawn again as soon as the changes rest.
    std::vector<Key> m_resting;
    QTimer m_rest;
    std::unique_ptr<Job> m_job;
    QCache<QString, QImage> m_sources;
    std::set<QString> m_unreadable;
    std::stop_source m_stop;
    Worker m_worker;
};

} // namespace tarnovel
