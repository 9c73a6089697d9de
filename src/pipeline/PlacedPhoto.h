#pragma once

#include <QImage>
#include <QSize>

#include "render/CompositionRenderer.h"

namespace tarnovel {

/// The pixels of a canvas that show a photo, and the part of the photo that they cover.
struct PlacedRegion {
    QRect pixels;
    /// As fractions of the upright photo.
    QRectF extent;
};

/// The part of a photo lying at `whole` that these pixels cover.
QRectF extentOf(const QRect &pixels, const QRectF &whole);

/// Everything of the photo that shows, on the canvas and past it; empty when nothing does.
PlacedRegion placedRegion(const PhotoPlacement &placement);
/// What of it lies on the canvas.
PlacedRegion placedRegion(const PhotoPlacement &placement, QSize canvas);

/// A photo resampled to the pixels of a region. May run on any thread.
PhotoImage placedPhoto(const QImage &photo, const PlacedRegion &region);

/// What of `photo` a canvas shows, resampled so that its pixels lie on the canvas's. May run on any thread.
PhotoImage placedPhoto(const QImage &photo, const PhotoPlacement &placement, QSize canvas);

/// A picture scaled and cut to cover a canvas, its pixels on the canvas's. May run on any thread.
QImage coveringPicture(const QImage &picture, QSize canvas);

/// The pixels that the logo of a photo covers on a canvas; empty where none is drawn.
QSize logoPixels(const PhotoItem &item, QSize canvas);

/// The pixels that the signature covers; empty where none is drawn. The picture's own size gives the aspect
/// when the settings have none.
QSize signaturePixels(const PhotoItem &item, QSize picture, QSize canvas);

/// A picture at exactly this size. May run on any thread.
QImage scaledPicture(const QImage &picture, QSize size);

} // namespace tarnovel
