#include "handwriting/InkPage.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>
#include <utility>

namespace tarnovel {

namespace {

double cross(QPointF a, QPointF b)
{
    return a.x() * b.y() - a.y() * b.x();
}

double distanceToPiece(QPointF point, QPointF a, QPointF b)
{
    const QPointF way = b - a;
    const double squared = QPointF::dotProduct(way, way);
    const double t = squared > 0 ? std::clamp(QPointF::dotProduct(point - a, way) / squared, 0.0, 1.0) : 0;
    const QPointF apart = point - a - t * way;
    return std::hypot(apart.x(), apart.y());
}

double distanceOfPieces(QPointF a, QPointF b, QPointF c, QPointF d)
{
    const bool partsCd = cross(b - a, c - a) * cross(b - a, d - a) < 0;
    const bool partsAb = cross(d - c, a - c) * cross(d - c, b - c) < 0;
    if (partsCd && partsAb) {
        return 0;
    }
    return std::min({distanceToPiece(a, c, d), distanceToPiece(b, c, d), distanceToPiece(c, a, b),
                     distanceToPiece(d, a, b)});
}

/// The bounds of the strokes that only one of the two drawings has.
QRectF difference(const InkDrawing &one, const InkDrawing &other)
{
    QRectF region;
    const auto addMissing = [&region](const InkDrawing &all, const InkDrawing &known) {
        std::unordered_set<const DryStroke *> there;
        for (const auto &stroke : known) {
            there.insert(stroke.get());
        }
        for (const auto &stroke : all) {
            if (!there.contains(stroke.get())) {
                region |= stroke->path.bounds;
            }
        }
    };
    addMissing(one, other);
    addMissing(other, one);
    return region;
}

} // namespace

bool touches(const InkPath &path, QPointF from, QPointF to, double radius)
{
    const QRectF way = swept({from, radius}, {to, radius});
    if (!way.intersects(path.bounds)) {
        return false;
    }
    for (size_t i = 0; i < path.points.size(); ++i) {
        const InkPoint &a = path.points[i == 0 ? 0 : i - 1];
        const InkPoint &b = path.points[i];
        // The nib's short axis: the ink is nowhere narrower.
        const double half = std::max(a.radius, b.radius) * path.nib.aspect;
        if (distanceOfPieces(a.position, b.position, from, to) <= radius + half) {
            return true;
        }
    }
    return false;
}

QRectF InkPage::replace(const InkDrawing &drawing)
{
    const QRectF region = difference(m_drawing, drawing);
    m_drawing = drawing;
    return region;
}

QRectF InkPage::add(std::shared_ptr<const DryStroke> stroke)
{
    m_history.record(m_drawing);
    m_drawing.append(std::move(stroke));
    return m_drawing.last()->path.bounds;
}

QRectF InkPage::clear()
{
    if (isEmpty()) {
        return {};
    }
    m_history.record(m_drawing);
    return replace({});
}

QRectF InkPage::undo()
{
    const auto before = m_history.undo([this](const InkDrawing &) { return m_drawing; });
    return before ? replace(*before) : QRectF();
}

QRectF InkPage::redo()
{
    const auto after = m_history.redo([this](const InkDrawing &) { return m_drawing; });
    return after ? replace(*after) : QRectF();
}

QRectF InkPage::erase(QPointF from, QPointF to, double radius)
{
    InkDrawing left = m_drawing;
    left.removeIf([&](const auto &stroke) { return touches(stroke->path, from, to, radius); });
    if (left.size() == m_drawing.size()) {
        return {};
    }
    if (!m_erasing) {
        m_drawingBefore = m_drawing;
        m_historyBefore = m_history;
        m_history.record(m_drawing);
        m_erasing = true;
    }
    return replace(left);
}

QRectF InkPage::takeErasingBack()
{
    if (!std::exchange(m_erasing, false)) {
        return {};
    }
    m_history = std::exchange(m_historyBefore, UndoSteps<InkDrawing>());
    return replace(std::exchange(m_drawingBefore, {}));
}

} // namespace tarnovel
