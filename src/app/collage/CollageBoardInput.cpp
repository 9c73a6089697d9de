// What the board does with pointer, keys and drops.

#include <algorithm>
#include <cmath>

#include <QGestureEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QNativeGestureEvent>
#include <QPainter>
#include <QPinchGesture>
#include <QUrl>

#include "app/collage/CellMenu.h"
#include "app/collage/CollageBoard.h"
#include "app/kit/Press.h"

namespace tarnovel::app {

namespace {

constexpr double dividerStep = 0.01;
constexpr double largeDividerStep = 0.05;
/// Points that an arrow key pans.
constexpr double panStep = 8;
constexpr double largePanStep = 40;
constexpr double keyZoom = 1.05;
constexpr double wheelZoomPerDegree = 0.01;
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

QStringList localFiles(const QMimeData *data)
{
    QStringList files;
    for (const QUrl &url : data->urls()) {
        if (url.isLocalFile()) {
            files.append(url.toLocalFile());
        }
    }
    return files;
}

} // namespace

void CollageBoard::moveTo(int index)
{
    setCursorItem(index);
    if (index >= 0 && index < cells()) {
        m_studio.select(index);
    }
    m_nudged.clear();
    update();
}

void CollageBoard::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !m_studio.editable()) {
        return;
    }
    const QPointF position = event->position();
    if (m_context.state.colorTaker()) {
        takeColor(position);
        return;
    }
    const QPointF point = position - boardRect().topLeft();
    if (m_gestures.grabDivider(point)) {
        moveTo(itemAt(position.toPoint()));
    } else if (const std::optional<int> slot = slotAt(position)) {
        moveTo(*slot);
        m_press = {*slot, position};
        m_longPress.start(Press::liftMs, Qt::PreciseTimer, this);
    } else {
        m_studio.select({});
    }
    showCursor(position);
}

void CollageBoard::mouseMoveEvent(QMouseEvent *event)
{
    const QPointF position = event->position();
    if (m_gestures.activeDivider()) {
        m_gestures.dragDivider(position - boardRect().topLeft());
        repaintBoard();
    } else if (m_lift) {
        m_lift->at = position;
        const std::optional<int> slot = slotAt(position);
        setTarget(slot == m_lift->slot ? std::nullopt : slot);
        update();
    } else if (m_press) {
        const QPointF way = position - m_press->at;
        if (!m_press->moved && std::hypot(way.x(), way.y()) < CollageGestures::panThreshold) {
            return;
        }
        m_press->moved = true;
        m_longPress.stop();
        m_gestures.panPhoto(m_press->slot, way);
    } else {
        ItemView::mouseMoveEvent(event);
    }
    showCursor(position);
}

void CollageBoard::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        return;
    }
    m_longPress.stop();
    m_gestures.releaseDivider();
    m_gestures.endPan();
    m_press.reset();
    if (m_lift) {
        drop(event->position());
    }
    repaintBoard();
    showCursor(event->position());
}

void CollageBoard::mouseDoubleClickEvent(QMouseEvent *event)
{
    // The second click of two is as good as the first.
    mousePressEvent(event);
}

void CollageBoard::drop(QPointF position)
{
    const int from = m_lift->slot;
    const std::optional<int> to = slotAt(position);
    m_lift.reset();
    setTarget({});
    if (to && *to != from) {
        m_studio.swapCells(from, *to);
        moveTo(*to);
    }
    update();
}

void CollageBoard::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_longPress.timerId()) {
        m_longPress.stop();
        if (m_press && m_studio.editable()) {
            lift();
        }
    } else if (event->timerId() == m_nudgeEnd.timerId()) {
        m_nudgeEnd.stop();
        m_nudged.clear();
        repaintBoard();
    } else {
        ItemView::timerEvent(event);
    }
}

void CollageBoard::showCursor(QPointF position)
{
    if (m_context.state.colorTaker()) {
        setCursor(Qt::CrossCursor);
        return;
    }
    if (m_lift || (m_press && m_press->moved)) {
        setCursor(Qt::ClosedHandCursor);
        return;
    }
    const int index = itemAt(position.toPoint());
    if (index >= cells()) {
        setCursor(dividerOf(index).axis == CollageAxis::Horizontal ? Qt::SplitHCursor : Qt::SplitVCursor);
    } else {
        setCursor(index >= 0 ? Qt::OpenHandCursor : Qt::ArrowCursor);
    }
}

void CollageBoard::takeColor(QPointF position)
{
    const QPointF pixel = (position - boardRect().topLeft()) * devicePixelRatioF();
    const std::function<void(const QColor &)> taker = m_context.state.colorTaker();
    m_context.state.endPicking();
    QImage one(1, 1, QImage::Format_RGB32);
    one.fill(m_studio.design().background);
    QPainter painter(&one);
    painter.translate(-std::floor(pixel.x()), -std::floor(pixel.y()));
    m_studio.board().draw(painter);
    painter.end();
    if (boardRect().contains(position)) {
        taker(one.pixelColor(0, 0));
    }
}

void CollageBoard::wheelEvent(QWheelEvent *event)
{
    // Without the key a wheel scrolls, and there is nothing to scroll here.
    const std::optional<int> slot = slotAt(event->position());
    if (!slot || event->angleDelta().y() == 0 || !(event->modifiers() & Qt::ControlModifier)) {
        event->ignore();
        return;
    }
    moveTo(*slot);
    m_gestures.zoomPhoto(*slot, std::exp(event->angleDelta().y() / 8.0 * wheelZoomPerDegree),
                         event->position() - boardRect().topLeft());
    event->accept();
}

bool CollageBoard::nativeGesture(QNativeGestureEvent *event)
{
    const std::optional<int> slot = slotAt(event->position());
    if (event->gestureType() != Qt::ZoomNativeGesture || !slot) {
        return false;
    }
    m_gestures.zoomPhoto(*slot, 1 + event->value(), event->position() - boardRect().topLeft());
    return true;
}

void CollageBoard::pinch(const QPinchGesture &fingers)
{
    // The first finger's pan ends where the second one lands.
    m_longPress.stop();
    m_press.reset();
    m_gestures.endPan();
    if (!m_pinched) {
        // The gesture itself does not know where it began.
        m_pinchCentre = mapFromGlobal(fingers.centerPoint());
        m_pinched = slotAt(m_pinchCentre);
    }
    if (m_pinched) {
        m_gestures.pinchPhoto(*m_pinched, fingers.totalScaleFactor(), m_pinchCentre - boardRect().topLeft());
    }
    if (fingers.state() == Qt::GestureFinished || fingers.state() == Qt::GestureCanceled) {
        m_gestures.endPinch();
        m_pinched.reset();
    }
}

bool CollageBoard::event(QEvent *event)
{
    if (event->type() == QEvent::NativeGesture) {
        return nativeGesture(static_cast<QNativeGestureEvent *>(event));
    }
    if (event->type() == QEvent::Gesture) {
        const auto *gestures = static_cast<QGestureEvent *>(event);
        if (const auto *fingers = static_cast<QPinchGesture *>(gestures->gesture(Qt::PinchGesture))) {
            pinch(*fingers);
            return true;
        }
    }
    if (event->type() == QEvent::LanguageChange) {
        setAccessibleName(localized({"拼图", "Collage", "Collage"}));
    }
    return ItemView::event(event);
}

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
        m_studio.resetPhoto();
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
    if (event->key() == Qt::Key_Escape && (m_lift || m_context.state.colorTaker() || m_studio.selected())) {
        if (m_lift) {
            m_press.reset();
            m_lift.reset();
            setTarget({});
        } else if (m_context.state.colorTaker()) {
            m_context.state.endPicking();
        } else {
            m_studio.select({});
        }
        return;
    }
    const bool taken = m_studio.editable() && !m_lift && index >= 0 && index < count() &&
                       !(event->modifiers() & Qt::AltModifier) &&
                       (index < cells() ? cellKey(event, index) : dividerKey(event, index));
    if (!taken) {
        ItemView::keyPressEvent(event);
    }
}

void CollageBoard::openMenu(int slot)
{
    if (m_studio.editable()) {
        moveTo(slot);
        openCellMenu(this, m_studio, slot, itemRect(slot).center(),
                     [this, slot] { Q_EMIT replaceAsked(slot); });
    }
}

void CollageBoard::setTarget(std::optional<int> slot)
{
    if (m_target != slot) {
        m_target = slot;
        repaintBoard();
    }
}

std::optional<int> CollageBoard::dropSlot(const QDropEvent *event) const
{
    const bool ours = event->mimeData()->hasFormat(QLatin1StringView(collagePhotoMime));
    if (!m_studio.editable() || (!ours && localFiles(event->mimeData()).isEmpty())) {
        return {};
    }
    return slotAt(event->position());
}

void CollageBoard::dragEnterEvent(QDragEnterEvent *event)
{
    // Accepted as a whole, so that moves are told; whether a place takes the drop is said there.
    if (m_studio.editable() && (event->mimeData()->hasFormat(QLatin1StringView(collagePhotoMime)) ||
                                !localFiles(event->mimeData()).isEmpty())) {
        event->acceptProposedAction();
    }
}

void CollageBoard::dragMoveEvent(QDragMoveEvent *event)
{
    setTarget(dropSlot(event));
    const bool files = m_studio.editable() && !localFiles(event->mimeData()).isEmpty();
    event->setAccepted(m_target || files);
    if (event->isAccepted()) {
        event->setDropAction(Qt::CopyAction);
    }
}

void CollageBoard::dragLeaveEvent(QDragLeaveEvent *)
{
    setTarget({});
}

void CollageBoard::dropEvent(QDropEvent *event)
{
    const std::optional<int> slot = dropSlot(event);
    const QByteArray id = event->mimeData()->data(QLatin1StringView(collagePhotoMime));
    const QStringList files = localFiles(event->mimeData());
    setTarget({});
    if (!m_studio.editable() || (!slot && files.isEmpty())) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    // The first takes the cell's place; what has none joins the collage.
    if (slot && !id.isEmpty()) {
        m_studio.replacePhoto(*slot, QUuid::fromString(QLatin1StringView(id)));
    } else if (slot) {
        m_studio.replacePhoto(*slot, files.first());
    }
    if (const QStringList others = slot ? files.sliced(std::min<qsizetype>(files.size(), 1)) : files;
        !others.isEmpty()) {
        m_studio.addFiles(others);
    }
    if (slot) {
        moveTo(*slot);
    }
}

} // namespace tarnovel::app
