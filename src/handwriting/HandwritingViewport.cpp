#include "handwriting/HandwritingViewport.h"

#include <algorithm>

namespace tarnovel {

namespace {

/// Differences below this do not count as zoomed in.
constexpr double atMinimum = 0.001;

} // namespace

HandwritingViewport::HandwritingViewport(QSizeF reference, double focusY)
    : m_reference(reference.expandedTo({1, 1})), m_focusY(std::clamp(focusY, 0.0, 1.0))
{
}

double HandwritingViewport::maximumZoom() const
{
    return std::max(6 * m_minimum, 2.0);
}

QPointF HandwritingViewport::insets() const
{
    const QSizeF room = (m_view - m_reference * m_zoom) / 2;
    return {std::max(0.0, room.width()), std::max(0.0, room.height())};
}

void HandwritingViewport::layOut(QSizeF view, double margin)
{
    if ((view == m_view && margin == m_margin) || view.isEmpty()) {
        return;
    }
    QPointF middle(m_reference.width() / 2, m_focusY * m_reference.height());
    double relative = 1;
    bool minimal = true;
    if (!m_view.isEmpty()) {
        middle = toReference({m_view.width() / 2, m_view.height() / 2});
        relative = relativeZoom();
        minimal = m_zoom - m_minimum < atMinimum;
    }
    m_view = view;
    m_margin = margin;
    const QSizeF room = (view - QSizeF(2 * margin, 2 * margin)).expandedTo({1, 1});
    m_minimum = std::min(room.width() / m_reference.width(), room.height() / m_reference.height());
    m_zoom = minimal ? m_minimum : std::clamp(relative * m_minimum, m_minimum, maximumZoom());
    scrollTo(middle * m_zoom - QPointF(view.width(), view.height()) / 2);
}

void HandwritingViewport::scrollTo(QPointF offset)
{
    const QPointF inset = insets();
    const QSizeF rest = m_reference * m_zoom - m_view;
    m_offset = {std::clamp(offset.x(), -inset.x(), std::max(-inset.x(), rest.width() + inset.x())),
                std::clamp(offset.y(), -inset.y(), std::max(-inset.y(), rest.height() + inset.y()))};
}

void HandwritingViewport::zoomTo(double zoom, QPointF anchor)
{
    const QPointF held = toReference(anchor);
    m_zoom = std::clamp(zoom, m_minimum, maximumZoom());
    scrollTo(held * m_zoom - anchor);
}

void HandwritingViewport::pan(QPointF by)
{
    scrollTo(m_offset - by);
}

} // namespace tarnovel
