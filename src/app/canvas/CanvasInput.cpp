// What the picture does with pointer, fingers and keys.

#include <algorithm>
#include <cmath>

#include <QGestureEvent>
#include <QKeyEvent>
#include <QNativeGestureEvent>
#include <QPinchGesture>
#include <QTransform>

#include "app/canvas/CanvasMarks.h"
#include "app/canvas/CanvasView.h"
#include "app/kit/Press.h"

using namespace Qt::StringLiterals;

namespace tarnovel::app {

namespace {

constexpr double nudgeStep = 0.005;
constexpr double largeNudgeStep = 0.02;
constexpr double keyZoom = 1.02;
constexpr double wheelZoomPerDegree = 1.0 / 15 * 0.03;
constexpr int pinchEndMs = 250;

/// Clockwise from the right, in degrees.
double direction(QPointF arm)
{
    return qRadiansToDegrees(std::atan2(arm.y(), arm.x()));
}

} // namespace

QPointF CanvasView::inLayer(QPointF position, const QRectF &box) const
{
    return layerTransform(box).inverted().map(position);
}

std::optional<CanvasView::Grip> CanvasView::gripAt(QPointF position) const
{
    const QRectF frame = frameRect();
    if (frame.isEmpty()) {
        return {};
    }
    const FrameSettings &settings = m_context.model.current()->settings;
    if (const std::optional<QRectF> box = layerBox()) {
        const QString &layer = *m_state.selectedLayer();
        const QPointF arm = position - box->center();
        switch (CanvasMarks::handleAt(inLayer(position, *box), *box)) {
        case CanvasMarks::Handle::Corner:
            return CornerGrip{layer, std::max(std::hypot(arm.x(), arm.y()), 1.0)};
        case CanvasMarks::Handle::Knob:
            return KnobGrip{layer, settings.layer(layer)->rotation.value_or(0) - direction(arm)};
        case CanvasMarks::Handle::None:
            break;
        }
    }
    if (const auto layer = CanvasGestures::layerAt(settings, position - frame.topLeft(), frame.size())) {
        return TextGrip{*layer};
    }
    return frame.contains(position) ? std::optional<Grip>(PhotoGrip()) : std::nullopt;
}

void CanvasView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !m_context.model.current()) {
        return;
    }
    // Where the release of the drag before went to another window.
    endGesture();
    const QPointF position = event->position();
    if (m_state.colorTaker()) {
        takeColor(position);
        return;
    }
    const std::optional<Grip> grip = gripAt(position);
    m_drag = grip ? std::optional<Drag>({*grip, position}) : std::nullopt;
    if (const auto *text = grip ? std::get_if<TextGrip>(&*grip) : nullptr) {
        m_state.selectLayer(text->layer);
    } else if (!grip || std::holds_alternative<PhotoGrip>(*grip)) {
        m_state.selectLayer({});
    }
    showCursor(position);
}

void CanvasView::mouseMoveEvent(QMouseEvent *event)
{
    const QPointF position = event->position();
    if (m_drag && !event->buttons().testFlag(Qt::LeftButton)) {
        endGesture();
    }
    if (!m_drag) {
        showCursor(position);
        return;
    }
    m_drag->moved |= (position - m_drag->pressed).manhattanLength() >= Press::movesPicture;
    if (m_drag->moved) {
        // The step may end the drag: what is held outlives it.
        const Grip held = m_drag->grip;
        std::visit([&](const auto &grip) { drag(grip, position); }, held);
    }
}

void CanvasView::drag(const PhotoGrip &, QPointF position)
{
    m_gestures.dragPhoto(position - m_drag->pressed, frameRect().size());
}

void CanvasView::drag(const TextGrip &grip, QPointF position)
{
    m_gestures.dragText(grip.layer, position - m_drag->pressed, frameRect().size());
}

void CanvasView::drag(const CornerGrip &grip, QPointF position)
{
    if (const std::optional<QRectF> box = layerBox()) {
        const QPointF arm = position - box->center();
        m_gestures.scaleText(grip.layer, std::hypot(arm.x(), arm.y()) / grip.distance);
    }
}

void CanvasView::drag(const KnobGrip &grip, QPointF position)
{
    if (const std::optional<QRectF> box = layerBox()) {
        m_gestures.rotateText(grip.layer, grip.angle + direction(position - box->center()));
    }
}

void CanvasView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        return;
    }
    endGesture();
    showCursor(event->position());
}

void CanvasView::endGesture()
{
    m_drag.reset();
    m_gestures.endPhotoDrag();
    m_gestures.endTextDrag();
    m_gestures.endTextScale();
    m_gestures.endTextRotation();
    update();
}

void CanvasView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || m_state.colorTaker() || !m_context.model.current()) {
        return;
    }
    const QRectF frame = frameRect();
    const std::optional<QString> layer = CanvasGestures::layerAt(
        m_context.model.current()->settings, event->position() - frame.topLeft(), frame.size());
    if (layer) {
        endGesture();
        m_state.selectLayer(layer);
        Q_EMIT editTextAsked(*layer);
    }
}

void CanvasView::showCursor(QPointF position)
{
    if (m_state.colorTaker()) {
        setCursor(Qt::CrossCursor);
        return;
    }
    const std::optional<Grip> grip = m_drag ? m_drag->grip : gripAt(position);
    if (!grip || std::holds_alternative<TextGrip>(*grip)) {
        setCursor(Qt::ArrowCursor);
    } else if (std::holds_alternative<PhotoGrip>(*grip)) {
        setCursor(m_drag ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
    } else {
        setCursor(std::holds_alternative<CornerGrip>(*grip) ? Qt::SizeFDiagCursor : Qt::PointingHandCursor);
    }
}

void CanvasView::takeColor(QPointF position)
{
    const QRectF frame = frameRect();
    const QPoint pixel = ((position - frame.topLeft()) * devicePixelRatioF()).toPoint();
    const std::function<void(const QColor &)> taker = m_state.colorTaker();
    m_state.endPicking();
    if (m_live.image().rect().contains(pixel)) {
        taker(m_live.image().pixelColor(pixel));
    }
}

QStringList CanvasView::visibleLayers() const
{
    QStringList ids;
    for (const TextLayer &layer : m_context.model.current()->settings.layers) {
        if (layer.visible) {
            ids.append(layer.id);
        }
    }
    return ids;
}

bool CanvasView::focusNextPrevChild(bool next)
{
    if (!m_context.model.current()) {
        return QWidget::focusNextPrevChild(next);
    }
    // The layers are stops on the way through the stage.
    const QStringList ids = visibleLayers();
    const std::optional<QString> &selected = m_state.selectedLayer();
    const qsizetype at = selected ? ids.indexOf(*selected) : -1;
    const qsizetype to = next ? at + 1 : at < 0 ? -2 : at - 1;
    if (to >= 0 && to < ids.size()) {
        m_state.selectLayer(ids.at(to));
        return true;
    }
    if (to == -1) {
        m_state.selectLayer({});
        return true;
    }
    m_state.selectLayer({});
    return QWidget::focusNextPrevChild(next);
}

void CanvasView::keyPressEvent(QKeyEvent *event)
{
    if (!m_context.model.current() || event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) {
        QWidget::keyPressEvent(event);
        return;
    }
    const std::optional<QString> &layer = m_state.selectedLayer();
    const double step = event->modifiers() & Qt::ShiftModifier ? largeNudgeStep : nudgeStep;
    const auto kind = event->isAutoRepeat() ? CanvasGestures::Nudge::Repeat : CanvasGestures::Nudge::Step;
    switch (event->key()) {
    case Qt::Key_Left:
        m_gestures.nudge(layer, {-step, 0}, kind);
        break;
    case Qt::Key_Right:
        m_gestures.nudge(layer, {step, 0}, kind);
        break;
    case Qt::Key_Up:
        m_gestures.nudge(layer, {0, -step}, kind);
        break;
    case Qt::Key_Down:
        m_gestures.nudge(layer, {0, step}, kind);
        break;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        pinch(keyZoom);
        break;
    case Qt::Key_Minus:
        pinch(1 / keyZoom);
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (layer) {
            Q_EMIT editTextAsked(*layer);
        }
        break;
    case Qt::Key_Escape:
        if (m_state.colorTaker()) {
            m_state.endPicking();
        } else if (layer) {
            m_state.selectLayer({});
        } else {
            QWidget::keyPressEvent(event);
        }
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

void CanvasView::pinch(double factor)
{
    m_magnification *= factor;
    m_gestures.pinchPhoto(m_magnification);
    m_pinchEnd.start(pinchEndMs, this);
}

void CanvasView::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_pinchEnd.timerId()) {
        m_pinchEnd.stop();
        m_magnification = 1;
        m_gestures.endPinch();
    }
}

void CanvasView::wheelEvent(QWheelEvent *event)
{
    if (event->modifiers() & Qt::ControlModifier) {
        pinch(std::exp(event->angleDelta().y() / 8.0 * wheelZoomPerDegree));
        event->accept();
        return;
    }
    event->ignore();
}

bool CanvasView::nativeGesture(QNativeGestureEvent *event)
{
    if (event->gestureType() != Qt::ZoomNativeGesture) {
        return false;
    }
    pinch(1 + event->value());
    return true;
}

bool CanvasView::event(QEvent *event)
{
    if (event->type() == QEvent::NativeGesture) {
        return nativeGesture(static_cast<QNativeGestureEvent *>(event));
    }
    if (event->type() == QEvent::Gesture) {
        const auto *gestures = static_cast<QGestureEvent *>(event);
        if (const auto *fingers = static_cast<QPinchGesture *>(gestures->gesture(Qt::PinchGesture))) {
            endGesture();
            pinch(fingers->scaleFactor());
            return true;
        }
    }
    return QWidget::event(event);
}

} // namespace tarnovel::app
