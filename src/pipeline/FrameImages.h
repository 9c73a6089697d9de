#pragma once

#include <stop_token>

#include <QImage>
#include <QList>
#include <QSize>

#include "pipeline/PhotoReader.h"

namespace tarnovel {

/// The longer side of what a blurred backdrop is made from, on screen and in exports.
constexpr int blurSourcePixels = 500;
/// Its blur's standard deviation, in pixels of that picture.
constexpr double blurSigma = 22;

/// All that a framed photo is drawn with on each canvas, read at the pixels that it covers there, from one
/// decoding. The photo is lent: it is to be drawn soon. Throws what PhotoReader throws.
QList<CompositionImages> frameImages(PhotoReader &reader, const PhotoItem &item, const QList<QSize> &canvases,
                                     const std::stop_token &stop);

/// Draws a framed photo over the whole canvas. A canvas that no memory was found for throws PipelineFailure.
void compose(QImage &canvas, const PhotoItem &item, const CompositionImages &images);

} // namespace tarnovel
