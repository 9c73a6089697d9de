#pragma once

#include <QImage>
#include <QRect>

#include "render/CompositionRenderer.h"

namespace tarnovel {

/// The live canvas's picture. It is drawn by the one renderer; after a change that touches only a part of it
/// (the photo, or one layer) only that part, with the same pixels as if it were drawn as a whole.
class LiveFrame {
public:
    /// The pixels that the next draw() with these settings will touch, as far as settings decide on it: new
    /// pictures may touch more.
    QRect outdated(const PhotoItem &item, QSize pixels) const;

    /// Brings the picture up to date and returns the pixels that may have changed.
    QRect draw(const PhotoItem &item, QSize pixels, const CompositionImages &images);

    /// The next draw() begins anew.
    void clear() { m_stale = true; }

    const QImage &image() const { return m_image; }

private:
    QImage m_image;
    bool m_stale = true;
    /// What the picture shows.
    PhotoItem m_item;
    CompositionImages m_pictures;
};

/// The part of a canvas that differs between two settings of one photo: the whole canvas, unless only the
/// photo's place or one layer changed. Pictures are taken to stay the same.
QRectF changedPart(const PhotoItem &before, const PhotoItem &after, QSizeF canvas);

} // namespace tarnovel
