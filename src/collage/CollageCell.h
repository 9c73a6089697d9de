#pragma once

#include <array>
#include <optional>

#include <QColor>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QUuid>

#include "render/CompositionRenderer.h"

namespace tarnovel {

/// The paper round one cell's photo.
enum class CellFrame { none, white, inner, instant, film };

constexpr std::array<CellFrame, 5> cellFrames = {CellFrame::none, CellFrame::white, CellFrame::inner,
                                                 CellFrame::instant, CellFrame::film};

/// In the current language.
QString cellFrameTitle(CellFrame frame);
QString cellFrameName(CellFrame frame);
std::optional<CellFrame> cellFrameFromName(const QString &name);

/// The colour that fills the cell behind the photo; none for a cell without a frame.
std::optional<QColor> cellPaper(CellFrame frame);

/// The window of the photo in a cell.
QRectF cellPhotoRect(CellFrame frame, const QRectF &cell);

/// One photo of a collage, by slot.
struct CollageCell {
    QUuid photo;
    /// The photo's pan in its window, -1…1 each way: at 1 it lies as far right (down) as it can, its left
    /// (upper) edge flush with the window's.
    QSizeF offset = {0, 0};
    /// Beyond filling the window, 1…4.
    double zoom = 1;
    CellFrame frame = CellFrame::none;
    bool operator==(const CollageCell &) const = default;
};

/// How a photo of this size lies in its cell.
PhotoPlacement cellPlacement(const CollageCell &cell, QSizeF photo, const QRectF &rect);

} // namespace tarnovel
