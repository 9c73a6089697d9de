#include "collage/CollageEdits.h"

#include <algorithm>
#include <cmath>

namespace tarnovel::CollageEdits {

namespace {

constexpr double pullDistance = 0.06;

/// Whether two cells stand side by side, given their extents across that direction.
bool together(double aStart, double aEnd, double bStart, double bEnd)
{
    return std::abs(aStart + aEnd - bStart - bEnd) / 2 <= 1 ||
           std::min(aEnd, bEnd) - std::max(aStart, bStart) > 1;
}

double pannedBy(double offset, double translation, double overflow, CentrePull pull)
{
    if (overflow < 1) {
        return offset;
    }
    const double moved = std::clamp(offset + translation / (overflow / 2), -1.0, 1.0);
    return pull == CentrePull::On && std::abs(moved) < pullDistance ? 0 : moved;
}

} // namespace

CollageDesign rebuilt(const CollageDesign &design, const QList<PhotoItem> &photos, LayoutChoice choice)
{
    CollageDesign made = design;
    QList<QSizeF> sizes;
    made.cells.clear();
    for (const PhotoItem &photo : photos) {
        sizes.append(photo.size());
        const auto old = std::ranges::find(design.cells, photo.id, &CollageCell::photo);
        made.cells.append(old == design.cells.end() ? CollageCell{photo.id} : *old);
    }
    const QList<CollagePreset> presets = CollagePreset::all(static_cast<int>(photos.size()));
    const auto kept = std::ranges::find(presets, design.preset.id, &CollagePreset::id);
    made.preset = choice == LayoutChoice::Best || kept == presets.end() ? CollagePreset::best(sizes) : *kept;
    made.node = made.preset.node;
    return made;
}

void copyFrame(CollageDesign &design, int slot, CopyScope scope, const CollageLayout &layout)
{
    const auto from = layout.cells.find(slot);
    if (from == layout.cells.end() || slot >= design.cells.size()) {
        return;
    }
    const QRectF &own = from->second;
    const CellFrame frame = design.cells.at(slot).frame;
    for (const auto &[other, rect] : layout.cells) {
        const bool reached =
            scope == CopyScope::All ||
            (scope == CopyScope::Row ? together(own.top(), own.bottom(), rect.top(), rect.bottom())
                                     : together(own.left(), own.right(), rect.left(), rect.right()));
        if (reached && other < design.cells.size()) {
            design.cells[other].frame = frame;
        }
    }
}

QSizeF panned(const CollageCell &cell, QSizeF photo, const QRectF &rect, QPointF translation, CentrePull pull)
{
    const PhotoPlacement placed = cellPlacement(cell, photo, rect);
    const QSizeF overflow = placed.whole.size() - placed.shown.size();
    return {pannedBy(cell.offset.width(), translation.x(), overflow.width(), pull),
            pannedBy(cell.offset.height(), translation.y(), overflow.height(), pull)};
}

CollageCell zoomedAt(const CollageCell &cell, QSizeF photo, const QRectF &rect, double zoom, QPointF anchor)
{
    const PhotoPlacement before = cellPlacement(cell, photo, rect);
    CollageCell made = cell;
    made.zoom = zoom;
    if (before.whole.isEmpty()) {
        return made;
    }
    const QSizeF size = before.whole.size() * (zoom / cell.zoom);
    const auto offset = [](double from, double length, double newLength, double at, double shown,
                           double window) {
        const double left = at - (at - from) * newLength / length;
        const double overflow = newLength - window;
        return overflow < 1
                   ? 0.0
                   : std::clamp(2 * (left + newLength / 2 - shown - window / 2) / overflow, -1.0, 1.0);
    };
    made.offset = {offset(before.whole.left(), before.whole.width(), size.width(), anchor.x(),
                          before.shown.left(), before.shown.width()),
                   offset(before.whole.top(), before.whole.height(), size.height(), anchor.y(),
                          before.shown.top(), before.shown.height())};
    return made;
}

} // namespace tarnovel::CollageEdits
