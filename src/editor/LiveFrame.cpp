#include "editor/LiveFrame.h"

#include <algorithm>
#include <cmath>

#include <QPainter>

#include "render/LayerRenderer.h"

namespace tarnovel {

namespace {

/// Beyond what is worked out lies at most the smoothing of an edge.
constexpr double edge = 2;

QRectF everything(QSizeF canvas)
{
    return {{}, canvas};
}

FrameSettings withoutPlace(FrameSettings settings)
{
    const FrameSettings usual;
    settings.x = usual.x;
    settings.y = usual.y;
    settings.scale = usual.scale;
    return settings;
}

/// All that a move of the photo takes along or uncovers at its old place.
QRectF movingPart(const PhotoItem &item, QSizeF canvas)
{
    return CompositionRenderer::photoBounds(item, item.settings, canvas);
}

/// The one layer in which two lists differ; −1 when there are more, or the lists are of different layers.
qsizetype changedLayer(const QList<TextLayer> &before, const QList<TextLayer> &after)
{
    if (before.size() != after.size()) {
        return -1;
    }
    const auto [one, other] = std::ranges::mismatch(before, after);
    const bool single = one != before.end() && std::equal(one + 1, before.end(), other + 1);
    return single ? one - before.begin() : -1;
}

} // namespace

QRectF changedPart(const PhotoItem &before, const PhotoItem &after, QSizeF canvas)
{
    if (before.id != after.id || before.file != after.file || before.size() != after.size()) {
        return everything(canvas);
    }
    if (before.settings == after.settings) {
        return {};
    }
    FrameSettings old = withoutPlace(before.settings);
    const FrameSettings now = withoutPlace(after.settings);
    if (old == now) {
        return movingPart(before, canvas) | movingPart(after, canvas);
    }
    const qsizetype layer = changedLayer(old.layers, now.layers);
    old.layers = now.layers;
    const bool samePlace = before.settings.x == after.settings.x && before.settings.y == after.settings.y &&
                           before.settings.scale == after.settings.scale;
    if (layer < 0 || old != now || !samePlace) {
        return everything(canvas);
    }
    const auto bounds = [&](const PhotoItem &item) {
        return LayerRenderer::bounds(item.settings.layers.at(layer), item.settings, canvas);
    };
    return bounds(before) | bounds(after);
}

QRect LiveFrame::outdated(const PhotoItem &item, QSize pixels) const
{
    const QRect all({}, pixels);
    if (m_stale || m_image.size() != pixels) {
        return all;
    }
    const QRectF part = changedPart(m_item, item, pixels);
    return part.isEmpty() ? QRect() : part.adjusted(-edge, -edge, edge, edge).toAlignedRect() & all;
}

QRect LiveFrame::draw(const PhotoItem &item, QSize pixels, const CompositionImages &images)
{
    const auto same = [](const QImage &a, const QImage &b) { return a.cacheKey() == b.cacheKey(); };
    QRect part = outdated(item, pixels);
    if (m_image.size() != pixels) {
        m_image = QImage(pixels, QImage::Format_RGB32);
    } else if (!same(images.background, m_pictures.background) || !same(images.logo, m_pictures.logo) ||
               !same(images.signature, m_pictures.signature)) {
        part = m_image.rect();
    } else if (!same(images.photo.image, m_pictures.photo.image) ||
               images.photo.extent != m_pictures.photo.extent) {
        const QRectF photo = movingPart(m_item, pixels) | movingPart(item, pixels);
        part |= photo.adjusted(-edge, -edge, edge, edge).toAlignedRect() & m_image.rect();
    }
    m_stale = false;
    m_item = item;
    m_pictures = images;
    if (!part.isEmpty()) {
        QPainter painter(&m_image);
        painter.setClipRect(part);
        CompositionRenderer::draw(painter, item, item.settings, pixels, images);
    }
    return part;
}

} // namespace tarnovel
