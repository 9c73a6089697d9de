#pragma once

#include <QImage>
#include <QRectF>

namespace tarnovel::test {

/// Smooth colour with texture down to four pixels: nothing that halving aliases, much that a poor filter
/// loses.
QImage texture(QSize size);
/// A quarter in each of four colours: red, green / blue, yellow.
QImage quarters(QSize size);

/// Lanczos-3 in double precision whose edge pixels go on.
QImage lanczosReference(const QImage &image, const QRectF &region, QSize size);
/// Over red, green, blue (and alpha, where both have it); 99 for equal images.
double psnr(const QImage &one, const QImage &other);
double psnr(const QImage &one, const QImage &other, const QRect &area);

} // namespace tarnovel::test
