#include "render/LayerRenderer.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include <QPainter>
#include <QTransform>

#include "render/CompositionRenderer.h"
#include "render/DevicePatch.h"
#include "render/Fonts.h"
#include "render/FrameGeometry.h"
#include "render/SetText.h"
#include "render/SoftShadow.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

/// Texts are set once at this size of type and scaled from there.
constexpr int referencePixels = 256;

/// Type and pictures larger than this many canvas widths are held there: the painter's coordinates end
/// somewhere.
constexpr double largestType = 8;

/// Type from this part of the canvas's width on is set in the display cut.
constexpr double displaySize = 0.04;

/// Type smaller than this many canvas units is nothing to be seen, and its reciprocal no number to set with.
constexpr double smallestType = 1e-3;

/// A text's box as fractions of the canvas.
constexpr double widestText = 0.84;
constexpr double highestText = 0.3;

/// A subtitle's shadow, as fractions of the canvas's width: straight below, with a blur of 0.004 whose
/// deviation is half of it.
constexpr double shadowDrop = 0.0012;
constexpr double shadowSigma = 0.002;

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

bool shows(const TextLayer &layer)
{
    return layer.visible && (!layer.text.isEmpty() || isPicture(layer));
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
    return SetText::remembered(layer.text, CompositionRenderer::font(layer, referencePixels / layer.size),
                               {box.width(), box.height()});
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

/// A set text and the way from its units to the canvas's.
struct PlacedText {
    SetText text;
    QTransform transform;
};

/// `scale` is not zero. A picture layer's text stands in the picture's place.
PlacedText placedText(const TextLayer &layer, double scale, QSizeF size)
{
    const SetText text =
        isPicture(layer) ? setTextIn(layer, pictureSize(layer, size) / scale) : setText(layer, size);
    const QRectF rect =
        placed(layer, isPicture(layer) ? pictureSize(layer, size) : text.size() * scale, size);
    QTransform transform;
    transform.translate(rect.center().x(), rect.center().y());
    transform.rotate(degrees(layer));
    transform.translate(-text.size().width() * scale / 2, -rect.height() / 2);
    transform.scale(scale, scale);
    return {text, transform};
}

void drawText(QPainter &painter, const TextLayer &layer, const FrameSettings &settings, QSizeF size)
{
    const double scale = typeScale(layer, size);
    if (!(scale > 0)) {
        return;
    }
    const PlacedText placed = placedText(layer, scale, size);
    painter.save();
    painter.setTransform(placed.transform, true);
    if (settings.style == FrameStyle::cinema) {
        const double pixels =
            std::sqrt(std::abs(painter.deviceTransform().determinant())) / scale * size.width();
        drawSoftShadow(painter, placed.text.outlines(),
                       {QColor::fromRgbF(0, 0, 0, 0.85F), shadowSigma * pixels, {0, shadowDrop * pixels}});
    }
    placed.text.draw(painter, CompositionRenderer::opaque(layer.ink));
    painter.restore();
}

} // namespace

void LayerRenderer::draw(QPainter &painter, const TextLayer &layer, const FrameSettings &settings,
                         QSizeF size, const QImage &logo)
{
    if (!shows(layer)) {
        return;
    }
    if (layer.id == logoLayer && isPicture(layer) && !logo.isNull()) {
        const QRectF rect = CompositionRenderer::textRect(layer, size);
        painter.save();
        painter.translate(rect.center());
        painter.rotate(degrees(layer));
        drawPicture(painter, centred({}, rect.size()), logo);
        painter.restore();
    } else {
        drawText(painter, layer, settings, size);
    }
}

QRectF LayerRenderer::bounds(const TextLayer &layer, const FrameSettings &settings, QSizeF size)
{
    if (!shows(layer)) {
        return {};
    }
    const QRectF rect = CompositionRenderer::textRect(layer, size);
    QTransform turned;
    turned.translate(rect.center().x(), rect.center().y());
    turned.rotate(degrees(layer));
    QRectF covered = turned.mapRect(centred({}, rect.size()));
    if (const double scale = typeScale(layer, size); scale > 0) {
        const PlacedText placed = placedText(layer, scale, size);
        const QSizeF box = placed.text.size();
        // Colour pictures of letters may be as large as their type, wherever they stand.
        const double beyond = referencePixels;
        covered |= placed.transform.mapRect(placed.text.outlines().boundingRect());
        covered |= placed.transform.mapRect(
            QRectF({}, box).adjusted(-beyond / 2, -beyond / 2, beyond / 2, beyond / 2));
    }
    if (settings.style == FrameStyle::cinema) {
        const double shadow = (shadowDrop + 3 * shadowSigma) * size.width();
        covered.adjust(-shadow, -shadow, shadow, shadow);
    }
    return covered;
}

QFont CompositionRenderer::font(const TextLayer &layer, double width)
{
    // Typewriter and handwriting have one weight.
    const bool heavy =
        layer.id == u"brand"_s && layer.fontStyle != u"mono"_s && layer.fontStyle != u"handwritten"_s;
    return Fonts::face(layer.fontStyle, heavy ? QFont::DemiBold : QFont::Normal,
                       std::max(1, qRound(layer.size * width)),
                       layer.size >= displaySize ? Fonts::Cut::Display : Fonts::Cut::Text);
}

QRectF CompositionRenderer::textRect(const TextLayer &layer, QSizeF size)
{
    if (isPicture(layer)) {
        return placed(layer, pictureSize(layer, size), size);
    }
    const double scale = typeScale(layer, size);
    return placed(layer, scale > 0 ? setText(layer, size).size() * scale : QSizeF(0, 0), size);
}

} // namespace tarnovel
