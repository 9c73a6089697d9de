#pragma once

#include <array>
#include <optional>

#include <QImage>
#include <QPointer>
#include <QWidget>

#include "app/EditorContext.h"
#include "handwriting/HandwritingController.h"

class QEventPoint;
class QInputEvent;
class QNativeGestureEvent;
class QTouchEvent;

namespace tarnovel::app {

/// The page that one writes on, with mouse, tablet pen or finger. A sample of the pen paints only the pixels
/// that it changes.
class InkCanvas : public QWidget {
    Q_OBJECT

public:
    explicit InkCanvas(EditorState &state, QWidget *parent = nullptr);

    /// What is written and seen; none leaves the stage bare. It belongs to the caller.
    void setStudio(HandwritingController *studio);
    /// The framed photo under the ink; null while it is not there yet.
    void setReference(const QImage &reference);

    /// About the middle of the view.
    void zoomBy(double factor);
    void zoomToFit();
    /// Where the whole page lies, in the widget's coordinates; empty without a studio.
    QRectF pageRect() const;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void tabletEvent(QTabletEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    enum class Device { Mouse, Tablet, Finger };
    enum class Grip { Write, Move };
    /// The device that holds the page, and how.
    struct Hold {
        Device device;
        Grip grip;
        QPointF last;
    };
    /// Two fingers on the page.
    struct Pinch {
        std::array<int, 2> fingers;
        QPointF middle;
        double spread;
    };

    void take(Device device, Grip grip, const InkSample &sample, HandwritingController::PenEnd end);
    void follow(Device device, const InkSample &sample);
    void letGo(Device device, const InkSample &sample);
    /// The finger's touch was a hand that came to rest before its pen.
    void dropFinger();
    bool holds(Device device) const { return m_hold && m_hold->device == device; }
    /// A report of the pointer at a place of the view.
    InkSample sampleAt(QPointF position, const QInputEvent &event) const;
    InkSample sampleOf(const QTabletEvent &event) const;
    bool takeColor(QPointF position);
    bool touch(const QTouchEvent &event);
    void pinch(const QList<QEventPoint> &down);
    bool nativeGesture(const QNativeGestureEvent &event);
    void layOut();
    void showCursor();
    void name();
    void paintPage(QPainter &painter, const QRectF &page, const QRect &dirty) const;

    EditorState &m_state;
    QPointer<HandwritingController> m_studio;
    QImage m_reference;
    /// At half the size, so that a small page on screen does not flicker.
    QImage m_halfReference;
    std::optional<Hold> m_hold;
    /// Of the mouse, that took hold.
    Qt::MouseButton m_button = Qt::NoButton;
    std::optional<Pinch> m_pinch;
    double m_ratio = 0;
    double m_cursorDiameter = -1;
};

/// The ring of a cursor of this diameter in logical pixels, to be seen on light and on dark.
QPixmap ringCursor(double diameter, double devicePixelRatio);

} // namespace tarnovel::app
