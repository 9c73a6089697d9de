// What the page does with mouse, pen and fingers.

#include <algorithm>
#include <cmath>

#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPointingDevice>
#include <QTabletEvent>
#include <QTouchEvent>
#include <QWheelEvent>

#include "app/handwriting/InkCanvas.h"

namespace tarnovel::app {

namespace {

/// Of a notch of the wheel.
constexpr double notchZoom = 1.15;
constexpr double notchPan = 64;
constexpr double notchDegrees = 120;

} // namespace

InkSample InkCanvas::sampleAt(QPointF position, const QInputEvent &event) const
{
    return {.position = m_studio->viewport().toReference(position),
            .seconds = static_cast<double>(event.timestamp()) / 1000};
}

InkSample InkCanvas::sampleOf(const QTabletEvent &event) const
{
    InkSample sample = sampleAt(event.position(), event);
    if (event.device()->hasCapability(QInputDevice::Capability::Pressure) &&
        std::isfinite(event.pressure())) {
        sample.pressure = std::clamp(event.pressure(), 0.0, 1.0);
    }
    sample.tilt = QPointF(event.xTilt(), event.yTilt());
    return sample;
}

void InkCanvas::take(Device device, Grip grip, const InkSample &sample, HandwritingController::PenEnd end)
{
    if (m_hold || !m_studio) {
        return;
    }
    setFocus(Qt::MouseFocusReason);
    const bool moves = grip == Grip::Move || m_studio->moving();
    m_hold = {device, moves ? Grip::Move : Grip::Write, m_studio->viewport().toView(sample.position)};
    if (!moves) {
        m_studio->penDown(sample, end);
    }
    showCursor();
}

void InkCanvas::follow(Device device, const InkSample &sample)
{
    if (!holds(device) || !m_studio) {
        return;
    }
    if (m_hold->grip == Grip::Write) {
        m_studio->penMove(sample);
        return;
    }
    const QPointF place = m_studio->viewport().toView(sample.position);
    const QPointF by = place - m_hold->last;
    m_hold->last = place;
    m_studio->pan(by);
}

void InkCanvas::letGo(Device device, const InkSample &sample)
{
    if (!holds(device) || !m_studio) {
        return;
    }
    if (m_hold->grip == Grip::Write) {
        m_studio->penUp(sample);
    } else {
        follow(device, sample);
    }
    m_hold.reset();
    showCursor();
}

void InkCanvas::dropFinger()
{
    if (holds(Device::Finger)) {
        m_studio->penCancel();
        m_hold.reset();
    }
}

bool InkCanvas::takeColor(QPointF position)
{
    if (!m_state.colorTaker() || !m_studio) {
        return false;
    }
    const auto taker = m_state.colorTaker();
    const QPointF place = m_studio->viewport().toReference(position);
    const QPoint pixel(static_cast<int>(std::floor(place.x())), static_cast<int>(std::floor(place.y())));
    m_state.endPicking();
    if (m_reference.rect().contains(pixel)) {
        taker(m_reference.pixelColor(pixel));
    }
    return true;
}

void InkCanvas::mousePressEvent(QMouseEvent *event)
{
    // The window system's own translation of touches and pens would write everything twice.
    if (!m_studio || m_hold || event->source() != Qt::MouseEventNotSynthesized) {
        return;
    }
    m_button = event->button();
    if (m_button == Qt::LeftButton && !takeColor(event->position())) {
        take(Device::Mouse, Grip::Write, sampleAt(event->position(), *event),
             HandwritingController::PenEnd::Tip);
    } else if (m_button == Qt::MiddleButton) {
        take(Device::Mouse, Grip::Move, sampleAt(event->position(), *event),
             HandwritingController::PenEnd::Tip);
    }
}

void InkCanvas::mouseDoubleClickEvent(QMouseEvent *event)
{
    // Two quick dots, as over an i.
    mousePressEvent(event);
}

void InkCanvas::mouseMoveEvent(QMouseEvent *event)
{
    if (m_studio && event->source() == Qt::MouseEventNotSynthesized) {
        follow(Device::Mouse, sampleAt(event->position(), *event));
    }
}

void InkCanvas::mouseReleaseEvent(QMouseEvent *event)
{
    if (m_studio && event->source() == Qt::MouseEventNotSynthesized && event->button() == m_button) {
        letGo(Device::Mouse, sampleAt(event->position(), *event));
    }
}

void InkCanvas::tabletEvent(QTabletEvent *event)
{
    event->accept();
    if (!m_studio) {
        return;
    }
    const auto end = event->pointerType() == QPointingDevice::PointerType::Eraser
                         ? HandwritingController::PenEnd::Eraser
                         : HandwritingController::PenEnd::Tip;
    switch (event->type()) {
    case QEvent::TabletPress:
        dropFinger();
        if (event->button() == Qt::MiddleButton) {
            take(Device::Tablet, Grip::Move, sampleOf(*event), end);
        } else if (event->button() == Qt::LeftButton && !takeColor(event->position())) {
            take(Device::Tablet, Grip::Write, sampleOf(*event), end);
        }
        break;
    case QEvent::TabletMove:
        follow(Device::Tablet, sampleOf(*event));
        break;
    case QEvent::TabletRelease:
        letGo(Device::Tablet, sampleOf(*event));
        break;
    default:
        break;
    }
}

bool InkCanvas::touch(const QTouchEvent &event)
{
    if (!m_studio || holds(Device::Tablet) || holds(Device::Mouse)) {
        m_pinch.reset();
        return true; // the hand that holds the pen lies on the page
    }
    if (event.type() == QEvent::TouchCancel) {
        m_studio->penCancel();
        m_hold.reset();
        m_pinch.reset();
        return true;
    }
    QList<QEventPoint> down;
    for (const QEventPoint &point : event.points()) {
        if (point.state() != QEventPoint::Released) {
            down.append(point);
        }
    }
    if (down.size() >= 2) {
        pinch(down);
        return true;
    }
    m_pinch.reset();
    const QEventPoint &finger = down.isEmpty() ? event.points().first() : down.first();
    const InkSample sample = sampleAt(finger.position(), event);
    if (down.isEmpty()) {
        letGo(Device::Finger, sample);
    } else if (holds(Device::Finger)) {
        follow(Device::Finger, sample);
    } else if (finger.state() == QEventPoint::Pressed && !takeColor(finger.position())) {
        take(Device::Finger, Grip::Write, sample, HandwritingController::PenEnd::Tip);
    }
    return true;
}

void InkCanvas::pinch(const QList<QEventPoint> &down)
{
    if (m_hold) {
        m_studio->penCancel();
        m_hold.reset();
    }
    const QPointF between = down.at(1).position() - down.at(0).position();
    const Pinch now = {{down.at(0).id(), down.at(1).id()},
                       (down.at(0).position() + down.at(1).position()) / 2,
                       std::max(std::hypot(between.x(), between.y()), 1.0)};
    if (m_pinch && m_pinch->fingers == now.fingers) {
        m_studio->zoomTo(m_studio->viewport().zoom() * now.spread / m_pinch->spread, m_pinch->middle);
        m_studio->pan(now.middle - m_pinch->middle);
    }
    m_pinch = now;
}

void InkCanvas::wheelEvent(QWheelEvent *event)
{
    event->accept();
    if (!m_studio || m_hold) {
        return;
    }
    const QPointF notches = QPointF(event->angleDelta()) / notchDegrees;
    if (event->modifiers() & Qt::ControlModifier) {
        const double factor = std::pow(notchZoom, notches.y());
        m_studio->zoomTo(m_studio->viewport().zoom() * factor, event->position());
        return;
    }
    QPointF by = event->pixelDelta().isNull() ? notches * notchPan : QPointF(event->pixelDelta());
    if (event->modifiers() & Qt::ShiftModifier) {
        by = by.transposed();
    }
    m_studio->pan(by);
}

bool InkCanvas::nativeGesture(const QNativeGestureEvent &event)
{
    if (!m_studio || event.gestureType() != Qt::ZoomNativeGesture) {
        return false;
    }
    m_studio->zoomTo(m_studio->viewport().zoom() * std::max(0.1, 1 + event.value()), event.position());
    return true;
}

bool InkCanvas::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TouchCancel:
        event->accept();
        return touch(*static_cast<QTouchEvent *>(event));
    case QEvent::NativeGesture:
        return nativeGesture(*static_cast<QNativeGestureEvent *>(event));
    default:
        return QWidget::event(event);
    }
}

} // namespace tarnovel::app
