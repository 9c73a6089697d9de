#include "render/FilmRenderer.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <QPainter>

#include "render/FilmEdge.h"

namespace tarnovel::FilmRenderer {

namespace {

/// How far the gate's edge strays to either side, in millimetres.
constexpr double wobbleMm = 0.018;
constexpr int pointsPerSide = 48;

constexpr int grainSpecks = 160;
constexpr QSizeF speckMm(0.018, 0.06);

/// Kodak Standard (KS) perforations of 35 mm film, ISO 1007: size, corner radius and pitch, eight to a frame.
constexpr QSizeF holeMm(1.981, 2.794);
constexpr double holeRadiusMm = 0.51;
constexpr double pitchMm = 4.75;
constexpr int holesPerRow = 8;
constexpr double holeInsetMm = 1.85;
constexpr double holeRimMm = 0.035;

QColor grey(float value, float alpha = 1)
{
    return QColor::fromRgbF(value, value, value, alpha);
}

QColor baseColor(const FilmOptions &options)
{
    return options.light ? grey(0.92F) : QColor::fromRgbF(0.026F, 0.024F, 0.022F);
}

QColor printColor(const FilmOptions &options)
{
    return options.light ? grey(0.16F) : QColor::fromRgbF(0.77F, 0.65F, 0.38F, 0.92F);
}

void drawGrain(QPainter &painter, const FilmLayout &layout, bool light)
{
    QPainterPath rebate;
    rebate.setFillRule(Qt::OddEvenFill);
    rebate.addRect(0, 0, layout.pieceLengthMm, layout.filmWidthMm);
    rebate.addRect(layout.gateMm);
    const QColor color = grey(light ? 0.F : 1.F, 0.035F);
    painter.save();
    painter.setClipPath(rebate, Qt::IntersectClip);
    for (int i = 0; i < grainSpecks; ++i) {
        const QPointF at(layout.pieceLengthMm * (137 * i % 997) / 997,
                         layout.filmWidthMm * (349 * i % 991) / 991);
        painter.fillRect(QRectF(at, speckMm), color);
    }
    painter.restore();
}

void drawPerforations(QPainter &painter, const FilmLayout &layout)
{
    painter.setBrush(grey(0.99F));
    painter.setPen(QPen(grey(0.72F, 0.25F), holeRimMm));
    const double firstCentre = (layout.pieceLengthMm - (holesPerRow - 1) * pitchMm) / 2;
    for (const double top : {holeInsetMm, layout.filmWidthMm - holeInsetMm - holeMm.height()}) {
        for (int i = 0; i < holesPerRow; ++i) {
            const QPointF corner(firstCentre + i * pitchMm - holeMm.width() / 2, top);
            painter.drawRoundedRect(QRectF(corner, holeMm), holeRadiusMm, holeRadiusMm);
        }
    }
}

void drawFilm(QPainter &painter, const FilmLayout &layout, const FilmOptions &options)
{
    painter.save();
    painter.translate(layout.origin);
    painter.scale(layout.scale, layout.scale);
    if (layout.rotated) {
        painter.translate(layout.filmWidthMm, 0);
        painter.rotate(90);
    }
    drawGrain(painter, layout, options.light);
    if (options.perforations && options.format == FilmFormat::mm35) {
        drawPerforations(painter, layout);
    }
    drawFilmEdge(painter, FilmEdge::print(options), printColor(options));
    painter.restore();
}

/// The largest rectangle of whole device pixels inside `rect`, in the painter's coordinates.
QRectF wholePixelsInside(const QPainter &painter, const QRectF &rect)
{
    const QTransform &transform = painter.deviceTransform();
    const QRectF device = transform.mapRect(rect);
    const QRectF inside(QPointF(std::ceil(device.left()), std::ceil(device.top())),
                        QPointF(std::floor(device.right()), std::floor(device.bottom())));
    return inside.isValid() ? transform.inverted().mapRect(inside) : QRectF();
}

/// The four bands between two rectangles, one in the other.
std::array<QRectF, 4> bands(const QRectF &outer, const QRectF &inner)
{
    return {QRectF(outer.topLeft(), QPointF(outer.right(), inner.top())),
            QRectF(QPointF(outer.left(), inner.bottom()), outer.bottomRight()),
            QRectF(QPointF(outer.left(), inner.top()), inner.bottomLeft()),
            QRectF(inner.topRight(), QPointF(outer.right(), inner.bottom()))};
}

void drawBands(QPainter &painter, const PhotoImage &photo, const QRectF &whole,
               const std::array<QRectF, 4> &shown)
{
    for (const QRectF &band : shown) {
        if (!band.isEmpty()) {
            CompositionRenderer::drawPhoto(painter, photo, {whole, band});
        }
    }
}

void drawPhotoInGate(QPainter &painter, const PhotoItem &item, const PhotoImage &photo,
                     const FilmLayout &layout)
{
    const double wobble = wobbleMm * layout.scale;
    const QRectF reach = layout.photoRect.adjusted(-wobble, -wobble, wobble, wobble);
    const QRectF whole = photoPlacement(item, layout).whole;
    QRectF inside;
    if (painter.deviceTransform().type() <= QTransform::TxScale) {
        inside = wholePixelsInside(painter, layout.photoRect.adjusted(wobble, wobble, -wobble, -wobble));
    }
    // Where the outline cannot come, the photo is drawn without it: clipping by a path is far slower.
    if (!inside.isEmpty()) {
        CompositionRenderer::drawPhoto(painter, photo, {whole, inside});
    } else {
        inside = QRectF(reach.center(), QSizeF(0, 0));
    }
    painter.save();
    painter.setClipPath(gate(layout.photoRect, layout.scale), Qt::IntersectClip);
    // Where the photo just fills the gate it has nothing behind an edge that strays outwards: its rim is
    // stretched to there.
    const QRectF stretched = CompositionRenderer::aspectFilled(whole.size(), reach);
    drawBands(painter, photo, stretched,
              bands(reach, reach & whole.adjusted(wobble, wobble, -wobble, -wobble)));
    drawBands(painter, photo, whole, bands(reach, inside));
    painter.restore();
}

} // namespace

PhotoPlacement photoPlacement(const PhotoItem &item, const FilmLayout &layout)
{
    const QSizeF source(std::max(item.width, 1.0), std::max(item.height, 1.0));
    const double wobble = wobbleMm * layout.scale;
    return {CompositionRenderer::aspectFilled(source, layout.photoRect),
            layout.photoRect.adjusted(-wobble, -wobble, wobble, wobble)};
}

QPainterPath gate(const QRectF &rect, double unit)
{
    const std::array corners{rect.topLeft(), rect.topRight(), rect.bottomRight(), rect.bottomLeft()};
    QPainterPath path;
    for (int side = 0; side < 4; ++side) {
        const QPointF from = corners.at(static_cast<std::size_t>(side));
        const QPointF to = corners.at(static_cast<std::size_t>((side + 1) % 4));
        for (int j = 0; j < pointsPerSide; ++j) {
            const double push = std::sin(7 * side + 13 * j) * wobbleMm * unit;
            const QPointF across = side % 2 == 0 ? QPointF(0, push) : QPointF(push, 0);
            const QPointF point = from + (to - from) * j / pointsPerSide + across;
            side + j == 0 ? path.moveTo(point) : path.lineTo(point);
        }
    }
    path.closeSubpath();
    return path;
}

void draw(QPainter &painter, const PhotoItem &item, const FrameSettings &settings, QSizeF size,
          const PhotoImage &photo)
{
    const FilmOptions options = settings.film.value_or(FilmOptions());
    const FilmLayout layout = FilmLayout::item(item, settings, size);
    painter.save();
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    // The piece has the colour of what surrounds it, so one fill makes both.
    painter.fillRect(QRectF({}, size), baseColor(options));
    if (layout.scale > 0 && std::isfinite(layout.scale)) {
        drawFilm(painter, layout, options);
        drawPhotoInGate(painter, item, photo, layout);
    }
    painter.restore();
}

} // namespace tarnovel::FilmRenderer
