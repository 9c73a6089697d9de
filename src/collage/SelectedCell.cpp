#include "collage/SelectedCell.h"

#include <algorithm>
#include <cmath>

#include "language/AppLanguage.h"

using namespace Qt::StringLiterals;

namespace tarnovel {

bool SelectedCell::isMissing()
{
    if (!m_studio.selectedCell()) {
        m_studio.setMessage(localized({"请先点选一个格子", "Tap a cell first", "Touchez d’abord une case"}),
                            CollageStudio::MessageKind::Hint);
    }
    return !m_studio.selectedCell();
}

void SelectedCell::change(const std::function<void(CollageCell &)> &edit, const QString &key)
{
    if (isMissing()) {
        return;
    }
    CollageDesign design = m_studio.design();
    edit(design.cells[*m_studio.selected()]);
    m_studio.change(design, key.isEmpty() ? key : key + u' ' + QString::number(*m_studio.selected()));
}

void SelectedCell::setFrame(CellFrame frame)
{
    change([frame](CollageCell &cell) { cell.frame = frame; });
}

void SelectedCell::copyFrame(CopyScope scope)
{
    if (isMissing()) {
        return;
    }
    CollageDesign design = m_studio.design();
    CollageEdits::copyFrame(design, *m_studio.selected(), scope, m_studio.layout());
    m_studio.change(design);
}

void SelectedCell::setZoom(double zoom)
{
    if (std::isfinite(zoom)) {
        change([zoom](CollageCell &cell) { cell.zoom = std::clamp(zoom, 1.0, CollageEdits::largestZoom); },
               u"zoom"_s);
    }
}

void SelectedCell::centerPhoto()
{
    change([](CollageCell &cell) { cell.offset = {0, 0}; });
}

void SelectedCell::resetPhoto()
{
    change([](CollageCell &cell) {
        cell.offset = {0, 0};
        cell.zoom = 1;
    });
}

} // namespace tarnovel
