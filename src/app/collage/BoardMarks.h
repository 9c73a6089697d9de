#pragma once

#include <QRectF>
#include <QString>

#include "collage/CollageGeometry.h"

class QPainter;

/// What is painted over the collage while it is arranged.
namespace tarnovel::app::BoardMarks {

enum class Grasp { Rest, Near, Held };

/// Where a divider's handle is; the larger one has the length of its hit area.
QRectF handleRect(const CollageDivider &divider, QPointF origin, Grasp grasp);
void paintHandle(QPainter &painter, const CollageDivider &divider, QPointF origin, Grasp grasp);
/// The line that is being dragged, over its whole length.
void paintHeldLine(QPainter &painter, const CollageDivider &divider, QPointF origin);
/// The read-out over a handle, held inside `room`.
void paintChip(QPainter &painter, const QRectF &handle, const QString &text, bool snapped,
               const QRectF &room);
/// The ring round a cell: chosen, with the keyboard, or about to take what is dropped.
enum class Ring { Chosen, Focused, Target };
void paintRing(QPainter &painter, const QRectF &cell, double radius, Ring ring);

} // namespace tarnovel::app::BoardMarks
