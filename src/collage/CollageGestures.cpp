#include "collage/CollageGestures.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace tarnovel {

namespace {

bool isFinite(QPointF point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

/// The place along a divider's parent that stands for this ratio.
QPointF placeOf(const CollageDivider &divider, double ratio)
{
    const QRectF &parent = divider.parent;
    return {parent.x() + ratio * parent.width(), parent.y() + ratio * parent.height()};
}

bool isOutsideLimits(double ratio)
{
    return CollageGeometry::heldRatio(ratio) != ratio;
}

} // namespace

std::optional<CollageDivider> CollageGestures::divider(const QString &id) const
{
    const QList<CollageDivider> dividers = m_studio.layout().dividers;
    const auto found = std::ranges::find_if(dividers, [&id](const auto &each) { return each.id() == id; });
    return found == dividers.end() ? std::nullopt : std::optional(*found);
}

std::optional<CollageDivider> CollageGestures::dividerAt(QPointF point) const
{
    // The frames of a film strip stand at their real distance.
    if (m_studio.choosing() || m_studio.design().preset.film) {
        return std::nullopt;
    }
    std::optional<CollageDivider> nearest;
    double distance = dividerReach;
    for (const CollageDivider &each : m_studio.layout().dividers) {
        const bool horizontal = each.axis == CollageAxis::Horizontal;
        const QRectF &parent = each.parent;
        const double across = std::abs((horizontal ? point.x() : point.y()) - each.position);
        const bool along = horizontal ? point.y() >= parent.top() && point.y() <= parent.bottom()
                                      : point.x() >= parent.left() && point.x() <= parent.right();
        if (along && across <= distance) {
            nearest = each;
            distance = across;
        }
    }
    return nearest;
}

bool CollageGestures::grabDivider(QPointF point)
{
    const std::optional<CollageDivider> found = dividerAt(point);
    if (!found || !m_studio.editable()) {
        return false;
    }
    const double ratio = m_studio.design().node.node(found->path)->ratio;
    const QPointF place = placeOf(*found, ratio);
    m_divider = found->id();
    m_ratioLabel = CollageGeometry::ratioText(ratio);
    m_ratioThen = ratio;
    m_grabbedAt = point;
    m_snapped = CollageGeometry::dragDivider(*found, place).snapped;
    m_dividerBegun = false;
    return true;
}

void CollageGestures::dragDivider(QPointF point)
{
    const std::optional<CollageDivider> held = m_divider ? divider(*m_divider) : std::nullopt;
    if (!held || !isFinite(point) || !m_studio.editable() || over(m_dividerBegun)) {
        return;
    }
    const QPointF way = point - m_grabbedAt;
    const double along = held->axis == CollageAxis::Horizontal ? way.x() : way.y();
    const double ratio = m_ratioThen + along / std::max(held->shared, 1.0);
    if (isOutsideLimits(m_ratioThen) &&
        CollageGeometry::heldRatio(ratio) == CollageGeometry::heldRatio(m_ratioThen)) {
        // A layout of many cells has dividers outside the limits: those stay until the finger is inside.
        return;
    }
    const CollageGeometry::Drag drag = CollageGeometry::dragDivider(*held, placeOf(*held, ratio));
    m_snapped = drag.snapped;
    m_ratioLabel = drag.readout;
    CollageDesign design = m_studio.design();
    design.node.setRatio(held->path, drag.ratio);
    if (design != m_studio.design() && !m_dividerBegun) {
        begin(m_dividerBegun);
    }
    m_studio.update(design);
}

void CollageGestures::releaseDivider()
{
    m_divider.reset();
    m_ratioLabel.reset();
    m_snapped = false;
}

QString CollageGestures::nudgeDivider(const QString &id, double share)
{
    const std::optional<CollageDivider> held = divider(id);
    if (!held || !std::isfinite(share) || m_studio.design().preset.film) {
        return {};
    }
    CollageDesign design = m_studio.design();
    const double old = design.node.node(held->path)->ratio;
    const double ratio = CollageGeometry::heldRatio(old + share);
    // A layout of many cells has dividers outside the limits: those do not jump against the key.
    if ((ratio - old) * share > 0) {
        design.node.setRatio(held->path, ratio);
        m_studio.change(design, u"divider "_s + id);
    }
    return CollageGeometry::ratioText(m_studio.design().node.node(held->path)->ratio);
}

bool CollageGestures::hasCell(int slot) const
{
    return slot >= 0 && slot < m_studio.design().cells.size();
}

bool CollageGestures::began(const std::optional<Start> &gesture, int slot) const
{
    return gesture && gesture->slot == slot && hasCell(slot) &&
           gesture->cell.photo == m_studio.design().cells.at(slot).photo;
}

CollageCell CollageGestures::moved(int slot, const CollageCell &from, QPointF translation,
                                   CollageEdits::CentrePull pull) const
{
    const std::map<int, QRectF> cells = m_studio.layout().cells;
    const auto rect = cells.find(slot);
    const PhotoItem *photo = m_studio.photo(from.photo);
    CollageCell cell = from;
    if (rect != cells.end() && photo) {
        cell.offset = CollageEdits::panned(from, photo->size(), rect->second, translation, pull);
    }
    return cell;
}

CollageCell CollageGestures::zoomed(int slot, const CollageCell &from, double factor,
                                    std::optional<QPointF> anchor) const
{
    const double zoom = std::clamp(from.zoom * factor, 1.0, CollageEdits::largestZoom);
    const std::map<int, QRectF> cells = m_studio.layout().cells;
    const auto rect = cells.find(slot);
    const PhotoItem *photo = m_studio.photo(from.photo);
    if (anchor && rect != cells.end() && photo) {
        return CollageEdits::zoomedAt(from, photo->size(), rect->second, zoom, *anchor);
    }
    CollageCell cell = from;
    cell.zoom = zoom;
    return cell;
}

bool CollageGestures::over(bool begun) const
{
    return begun && m_studio.steps() != m_stepsThen;
}

void CollageGestures::begin(bool &begun)
{
    m_studio.checkpoint();
    m_stepsThen = m_studio.steps();
    begun = true;
}

void CollageGestures::setCell(int slot, const CollageCell &cell, bool &begun)
{
    if (over(begun)) {
        return;
    }
    CollageDesign design = m_studio.design();
    design.cells[slot] = cell;
    if (design != m_studio.design() && !begun) {
        begin(begun);
    }
    m_studio.update(design);
}

void CollageGestures::panPhoto(int slot, QPointF translation)
{
    if (!hasCell(slot) || !isFinite(translation) || !m_studio.editable()) {
        return;
    }
    if (!began(m_pan, slot)) {
        if (std::hypot(translation.x(), translation.y()) < panThreshold) {
            return;
        }
        m_pan = {slot, m_studio.design().cells.at(slot)};
        m_panBegun = false;
    }
    CollageCell cell = m_studio.design().cells.at(slot);
    CollageCell start = m_pan->cell;
    start.zoom = cell.zoom; // a pinch may go on at the same time
    cell.offset = moved(slot, start, translation, CollageEdits::CentrePull::On).offset;
    setCell(slot, cell, m_panBegun);
}

void CollageGestures::nudgePhoto(int slot, QPointF translation)
{
    if (!hasCell(slot) || !isFinite(translation)) {
        return;
    }
    CollageDesign design = m_studio.design();
    // The centre would not let go of a photo that moves by less than its pull.
    design.cells[slot] = moved(slot, design.cells.at(slot), translation, CollageEdits::CentrePull::Off);
    m_studio.change(design, u"pan "_s + QString::number(slot));
}

void CollageGestures::pinchPhoto(int slot, double magnification, std::optional<QPointF> anchor)
{
    if (!hasCell(slot) || !std::isfinite(magnification) || !m_studio.editable()) {
        return;
    }
    if (!began(m_pinch, slot)) {
        m_pinch = {slot, m_studio.design().cells.at(slot)};
        m_pinchBegun = false;
    }
    CollageCell cell = m_studio.design().cells.at(slot);
    const CollageCell made = zoomed(slot, m_pinch->cell, magnification, anchor);
    cell.zoom = made.zoom;
    cell.offset = anchor ? made.offset : cell.offset;
    setCell(slot, cell, m_pinchBegun);
}

void CollageGestures::zoomPhoto(int slot, double factor, std::optional<QPointF> anchor)
{
    if (!hasCell(slot) || !std::isfinite(factor)) {
        return;
    }
    CollageDesign design = m_studio.design();
    design.cells[slot] = zoomed(slot, design.cells.at(slot), factor, anchor);
    m_studio.change(design, u"zoom "_s + QString::number(slot));
}

} // namespace tarnovel
