// The studio's controls: what they do to the selected cell, to two cells, and to the page.

#include <algorithm>
#include <cmath>

#include "collage/CollageStudio.h"
#include "language/AppLanguage.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

const CollageCell *CollageStudio::selectedCell() const
{
    return m_selected && hasSlot(*m_selected) ? &m_design.cells.at(*m_selected) : nullptr;
}

void CollageStudio::select(std::optional<int> slot)
{
    if (!editable() || slot == m_selected || (slot && !hasSlot(*slot))) {
        return;
    }
    m_selected = slot;
    tell(SelectionChanged);
}

void CollageStudio::choosePreset(const QString &id)
{
    const QList<CollagePreset> all = presets();
    const auto found = std::ranges::find(all, id, &CollagePreset::id);
    if (found != all.end()) {
        CollageDesign design = m_design;
        design.preset = *found;
        design.node = found->node;
        change(design);
    }
}

bool CollageStudio::needsSelection()
{
    if (!selectedCell()) {
        setMessage(localized({"请先点选一个格子", "Tap a cell first", "Touchez d’abord une case"}),
                   MessageKind::Hint);
    }
    return !selectedCell();
}

void CollageStudio::changeCell(const std::function<void(CollageCell &)> &edit, const QString &key)
{
    if (needsSelection()) {
        return;
    }
    CollageDesign design = m_design;
    edit(design.cells[*m_selected]);
    change(design, key.isEmpty() ? key : key + u' ' + QString::number(*m_selected));
}

void CollageStudio::setFrame(CellFrame frame)
{
    changeCell([frame](CollageCell &cell) { cell.frame = frame; });
}

void CollageStudio::copyFrame(CopyScope scope)
{
    if (needsSelection()) {
        return;
    }
    CollageDesign design = m_design;
    CollageEdits::copyFrame(design, *m_selected, scope, layout());
    change(design);
}

void CollageStudio::swapCells(int slot, int other)
{
    if (!editable() || !hasSlot(slot) || !hasSlot(other) || slot == other) {
        return;
    }
    CollageDesign design = m_design;
    design.cells.swapItemsAt(slot, other);
    change(design);
}

void CollageStudio::replacePhoto(int slot, const QUuid &photo)
{
    const qsizetype present = m_picked.indexOf(photo);
    if (m_choosing || !hasSlot(slot) || !m_photos.find(photo)) {
        return;
    }
    if (present >= 0) {
        swapCells(slot, static_cast<int>(present));
        return;
    }
    CollageDesign design = m_design;
    design.cells[slot] = {.photo = photo, .frame = design.cells.at(slot).frame};
    change(design);
}

void CollageStudio::replacePhoto(int slot, const QString &path)
{
    if (m_choosing || !hasSlot(slot)) {
        return;
    }
    // Cells may be swapped while the file is opened: what it is to replace is the photo.
    m_photos.open({path}, [this, old = m_design.cells.at(slot).photo](const QList<QUuid> &photos,
                                                                      qsizetype unreadable) {
        const qsizetype place = m_picked.indexOf(old);
        if (!photos.isEmpty() && place >= 0) {
            replacePhoto(static_cast<int>(place), photos.first());
        }
        if (unreadable > 0) {
            filesUnreadable(unreadable);
        }
    });
}

void CollageStudio::setZoom(double zoom)
{
    if (std::isfinite(zoom)) {
        changeCell(
            [zoom](CollageCell &cell) { cell.zoom = std::clamp(zoom, 1.0, CollageEdits::largestZoom); },
            u"zoom"_s);
    }
}

void CollageStudio::centerPhoto()
{
    changeCell([](CollageCell &cell) { cell.offset = {0, 0}; });
}

void CollageStudio::resetPhoto()
{
    changeCell([](CollageCell &cell) {
        cell.offset = {0, 0};
        cell.zoom = 1;
    });
}

void CollageStudio::changePage(double CollageDesign::*length, double value, double largest,
                               const QString &key)
{
    if (std::isfinite(value)) {
        CollageDesign design = m_design;
        design.*length = std::clamp(value, 0.0, largest);
        change(design, key);
    }
}

void CollageStudio::setGap(double gap)
{
    changePage(&CollageDesign::gap, gap, largestGap, u"gap"_s);
}

void CollageStudio::setMargin(double margin)
{
    changePage(&CollageDesign::margin, margin, largestMargin, u"margin"_s);
}

void CollageStudio::setRadius(double radius)
{
    changePage(&CollageDesign::radius, radius, largestRadius, u"radius"_s);
}

void CollageStudio::setAspect(CollageAspect aspect)
{
    CollageDesign design = m_design;
    design.aspect = aspect;
    change(design);
}

void CollageStudio::setBackground(const QColor &color)
{
    if (color.isValid()) {
        CollageDesign design = m_design;
        design.background = QColor::fromRgb(color.rgb());
        change(design, u"background"_s);
    }
}

void CollageStudio::setFilmEdge(const FilmEdge &edge)
{
    // Typing is one step; a choice is one each.
    const FilmEdge &old = m_design.filmEdge;
    const QString key = edge.topText != old.topText           ? u"edge text"_s
                        : edge.startNumber != old.startNumber ? u"start number"_s
                                                              : QString();
    CollageDesign design = m_design;
    design.filmEdge = edge;
    design.filmEdge.startNumber = std::clamp(edge.startNumber, 0, largestStartNumber);
    change(design, key);
}

} // namespace tarnovel
