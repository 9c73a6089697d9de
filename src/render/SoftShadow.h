#pragma once

#include <QColor>
#include <QImage>
#include <QPainterPath>
#include <QPointF>

class QPainter;

namespace tarnovel {

/// A blurred copy of a shape, drawn under it. Lengths are in the painter's device pixels and do not turn with
/// it: light falls from above whatever the shape's rotation.
struct SoftShadow {
    /// With its opacity.
    QColor color;
    /// Standard deviation of the Gaussian.
    double sigmaPx = 0;
    QPointF offsetPx;
};

/// A blurred copy in one colour of a mask of 8-bit coverage. It has the mask's size: what would reach farther
/// is cut off.
QImage softShadow(const QImage &mask, double sigmaPx, const QColor &color);

/// `shape` is in the painter's coordinates.
void drawSoftShadow(QPainter &painter, const QPainterPath &shape, const SoftShadow &shadow);

} // namespace tarnovel
