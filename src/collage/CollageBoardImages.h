#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <stop_token>
#include <vector>

#include <QHash>
#include <QObject>

#include "collage/CollageRenderer.h"
#include "editor/Clock.h"
#include "model/Session.h"

namespace tarnovel {

class ImagePipeline;

/// The pictures of a collage's photos for the screen.
///
/// Each photo is kept whole in a few sizes, the largest of them bounded. While cells change from frame to
/// frame they are drawn from the size just below their own, the fastest that the painter can scale smoothly.
/// As soon as the collage rests, each cell gets a picture resampled to exactly its pixels, off the interface
/// thread, so that the board shows what the result will; where a cell asks for more than the largest size
/// has, it comes from the file.
class CollageBoardImages : public QObject {
    Q_OBJECT

public:
    CollageBoardImages(ImagePipeline &pipeline, Clock &clock);
    ~CollageBoardImages() override;

    /// Loads what is new of these photos and forgets all others. A photo is drawn from its stand-in, if it
    /// has one, until its own pictures arrive.
    void show(const QList<PhotoItem> &photos, const QHash<QUuid, QImage> &standIns);

    /// What there is to draw now; the plan's unit is the device's pixel. Exact pictures follow once the same
    /// plan has been asked for during `rest`.
    std::map<int, PhotoImage> images(const CollageDesign &design, const CollagePlan &plan);
    /// What there is to draw at a small size at once.
    std::map<int, PhotoImage> smallImages(const CollageDesign &design, const CollagePlan &plan) const;

    /// All pictures of this plan are exact.
    bool exact(const CollageDesign &design, const CollagePlan &plan) const;
    /// The photo is gone or damaged.
    bool unreadable(const QUuid &photo) const { return m_unreadable.contains(photo); }

    /// The long side of a photo's largest picture: two in a row fill a board of 1500 pixels.
    static constexpr int largestPixels = 1500;
    /// How long a plan has to stay the same.
    static constexpr std::chrono::milliseconds rest{80};

Q_SIGNALS:
    void changed();
    void failed(const QUuid &photo);

private:
    /// What a cell shows.
    struct View {
        QUuid photo;
        QRectF whole;
        QRectF shown;
        QSize canvas;
        bool operator==(const View &) const = default;
    };
    /// The whole photo, each picture half as large as the one before.
    struct Photo {
        PhotoItem item;
        std::vector<QImage> levels;
        QImage standIn;
    };
    struct Exact {
        View view;
        PhotoImage image;
    };
    using Views = std::map<int, View>;

    Views views(const CollageDesign &design, const CollagePlan &plan) const;
    enum class Choice { Fast, Fine };
    static std::optional<PhotoImage> chosen(const Photo &photo, double width, Choice choice);
    bool isExact(int slot, const View &view) const;
    void load(const PhotoItem &item);
    void addLevel(const QUuid &id, const QImage &image);
    void giveUp(const QUuid &id);
    void makeExact();
    void makeExact(int slot, const View &view);

    ImagePipeline &m_pipeline;
    Clock &m_clock;
    QHash<QUuid, Photo> m_photos;
    QHash<QUuid, std::stop_source> m_loading;
    std::set<QUuid> m_unreadable;
    Views m_wanted;
    std::map<int, Exact> m_exact;
    std::set<int> m_asked;
    std::unique_ptr<PendingCall> m_rest;
    std::stop_source m_stop;
};

} // namespace tarnovel
