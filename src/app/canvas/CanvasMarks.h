#pragma once

#include <QImage>
#include <QRectF>
#include <QRegion>

#include "editor/CanvasGestures.h"

class QPainter;

namespace tarnovel {
struct FrameSettings;
}

/// What is drawn over the picture for the hand; none of it is exported.
namespace tarnovel::app::CanvasMarks {

enum class Handle { None, Corner, Knob };

/// Lines through the centre of the frame; an axis that holds says so.
void paintGuides(QPainter &painter, const QRectF &frame, CentreSnap snap);

/// A sentence about the picture, over the foot of its frame.
void paintNotice(QPainter &painter, const QRectF &frame, const QString &text);

/// All that guides and their words may cover.
QRegion guideRegion(const QRectF &frame);

enum class Naming { Full, Dashes };
/// The empty texts of a frame in dashes, with their names or, on a card, without. `ground` is what is drawn
/// there already, by which their colour is chosen.
void paintPlaceholders(QPainter &painter, const FrameSettings &settings, const QRectF &frame,
                       const QImage &ground, Naming naming);
/// A card's picture, in device pixels of `ratio`, with its empty texts.
QImage withPlaceholders(QImage picture, const FrameSettings &settings, double ratio);

/// The box around a chosen layer with its handles; the painter is turned with the layer.
void paintSelection(QPainter &painter, const QRectF &box, bool keyboard);

/// All that the box of a layer and its handles may cover.
QRectF selectionBounds(const QRectF &box);

/// The handle at a position that is turned back like the layer.
Handle handleAt(QPointF position, const QRectF &box);

} // namespace tarnovel::app::CanvasMarks
