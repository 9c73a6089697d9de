#include "render/CompositionRenderer.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include <QPainter>

#include "model/Signature.h"
#include "render/DitheredGradient.h"
#include "render/FilmRenderer.h"
#include "render/Fonts.h"
#include "render/FrameGeometry.h"
#include "render/SetText.h"
#include "render/SoftShadow.h"

using namespace Qt::StringLiterals;

namespace tarnovel::CompositionRenderer {

namespace {

/// Width ÷ height of the cinema band: the anamorphic wide-screen ratio.
constexpr double cinemaRatio = 2.39;

/// Texts are set once at this size of type and scaled from there.
constexpr int referencePixels = 256;

/// Type and pictures larger than this many canvas widths are held there: the painter's coordinates end
/// somewhere.
constexpr double largestType = 8;

/// Type from this part of the canvas's width on is set in the display cut.
constexpr double displaySize = 0.04;

/// Type smaller than this many canvas units is nothing to be seen, and its reciprocal no number to set with.
constexpr double smallestType = 1e-3;

/// A part of a photo smaller than this, in its pixels, is none.
constexpr double leastSource = 1e-6;

/// A text's box as fractions of the canvas.
constexpr double widestText = 0.84;
constexpr double highestText = 0.3;

double borderPx(const FrameSettings &settings, QSizeF size)
{
    return settings.border * std::min(size.width(), size.height());
}

QRectF centred(QPointF centre, QSizeF size)
{
    return {centre.x() - size.width() / 2, centre.y() - size.height() / 2, size.width(), size.height()};
}

double degrees(const TextLayer &layer)
{
    return std::fmod(layer.rotation.value_or(0), 360);
}

double radians(const TextLayer &layer)
{
    return degrees(layer) * std::numbers::pi / 180;
}

bool isPicture(const TextLayer &layer)
{
    return layer.imageFile.has_value();
}

/// Canvas units for one unit of the reference type.
double typeScale(const TextLayer &layer, QSizeF size)
{
    const double pixels = FrameGeometry::held(layer.size, 0, largestType) * size.width();
    return pixels < smallestType ? 0 : pixels / referencePixels;
}

/// `box` is in units of the reference type.
SetText setTextIn(const TextLayer &layer, QSizeF box)
{
    return {layer.text,
            CompositionRenderer::font(layer, referencePixels / layer.size),
            {box.width(), box.height()}};
}

SetText setText(const TextLayer &layer, QSizeF size)
{
    return setTextIn(layer,
                     QSizeF(widestText * size.width(), highestText * size.height()) / typeScale(layer, size));
}

/// The layer's rectangle for an element of this size.
QRectF placed(const TextLayer &layer, QSizeF element, QSizeF size)
{
    const double cosine = std::abs(std::cos(radians(layer)));
    const double sine = std::abs(std::sin(radians(layer)));
    const double halfWidth = (element.width() * cosine + element.height() * sine) / 2;
    const double halfHeight = (element.width() * sine + element.height() * cosine) / 2;
    return centred({FrameGeometry::held(layer.x * size.width(), halfWidth, size.width() - halfWidth),
                    FrameGeometry::held(layer.y * size.height(), halfHeight, size.height() - halfHeight)},
                   element);
}

QSizeF pictureSize(const TextLayer &layer, QSizeF size)
{
    const double width = FrameGeometry::held(layer.size, 0, largestType) * size.width() * 5;
    return {width, width / (layer.imageAspect ? std::max(*layer.imageAspect, 0.1) : 1)};
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

bool isUpright(const QTransform &transform)
{
    return transform.type() <= QTransform::TxScale;
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

void drawPlacedPhoto(QPainter &painter, const PhotoItem &item, const FrameSettings &settings, QSizeF size,
                     const PhotoImage &photo)
{
    const PhotoPlacement placement = photoPlacement(item, settings, size);
    const bool bordered = settings.style != FrameStyle::cinema && settings.border > 0;
    if (bordered && !placement.whole.isEmpty()) {
        fillBorder(painter, placement.whole, borderPx(settings, size), opaque(settings.borderColor));
    }
    drawPhoto(painter, photo, placement);
}

/// A picture in its rectangle. One that has been made for just these pixels is copied to the nearest of them.
void drawPicture(QPainter &painter, const QRectF &rect, const QImage &picture)
{
    const QTransform device = painter.deviceTransform();
    const QRectF pixels = device.mapRect(rect);
    const bool fits = isUpright(device) && std::abs(pixels.width() - picture.width()) < 1 &&
                      std::abs(pixels.height() - picture.height()) < 1;
    if (!fits) {
        painter.drawImage(rect, picture);
        return;
    }
    painter.save();
    painter.setTransform(device.inverted() * painter.transform());
    painter.drawImage(QPoint(qRound(pixels.left()), qRound(pixels.top())), picture);
    painter.restore();
}

void drawText(QPainter &painter, const TextLayer &layer, const FrameSettings &settings, QSizeF size)
{
    const double scale = typeScale(layer, size);
    if (!(scale > 0)) {
        return;
    }
    // A picture layer without its picture shows its text in the picture's place.
    const SetText text =
        isPicture(layer) ? setTextIn(layer, pictureSize(layer, size) / scale) : setText(layer, size);
    const QRectF rect =
        placed(layer, isPicture(layer) ? pictureSize(layer, size) : text.size() * scale, size);
    painter.save();
    painter.translate(rect.center());
    painter.rotate(degrees(layer));
    painter.translate(-text.size().width() * scale / 2, -rect.height() / 2);
    painter.scale(scale, scale);
    if (settings.style == FrameStyle::cinema) {
        // A subtitle's shadow: straight below, 0.0012 of the width, with a blur of 0.004 whose deviation is
        // half of it.
        const double pixels =
            std::sqrt(std::abs(painter.deviceTransform().determinant())) / scale * size.width();
        drawSoftShadow(painter, text.outlines(),
                       {QColor::fromRgbF(0, 0, 0, 0.85F), 0.002 * pixels, {0, 0.0012 * pixels}});
    }
    text.draw(painter, opaque(layer.ink));
    painter.restore();
}

void drawLayer(QPainter &painter, const TextLayer &layer, const FrameSettings &settings, QSizeF size,
               const QImage &logo)
{
    if (!layer.visible || (layer.text.isEmpty() && !isPicture(layer))) {
        return;
    }
    if (layer.id == logoLayer && isPicture(layer) && !logo.isNull()) {
        const QRectF rect = textRect(layer, size);
        painter.save();
        painter.translate(rect.center());
        painter.rotate(degrees(layer));
        drawPicture(painter, centred({}, rect.size()), logo);
        painter.restore();
    } else {
        drawText(painter, layer, settings, size);
    }
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

QFont font(const TextLayer &layer, double width)
{
    // Typewriter and handwriting have one weight.
    const bool heavy =
        layer.id == u"brand"_s && layer.fontStyle != u"mono"_s && layer.fontStyle != u"handwritten"_s;
    return Fonts::face(layer.fontStyle, heavy ? QFont::DemiBold : QFont::Normal,
                       std::max(1, qRound(layer.size * width)),
                       layer.size >= displaySize ? Fonts::Cut::Display : Fonts::Cut::Text);
}

QRectF textRect(const TextLayer &layer, QSizeF size)
{
    if (isPicture(layer)) {
        return placed(layer, pictureSize(layer, size), size);
    }
    const double scale = typeScale(layer, size);
    return placed(layer, scale > 0 ? setText(layer, size).size() * scale : QSizeF(0, 0), size);
}

QRectF signatureRect(const FrameSettings &settings, QSizeF imageSize, QSizeF size)
{
    const double own = imageSize.width() / std::max(imageSize.height(), 1.0);
    const double aspect = std::max(settings.handwritingAspect.value_or(own), 0.1);
    const SignaturePlace place = signaturePlace(settings);
    const double width = FrameGeometry::held(place.width, 0, largestType) * size.width();
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
    const QRectF shown = placement.shown & placement.whole & target;
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
        drawBackdrop(painter, settings, size, images.background);
        drawPlacedPhoto(painter, item, settings, size, images.photo);
    }
    if (settings.handwritingFile && !images.signature.isNull()) {
        drawPicture(painter, signatureRect(settings, images.signature.size(), size), images.signature);
    }
    for (const TextLayer &layer : settings.layers) {
        drawLayer(painter, layer, settings, size, images.logo);
    }
    painter.restore();
}

} // namespace tarnovel::CompositionRenderer
