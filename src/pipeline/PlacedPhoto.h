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

/// Empty for a photo that the canvas does not show.
PlacedRegion placedRegion(const PhotoPlacement &placement, QSize canvas);

/// What of `photo` a canvas shows, resampled so that its pixels lie on the canvas's. May run on any thread.
PhotoImage placedPhoto(const QImage &photo, const PhotoPlacement &placement, QSize canvas);

/// A picture scaled and cut to cover a canvas, its pixels on the canvas's. May run on any thread.
QImage coveringPicture(const QImage &picture, QSize canvas);

/// A picture at exactly this size. May run on any thread.
QImage scaledPicture(const QImage &picture, QSize size);

} // namespace tarnovel
