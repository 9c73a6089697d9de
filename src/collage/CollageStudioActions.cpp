// Which cell is selected, which photo lies in which cell, and the layout.

#include <algorithm>

#include "collage/CollageStudio.h"

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

} // namespace tarnovel
