#pragma once

#include <stop_token>

#include <QFuture>
#include <QImage>

#include "model/Session.h"

namespace tarnovel {

class ImagePipeline;

/// The framed photo that one writes on.
struct HandwritingReference {
    /// Of the page and of the saved picture, in pixels: the coordinates of the strokes.
    QSize size;
    /// The height that matters, 0…1 of the page: near the photo's lower edge, where one signs.
    double focusY = 1;

    static HandwritingReference of(const PhotoItem &photo);

    /// The photo with its frame and without its signature, which the new one will replace.
    QFuture<QImage> render(ImagePipeline &pipeline, const PhotoItem &photo, std::stop_token stop = {}) const;
};

} // namespace tarnovel
