#include "app/handwriting/InkCanvas.h"

#include <algorithm>
#include <cmath>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPainter>
#include <QPointingDevice>
#include <QTabletEvent>
#include <QTouchEvent>
#include <QWheelEvent>

#include "app/kit/Accessible.h"
#include "app/kit/Focus.h"
#include "app/kit/Shadow.h"
#include "app/kit/Theme.h"

namespace tarnovel::app {

namespace {

constexpr double pageMargin = 44;
constexpr double tightMargin = 24;
/// Below this height of the stage the margin is the tight one.
constexpr int tightStage = 560;
/// Of a notch of the wheel.
constexpr double notchZoom = 1.15;
constexpr double notchPan = 64;
constexpr double notchDegrees = 120;
/// A ring must be large enough to be seen, and small enough for the window system to carry.
constexpr double leastRing = 6;
constexpr double mostRing = 192;

} // namespace

QPixmap ringCursor(double diameter, double devicePixelRatio)
{
    const double ring = std::clamp(diameter, leastRing, mostRing);
    const int side = static_cast<int>(std::ceil(ring)) + 6;
    QPixmap pixmap(QSize(side, side) * devicePixelRatio);
    pixmap.setDevicePixelRatio(devicePixelRatio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF middle(side / 2.0, side / 2.0);
    painter.setPen(QPen(QColor(255, 255, 255, 230), 1));
    painter.drawEllipse(middle, ring / 2 + 1, ring / 2 + 1);
    painter.setPen(QPen(QColor(0, 0, 0, 220), 1));
    painter.drawEllipse(middle, ring / 2, ring / 2);
    return pixmap;
}

InkCanvas::InkCanvas(EditorState &state, QWidget *parent) : QWidget(parent), m_state(state)
{
    setAccessibleRole(*this, QAccessible::Canvas);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_TabletTracking);
    setAttribute(Qt::WA_AcceptTouchEvents);
    setProperty("paintsFocus", true);
    connect(&state, &EditorState::pickingChanged, this, &InkCanvas::showCursor);
    name();
}

void InkCanvas::setStudio(HandwritingController *studio)
{
    if (m_studio) {
        m_studio->disconnect(this);
    }
    m_studio = studio;
    m_hold.reset();
    m_pinch.reset();
    m_ratio = 0;
    if (studio) {
        connect(studio, &HandwritingController::inkChanged, this, [this](const QRect &pixels) {
            const double ratio = devicePixelRatioF();
            update(QRectF(QPointF(pixels.topLeft()) / ratio, QSizeF(pixels.size()) / ratio).toAlignedRect());
        });
        connect(
            studio, &HandwritingController::changed, this, [this](HandwritingController::Changes changes) {
                if (changes &
                    (HandwritingController::ViewportChanged | HandwritingController::PreviewChanged)) {
                    update();
                }
                if (changes & (HandwritingController::ViewportChanged | HandwritingController::ToolChanged |
                               HandwritingController::SavingChanged)) {
                    showCursor();
                }
            });
        layOut();
    }
    m_cursorDiameter = -1;
    showCursor();
    update();
}

void InkCanvas::setReference(const QImage &reference)
{
    m_reference = reference;
    m_halfReference = reference.isNull() ? QImage()
                                         : reference.scaled(reference.size() / 2, Qt::IgnoreAspectRatio,
                                                            Qt::SmoothTransformation);
    update();
}

void InkCanvas::layOut()
{
    m_ratio = devicePixelRatioF();
    if (m_studio) {
        m_studio->layOut(size(), m_ratio, height() < tightStage ? tightMargin : pageMargin);
    }
}

void InkCanvas::zoomBy(double factor)
{
    if (m_studio) {
        m_studio->zoomTo(m_studio->viewport().zoom() * factor, QRectF(rect()).center());
    }
}

void InkCanvas::zoomToFit()
{
    if (m_studio) {
        m_studio->zoomTo(m_studio->viewport().minimumZoom(), QRectF(rect()).center());
    }
}

QRectF InkCanvas::pageRect() const
{
    return m_studio ? m_studio->viewport().referenceRect() : QRectF();
}

void InkCanvas::showCursor()
{
    if (m_state.colorTaker()) {
        m_cursorDiameter = -1;
        setCursor(Qt::CrossCursor);
        return;
    }
    if (!m_studio || m_studio->saving()) {
        m_cursorDiameter = -1;
        unsetCursor();
        return;
    }
    if (m_studio->moving() || (m_hold && m_hold->grip == Grip::Move)) {
        m_cursorDiameter = -1;
        setCursor(m_hold ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
        return;
    }
    const double diameter = m_studio->cursorDiameter();
    if (diameter != m_cursorDiameter) {
        m_cursorDiameter = diameter;
        setCursor(QCursor(ringCursor(diameter, devicePixelRatioF())));
    }
}

void InkCanvas::name()
{
    setAccessibleName(localized({"书写页", "Writing page", "Page d’écriture"}));
    setAccessibleDescription(handwritingGuide());
}

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

void InkCanvas::paintEvent(QPaintEvent *event)
{
    if (m_ratio != devicePixelRatioF()) {
        layOut(); // the window has come to another screen
    }
    QPainter painter(this);
    const QRect dirty = event->rect();
    const QRectF page = pageRect();
    if (!page.contains(dirty)) {
        painter.fillRect(dirty, theme().canvas);
    }
    if (m_studio) {
        paintPage(painter, page, dirty);
    }
    if (hasFocus() && keyboardFocusVisible()) {
        Paint::outline(painter, QRectF(rect()).adjusted(2, 2, -2, -2), 4, theme().accent, 2);
    }
}

void InkCanvas::paintPage(QPainter &painter, const QRectF &page, const QRect &dirty) const
{
    const double ratio = devicePixelRatioF();
    if (!page.contains(dirty)) {
        drawShadow(painter, page, 0, Elevation::Frame);
        const double pixel = 1 / ratio;
        Paint::outline(painter, page.adjusted(-pixel, -pixel, pixel, pixel), 0, theme().rim, pixel);
    }
    painter.save();
    painter.setClipRect(page.intersected(dirty));
    if (m_reference.isNull()) {
        painter.fillRect(dirty, theme().surfaceMuted);
    } else {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        const bool small = m_studio->viewport().zoom() * ratio <= 0.5;
        painter.drawImage(page, small ? m_halfReference : m_reference);
    }
    if (!m_studio->preview().isNull()) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(page, m_studio->preview());
    }
    // One pixel of the ink is one of the device.
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter.scale(1 / ratio, 1 / ratio);
    const QRect pixels = QRectF(QPointF(dirty.topLeft()) * ratio, QSizeF(dirty.size()) * ratio)
                             .toAlignedRect()
                             .intersected(m_studio->ink().rect());
    painter.drawImage(pixels.topLeft(), m_studio->ink(), pixels);
    painter.restore();
    painter.restore();
}

void InkCanvas::resizeEvent(QResizeEvent *event)
{
    layOut();
    QWidget::resizeEvent(event);
}

void InkCanvas::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        name();
    }
    QWidget::changeEvent(event);
}

void InkCanvas::focusInEvent(QFocusEvent *event)
{
    if (event->reason() != Qt::MouseFocusReason) {
        update();
    }
    QWidget::focusInEvent(event);
}

void InkCanvas::focusOutEvent(QFocusEvent *event)
{
    update();
    QWidget::focusOutEvent(event);
}

} // namespace tarnovel::app
