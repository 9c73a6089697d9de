#pragma once

#include <QColor>
#include <QPixmap>
#include <QPointF>
#include <QString>

class QPainter;

namespace tarnovel::app::Icons {

/// An icon of the table in one colour; `size` in logical pixels, drawn for the device's ratio. Kept from one
/// call to the next. An unknown name is a bug.
QPixmap pixmap(const char *name, int size, const QColor &color, double ratio);

/// Draws the icon with its box's top left at `at`.
void draw(QPainter &painter, const char *name, QPointF at, int size, const QColor &color);

/// The program's mark in the colours of the theme.
void drawMark(QPainter &painter, const QRectF &rect);

/// The program's icon for windows.
QPixmap application(int size);

} // namespace tarnovel::app::Icons
