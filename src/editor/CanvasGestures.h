#pragma once

#include <optional>

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>

#include "model/Session.h"

namespace tarnovel {

class EditorModel;

/// Which axes of a dragged thing hold to the canvas's centre.
struct CentreSnap {
    bool x = false;
    bool y = false;
    bool operator==(const CentreSnap &) const = default;
};

/// The moves on the canvas as positions and times: what a drag or a pinch does to the selected photo. Each
/// gesture is one undo step, begun by its first change.
class CanvasGestures {
public:
    explicit CanvasGestures(EditorModel &model) : m_model(model) {}

    /// `translation` is how far the finger has gone since the gesture began, in canvas units as displayed.
    void dragPhoto(QPointF translation, QSizeF canvas);
    void endPhotoDrag();

    /// `magnification` is relative to the gesture's beginning.
    void pinchPhoto(double magnification);
    void endPinch();

    void dragText(const QString &layerId, QPointF translation, QSizeF canvas);
    void endTextDrag();

    /// Resizes a layer by its handles; sizes are held to LayerLimits.
    void scaleText(const QString &layerId, double magnification);
    void endTextScale() { m_textSizeStart.reset(); }
    /// Turns a layer to `degrees`, clockwise; near a right angle it holds to it.
    void rotateText(const QString &layerId, double degrees);
    void endTextRotation() { m_rotating = false; }

    /// A step with the arrow keys, undone by itself, in fractions of the canvas: the photo, or the layer that
    /// is named.
    enum class Nudge {
        Step,
        /// The key is still held: it joins the step before.
        Repeat,
    };
    void nudge(const std::optional<QString> &layerId, QPointF fractions, Nudge kind = Nudge::Step);

    /// The top-most visible text layer under `position`; texts are at least 28 units in each direction to the
    /// finger.
    static std::optional<QString> layerAt(const FrameSettings &settings, QPointF position, QSizeF canvas);

    bool guidesVisible() const { return m_guidesVisible; }
    CentreSnap snap() const { return m_snap; }

private:
    /// Whether a gesture at this target has been undone, or cut short by another step: what follows of it
    /// does nothing.
    bool over(bool begun, const QString &target) const;
    void begin(const QString &target);
    void moveText(const QString &layerId, QPointF position);

    EditorModel &m_model;
    /// The photo, or the layer of it, that the gesture at hand began with: another one begins a new step.
    QString m_target;
    int m_stepsThen = 0;
    std::optional<QPointF> m_dragStart;
    std::optional<QPointF> m_textStart;
    std::optional<double> m_pinchStart;
    std::optional<double> m_textSizeStart;
    bool m_rotating = false;
    CentreSnap m_snap;
    bool m_guidesVisible = false;
};

} // namespace tarnovel
