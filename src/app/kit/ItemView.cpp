#include "app/kit/ItemView.h"

#include <limits>
#include <utility>

#include <QAccessible>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>

#include "app/kit/Focus.h"
#include "app/kit/ItemViewAccessible.h"
#include "app/kit/Press.h"

namespace tarnovel::app {

ItemView::ItemView(Arrows arrows, QWidget *parent) : QWidget(parent), m_arrows(arrows)
{
    installItemViewAccessible();
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setProperty("paintsFocus", true);
}

void ItemView::setName(Phrase name)
{
    m_name = std::move(name);
    setAccessibleName(m_name());
}

void ItemView::setCurrent(int index)
{
    if (m_current == index) {
        return;
    }
    m_current = index;
    if (!hasFocus()) {
        m_cursor = index;
    }
    update();
}

void ItemView::setCursorItem(int index)
{
    if (m_cursor == index) {
        return;
    }
    m_cursor = index;
    update();
    QAccessibleEvent moved(this, QAccessible::Focus);
    moved.setChild(index);
    QAccessible::updateAccessibility(&moved);
    Q_EMIT cursorMoved(index);
}

int ItemView::itemAt(QPoint position) const
{
    for (int i = 0; i < count(); ++i) {
        if (itemRect(i).contains(position)) {
            return i;
        }
    }
    return -1;
}

void ItemView::choose(int index)
{
    if (index < 0 || index >= count() || !itemEnabled(index)) {
        return;
    }
    setCursorItem(index);
    setCurrent(index);
    Q_EMIT chosen(index);
}

void ItemView::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    paintGround(painter);
    const bool ring = hasFocus() && keyboardFocusVisible();
    for (int i = 0; i < count(); ++i) {
        // Rings and badges reach a little out of their item.
        if (!itemRect(i).adjusted(-12, -12, 12, 12).intersects(event->rect())) {
            continue;
        }
        painter.save();
        paintItem(painter, i,
                  {i == m_hovered && itemEnabled(i), i == m_pressed, itemChosen(i), itemEnabled(i),
                   ring && i == m_cursor});
        painter.restore();
    }
}

void ItemView::mousePressEvent(QMouseEvent *event)
{
    const int index = itemAt(event->position().toPoint());
    if (event->button() != Qt::LeftButton || index < 0 || !itemEnabled(index)) {
        return;
    }
    m_pressed = index;
    m_longPress.start(Press::menuMs, this);
    update();
}

void ItemView::cancelPress()
{
    m_longPress.stop();
    m_pressed = -1;
    update();
}

void ItemView::mouseMoveEvent(QMouseEvent *event)
{
    const int index = itemAt(event->position().toPoint());
    if (index != m_hovered) {
        m_hovered = index;
        update();
    }
    if (m_pressed >= 0 && index != m_pressed) {
        m_longPress.stop();
    }
}

void ItemView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        return;
    }
    m_longPress.stop();
    const int pressed = std::exchange(m_pressed, -1);
    update();
    if (pressed >= 0 && itemAt(event->position().toPoint()) == pressed) {
        choose(pressed);
    }
}

void ItemView::mouseDoubleClickEvent(QMouseEvent *event)
{
    const int index = itemAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && index >= 0) {
        m_pressed = index;
        Q_EMIT activated(index);
    }
}

void ItemView::contextMenuEvent(QContextMenuEvent *event)
{
    const int index = event->reason() == QContextMenuEvent::Keyboard ? m_cursor : itemAt(event->pos());
    if (index >= 0) {
        Q_EMIT menuRequested(index);
    }
}

void ItemView::leaveEvent(QEvent *)
{
    m_hovered = -1;
    update();
}

void ItemView::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_longPress.timerId()) {
        QWidget::timerEvent(event);
        return;
    }
    m_longPress.stop();
    const int index = std::exchange(m_pressed, -1);
    update();
    if (index >= 0) {
        Q_EMIT menuRequested(index);
    }
}

int ItemView::nextInDirection(int key) const
{
    const int from = m_cursor >= 0 ? m_cursor : std::max(m_current, 0);
    if (from >= count()) {
        return -1;
    }
    const QPoint start = itemRect(from).center();
    const bool across = key == Qt::Key_Left || key == Qt::Key_Right;
    const int sign = key == Qt::Key_Right || key == Qt::Key_Down ? 1 : -1;
    int best = -1;
    int nearest = std::numeric_limits<int>::max();
    for (int i = 0; i < count(); ++i) {
        const QPoint way = itemRect(i).center() - start;
        const int along = sign * (across ? way.x() : way.y());
        const int aside = std::abs(across ? way.y() : way.x());
        if (i == from || along <= 0 || !itemEnabled(i)) {
            continue;
        }
        const int distance = along + 8 * aside;
        if (distance < nearest) {
            nearest = distance;
            best = i;
        }
    }
    // At the end of a row the sideways keys go on with the next row.
    if (across && (best < 0 || itemRect(best).top() > itemRect(from).bottom() ||
                   itemRect(best).bottom() < itemRect(from).top())) {
        const int next = from + sign;
        return next >= 0 && next < count() && itemEnabled(next) ? next : -1;
    }
    return best;
}

void ItemView::moveCursor(int key)
{
    int next = -1;
    if (key == Qt::Key_Home) {
        next = 0;
    } else if (key == Qt::Key_End) {
        next = lastItem();
    } else {
        next = nextInDirection(key);
    }
    if (next < 0 || next >= count()) {
        return;
    }
    if (arrowsChoose(next)) {
        choose(next);
    } else {
        setCursorItem(next);
    }
}

void ItemView::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
        if (event->modifiers() & ~Qt::KeypadModifier) {
            break;
        }
        moveCursor(event->key());
        return;
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (m_cursor >= 0 && !(event->modifiers() & ~Qt::KeypadModifier)) {
            choose(m_cursor);
            if (event->key() != Qt::Key_Space) {
                Q_EMIT activated(m_cursor);
            }
            return;
        }
        break;
    case Qt::Key_Delete:
        if (m_cursor >= 0) {
            Q_EMIT menuRequested(m_cursor);
            return;
        }
        break;
    default:
        break;
    }
    QWidget::keyPressEvent(event);
}

void ItemView::focusInEvent(QFocusEvent *event)
{
    if (m_cursor < 0 || m_cursor >= count()) {
        m_cursor = count() > 0 ? std::clamp(m_current, 0, count() - 1) : -1;
    }
    update();
    QWidget::focusInEvent(event);
}

void ItemView::focusOutEvent(QFocusEvent *event)
{
    update();
    QWidget::focusOutEvent(event);
}

bool ItemView::event(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        if (m_name) {
            setAccessibleName(m_name());
        }
        updateGeometry();
        update();
    }
    return QWidget::event(event);
}

} // namespace tarnovel::app
