#pragma once

#include <QFont>
#include <QImage>
#include <QRectF>

#include "model/Session.h"

class QPainter;

namespace tarnovel {

/// A decoded photo, or the part of it that a drawing needs.
struct PhotoImage {
    QImage image = {};
    /// The part of the upright photo that the image shows, as fractions of its width and height. It may reach
    /// a little past 0…1, so that the image's pixels can lie exactly on those of the canvas.
    QRectF extent = {0, 0, 1, 1};
};

/// Where a drawing puts the whole photo, and which part of that shows.
struct PhotoPlacement {
    QRectF whole;
    QRectF shown;
};

/// The decoded pictures of one framed photo. An absent one leaves its element out.
struct CompositionImages {
    PhotoImage photo = {};
    /// For a blurred backdrop, the blurred photo; for a picture, that picture.
    QImage background = {};
    QImage logo = {};
    QImage signature = {};
};

/// Draws one framed photo. Screen, thumbnails, studios and export all call `draw`; it reads nothing but its
/// arguments and may run on any thread. Lengths are in canvas units, the origin at the top left, y downwards.
namespace CompositionRenderer {

void draw(QPainter &painter, const PhotoItem &item, const FrameSettings &settings, QSizeF size,
          const CompositionImages &images);

/// Where the photo goes; empty for a photo without extent in the styles that fit it.
QRectF photoRect(const PhotoItem &item, const FrameSettings &settings, QSizeF size);

/// How `draw` lays the photo out in that rectangle: fitted, or filling it with what overflows cut off.
PhotoPlacement photoPlacement(const PhotoItem &item, const FrameSettings &settings, QSizeF size);

/// All that the photo covers with its border; of a film frame, the piece of film.
QRectF photoBounds(const PhotoItem &item, const FrameSettings &settings, QSizeF size);

/// The font of a text layer on a canvas of this width, in whole pixels.
QFont font(const TextLayer &layer, double width);

/// The rectangle of a layer before it is turned. Its centre is held so that the turned layer stays on the
/// canvas.
QRectF textRect(const TextLayer &layer, QSizeF size);

/// Where the signature goes. `imageSize` gives the aspect when the settings have none.
QRectF signatureRect(const FrameSettings &settings, QSizeF imageSize, QSizeF size);

/// The whole device pixels that the photo's image covers one to one when the whole photo lies at `whole`, or
/// an empty rectangle when it has to be scaled.
QRect alignedPixels(const QTransform &transform, const PhotoImage &photo, const QRectF &whole);

/// The whole device pixels that an upright rectangle of device coordinates is drawn on, each edge at the
/// nearest: an edge between two pixels would mix with what lies behind it.
QRect devicePixels(const QRectF &rect);

/// Draws `photo` so that the whole photo would fill `placement.whole`, cut to the device pixels of
/// `placement.shown`. An image whose pixels lie on the device's is copied; any other is scaled smoothly.
void drawPhoto(QPainter &painter, const PhotoImage &photo, const PhotoPlacement &placement);

/// `source` scaled to cover `target`, centred.
QRectF aspectFilled(QSizeF source, const QRectF &target);

QColor opaque(const Ink &ink);

} // namespace CompositionRenderer

} // namespace tarnovel
