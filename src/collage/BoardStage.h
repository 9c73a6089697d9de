#pragma once

#include <optional>

#include <QPointF>

#include "collage/CollageRenderer.h"

namespace tarnovel {

/// The room that a board has on the screen, and where a collage's cells and dividers lie in it. Lengths are
/// in points, positions from the board's upper left corner.
struct BoardStage {
    QSizeF room{900, 900};
    double devicePixelRatio = 1;
    bool operator==(const BoardStage &) const = default;

    /// In device pixels: as large as the room takes.
    CollagePlan plan(const CollageDesign &design) const;
    QSizeF boardSize(const CollageDesign &design) const;
    CollageLayout layout(const CollageDesign &design) const;
    std::optional<int> cellAt(const CollageDesign &design, QPointF point) const;
};

} // namespace tarnovel
