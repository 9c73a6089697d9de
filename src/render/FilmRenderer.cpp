#include "render/FilmRenderer.h"

#include <array>
#include <cmath>

#include <QPainter>

#include "render/DevicePatch.h"
#include "render/FilmEdgePrint.h"
#include "render/FilmGate.h"
#include "render/FilmMarks.h"

namespace tarnovel::FilmRenderer {

namespace {

constexpr int grainSpecks = 160;
constexpr QSizeF speckMm(0.018, 0.06);

/// Perforations of one frame of 35 mm film.
constexpr int holesPerRow = 8;

void drawGrain(QPainter &painter, const FilmLayout &layout, bool light)
{
    QColor color = light ? Qt::black : Qt::white;
    color.setAlphaF(0.035F);
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

void drawPerforations(QPainter &painter, const FilmLayout &layout, bool light)
{
    const double firstCentre = (layout.pieceLengthMm - (holesPerRow - 1) * FilmMarks::pitchMm) / 2;
    const double lower = layout.filmWidthMm - FilmMarks::holeInsetMm - FilmMarks::holeMm.height();
    for (const double top : {FilmMarks::holeInsetMm, lower}) {
        for (int i = 0; i < holesPerRow; ++i) {
            FilmMarks::drawHole(
                painter, {firstCentre + i * FilmMarks::pitchMm - FilmMarks::holeMm.width() / 2, top}, light);
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
        drawPerforations(painter, layout, options.light);
    }
    drawFilmEdge(painter, FilmEdgePrint::print(options), FilmMarks::printColor(options.light));
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
        drawBase(painter, QRectF({}, size), opening.hidden(), FilmMarks::baseColor(options.light));
        drawFilm(painter, layout, options);
        opening.draw(painter);
    } else {
        painter.fillRect(QRectF({}, size), FilmMarks::baseColor(options.light));
    }
    painter.restore();
}

} // namespace tarnovel::FilmRenderer
