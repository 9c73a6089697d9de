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

} // namespace

QPointF CanvasView::inLayer(QPointF position, const QRectF &box) const
{
    return layerTransform(box).inverted().map(position);
}

CanvasView::Grip CanvasView::gripAt(QPointF position) const
{
    const QRectF frame = frameRect();
    if (frame.isEmpty()) {
        return Grip::None;
    }
    if (const std::optional<QRectF> box = layerBox()) {
        switch (CanvasMarks::handleAt(inLayer(position, *box), *box)) {
        case CanvasMarks::Handle::Corner:
            return Grip::Corner;
        case CanvasMarks::Handle::Knob:
            return Grip::Knob;
        case CanvasMarks::Handle::None:
            break;
        }
    }
    const FrameSettings &settings = m_context.model.current()->settings;
    if (CanvasGestures::layerAt(settings, position - frame.topLeft(), frame.size())) {
        return Grip::Text;
    }
    return frame.contains(position) ? Grip::Photo : Grip::None;
}

void CanvasView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !m_context.model.current()) {
        return;
    }
    const QPointF position = event->position();
    if (m_context.state.colorTaker()) {
        takeColor(position);
        return;
    }
    m_grip = gripAt(position);
    m_pressed = position;
    m_moved = false;
    const QRectF frame = frameRect();
    if (m_grip == Grip::Text) {
        m_gripLayer = *CanvasGestures::layerAt(m_context.model.current()->settings,
                                               position - frame.topLeft(), frame.size());
        m_context.state.selectLayer(m_gripLayer);
    } else if (m_grip == Grip::Corner || m_grip == Grip::Knob) {
        m_gripLayer = *m_context.state.selectedLayer();
        const QPointF arm = position - layerBox()->center();
        m_grabDistance = std::max(std::hypot(arm.x(), arm.y()), 1.0);
        m_grabAngle = m_context.model.current()->settings.layer(m_gripLayer)->rotation.value_or(0) -
                      qRadiansToDegrees(std::atan2(arm.y(), arm.x()));
    } else {
        m_context.state.selectLayer({});
    }
    showCursor(position);
}

void CanvasView::mouseMoveEvent(QMouseEvent *event)
{
    const QPointF position = event->position();
    if (m_grip == Grip::None) {
        showCursor(position);
        return;
    }
    const QPointF way = position - m_pressed;
    if (!m_moved && way.manhattanLength() < Press::movesPicture) {
        return;
    }
    m_moved = true;
    const QSizeF canvas = frameRect().size();
    switch (m_grip) {
    case Grip::Photo:
        m_gestures.dragPhoto(way, canvas);
        break;
    case Grip::Text:
        m_gestures.dragText(m_gripLayer, way, canvas);
        break;
    case Grip::Corner:
    case Grip::Knob: {
        const std::optional<QRectF> box = layerBox();
        if (!box) {
            break;
        }
        const QPointF arm = position - box->center();
        if (m_grip == Grip::Corner) {
            m_gestures.scaleText(m_gripLayer, std::hypot(arm.x(), arm.y()) / m_grabDistance);
        } else {
            m_gestures.rotateText(m_gripLayer, m_grabAngle + qRadiansToDegrees(std::atan2(arm.y(), arm.x())));
        }
        break;
    }
    case Grip::None:
        break;
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
    m_grip = Grip::None;
    m_gestures.endPhotoDrag();
    m_gestures.endTextDrag();
    m_gestures.endTextScale();
    m_gestures.endTextRotation();
    update();
}

void CanvasView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || m_context.state.colorTaker() || !m_context.model.current()) {
        return;
    }
    const QRectF frame = frameRect();
    const std::optional<QString> layer = CanvasGestures::layerAt(
        m_context.model.current()->settings, event->position() - frame.topLeft(), frame.size());
    if (layer) {
        endGesture();
        m_context.state.selectLayer(layer);
        Q_EMIT editTextAsked(*layer);
    }
}

void CanvasView::showCursor(QPointF position)
{
    if (m_context.state.colorTaker()) {
        setCursor(Qt::CrossCursor);
        return;
    }
    switch (m_grip == Grip::None ? gripAt(position) : m_grip) {
    case Grip::Photo:
        setCursor(m_grip == Grip::Photo ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
        break;
    case Grip::Corner:
        setCursor(Qt::SizeFDiagCursor);
        break;
    case Grip::Knob:
        setCursor(Qt::PointingHandCursor);
        break;
    case Grip::Text:
    case Grip::None:
        setCursor(Qt::ArrowCursor);
        break;
    }
}

void CanvasView::takeColor(QPointF position)
{
    const QRectF frame = frameRect();
    const QPoint pixel = ((position - frame.topLeft()) * devicePixelRatioF()).toPoint();
    const std::function<void(const QColor &)> taker = m_context.state.colorTaker();
    m_context.state.endPicking();
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
    const std::optional<QString> &selected = m_context.state.selectedLayer();
    const qsizetype at = selected ? ids.indexOf(*selected) : -1;
    const qsizetype to = next ? at + 1 : at < 0 ? -2 : at - 1;
    if (to >= 0 && to < ids.size()) {
        m_context.state.selectLayer(ids.at(to));
        return true;
    }
    if (to == -1) {
        m_context.state.selectLayer({});
        return true;
    }
    m_context.state.selectLayer({});
    return QWidget::focusNextPrevChild(next);
}

void CanvasView::keyPressEvent(QKeyEvent *event)
{
    if (!m_context.model.current() || event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) {
        QWidget::keyPressEvent(event);
        return;
    }
    const std::optional<QString> &layer = m_context.state.selectedLayer();
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
        if (m_context.state.colorTaker()) {
            m_context.state.endPicking();
        } else if (layer) {
            m_context.state.selectLayer({});
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
