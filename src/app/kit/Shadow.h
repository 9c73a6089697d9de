#pragma once

#include <QRectF>

class QPainter;

namespace tarnovel::app {

/// The shadows of the interface: what floats higher casts a wider one.
enum class Elevation { Frame, Popover, Sheet };

/// Draws the shadow of a rounded rectangle, from nine parts that are blurred once per device ratio.
void drawShadow(QPainter &painter, const QRectF &rect, double radius, Elevation elevation);

} // namespace tarnovel::app
