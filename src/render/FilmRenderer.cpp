#include "render/FilmRenderer.h"

#include <array>
#include <cmath>

#include <QPainter>

#include "render/DevicePatch.h"
#include "render/FilmEdge.h"
#include "render/FilmGate.h"

namespace tarnovel::FilmRenderer {

namespace {

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
    const QColor color = grey(light ? 0.F : 1.F, 0.035F);
    const QRectF piece(0, 0, layout.pieceLengthMm, layout.filmWidthMm);
    const std::array<QRectF, 4> rebate = bandsAround(layout.gateMm, piece);
    for (int i = 0; i < grainSpecks; ++i) {
        const QPointF at(layout.pieceLengthMm * (137 * i % 997) / 997,
                         layout.filmWidthMm * (349 * i % 991) / 991);
        for (const QRectF &band : rebate) {
            if (const QRectF speck = QRectF(at, speckMm) & band; !speck.isEmpty()) {
                boxPatch(painter, painter.deviceTransform().mapRect(speck), color).draw(painter);
            }
        }
    }
}

void drawPerforations(QPainter &painter, const FilmLayout &layout)
{
    const QTransform &transform = painter.deviceTransform();
    const double pixelsPerMm = std::sqrt(std::abs(transform.determinant()));
    const double firstCentre = (layout.pieceLengthMm - (holesPerRow - 1) * pitchMm) / 2;
    for (const double top : {holeInsetMm, layout.filmWidthMm - holeInsetMm - holeMm.height()}) {
        for (int i = 0; i < holesPerRow; ++i) {
            const QPointF corner(firstCentre + i * pitchMm - holeMm.width() / 2, top);
            drawRimmedRect(painter, {transform.mapRect(QRectF(corner, holeMm)), holeRadiusMm * pixelsPerMm,
                                     grey(0.99F), grey(0.72F, 0.25F), holeRimMm * pixelsPerMm});
        }
    }
}

/// The base, but for what the photo will hide: at 4096 px that saves filling ten megapixels twice. The piece
/// has the colour of what surrounds it, so one fill makes both.
void drawBase(QPainter &painter, const QRectF &canvas, const QRect &hidden, const QColor &base)
{
    if (hidden.isEmpty()) {
        painter.fillRect(canvas, base);
        return;
    }
    const QRectF device = painter.deviceTransform().mapRect(canvas);
    painter.save();
    painter.setTransform(painter.deviceTransform().inverted() * painter.transform());
    for (const QRectF &band : bandsAround(QRectF(hidden), device)) {
        painter.fillRect(band, base);
    }
    painter.restore();
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

} // namespace

PhotoPlacement photoPlacement(const PhotoItem &item, const FilmLayout &layout)
{
    return filmGatePlacement(item, layout);
}

QPainterPath gate(const QRectF &rect, double unit)
{
    return filmGateOutline(rect, unit);
}

void draw(QPainter &painter, const PhotoItem &item, const FrameSettings &settings, QSizeF size,
          const PhotoImage &photo)
{
    const FilmOptions options = settings.film.value_or(FilmOptions());
    const FilmLayout layout = FilmLayout::item(item, settings, size);
    painter.save();
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    if (layout.scale > 0 && std::isfinite(layout.scale)) {
        const FilmGate opening(painter, item, layout, photo);
        drawBase(painter, QRectF({}, size), opening.hidden(), baseColor(options));
        drawFilm(painter, layout, options);
        opening.draw(painter);
    } else {
        painter.fillRect(QRectF({}, size), baseColor(options));
    }
    painter.restore();
}

} // namespace tarnovel::FilmRenderer
