#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>

namespace tarnovel {

/// Which part of the reference a view shows, and how large. Lengths are logical pixels of the view; `zoom` is
/// in those per reference unit. A reference smaller than the view lies in its middle.
class HandwritingViewport {
public:
    /// `focusY` (0…1 of the reference's height) is in the view's middle at first.
    HandwritingViewport(QSizeF reference, double focusY);

    /// Fits the limits of the zoom to a view of another size. At its minimum the zoom stays there; otherwise
    /// it keeps its ratio to the minimum. The point in the middle stays in the middle. An empty view changes
    /// nothing. At the minimum at least `margin` stays free on every side.
    void layOut(QSizeF view, double margin = 0);

    QSizeF reference() const { return m_reference; }
    QSizeF view() const { return m_view; }
    double zoom() const { return m_zoom; }
    double minimumZoom() const { return m_minimum; }
    double maximumZoom() const;
    /// 1 when the whole reference shows.
    double relativeZoom() const { return m_zoom / m_minimum; }
    /// Where the view's top left corner lies in the zoomed reference; negative beside a small one.
    QPointF offset() const { return m_offset; }
    /// The room on each side of a reference smaller than the view.
    QPointF insets() const;

    /// Zooms within the limits; what is under `anchor` stays there as far as the page's edges allow.
    void zoomTo(double zoom, QPointF anchor);
    /// The page follows the finger.
    void pan(QPointF by);

    QPointF toReference(QPointF point) const { return (point + m_offset) / m_zoom; }
    QPointF toView(QPointF point) const { return point * m_zoom - m_offset; }
    /// Where the whole reference lies in the view.
    QRectF referenceRect() const { return {-m_offset, m_reference * m_zoom}; }

private:
    void scrollTo(QPointF offset);

    QSizeF m_reference;
    double m_focusY;
    /// Empty before the first layout.
    QSizeF m_view;
    double m_margin = 0;
    double m_minimum = 1;
    double m_zoom = 1;
    QPointF m_offset;
};

} // namespace tarnovel
