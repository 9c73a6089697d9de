#pragma once

#include <QImage>
#include <QRectF>

namespace tarnovel {

/// The part `region` of the image (in its pixels, fractions allowed; past the edges the edge pixels go on),
/// resampled with Lanczos-3 to exactly `size`, as RGB32 or, with alpha, ARGB32_Premultiplied. An image of 16
/// bits a channel is resampled in them and brought to 8 with an ordered dither.
QImage resampled(const QImage &image, const QRectF &region, QSize size);

/// The same without the dither: RGBX64 or RGBA64_Premultiplied. The image must have one of these formats.
QImage resampledDeep(const QImage &image, const QRectF &region, QSize size);

/// A Gaussian blur of standard deviation `sigma` pixels whose edge pixels go on outside the image. It comes
/// in 16 bits a channel (RGBX64 or RGBA64_Premultiplied): enlarged from 8, its slopes would show as steps.
QImage gaussianBlurred(const QImage &image, double sigma);

} // namespace tarnovel
