#include "pipeline/PlacedPhoto.h"

#include <cmath>

#include "imaging/Resampler.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

QImage resamplable(const QImage &image)
{
    if (image.depth() == 64) {
        return image; // a blurred one
    }
    return image.hasAlphaChannel() ? image.convertToFormat(QImage::Format_ARGB32_Premultiplied)
                                   : image.convertToFormat(QImage::Format_RGB32);
}

/// Whole pixels, at least one and not many more than the canvas has: a larger picture is enlarged as it is
/// drawn.
QSize heldPixels(QSizeF size, QSize canvas)
{
    constexpr double mostCanvases = 2;
    const double most = mostCanvases * canvas.width() * canvas.height();
    const double area = size.width() * size.height();
    const QSizeF held = area > most ? size * std::sqrt(most / area) : size;
    return held.boundedTo({most, most}).toSize().expandedTo({1, 1});
}

} // namespace

QRectF extentOf(const QRect &pixels, const QRectF &whole)
{
    return {(pixels.x() - whole.x()) / whole.width(), (pixels.y() - whole.y()) / whole.height(),
            pixels.width() / whole.width(), pixels.height() / whole.height()};
}

PlacedRegion placedRegion(const PhotoPlacement &placement)
{
    const QRect pixels = (placement.shown & placement.whole).toAlignedRect();
    return pixels.isEmpty() ? PlacedRegion() : PlacedRegion{pixels, extentOf(pixels, placement.whole)};
}

PlacedRegion placedRegion(const PhotoPlacement &placement, QSize canvas)
{
    return placedRegion({placement.whole, placement.shown & QRectF({}, QSizeF(canvas))});
}

PhotoImage placedPhoto(const QImage &photo, const PlacedRegion &region)
{
    if (region.pixels.isEmpty() || photo.isNull()) {
        return {};
    }
    const QRectF source(region.extent.x() * photo.width(), region.extent.y() * photo.height(),
                        region.extent.width() * photo.width(), region.extent.height() * photo.height());
    return {resampled(resamplable(photo), source, region.pixels.size()), region.extent};
}

PhotoImage placedPhoto(const QImage &photo, const PhotoPlacement &placement, QSize canvas)
{
    return placedPhoto(photo, placedRegion(placement, canvas));
}

QImage coveringPicture(const QImage &picture, QSize canvas)
{
    if (picture.isNull() || canvas.isEmpty()) {
        return {};
    }
    const QSizeF cut = QSizeF(canvas).scaled(picture.size(), Qt::KeepAspectRatio);
    const QRectF region(QPointF((picture.width() - cut.width()) / 2, (picture.height() - cut.height()) / 2),
                        cut);
    return resampled(resamplable(picture), region, canvas);
}

QSize logoPixels(const PhotoItem &item, QSize canvas)
{
    const TextLayer *logo = item.settings.layer(logoLayer);
    if (!logo || !logo->visible || !logo->imageFile) {
        return {};
    }
    return heldPixels(CompositionRenderer::textRect(*logo, canvas).size(), canvas);
}

QSize signaturePixels(const PhotoItem &item, QSize picture, QSize canvas)
{
    if (!item.settings.handwritingFile || picture.isEmpty()) {
        return {};
    }
    return heldPixels(CompositionRenderer::signatureRect(item.settings, picture, canvas).size(), canvas);
}

QImage scaledPicture(const QImage &picture, QSize size)
{
    return picture.isNull() || size.isEmpty()
               ? QImage()
               : resampled(resamplable(picture), QRectF({}, QSizeF(picture.size())), size);
}

} // namespace tarnovel
