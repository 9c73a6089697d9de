#pragma once

#include <QPointF>

#include "collage/CollageRenderer.h"
#include "model/Session.h"

namespace tarnovel {

/// Where a cell's frame is copied to.
enum class CopyScope { Row, Column, All };

/// Which layout a collage of other photos gets.
enum class LayoutChoice {
    /// The one that suits the photos' shapes.
    Best,
    /// The one that it has, where that exists for so many photos; else the best.
    Keep,
};

/// What the studio's actions do to a design.
namespace CollageEdits {

constexpr qsizetype fewestPhotos = 2;
constexpr qsizetype mostPhotos = 9;
constexpr double largestZoom = 4;

/// The collage of these photos, in slot order, with the layout's own ratios. Cells whose photo stays keep
/// their pan, zoom and frame.
CollageDesign rebuilt(const CollageDesign &design, const QList<PhotoItem> &photos, LayoutChoice choice);

/// Copies a cell's frame to those beside it (row), above and below it (column), or to all. Cells count as
/// beside each other when their middles are at most 1 unit of the layout apart, or they overlap by more.
void copyFrame(CollageDesign &design, int slot, CopyScope scope, const CollageLayout &layout);

enum class CentrePull { On, Off };

/// The cell's pan when the photo has been moved by `translation` from where it lies in `rect`. The centre
/// pulls within 0.06; a way in which the photo overflows by less than 1 unit keeps its pan.
QSizeF panned(const CollageCell &cell, QSizeF photo, const QRectF &rect, QPointF translation,
              CentrePull pull);

/// The cell at another zoom, with the place of the photo that lies at `anchor` kept there as far as the photo
/// still fills its window.
CollageCell zoomedAt(const CollageCell &cell, QSizeF photo, const QRectF &rect, double zoom, QPointF anchor);

} // namespace CollageEdits

} // namespace tarnovel
