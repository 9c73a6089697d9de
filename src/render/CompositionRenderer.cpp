#include "render/CompositionRenderer.h"

#include <algorithm>
#include <cmath>

#include <QPainter>

#include "model/Signature.h"
#include "render/DevicePatch.h"
#include "render/DitheredGradient.h"
#include "render/FilmRenderer.h"
#include "render/FrameGeometry.h"
#include "render/LayerRenderer.h"

namespace tarnovel::CompositionRenderer {

namespace {

/// Width ÷ height of the cinema band: the anamorphic wide-screen ratio.
constexpr double cinemaRatio = 2.39;

/// Signatures wider than this many canvases are held there: the painter's coordinates end somewhere.
constexpr double widestSignature = 8;

/// A part of a photo smaller than this, in its pixels, is none.
constexpr double leastSource = 1e-6;

double borderPx(const FrameSettings &settings, QSizeF size)
{
    return settings.border * std::min(size.width(), size.height());
}

QRectF centred(QPointF centre, QSizeF size)
{
    return {centre.x() - size.width() / 2, centre.y() - size.height() / 2, size.width(), size.height()};
}

void drawBackdrop(QPainter &painter, const FrameSettings &settings, QSizeF size, const QImage &picture)
{
    const QRectF canvas({}, size);
    if (settings.background == Backdrop::gradient) {
        fillDiagonally(painter, size, opaque(settings.color), opaque(settings.secondColor));
        return;
    }
    painter.fillRect(canvas, opaque(settings.color));
    const bool takesPicture = settings.background == Backdrop::blur || settings.background == Backdrop::image;
    if (takesPicture && !picture.isNull()) {
        painter.drawImage(aspectFilled(picture.size(), canvas), picture);
    }
}

/// A border of whole device pixels around those that the photo takes, equally wide on all sides and never
/// without a pixel: a keyline that falls between pixels is two grey ones.
void fillBorder(QPainter &painter, const QRectF &photo, double border, const QColor &color)
{
    const QTransform device = painter.deviceTransform();
    if (!isUpright(device)) {
        painter.fillRect(photo.adjusted(-border, -border, border, border), color);
        return;
    }
    constexpr double widest = 1e6;
    const int wide = std::max(1, qRound(std::min(border * std::abs(device.m11()), widest)));
    painter.save();
    painter.setTransform(device.inverted() * painter.transform());
    painter.fillRect(devicePixels(device.mapRect(photo)).adjusted(-wide, -wide, wide, wide), color);
    painter.restore();
}

/// The part of its place that a photo's picture has something for.
QRectF shownPart(const PhotoImage &photo, const PhotoPlacement &placement)
{
    const QRectF &whole = placement.whole;
    const QRectF &extent = photo.extent;
    const QRectF target(whole.x() + extent.x() * whole.width(), whole.y() + extent.y() * whole.height(),
                        extent.width() * whole.width(), extent.height() * whole.height());
    return placement.shown & whole & target;
}

/// The pixels that an opaque photo covers: nothing below them is ever seen.
QRect hiddenPixels(const QPainter &painter, const PhotoImage &photo, const PhotoPlacement &placement)
{
    if (photo.image.isNull() || photo.image.hasAlphaChannel() || placement.whole.isEmpty()) {
        return {};
    }
    const QTransform device = painter.deviceTransform();
    const QRectF shown = shownPart(photo, placement);
    const QRect pixels = shown.isEmpty() ? QRect() : devicePixels(device.mapRect(shown));
    // One that has to be scaled may have too little of itself to be seen.
    return alignedPixels(device, photo, placement.whole).contains(pixels) ? pixels : QRect();
}

/// Paints beside what will be hidden: of a large frame that is most of the work.
template<typename Paint>
void drawAround(QPainter &painter, const QRect &hidden, QSizeF size, const Paint &paint)
{
    if (hidden.isEmpty()) {
        paint();
        return;
    }
    const QTransform device = painter.deviceTransform();
    const QTransform own = painter.transform();
    const QRectF whole(device.mapRect(QRectF({}, size)).toAlignedRect());
    for (const QRectF &band : bandsAround(QRectF(hidden) & whole, whole)) {
        if (!band.isEmpty()) {
            painter.save();
            painter.setTransform(device.inverted() * own);
            painter.setClipRect(band, Qt::IntersectClip);
            painter.setTransform(own);
            paint();
            painter.restore();
        }
    }
}

void drawPlacedPhoto(QPainter &painter, const PhotoItem &item, const FrameSettings &settings, QSizeF size,
                     const PhotoImage &photo, const QImage &background)
{
    const PhotoPlacement placement = photoPlacement(item, settings, size);
    const QRect hidden = hiddenPixels(painter, photo, placement);
    drawAround(painter, hidden, size, [&] { drawBackdrop(painter, settings, size, background); });
    const bool bordered = settings.style != FrameStyle::cinema && settings.border > 0;
    if (bordered && !placement.whole.isEmpty()) {
        drawAround(painter, hidden, size, [&] {
            fillBorder(painter, placement.whole, borderPx(settings, size), opaque(settings.borderColor));
        });
    }
    drawPhoto(painter, photo, placement);
}

} // namespace

QColor opaque(const Ink &ink)
{
    const auto component = [](double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); };
    return QColor::fromRgbF(component(ink.r), component(ink.g), component(ink.b));
}

QRectF aspectFilled(QSizeF source, const QRectF &target)
{
    const double scale = std::max(target.width() / source.width(), target.height() / source.height());
    return centred(target.center(), source * scale);
}

QRectF photoRect(const PhotoItem &item, const FrameSettings &settings, QSizeF size)
{
    if (settings.style == FrameStyle::film) {
        return FilmLayout::item(item, settings, size).photoRect;
    }
    if (settings.style == FrameStyle::cinema) {
        const double height = std::min(size.width() / cinemaRatio, size.height());
        return {0, (size.height() - height) / 2, size.width(), height};
    }
    return FrameGeometry::photoRect(
        item.size(), size,
        {settings.scale, settings.x, settings.y, settings.lockX, settings.lockY, borderPx(settings, size)});
}

PhotoPlacement photoPlacement(const PhotoItem &item, const FrameSettings &settings, QSizeF size)
{
    if (settings.style == FrameStyle::film) {
        return FilmRenderer::photoPlacement(item, FilmLayout::item(item, settings, size));
    }
    const QRectF rect = photoRect(item, settings, size);
    if (settings.style != FrameStyle::cinema) {
        return {rect, rect};
    }
    // 0.45 is as far as the editor's vertical slider goes: there the photo's bottom meets the band's.
    const double bias = std::min(settings.y / 0.45, 1.0);
    const QSizeF source(std::max(item.width, 1.0), std::max(item.height, 1.0));
    const QRectF filled = aspectFilled(source, rect);
    return {filled.translated(0, -(filled.height() - rect.height()) / 2 * bias), rect};
}

QRectF photoBounds(const PhotoItem &item, const FrameSettings &settings, QSizeF size)
{
    if (settings.style == FrameStyle::film) {
        const FilmLayout layout = FilmLayout::item(item, settings, size);
        return layout.pieceRect | layout.photoRect;
    }
    const PhotoPlacement placement = photoPlacement(item, settings, size);
    const double border = settings.style == FrameStyle::cinema ? 0 : borderPx(settings, size);
    return (placement.whole & placement.shown).adjusted(-border, -border, border, border);
}

QRectF signatureRect(const FrameSettings &settings, QSizeF imageSize, QSizeF size)
{
    const double own = imageSize.width() / std::max(imageSize.height(), 1.0);
    const double aspect = std::max(settings.handwritingAspect.value_or(own), 0.1);
    const SignaturePlace place = signaturePlace(settings);
    const double width = FrameGeometry::held(place.width, 0, widestSignature) * size.width();
    const double height = width / aspect;
    const auto centre = [](double fraction, double length, double element) {
        return FrameGeometry::held(fraction * length, element / 2, length - element / 2);
    };
    return centred({centre(place.x, size.width(), width), centre(place.y, size.height(), height)},
                   {width, height});
}

QRect devicePixels(const QRectF &rect)
{
    static constexpr double farthest = 1e8;
    // What is no number at all has no place either.
    const auto edge = [](double value) {
        return std::isnan(value) ? 0 : qRound(FrameGeometry::held(value, -farthest, farthest));
    };
    return {QPoint(edge(rect.left()), edge(rect.top())),
            QPoint(edge(rect.right()) - 1, edge(rect.bottom()) - 1)};
}

QRect alignedPixels(const QTransform &transform, const PhotoImage &photo, const QRectF &whole)
{
    constexpr double tolerance = 1e-3;
    if (photo.image.isNull() || !isUpright(transform)) {
        return {};
    }
    const QRectF &extent = photo.extent;
    const QRectF device = transform.mapRect(
        QRectF(whole.x() + extent.x() * whole.width(), whole.y() + extent.y() * whole.height(),
               extent.width() * whole.width(), extent.height() * whole.height()));
    const QRect pixels(QPoint(qRound(device.left()), qRound(device.top())), photo.image.size());
    const auto near = [](double a, double b) { return std::abs(a - b) < tolerance; };
    const bool aligned = near(device.left(), pixels.left()) && near(device.top(), pixels.top()) &&
                         near(device.width(), pixels.width()) && near(device.height(), pixels.height());
    return aligned ? pixels : QRect();
}

void drawPhoto(QPainter &painter, const PhotoImage &photo, const PhotoPlacement &placement)
{
    if (photo.image.isNull() || placement.whole.isEmpty()) {
        return;
    }
    const QRectF &whole = placement.whole;
    const QRectF &extent = photo.extent;
    const QRectF target(whole.x() + extent.x() * whole.width(), whole.y() + extent.y() * whole.height(),
                        extent.width() * whole.width(), extent.height() * whole.height());
    const QRectF shown = shownPart(photo, placement);
    const QTransform transform = painter.deviceTransform();
    const QRect aligned = alignedPixels(transform, photo, whole);
    const QRect pixels = devicePixels(transform.mapRect(shown));
    if (shown.isEmpty() || (pixels.isEmpty() && isUpright(transform))) {
        return;
    }
    painter.save();
    if (!aligned.isEmpty() && aligned.contains(pixels)) {
        painter.setTransform(transform.inverted() * painter.transform());
        painter.drawImage(pixels, photo.image, pixels.translated(-aligned.topLeft()));
    } else {
        const QSizeF scale(photo.image.width() / target.width(), photo.image.height() / target.height());
        const QRectF source((shown.x() - target.x()) * scale.width(),
                            (shown.y() - target.y()) * scale.height(), shown.width() * scale.width(),
                            shown.height() * scale.height());
        const bool isThere = source.width() > leastSource && source.height() > leastSource;
        if (!isThere) {
            // A photo of no extent in one direction, or enlarged beyond all numbers.
        } else if (isUpright(transform)) {
            painter.setTransform(transform.inverted() * painter.transform());
            painter.setRenderHint(QPainter::Antialiasing, false);
            painter.drawImage(QRectF(pixels), photo.image, source);
        } else {
            painter.drawImage(shown, photo.image, source);
        }
    }
    painter.restore();
}

void draw(QPainter &painter, const PhotoItem &item, const FrameSettings &settings, QSizeF size,
          const CompositionImages &images)
{
    painter.save();
    painter.setClipRect(QRectF({}, size), Qt::IntersectClip);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    if (settings.style == FrameStyle::film) {
        FilmRenderer::draw(painter, item, settings, size, images.photo);
    } else {
        drawPlacedPhoto(painter, item, settings, size, images.photo, images.background);
    }
    if (settings.handwritingFile && !images.signature.isNull()) {
        drawPicture(painter, signatureRect(settings, images.signature.size(), size), images.signature);
    }
    for (const TextLayer &layer : settings.layers) {
        LayerRenderer::draw(painter, layer, settings, size, images.logo);
    }
    painter.restore();
}

} // namespace tarnovel::CompositionRenderer
