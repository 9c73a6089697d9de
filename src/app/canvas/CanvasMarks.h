#pragma once

#include <QFont>
#include <QRectF>
#include <QRegion>

#include "editor/CanvasGestures.h"

class QPainter;

/// What is drawn over the picture for the hand; none of it is exported.
namespace tarnovel::app::CanvasMarks {

enum class Handle { None, Corner, Knob };

/// Lines through the centre of the frame; an axis that holds says so.
void paintGuides(QPainter &painter, const QRectF &frame, CentreSnap snap);

/// A sentence about the picture, over the foot of its frame.
void paintNotice(QPainter &painter, const QRectF &frame, const QString &text);

/// All that guides and their words may cover.
QRegion guideRegion(const QRectF &frame);

/// The name of an empty text in dashes, over a ground that is dark or not.
void paintPlaceholder(QPainter &painter, const QRectF &box, const QFont &font, const QString &name,
                      bool dark);
/// The box around a chosen layer with its handles; the painter is turned with the layer.
void paintSelection(QPainter &painter, const QRectF &box, bool keyboard);

/// The handle at a position that is turned back like the layer.
Handle handleAt(QPointF position, const QRectF &box);

} // namespace tarnovel::app::CanvasMarks
