#include "render/FilmLayout.h"

#include <algorithm>

#include "render/FrameGeometry.h"

namespace tarnovel {

namespace {

/// The gate as it stands on the canvas when the film runs down it: a quarter turn clockwise.
QRectF turned(const QRectF &gate, double filmWidth)
{
    return {filmWidth - (gate.y() + gate.height()), gate.x(), gate.height(), gate.width()};
}

/// The start of a piece of this length whose centre is asked for at a fraction of the canvas.
double heldStart(double offset, double piece, double canvas)
{
    return FrameGeometry::held((offset + 0.5) * canvas, piece / 2, canvas - piece / 2) - piece / 2;
}

} // namespace

FilmLayout FilmLayout::item(const PhotoItem &item, const FrameSettings &settings, QSizeF canvas)
{
    FilmLayout layout;
    layout.format = settings.film.value_or(FilmOptions()).format;
    const FilmDimensions dimensions = filmDimensions(layout.format);
    layout.rotated = isFilmRotated(layout.format, item.size());
    layout.pieceLengthMm = dimensions.pieceLengthMm();
    layout.filmWidthMm = dimensions.filmWidthMm;
    layout.gateMm = dimensions.gate();

    const QSizeF standing = orientedSize(layout.format, item.size());
    layout.scale = std::min(canvas.width() / standing.width(), canvas.height() / standing.height()) *
                   FrameGeometry::held(settings.scale, 0.1, 1);
    const QSizeF piece = standing * layout.scale;
    layout.origin = {heldStart(settings.lockX ? 0 : settings.x, piece.width(), canvas.width()),
                     heldStart(settings.lockY ? 0 : settings.y, piece.height(), canvas.height())};
    layout.pieceRect = {layout.origin, piece};

    const QRectF gate = layout.rotated ? turned(layout.gateMm, layout.filmWidthMm) : layout.gateMm;
    layout.photoRect = {layout.origin + gate.topLeft() * layout.scale, gate.size() * layout.scale};
    return layout;
}

} // namespace tarnovel
