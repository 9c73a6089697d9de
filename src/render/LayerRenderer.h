#pragma once

#include <QRectF>

#include "model/FrameSettings.h"

class QImage;
class QPainter;

/// The texts and the logo over a frame. Lengths are in canvas units.
namespace tarnovel::LayerRenderer {

/// Draws a layer that is visible and has something to show. Without its picture, a logo's text stands in its
/// place.
void draw(QPainter &painter, const TextLayer &layer, const FrameSettings &settings, QSizeF size,
          const QImage &logo);

/// All that the layer may cover once it is turned, with its shadow and what letters have beyond their box;
/// empty where it shows nothing.
QRectF bounds(const TextLayer &layer, const FrameSettings &settings, QSizeF size);

} // namespace tarnovel::LayerRenderer
