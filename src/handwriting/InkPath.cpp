#include "handwriting/InkPath.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tarnovel {

namespace {

/// Samples nearer to each other than this many logical pixels say nothing new about the course.
constexpr double leastStepPx = 0.6;

/// How far the straight pieces may leave the curve, in reference units: out of sight at the largest zoom.
constexpr double flatness = 0.02;

/// Beyond this nothing is written; it keeps sums exact whatever a driver reports.
constexpr double farthest = 1e5;

/// A broad nib in a right hand points away from the writer to the left.
constexpr double nibAngle = -40 * std::numbers::pi / 180;

/// A fountain pen sets down at this part of its width, and has it whole after 1.5 widths.
constexpr double setDown = 0.62;
constexpr double setDownWidths = 1.5;
constexpr double dotWidening = 1.4;

/// A flick at this speed (logical pixels a second) tapers over the last `flickWidths` widths.
constexpr double flickSpeed = 1400;
constexpr double flickWidths = 7;
constexpr double flickTip = 0.1;

double distance(QPointF a, QPointF b)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y());
}

/// Without the pressure or the tilt that a driver reports as no number; these would pass every clamp.
InkSample sensible(InkSample sample)
{
    if (sample.pressure && !std::isfinite(*sample.pressure)) {
        sample.pressure.reset();
    }
    if (!std::isfinite(sample.tilt.x()) || !std::isfinite(sample.tilt.y())) {
        sample.tilt = {};
    }
    return sample;
}

/// Tangents of the centripetal Catmull-Rom curve at its two inner points.
struct Tangents {
    QPointF from;
    QPointF to;
};

Tangents centripetal(QPointF p0, QPointF p1, QPointF p2, QPointF p3)
{
    const double t0 = std::sqrt(distance(p0, p1));
    const double t1 = std::sqrt(distance(p1, p2));
    const double t2 = std::sqrt(distance(p2, p3));
    Tangents tangents{p2 - p1, p2 - p1};
    if (t0 > 0) {
        tangents.from += t1 * ((p1 - p0) / t0 - (p2 - p0) / (t0 + t1));
    }
    if (t2 > 0) {
        tangents.to += t1 * ((p3 - p2) / t2 - (p3 - p1) / (t1 + t2));
    }
    return tangents;
}

} // namespace

double tipDiameter(InkPen pen, double width)
{
    return pen == InkPen::marker ? 2.5 * width : width;
}

Nib nib(InkPen pen)
{
    switch (pen) {
    case InkPen::fountain:
        return {0.34, nibAngle, 0};
    case InkPen::pencil:
        return {1, 0, 0.4};
    case InkPen::marker:
        return {0.5, nibAngle, 0};
    case InkPen::signature:
        break;
    }
    return {};
}

QRectF swept(const InkPoint &from, const InkPoint &to)
{
    const auto around = [](const InkPoint &point) {
        return QRectF(point.position.x() - point.radius, point.position.y() - point.radius, 2 * point.radius,
                      2 * point.radius);
    };
    return around(from).united(around(to));
}

InkPath InkPath::of(const InkStroke &stroke)
{
    InkPathBuilder builder(stroke);
    for (const InkSample &sample : stroke.samples) {
        builder.append(sample);
    }
    builder.finish();
    return builder.path();
}

InkPathBuilder::InkPathBuilder(const InkStroke &stroke)
    : m_pen(stroke.pen), m_width(stroke.width), m_zoom(stroke.zoom), m_smoother(stroke.zoom)
{
}

InkPathBuilder::Node InkPathBuilder::nodeOf(const SmoothSample &smooth) const
{
    const double half = tipDiameter(m_pen, m_width) / 2;
    switch (m_pen) {
    case InkPen::fountain:
        return {smooth.position, half * (0.65 + 1.05 * smooth.force), 1};
    case InkPen::pencil:
        // A pencil on its side leaves a broad, faint band.
        return {smooth.position, half * (0.8 + 0.3 * smooth.force + 2.5 * smooth.lean),
                (0.55 + 0.45 * smooth.force) * (1 - 0.5 * smooth.lean)};
    case InkPen::signature:
    case InkPen::marker:
        break;
    }
    return {smooth.position, half, 1};
}

void InkPathBuilder::append(const InkSample &sample)
{
    if (!std::isfinite(sample.position.x()) || !std::isfinite(sample.position.y())) {
        return;
    }
    InkSample held = sensible(sample);
    held.position = {std::clamp(sample.position.x(), -farthest, farthest),
                     std::clamp(sample.position.y(), -farthest, farthest)};
    const SmoothSample smooth = m_smoother.next(held);
    m_speed = smooth.speed;
    m_pressed = held.pressure.has_value();
    m_points.resize(m_settled);
    m_length = m_settledLength;
    Node node = nodeOf(smooth);
    Node tip = node;
    tip.position = held.position;
    const bool isNode = !m_lastCalm || distance(node.position, *m_lastCalm) * m_zoom >= leastStepPx;
    if (!m_lastCalm && !m_pressed) {
        m_pathSmoother.emplace(m_zoom);
    }
    if (isNode) {
        m_lastCalm = node.position;
    }
    if (!m_pathSmoother) {
        if (isNode) {
            addNode(node);
            settle();
        }
        addTail(tip);
        return;
    }
    m_pathSmoother->append(tip, node.position, isNode);
    for (const Node &final : m_pathSmoother->takeFinal()) {
        addNode(final);
        settle();
    }
    // What may still change is drawn on approval.
    const std::vector<Node> nodes = m_nodes;
    for (const Node &next : m_pathSmoother->rest()) {
        addNode(next);
    }
    addTail(tip);
    m_nodes = nodes;
}

void InkPathBuilder::addNode(const Node &node)
{
    const size_t count = m_nodes.size();
    if (count >= 2) {
        addCurve(count > 2 ? &m_nodes[count - 3] : nullptr, m_nodes[count - 2], m_nodes[count - 1], &node);
    }
    m_nodes.push_back(node);
    if (m_nodes.size() > 3) {
        m_nodes.erase(m_nodes.begin());
    }
}

void InkPathBuilder::settle()
{
    for (size_t i = std::max<size_t>(m_settled, 1); i < m_points.size(); ++i) {
        m_settledBounds |= swept(m_points[i - 1], m_points[i]);
    }
    m_settled = m_points.size();
    m_settledLength = m_length;
}

void InkPathBuilder::addTail(const Node &tip)
{
    const size_t count = m_nodes.size();
    const bool reaches = distance(tip.position, m_nodes.back().position) * m_zoom >= leastStepPx / 2;
    if (count >= 2) {
        addCurve(count > 2 ? &m_nodes[count - 3] : nullptr, m_nodes[count - 2], m_nodes[count - 1],
                 reaches ? &tip : nullptr);
    }
    if (reaches) {
        addCurve(count >= 2 ? &m_nodes[count - 2] : nullptr, m_nodes[count - 1], tip, nullptr);
    }
    if (m_points.empty()) {
        // The bare print of a narrow nib is too small for the dot of an i.
        const double rest = m_pen == InkPen::fountain ? dotWidening : 1;
        m_points.push_back({m_nodes.back().position, m_nodes.back().radius * rest, m_nodes.back().flow});
    }
}

void InkPathBuilder::addCurve(const Node *before, const Node &from, const Node &to, const Node *after)
{
    const QPointF p1 = from.position;
    const QPointF p2 = to.position;
    const Tangents tangents =
        centripetal(before ? before->position : 2 * p1 - p2, p1, p2, after ? after->position : 2 * p2 - p1);
    const QPointF chord = p2 - p1;
    const QPointF bendFrom = 6 * chord - 4 * tangents.from - 2 * tangents.to;
    const QPointF bendTo = 2 * tangents.from + 4 * tangents.to - 6 * chord;
    const double bend = std::max(std::hypot(bendFrom.x(), bendFrom.y()), std::hypot(bendTo.x(), bendTo.y()));
    const double byLength = distance(p1, p2) / std::max(m_width, 2.0);
    const int pieces = std::clamp(
        static_cast<int>(std::ceil(std::max(std::sqrt(bend / (8 * flatness)), byLength))), 1, 4096);
    if (m_points.empty()) {
        addPoint(from);
    }
    for (int i = 1; i <= pieces; ++i) {
        const double t = static_cast<double>(i) / pieces;
        const double u = 1 - t;
        const QPointF position = u * u * (1 + 2 * t) * p1 + t * u * u * tangents.from +
                                 t * t * (3 - 2 * t) * p2 - t * t * u * tangents.to;
        addPoint(
            {position, from.radius + t * (to.radius - from.radius), from.flow + t * (to.flow - from.flow)});
    }
}

void InkPathBuilder::addPoint(const Node &node)
{
    if (!m_points.empty()) {
        m_length += distance(m_points.back().position, node.position);
    }
    double radius = node.radius;
    if (m_pen == InkPen::fountain) {
        radius *= std::min(1.0, setDown + (1 - setDown) * m_length / (setDownWidths * m_width));
    }
    m_points.push_back({node.position, radius, node.flow});
}

void InkPathBuilder::finish()
{
    taperEnd();
    m_settled = m_points.size();
    m_settledBounds = {};
    for (size_t i = 0; i < m_points.size(); ++i) {
        m_settledBounds |= swept(m_points[i == 0 ? 0 : i - 1], m_points[i]);
    }
}

void InkPathBuilder::taperEnd()
{
    if (m_pen != InkPen::fountain || m_points.size() < 2) {
        return;
    }
    // A pen with pressure thins by itself as it leaves the paper.
    const double flick = std::min(m_speed / flickSpeed, 1.0) * (m_pressed ? 0.4 : 1);
    const double reach = std::min(flick * flickWidths * m_width, m_length / 2);
    // Too short a way to thin on leaves the end blunt.
    const double depth = std::min(reach / m_width, 1.0);
    double left = 0;
    for (size_t i = m_points.size(); i-- > 0 && left < reach;) {
        m_points[i].radius *= 1 - depth * (1 - flickTip) * (1 - std::pow(left / reach, 0.8));
        left += i > 0 ? distance(m_points[i].position, m_points[i - 1].position) : 0;
    }
}

QRectF InkPathBuilder::bounds() const
{
    QRectF bounds = m_settledBounds;
    for (size_t i = m_settled; i < m_points.size(); ++i) {
        bounds |= swept(m_points[i == 0 ? 0 : i - 1], m_points[i]);
    }
    return bounds;
}

} // namespace tarnovel
