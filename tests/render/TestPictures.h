#pragma once

#include <algorithm>
#include <cmath>

#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

#include "render/CompositionRenderer.h"

namespace tarnovel {

inline PhotoItem photoItem(double width, double height)
{
    PhotoItem item;
    item.width = width;
    item.height = height;
    return item;
}

/// Smooth colours with some structure: what resampling can carry from one size to another.
inline QImage photoImage(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const double u = (x + 0.5) / size.width();
            const double v = (y + 0.5) / size.height();
            const auto wave = [](double t) {
                return static_cast<int>(std::lround(127.5 + 120 * std::sin(t)));
            };
            image.setPixel(x, y, qRgb(wave(9 * u), wave(7 * v + 1), wave(5 * (u + v))));
        }
    }
    return image;
}

inline QImage drawn(const PhotoItem &item, QSize size, const CompositionImages &images)
{
    QImage canvas(size, QImage::Format_RGB32);
    canvas.fill(Qt::magenta);
    QPainter painter(&canvas);
    CompositionRenderer::draw(painter, item, item.settings, size, images);
    return canvas;
}

inline double psnr(const QImage &a, const QImage &b)
{
    EXPECT_EQ(a.size(), b.size());
    double sum = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            for (const int difference : {qRed(p) - qRed(q), qGreen(p) - qGreen(q), qBlue(p) - qBlue(q)}) {
                sum += difference * difference;
            }
        }
    }
    return 10 * std::log10(255.0 * 255.0 * 3 * a.width() * a.height() / std::max(sum, 1.0));
}

/// The mean of whole blocks of pixels: an exact shrink by a whole number.
inline QImage shrunk(const QImage &image, int factor)
{
    QImage small(image.size() / factor, QImage::Format_RGB32);
    for (int y = 0; y < small.height(); ++y) {
        for (int x = 0; x < small.width(); ++x) {
            int red = 0;
            int green = 0;
            int blue = 0;
            for (int i = 0; i < factor * factor; ++i) {
                const QRgb pixel = image.pixel(x * factor + i % factor, y * factor + i / factor);
                red += qRed(pixel);
                green += qGreen(pixel);
                blue += qBlue(pixel);
            }
            const int count = factor * factor;
            small.setPixel(x, y, qRgb(red / count, green / count, blue / count));
        }
    }
    return small;
}

} // namespace tarnovel
