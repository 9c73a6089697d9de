#pragma once

#include <QColor>
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

/// `shape` is in the painter's coordinates.
void drawSoftShadow(QPainter &painter, const QPainterPath &shape, const SoftShadow &shadow);

} // namespace tarnovel
