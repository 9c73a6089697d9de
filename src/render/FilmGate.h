#pragma once

#include <QPainterPath>
#include <QRect>

#include "render/CompositionRenderer.h"
#include "render/DevicePatch.h"
#include "render/FilmLayout.h"

class QPainter;

namespace tarnovel {

/// What FilmRenderer::gate() and FilmRenderer::photoPlacement() say.
QPainterPath filmGateOutline(const QRectF &rect, double unit);
PhotoPlacement filmGatePlacement(const PhotoItem &item, const FilmLayout &layout);

/// Draws the photo in the opening of the gate. Clipping ten megapixels by a path takes longer than drawing
/// them, so the inside, where the outline cannot come, is copied as it is, and only the edge is cut to the
/// outline.
class FilmGate {
public:
    /// For one drawing: refers to the photo, and to the painter's transform and clip as they are now.
    FilmGate(const QPainter &painter, const PhotoItem &item, const FilmLayout &layout,
             const PhotoImage &photo);

    /// Device pixels that draw() covers whatever lies below; empty when it may cover none.
    QRect hidden() const;

    void draw(QPainter &painter) const;

private:
    void fill(QPainter &painter) const;
    void copyPixels(DevicePatch &patch) const;
    DevicePatch band(const QRect &area) const;

    const PhotoImage &m_photo;
    PhotoPlacement m_placement;
    QPainterPath m_outline;
    QTransform m_transform;
    /// The device shows the gate upright; on any other one the outline is a clip.
    bool m_upright;
    /// The device pixels that the outline can reach, and those that lie inside it wherever it strays.
    QRect m_area;
    QRect m_inside;
    /// The device pixels that the photo's image covers one to one; empty when it has to be scaled.
    QRect m_pixels;
};

} // namespace tarnovel
