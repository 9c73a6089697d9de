#include "app/handwriting/InkCanvas.h"

#include <algorithm>
#include <cmath>

#include <QPaintEvent>
#include <QPainter>

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
