#include "editor/CanvasImages.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "pipeline/PlacedPhoto.h"

namespace tarnovel {

namespace {

/// A photo that is cut by its frame is resampled whole, so that it can be dragged, unless it is far larger
/// than the canvas.
constexpr double largestWholeShare = 3;

PhotoPlacement wholePlacement(const PhotoItem &item, QSize canvas)
{
    PhotoPlacement placement = CompositionRenderer::photoPlacement(item, item.settings, canvas);
    const QRectF &whole = placement.whole;
    if (whole.width() * whole.height() <= largestWholeShare * canvas.width() * canvas.height()) {
        placement.shown = whole;
    }
    return placement;
}

bool sameSize(const QRectF &a, const QRectF &b)
{
    return std::abs(a.width() - b.width()) < 1e-6 && std::abs(a.height() - b.height()) < 1e-6;
}

QSize logoSize(const PhotoItem &item, QSize canvas, const QImage &picture)
{
    return picture.isNull() ? QSize() : logoPixels(item, canvas);
}

QSize signatureSize(const PhotoItem &item, QSize canvas, const QImage &picture)
{
    return signaturePixels(item, picture.size(), canvas);
}

} // namespace

PhotoImage CanvasImages::photoAtHand(const Wanted &wanted, AtHand &quality) const
{
    const QImage &preview = wanted.previews.photo;
    const PhotoPlacement placement = wholePlacement(wanted.item, wanted.canvas);
    if (preview.isNull() || m_ready.photoKey != preview.cacheKey()) {
        quality = preview.isNull() ? AtHand::Exact : AtHand::Other;
        return {preview};
    }
    if (m_ready.photo.image.isNull() || !sameSize(placement.whole, m_ready.placement.whole)) {
        quality = placement.whole == m_ready.placement.whole ? AtHand::Exact : AtHand::Near;
        return {preview};
    }
    // A photo that has moved keeps its pixels: they go to the nearest place of the grid until it rests.
    const QPointF way = placement.whole.topLeft() - m_ready.placement.whole.topLeft();
    const QPoint grid(qRound(way.x()), qRound(way.y()));
    const QRect pixels = m_ready.pixels.translated(grid);
    const bool coversWhatShows = pixels.contains(placedRegion(placement).pixels);
    if (!coversWhatShows && placement.shown != placement.whole) {
        quality = AtHand::Near;
        return {preview};
    }
    const bool isSame = QPointF(way - grid).manhattanLength() < 1e-6 && coversWhatShows;
    quality = isSame ? AtHand::Exact : AtHand::Near;
    return {m_ready.photo.image, extentOf(pixels, placement.whole)};
}

CompositionImages CanvasImages::images(const PhotoItem &item, QSize canvas, const Previews &previews)
{
    const Wanted wanted{item, canvas, previews};
    AtHand quality = AtHand::Exact;
    CompositionImages images;
    images.photo = photoAtHand(wanted, quality);
    const auto atHand = [&quality](const QImage &preview, const Scaled &ready, QSize size) {
        if (preview.isNull() || size.isEmpty()) {
            return preview;
        }
        const bool known = ready.key == preview.cacheKey();
        if (known && ready.image.size() == size) {
            return ready.image;
        }
        quality = std::max(quality, known ? AtHand::Near : AtHand::Other);
        return preview;
    };
    images.background = atHand(previews.background, m_ready.background, canvas);
    images.logo = atHand(previews.logo, m_ready.logo, logoSize(item, canvas, previews.logo));
    images.signature =
        atHand(previews.signature, m_ready.signature, signatureSize(item, canvas, previews.signature));
    want(wanted, quality);
    return images;
}

void CanvasImages::want(const Wanted &wanted, AtHand quality)
{
    m_rest.reset();
    if (quality == AtHand::Exact) {
        m_wanted.reset();
        return;
    }
    m_wanted = wanted;
    if (m_running) {
        return;
    }
    if (quality == AtHand::Other) {
        begin();
    } else {
        m_rest = m_clock.after(rest, [this] { begin(); });
    }
}

CanvasImages::Ready CanvasImages::make(const Wanted &wanted, Ready old)
{
    const QSize canvas = wanted.canvas;
    Ready ready = std::move(old);
    const PhotoPlacement placement = wholePlacement(wanted.item, canvas);
    const bool isMade = ready.photoKey == wanted.previews.photo.cacheKey() &&
                        ready.placement.whole == placement.whole && ready.placement.shown == placement.shown;
    if (!wanted.previews.photo.isNull() && !isMade) {
        const PlacedRegion region = placedRegion(placement);
        ready.photo = placedPhoto(wanted.previews.photo, region);
        ready.pixels = region.pixels;
        ready.placement = placement;
        ready.photoKey = wanted.previews.photo.cacheKey();
    }
    const Previews &previews = wanted.previews;
    const auto scale = [](const QImage &preview, Scaled &place, QSize size, auto resample) {
        if (!size.isEmpty() && (place.key != preview.cacheKey() || place.image.size() != size)) {
            place = {preview.cacheKey(), resample(preview, size)};
        }
    };
    scale(previews.background, ready.background, previews.background.isNull() ? QSize() : canvas,
          coveringPicture);
    scale(previews.logo, ready.logo, logoSize(wanted.item, canvas, previews.logo), scaledPicture);
    scale(previews.signature, ready.signature, signatureSize(wanted.item, canvas, previews.signature),
          scaledPicture);
    return ready;
}

void CanvasImages::begin()
{
    m_running = true;
    m_rest.reset();
    m_worker.run([wanted = *std::exchange(m_wanted, {}), old = m_ready] { return make(wanted, old); },
                 [this](Ready made) {
                     m_running = false;
                     m_ready = std::move(made);
                     m_wanted.reset(); // who draws asks for what is still wanted
                     Q_EMIT changed();
                 });
}

} // namespace tarnovel
