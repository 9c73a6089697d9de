#pragma once

#include <functional>
#include <optional>
#include <variant>

#include <QPixmap>
#include <QWidget>

#include "app/EditorContext.h"
#include "editor/CanvasImages.h"
#include "editor/LiveFrame.h"

class QNativeGestureEvent;
class QPinchGesture;

namespace tarnovel::app {

struct Theme;

/// The selected photo in its frame, live: it is dragged, pinched and written on here.
class CanvasView : public QWidget {
    Q_OBJECT

public:
    CanvasView(const PhotosContext &context, EditorState &state, Clock &clock, QWidget *parent = nullptr);

    /// Where the frame is, in the widget's coordinates; empty without a photo.
    QRectF frameRect() const;
    /// The box of the selected layer before it is turned.
    std::optional<QRectF> layerBox() const;

Q_SIGNALS:
    /// A double click, or Enter, on a text.
    void editTextAsked(const QString &layerId);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    bool event(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    bool focusNextPrevChild(bool next) override;

private:
    struct PhotoGrip {};
    struct TextGrip {
        QString layer;
    };
    struct CornerGrip {
        QString layer;
        /// From the layer's centre to the hand at the press, in points.
        double distance;
    };
    struct KnobGrip {
        QString layer;
        /// What the layer was turned by beyond the hand's own direction, in degrees.
        double angle;
    };
    /// What the pointer can take hold of.
    using Grip = std::variant<PhotoGrip, TextGrip, CornerGrip, KnobGrip>;
    /// From the press to the release.
    struct Drag {
        Grip grip;
        QPointF pressed;
        bool moved = false;
    };

    void modelChanged(EditorModel::Changes changes);
    void showState();
    /// Draws the whole frame anew, or what the model's changes touch of it.
    void redraw();
    void redrawChanged();
    /// What lies around the chosen layer for the hand, and moves with every step of it.
    QRect marksRect() const;
    std::optional<CentreSnap> shownGuides() const;
    /// Brings the frame up to date and returns where on the widget it may look different.
    QRect drawFrame();
    QRect onWidget(const QRect &pixels) const;
    /// What lies under the frame: the stage with the frame's shadow, kept for the next repaint.
    void drawGround(const QRectF &frame);
    void paintSelection(QPainter &painter, const QRectF &frame) const;
    void paintGuides(QPainter &painter, const QRectF &frame) const;
    void paintLoading(QPainter &painter, const QRectF &frame);
    std::optional<Grip> gripAt(QPointF position) const;
    void drag(const PhotoGrip &grip, QPointF position);
    void drag(const TextGrip &grip, QPointF position);
    void drag(const CornerGrip &grip, QPointF position);
    void drag(const KnobGrip &grip, QPointF position);
    QPointF inLayer(QPointF position, const QRectF &box) const;
    QTransform layerTransform(const QRectF &box) const;
    void showCursor(QPointF position);
    void endGesture();
    void pinch(double factor);
    bool nativeGesture(QNativeGestureEvent *event);
    void takeColor(QPointF position);
    QStringList visibleLayers() const;
    QSize frameDevicePixels() const;

    PhotosContext m_context;
    EditorState &m_state;
    CanvasGestures m_gestures;
    CanvasImages m_images;
    /// The frame as last drawn, in device pixels.
    LiveFrame m_live;
    QPixmap m_ground;
    QRectF m_groundFrame;
    const Theme *m_groundTheme = nullptr;
    /// Where handles are shown, and which guides.
    QRect m_marks;
    std::optional<CentreSnap> m_guides;
    std::optional<QUuid> m_photo;
    std::optional<Drag> m_drag;
    double m_magnification = 1;
    QBasicTimer m_pinchEnd;
};

} // namespace tarnovel::app
