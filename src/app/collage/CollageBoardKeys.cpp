// What the board does with keys.

#include <cmath>

#include <QKeyEvent>

#include "app/collage/CollageBoard.h"
#include "collage/SelectedCell.h"

namespace tarnovel::app {

namespace {

constexpr double dividerStep = 0.01;
constexpr double largeDividerStep = 0.05;
/// Points that an arrow key pans.
constexpr double panStep = 8;
constexpr double largePanStep = 40;
constexpr double keyZoom = 1.05;
constexpr int nudgeLabelMs = 1200;

QPointF wayOf(int key)
{
    switch (key) {
    case Qt::Key_Left:
        return {-1, 0};
    case Qt::Key_Right:
        return {1, 0};
    case Qt::Key_Up:
        return {0, -1};
    case Qt::Key_Down:
        return {0, 1};
    default:
        return {};
    }
}

} // namespace

void CollageBoard::focusInEvent(QFocusEvent *event)
{
    const bool backwards = event->reason() == Qt::BacktabFocusReason;
    if (event->reason() == Qt::TabFocusReason || backwards) {
        moveTo(backwards ? count() - 1 : m_studio.selected().value_or(0));
    }
    ItemView::focusInEvent(event);
}

bool CollageBoard::focusNextPrevChild(bool next)
{
    const int to = cursor() + (next ? 1 : -1);
    if (to >= 0 && to < count()) {
        moveTo(to);
        return true;
    }
    return ItemView::focusNextPrevChild(next);
}

void CollageBoard::swapTowards(int slot, int key)
{
    const std::map<int, QRectF> places = m_studio.layout().cells;
    const QPointF start = places.at(slot).center();
    const QPointF way = wayOf(key);
    std::optional<int> nearest;
    double shortest = 0;
    for (const auto &[other, rect] : places) {
        const QPointF to = rect.center() - start;
        const double along = QPointF::dotProduct(to, way);
        const double distance = along + 2 * std::abs(to.x() * way.y() + to.y() * way.x());
        if (other != slot && along > 1 && (!nearest || distance < shortest)) {
            nearest = other;
            shortest = distance;
        }
    }
    if (nearest) {
        m_studio.swapCells(slot, *nearest);
        moveTo(*nearest);
    }
}

bool CollageBoard::cellKey(QKeyEvent *event, int slot)
{
    const QPointF way = wayOf(event->key());
    const bool control = event->modifiers() & Qt::ControlModifier;
    if (!way.isNull() && control) {
        swapTowards(slot, event->key());
        return true;
    }
    if (!way.isNull()) {
        m_gestures.nudgePhoto(slot, way * (event->modifiers() & Qt::ShiftModifier ? largePanStep : panStep));
        return true;
    }
    switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        m_gestures.zoomPhoto(slot, keyZoom);
        return true;
    case Qt::Key_Minus:
        m_gestures.zoomPhoto(slot, 1 / keyZoom);
        return true;
    case Qt::Key_0:
        if (!control) {
            return false;
        }
        m_studio.select(slot);
        SelectedCell(m_studio).resetPhoto();
        return true;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        m_studio.toggle(m_studio.design().cells.at(slot).photo);
        return true;
    default:
        return false;
    }
}

bool CollageBoard::dividerKey(QKeyEvent *event, int index)
{
    const CollageDivider divider = dividerOf(index);
    const QPointF way = wayOf(event->key());
    const double along = divider.axis == CollageAxis::Horizontal ? way.x() : way.y();
    if (along == 0) {
        return !way.isNull();
    }
    const double step = event->modifiers() & Qt::ShiftModifier ? largeDividerStep : dividerStep;
    m_nudged = m_gestures.nudgeDivider(divider.id(), along * step);
    m_nudgeEnd.start(nudgeLabelMs, this);
    return true;
}

void CollageBoard::keyPressEvent(QKeyEvent *event)
{
    const int index = cursor();
    if (event->key() == Qt::Key_Escape && (lifting() || m_state.colorTaker() || m_studio.selected())) {
        if (lifting()) {
            letGo();
        } else if (m_state.colorTaker()) {
            m_state.endPicking();
        } else {
            m_studio.select({});
        }
        return;
    }
    const bool taken = m_studio.editable() && !lifting() && index >= 0 && index < count() &&
                       !(event->modifiers() & Qt::AltModifier) &&
                       (index < cells() ? cellKey(event, index) : dividerKey(event, index));
    if (!taken) {
        ItemView::keyPressEvent(event);
    }
}

} // namespace tarnovel::app
