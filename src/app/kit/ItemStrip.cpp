#include "app/kit/ItemStrip.h"

#include <algorithm>
#include <cmath>

#include <QWheelEvent>

namespace tarnovel::app {

ItemStrip::ItemStrip(Arrows arrows) : ItemView(arrows)
{
    connect(this, &ItemView::cursorMoved, this, &ItemStrip::reveal);
}

bool ItemStrip::setWidths(const QList<int> &widths, int gap, int left)
{
    QList<int> edges = {left};
    for (const int width : widths) {
        edges.append(edges.last() + width + gap);
    }
    const bool moved = edges != m_edges || gap != m_gap;
    m_edges = edges;
    m_gap = gap;
    scrollTo(m_offset);
    return moved;
}

QRect ItemStrip::placeOf(int index, int top, int height) const
{
    if (index < 0 || index + 1 >= m_edges.size()) {
        return {};
    }
    const int left = m_edges.at(index);
    return {left - m_offset, top, m_edges.at(index + 1) - left - m_gap, height};
}

void ItemStrip::scrollTo(int offset)
{
    const int end = m_edges.isEmpty() ? 0 : m_edges.last() - m_gap + sideInset;
    const int held = std::clamp(offset, 0, std::max(end - width(), 0));
    if (held != m_offset) {
        m_offset = held;
        update();
    }
}

void ItemStrip::reveal(int index)
{
    const QRect item = placeOf(index, 0, 1);
    if (item.isNull()) {
        return;
    }
    if (item.left() < sideInset) {
        scrollTo(m_offset + item.left() - sideInset);
    } else if (item.right() > width() - sideInset) {
        scrollTo(m_offset + item.right() - width() + sideInset);
    }
}

void ItemStrip::wheelEvent(QWheelEvent *event)
{
    const QPoint delta = event->pixelDelta().isNull() ? event->angleDelta() / 2 : event->pixelDelta();
    scrollTo(m_offset - (std::abs(delta.x()) > std::abs(delta.y()) ? delta.x() : delta.y()));
    event->accept();
}

} // namespace tarnovel::app
