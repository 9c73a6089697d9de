#pragma once

#include <QColor>
#include <QSizeF>

class QPainter;

namespace tarnovel {

/// Fills a canvas with a gradient from its top left to its bottom right corner, at the device's own pixels
/// and with ordered dither: a slope of few levels over thousands of pixels is bands otherwise.
void fillDiagonally(QPainter &painter, QSizeF canvas, const QColor &from, const QColor &to);

} // namespace tarnovel
