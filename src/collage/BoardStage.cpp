#include "collage/BoardStage.h"

#include <algorithm>

#include "collage/CollageOutput.h"

namespace tarnovel {

CollagePlan BoardStage::plan(const CollageDesign &design) const
{
    // The plan of the result tells the shape that any other has.
    const QSizeF shape = CollagePlan::of(design, CollageOutput::longEdge).size;
    const double scale = std::min(room.width() / shape.width(), room.height() / shape.height());
    const double longer = std::max(shape.width(), shape.height()) * scale * devicePixelRatio;
    return CollagePlan::of(design, std::max(1, static_cast<int>(longer + 1e-6)));
}

QSizeF BoardStage::boardSize(const CollageDesign &design) const
{
    return QSizeF(plan(design).size) / devicePixelRatio;
}

CollageLayout BoardStage::layout(const CollageDesign &design) const
{
    CollageLayout layout = plan(design).layout;
    const auto inPoints = [this](const QRectF &rect) {
        return QRectF(rect.topLeft() / devicePixelRatio, rect.size() / devicePixelRatio);
    };
    for (auto &[slot, rect] : layout.cells) {
        rect = inPoints(rect);
    }
    for (CollageDivider &divider : layout.dividers) {
        divider.parent = inPoints(divider.parent);
        divider.position /= devicePixelRatio;
        divider.shared /= devicePixelRatio;
    }
    return layout;
}

std::optional<int> BoardStage::cellAt(const CollageDesign &design, QPointF point) const
{
    for (const auto &[slot, rect] : layout(design).cells) {
        if (rect.contains(point) && slot >= 0 && slot < design.cells.size()) {
            return slot;
        }
    }
    return std::nullopt;
}

} // namespace tarnovel
