#pragma once

#include <optional>
#include <vector>

#include <QRectF>

#include "handwriting/InkStroke.h"
#include "handwriting/PathSmoother.h"
#include "handwriting/StrokeSmoother.h"

namespace tarnovel {

/// The shape that a pen presses on the paper: an ellipse.
struct Nib {
    /// Short ÷ long half axis.
    double aspect = 1;
    /// Of the long axis, in radians, clockwise on screen from the x axis.
    double angle = 0;
    /// How much of the ink is missing at the nib's edge, 0…1.
    double softness = 0;
    bool operator==(const Nib &) const = default;
};

Nib nib(InkPen pen);

/// The nib's place on a stroke's course.
struct InkPoint {
    QPointF position;
    /// The nib's long half axis, in reference units.
    double radius = 0;
    /// How much ink it leaves, 0…1.
    double flow = 1;
    bool operator==(const InkPoint &) const = default;
};

/// What a nib passes over between two neighbouring points, both included, in reference coordinates.
QRectF swept(const InkPoint &from, const InkPoint &to);

/// A stroke's course: the nib moves along straight lines from point to point. A dot has one point.
struct InkPath {
    Nib nib;
    std::vector<InkPoint> points;
    /// All that the nib touches, in reference coordinates.
    QRectF bounds;

    static InkPath of(const InkStroke &stroke);
};

/// Derives the course from samples as they arrive: smoothed (along the path, where the device feels no
/// pressure and so reports whole pixels), then joined by a centripetal Catmull-Rom curve, whose points never
/// swing past the samples. The course always ends at the newest sample.
class InkPathBuilder {
public:
    /// The stroke's samples are not looked at.
    explicit InkPathBuilder(const InkStroke &stroke);

    /// A position that is not finite is left out; such a pressure or tilt counts as none.
    void append(const InkSample &sample);
    /// The pen was lifted: a flick tapers. Nothing may follow.
    void finish();

    const std::vector<InkPoint> &points() const { return m_points; }
    /// The points of this number at the front stay as they are until the stroke is finished.
    size_t settled() const { return m_settled; }
    QRectF bounds() const;
    InkPath path() const { return {nib(m_pen), m_points, bounds()}; }
    bool isEmpty() const { return m_points.empty(); }

private:
    using Node = CourseNode;
    Node nodeOf(const SmoothSample &smooth) const;
    void addNode(const Node &node);
    void settle();
    void addTail(const Node &tip);
    void addCurve(const Node *before, const Node &from, const Node &to, const Node *after);
    void addPoint(const Node &node);
    void taperEnd();

    InkPen m_pen;
    double m_width;
    double m_zoom;
    StrokeSmoother m_smoother;
    /// Of a device without pressure; found out by the first sample.
    std::optional<PathSmoother> m_pathSmoother;
    /// The last position that became a node, without tremor.
    std::optional<QPointF> m_lastCalm;
    /// Never more than the last three.
    std::vector<Node> m_nodes;
    std::vector<InkPoint> m_points;
    size_t m_settled = 0;
    /// Along the settled points, and along all of them, in reference units.
    double m_settledLength = 0;
    double m_length = 0;
    double m_speed = 0;
    bool m_pressed = false;
    QRectF m_settledBounds;
};

} // namespace tarnovel
