#pragma once

#include <QColor>
#include <QRectF>

class QPainter;

/// The ring that says that something is being worked on.
namespace tarnovel::app::Spinner {

constexpr int tickMs = 40;
constexpr int degreesPerTick = 18;

void paint(QPainter &painter, const QRectF &box, int angle, const QColor &color);

} // namespace tarnovel::app::Spinner
