#pragma once

#include <QImage>
#include <QRectF>

namespace tarnovel {

/// The part `region` of the image (in its pixels, fractions allowed; past the edges the edge pixels go on),
/// resampled with Lanczos-3 to exactly `size`. RGB32 and ARGB32_Premultiplied come back in the same format.
QImage resampled(const QImage &image, const QRectF &region, QSize size);

/// A Gaussian blur of standard deviation `sigma` pixels whose edge pixels go on outside the image.
QImage gaussianBlurred(const QImage &image, double sigma);

} // namespace tarnovel
