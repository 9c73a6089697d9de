#pragma once

#include <QPainterPath>
#include <QRectF>

#include "render/CompositionRenderer.h"
#include "render/FilmLayout.h"

class QPainter;

namespace tarnovel {

/// Draws a photo as one frame cut from developed film: base, grain, perforations, edge print, and the photo
/// in its gate. Nothing in it is random, so two drawings of one frame are the same pixels.
namespace FilmRenderer {

/// Draws the whole canvas. What FilmEdgePrint decides about numbers and counters holds here. The painter may
/// be moved, scaled and turned by quarters.
void draw(QPainter &painter, const PhotoItem &item, const FrameSettings &settings, QSizeF size,
          const PhotoImage &photo);

/// The outline of a gate as a camera's file leaves it: a closed path of 4 × 48 points around `rect`, each
/// pushed across its side by at most 0.018 `unit`s, so `unit` is what a millimetre of film measures.
QPainterPath gate(const QRectF &rect, double unit);

/// How the photo lies in the gate: filling it, centred, with what overflows cut off.
PhotoPlacement photoPlacement(const PhotoItem &item, const FilmLayout &layout);

} // namespace FilmRenderer

} // namespace tarnovel
