// What the board does with pointer and drops.

#include <algorithm>
#include <cmath>

#include <QGestureEvent>
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

constexpr double wheelZoomPerDegree = 0.01;

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
    if (m_state.colorTaker()) {
        takeColor(position);
        return;
    }
    const QPointF point = position - boardRect().topLeft();
    if (m_gestures.grabDivider(point)) {
        m_hand = DividerDrag();
        moveTo(itemAt(position.toPoint()));
    } else if (const std::optional<int> slot = slotAt(position)) {
        moveTo(*slot);
        m_hand = CellPress{*slot, position};
        m_longPress.start(Press::liftMs, Qt::PreciseTimer, this);
    } else {
        m_studio.select({});
    }
    showCursor(position);
}

void CollageBoard::mouseMoveEvent(QMouseEvent *event)
{
    const QPointF position = event->position();
    if (held<DividerDrag>()) {
        m_gestures.dragDivider(position - boardRect().topLeft());
        repaintBoard();
    } else if (Lift *lift = held<Lift>()) {
        lift->at = position;
        const std::optional<int> slot = slotAt(position);
        setTarget(slot == lift->slot ? std::nullopt : slot);
        update();
    } else if (CellPress *press = held<CellPress>()) {
        const QPointF way = position - press->at;
        if (!press->moved && std::hypot(way.x(), way.y()) < CollageGestures::panThreshold) {
            return;
        }
        press->moved = true;
        m_longPress.stop();
        m_gestures.panPhoto(press->slot, way);
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
    const std::optional<int> carried = lifting() ? std::optional(held<Lift>()->slot) : std::nullopt;
    letGo();
    if (carried) {
        drop(*carried, event->position());
    }
    repaintBoard();
    showCursor(event->position());
}

void CollageBoard::mouseDoubleClickEvent(QMouseEvent *event)
{
    // The second click of two is as good as the first.
    mousePressEvent(event);
}

void CollageBoard::letGo()
{
    m_longPress.stop();
    if (held<DividerDrag>()) {
        m_gestures.releaseDivider();
    } else if (held<CellPress>()) {
        m_gestures.endPan();
    } else if (held<Pinch>()) {
        m_gestures.endPinch();
    }
    m_hand = Idle();
    setTarget({});
}

void CollageBoard::drop(int slot, QPointF position)
{
    const std::optional<int> to = slotAt(position);
    if (to && *to != slot) {
        m_studio.swapCells(slot, *to);
        moveTo(*to);
    }
    update();
}

void CollageBoard::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_longPress.timerId()) {
        m_longPress.stop();
        if (const CellPress *press = held<CellPress>(); press && m_studio.editable()) {
            lift(CellPress(*press));
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
    if (m_state.colorTaker()) {
        setCursor(Qt::CrossCursor);
        return;
    }
    const CellPress *press = held<CellPress>();
    if (lifting() || (press && press->moved)) {
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
    const std::function<void(const QColor &)> taker = m_state.colorTaker();
    m_state.endPicking();
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
    if (!held<Pinch>()) {
        // The first finger's pan ends where the second one lands. The gesture itself does not know where it
        // began.
        letGo();
        const QPointF centre = mapFromGlobal(fingers.centerPoint());
        m_hand = Pinch{centre, slotAt(centre)};
    }
    const Pinch held = *this->held<Pinch>();
    if (held.slot) {
        m_gestures.pinchPhoto(*held.slot, fingers.totalScaleFactor(), held.centre - boardRect().topLeft());
    }
    if (fingers.state() == Qt::GestureFinished || fingers.state() == Qt::GestureCanceled) {
        letGo();
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
