#pragma once

#include <cmath>
#include <numbers>

#include "handwriting/InkRenderer.h"

namespace tarnovel::test {

inline constexpr std::array allPens = {InkPen::signature, InkPen::fountain, InkPen::pencil, InkPen::marker};

/// A stroke along the places that `at` gives for 0…1, in this many samples of 8 ms.
template<typename Course>
InkStroke strokeAlong(InkPen pen, double width, int samples, Course at)
{
    InkStroke stroke;
    stroke.pen = pen;
    stroke.width = width;
    for (int i = 0; i < samples; ++i) {
        stroke.samples.append({at(static_cast<double>(i) / std::max(1, samples - 1)), i * 0.008});
    }
    return stroke;
}

inline InkStroke line(InkPen pen, double width, QPointF from, QPointF to, int samples = 40)
{
    return strokeAlong(pen, width, samples, [=](double t) { return from + t * (to - from); });
}

/// A figure of eight that crosses itself in the middle of a square of this side.
inline InkStroke eight(InkPen pen, double width, double side, int samples = 160)
{
    return strokeAlong(pen, width, samples, [side](double t) {
        const double turn = 2 * std::numbers::pi * t;
        return QPointF(0.5 + 0.4 * std::sin(turn), 0.5 + 0.4 * std::sin(turn) * std::cos(turn)) * side;
    });
}

inline InkDrawing drawingOf(const QList<InkStroke> &strokes)
{
    InkDrawing drawing;
    for (const InkStroke &stroke : strokes) {
        drawing.append(std::make_shared<const DryStroke>(stroke));
    }
    return drawing;
}

inline QImage rendered(const QList<InkStroke> &strokes, QSizeF size, double scale = 1)
{
    return InkRenderer::render(drawingOf(strokes), QRectF({0, 0}, size), scale);
}

/// The ink along a column or a row of pixels, in pixels.
inline double columnInk(const QImage &image, int x)
{
    double sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        sum += qAlpha(image.pixel(x, y)) / 255.0;
    }
    return sum;
}

inline double totalInk(const QImage &image)
{
    double sum = 0;
    for (int x = 0; x < image.width(); ++x) {
        sum += columnInk(image, x);
    }
    return sum;
}

} // namespace tarnovel::test
