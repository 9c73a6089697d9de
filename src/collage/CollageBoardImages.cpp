#include "collage/CollageBoardImages.h"

#include <algorithm>
#include <utility>

#include "pipeline/ImagePipeline.h"
#include "pipeline/WhenFinished.h"

namespace tarnovel {

namespace {

/// No level is smaller than this.
constexpr int smallestPixels = 300;

} // namespace

/// For a drawing of the whole photo in this width: a level is enlarged when the drawing has to be fast, as
/// QPainter does that twice as fast as reducing, and reduced when it has to be fine.
std::optional<PhotoImage> CollageBoardImages::chosen(const Photo &photo, double width, Choice choice)
{
    const std::vector<QImage> &levels = photo.levels; // from large to small
    if (levels.empty()) {
        return photo.standIn.isNull() ? std::nullopt : std::make_optional(PhotoImage{photo.standIn});
    }
    const auto smaller =
        std::ranges::find_if(levels, [width](const QImage &image) { return image.width() <= width; });
    if (choice == Choice::Fast) {
        return PhotoImage{smaller == levels.end() ? levels.back() : *smaller};
    }
    return PhotoImage{smaller == levels.begin() ? levels.front() : *std::prev(smaller)};
}

CollageBoardImages::CollageBoardImages(ImagePipeline &pipeline, Clock &clock)
    : m_pipeline(pipeline), m_clock(clock)
{
}

CollageBoardImages::~CollageBoardImages()
{
    show({}, {});
    m_stop.request_stop();
}

void CollageBoardImages::show(const QList<PhotoItem> &photos, const QHash<QUuid, QImage> &standIns)
{
    const auto wanted = [&photos](const QUuid &id) {
        return std::ranges::find(photos, id, &PhotoItem::id) != photos.end();
    };
    m_photos.removeIf([&](const auto &entry) { return !wanted(entry.key()); });
    std::erase_if(m_unreadable, [&](const QUuid &id) { return !wanted(id); });
    m_loading.removeIf([&](auto entry) {
        const bool gone = !wanted(entry.key());
        if (gone) {
            entry.value().request_stop();
        }
        return gone;
    });
    for (const PhotoItem &item : photos) {
        if (!m_photos.contains(item.id)) {
            m_photos.insert(item.id, {item, {}, standIns.value(item.id)});
            load(item);
        }
    }
}

void CollageBoardImages::load(const PhotoItem &item)
{
    const std::stop_source stop;
    m_loading.insert(item.id, stop);
    whenArrived<QImage>(
        m_pipeline.read(item.file, largestPixels, stop.get_token()), this, stop.get_token(),
        [this, id = item.id](const QImage &image) { addLevel(id, image); },
        [this, id = item.id] { giveUp(id); });
}

void CollageBoardImages::giveUp(const QUuid &id)
{
    const auto photo = m_photos.find(id);
    if (photo != m_photos.end() && m_unreadable.insert(id).second) {
        photo->standIn = {};
        Q_EMIT failed(id);
        Q_EMIT changed();
    }
}

void CollageBoardImages::addLevel(const QUuid &id, const QImage &image)
{
    Photo &photo = m_photos[id];
    photo.levels.push_back(image);
    photo.standIn = {};
    if (photo.levels.size() == 1) {
        // Cells that were asked for while the photo was still on its way.
        m_rest = m_clock.after(std::chrono::milliseconds(0), [this] { makeExact(); });
        Q_EMIT changed();
    }
    const QSize half = image.size() / 2;
    if (std::max(half.width(), half.height()) < smallestPixels || half.isEmpty()) {
        return;
    }
    const QRectF all({}, QSizeF(half));
    const std::stop_token stop = m_loading[id].get_token();
    whenArrived<PhotoImage>(
        m_pipeline.resamplePlaced(image, {all, all}, half, stop), this, stop,
        [this, id](const PhotoImage &made) { addLevel(id, made.image); }, [] {});
}

CollageBoardImages::Views CollageBoardImages::views(const CollageDesign &design,
                                                    const CollagePlan &plan) const
{
    Views result;
    for (const auto &[slot, rect] : plan.layout.cells) {
        if (slot >= design.cells.size()) {
            continue;
        }
        const CollageCell &cell = design.cells.at(slot);
        const auto photo = m_photos.constFind(cell.photo);
        if (photo != m_photos.constEnd()) {
            const PhotoPlacement placement = cellPlacement(cell, photo->item.size(), rect);
            result[slot] = {cell.photo, placement.whole, placement.shown, plan.size};
        }
    }
    return result;
}

bool CollageBoardImages::isExact(int slot, const View &view) const
{
    const auto found = m_exact.find(slot);
    return found != m_exact.end() && found->second.view == view;
}

bool CollageBoardImages::exact(const CollageDesign &design, const CollagePlan &plan) const
{
    return std::ranges::all_of(views(design, plan), [this](const auto &entry) {
        return isExact(entry.first, entry.second) || m_unreadable.contains(entry.second.photo);
    });
}

std::map<int, PhotoImage> CollageBoardImages::images(const CollageDesign &design, const CollagePlan &plan)
{
    const Views wanted = views(design, plan);
    std::map<int, PhotoImage> result;
    for (const auto &[slot, view] : wanted) {
        if (isExact(slot, view)) {
            result[slot] = m_exact[slot].image;
        } else if (const auto image = chosen(m_photos[view.photo], view.whole.width(), Choice::Fast)) {
            result[slot] = *image;
        }
    }
    std::erase_if(m_exact, [&wanted](const auto &entry) { return !wanted.contains(entry.first); });
    if (wanted != m_wanted) {
        m_wanted = wanted;
        m_asked.clear();
        m_stop.request_stop();
        m_stop = {};
        m_rest = m_clock.after(rest, [this] { makeExact(); });
    }
    return result;
}

std::map<int, PhotoImage> CollageBoardImages::smallImages(const CollageDesign &design,
                                                          const CollagePlan &plan) const
{
    std::map<int, PhotoImage> result;
    for (const auto &[slot, view] : views(design, plan)) {
        if (const auto image = chosen(*m_photos.constFind(view.photo), view.whole.width(), Choice::Fine)) {
            result[slot] = *image;
        }
    }
    return result;
}

void CollageBoardImages::makeExact()
{
    for (const auto &[slot, view] : m_wanted) {
        const auto photo = m_photos.constFind(view.photo);
        if (photo != m_photos.constEnd() && !photo->levels.empty() && !isExact(slot, view) &&
            m_asked.insert(slot).second) {
            makeExact(slot, view);
        }
    }
}

void CollageBoardImages::makeExact(int slot, const View &view)
{
    const Photo &photo = m_photos[view.photo];
    const QImage &largest = photo.levels.front();
    const PhotoPlacement placement{view.whole, view.shown};
    const std::stop_token stop = m_stop.get_token();
    // A photo smaller than its cell has no more to give either.
    const bool enough = largest.width() >= view.whole.width() || largest.width() >= photo.item.width;
    whenArrived<PhotoImage>(
        enough ? m_pipeline.resamplePlaced(largest, placement, view.canvas, stop)
               : m_pipeline.readPlaced(photo.item.file, placement, view.canvas, stop),
        this, stop,
        [this, slot, view](const PhotoImage &image) {
            m_exact[slot] = {view, image};
            Q_EMIT changed();
        },
        [this, photo = view.photo] { giveUp(photo); });
}

} // namespace tarnovel
