#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>

#include "film/FilmOptions.h"
#include "model/Session.h"

namespace tarnovel {

/// Where a piece of film and the photo in its gate stand on the canvas. Lengths are canvas units unless they
/// are named in millimetres of film; on the film, x runs along it and y across it.
struct FilmLayout {
    FilmFormat format = FilmFormat::mm35;
    /// The film runs down the canvas, its upper edge at the right, because its gate lies the other way than
    /// the photo. The photo itself is never turned.
    bool rotated = false;
    /// Canvas units for one millimetre.
    double scale = 0;
    /// The piece's top left corner as it stands on the canvas.
    QPointF origin;
    double pieceLengthMm = 0;
    double filmWidthMm = 0;
    /// The gate on the film, in millimetres.
    QRectF gateMm;
    QRectF photoRect;
    QRectF pieceRect;

    /// The piece is as large as the canvas allows, times the style's scale held to 0.1…1, and is moved by the
    /// style's offsets until it touches the canvas's edge; a locked axis stays centred. A style without film
    /// options takes their defaults.
    static FilmLayout item(const PhotoItem &item, const FrameSettings &settings, QSizeF canvas);
};

} // namespace tarnovel
